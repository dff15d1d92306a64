// Uses the installed library across its border: classes, memory that changes
// hands, standard types and an exception.
#include <cstdio>
#include <regex>
#include <vector>

#include "tabwerk.h"

namespace {

int failures = 0;

void Expect(bool condition, char const* claim) {
  if (condition) return;
  std::fprintf(stderr, "not true: %s\n", claim);
  ++failures;
}

void UseTemplateSymbols() {
  CTabwerk first;
  CTabwerk second(first);
  second = first;
  Expect(fnTabwerk() == 42, "fnTabwerk is 42");
  Expect(nTabwerk == 0, "nTabwerk is 0");
}

void UseManager() {
  std::vector<zWString> const names = {L"MAIN", L"OTHER"};
  std::vector<std::vector<zWString>> const files = {
      {L"nowhere/main.SDB"}, {L"nowhere/other.SDB", L"nowhere/other.UDB"}};
  Expect(DBbase::Init(names, files), "Init takes a configuration");
  DBbase* manager = DBbase::GetDBBaseInstance();
  Expect(manager->FilesCount() == 2, "two databases are configured");
  Expect(manager->SelectDB(L"main"), "a database is found by its name");
  Expect(manager->GetDirectory()->GetName() == L"MAIN", "it is current");
  Expect(manager->Open(L"MAIN", false, false) == 0,
         "a file that is not there does not open");

  zWString text(L"#TS(Brot\u00acBread)TS~");
  DBbase::SetSprache(1);
  DBbase::DBTranslate(text);
  Expect(text == L"Bread", "the second language is English");
}

// The directory releases the definition that was made here.
void UseTable() {
  DBDirectory directory;
  directory.Initialize(L"MEMORY", {L"memory.SDB"});
  int const added =
      directory.AddEntry(new DBDefinition("integer ID,string NAME\n"), "T",
                         L"memory.SDB", true, 0, 0, 0, 0, 0);
  Expect(added == 1, "a table is added");
  DBTabelle table;
  table.SetDirEntry(directory.FindTable("T", directory.GetEntries()));
  Expect(table.NeueZeile(false), "a row is added");
  Expect(table.SelectColumn("NAME") == 1, "its column is found");
  Expect(table.SetWert(u"Anna") == 1, "a text is stored");
  Expect(table.FindRows("NAME", L"A.*", false) == std::vector<long>{0},
         "the row is found");
  bool caught = false;
  try {
    table.FindRows("NAME", L"(", false);
  } catch (std::regex_error const&) {
    caught = true;
  }
  Expect(caught, "a malformed pattern is reported by an exception");
}

}  // namespace

int main() {
  UseTemplateSymbols();
  UseManager();
  UseTable();
  if (failures == 0) std::puts("the installed library works");
  return failures == 0 ? 0 : 1;
}
