// An example of a program that keeps its reference data in a tabwerk database:
// it opens the shipped file together with the user's file, reads names in
// several languages, adds a row of the user's, saves and reads it again.
//
//   tabwerk_host FOLDER
//
// FOLDER holds geo.db and GEO.UDB (see examples/README.md).  Every run adds one
// row.  Ends with 0 when all went well, 1 when a step failed, 2 when called
// wrongly.
#include <cstdio>
#include <string>
#include <vector>

#include "console.h"
#include "tabwerk.h"

namespace {

constexpr char kTable[] = "TERRITORY";

zWString DatabaseName() { return u"GEO"; }

// One piece for each language; which language has which number is an agreement
// between the program and its data.
constexpr char16_t kOurRow[] =
    u"#TS(Our island\u00ACUnsere Insel\u00ACNotre île\u00ACΤο νησί μας\u00AC"
    u"جزيرتنا\u00AC私たちの島\u00ACNuestra isla)TS~";
constexpr char const* kLanguages[] = {"English", "German",   "French", "Greek",
                                      "Arabic",  "Japanese", "Spanish"};

void Print(zWString const& text) { console::PrintLine(stdout, text); }

// Every step answers whether it worked; the first that did not is named.
bool Check(bool worked, std::string const& step) {
  if (worked) return true;
  console::PrintLine(stderr,
                     zWString::fromUtf8("tabwerk_host: cannot " + step));
  return false;
}

zWString Number(long value) {
  return zWString::fromLatin1(std::to_string(value));
}

// The manager and its tables are replaced by Init and Write, so nothing of it
// is kept: it is fetched where it is used.
bool OpenTable(DBTabelle** table) {
  return Check(DBbase::GetDBBaseInstance()->OpenTabelle(kTable, *table) == 1,
               "open the table");
}

// A value is read from the current row and column.  The type of the variable
// has to be that of the column.
template <typename Value>
bool Read(DBTabelle* table, std::string const& column, Value* value) {
  return Check(
      table->SelectColumn(column.c_str()) == 1 && table->GetWert(*value) == 1,
      "read " + column);
}

template <typename Value>
bool Store(DBTabelle* table, std::string const& column, Value value) {
  return Check(
      table->SelectColumn(column.c_str()) == 1 && table->SetWert(value) == 1,
      "store " + column);
}

// Prints the current row.
bool ShowRow(DBTabelle* table) {
  long id = 0;
  zWString code;
  zWString name;
  long population = 0;
  double literacy = 0.0;
  if (!Read(table, "ID", &id) || !Read(table, "CODE", &code) ||
      !Read(table, "NAME", &name) || !Read(table, "POPULATION", &population) ||
      !Read(table, "LITERACY", &literacy)) {
    return false;
  }
  Print(zWString(u"  ") + Number(id) + u"  " + code + u"  " + name + u"  (" +
        Number(population) + u"; " + zWString(literacy, 0) + u" %)");
  return true;
}

// Prints the rows with these IDs in every language.
bool ShowInAllLanguages(std::vector<long> const& ids) {
  DBTabelle* table = nullptr;
  if (!OpenTable(&table)) return false;
  short language = 0;
  for (char const* const language_name : kLanguages) {
    DBbase::SetSprache(language++);
    Print(zWString::fromUtf8(language_name));
    for (long const id : ids) {
      if (!Check(table->SelectZeile("ID", id) == 1, "find a row by its ID") ||
          !ShowRow(table)) {
        return false;
      }
    }
  }
  return true;
}

// Adds a row to the user's part of the table, behind all active rows.  The new
// row is the current one until another is selected.
bool AddUserRow(long* id) {
  DBTabelle* table = nullptr;
  if (!OpenTable(&table)) return false;
  *id = table->NewUserID();
  return Check(table->NeueZeile(true), "add a row") &&
         Store(table, "ID", *id) &&
         Store(table, "FOLGE",
               static_cast<long>(table->GetAnzahlAktiveZeilen())) &&
         Store(table, "CODE", u"QX") && Store(table, "NAME", kOurRow) &&
         Store(table, "POPULATION", 12L) && Store(table, "LITERACY", 100.0);
}

bool Run(zWString const& folder) {
  // The shipped file comes first, the user's file second.  Only ".UDB" in
  // capital letters is a user file.
  DBbase::Init({DatabaseName()}, {{folder + u"/geo.db", folder + u"/GEO.UDB"}});
  if (!Check(
          DBbase::GetDBBaseInstance()->Open(DatabaseName(), true, false) == 1,
          "open geo.db and GEO.UDB for writing") ||
      !ShowInAllLanguages({276L, 818L, 392L})) {
    return false;
  }

  long id = 0;
  if (!AddUserRow(&id) ||
      !Check(DBbase::GetDBBaseInstance()->Write(DatabaseName(), true, u""),
             "write GEO.UDB")) {
    return false;
  }
  // From here on the manager and the tables are new objects.
  Print(u"Saved and read again");
  return ShowInAllLanguages({id}) &&
         Check(DBbase::GetDBBaseInstance()->Close(DatabaseName()) == 1,
               "close the database");
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<zWString> const arguments = console::Arguments(argc, argv);
  if (arguments.size() != 2) {
    console::PrintLine(stderr, u"usage: tabwerk_host FOLDER");
    return 2;
  }
  return Run(arguments[1]) ? 0 : 1;
}
