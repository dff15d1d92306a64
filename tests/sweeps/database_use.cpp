#include "tests/sweeps/database_use.h"

#include <algorithm>
#include <functional>
#include <regex>

#include "DBbase.h"

namespace tabwerk::test {
namespace {

constexpr short kLanguages = 3;

template <typename T>
void Append(T const& value, std::string* bytes) {
  bytes->append(reinterpret_cast<char const*>(&value), sizeof value);
}

// The values of the selected column.
void AppendColumn(DBTabelle& table, std::string* bytes) {
  for (long row = 0; table.SelectZeile(row) == 1; ++row) {
    long integer = 0;
    double real = 0;
    zWString text;
    if (table.GetWert(integer) == 1) Append(integer, bytes);
    if (table.GetWert(real) == 1) Append(real, bytes);
    if (table.GetWert(text) == 0) continue;
    Append(text.length(), bytes);
    bytes->append(reinterpret_cast<char const*>(text.utf16()),
                  text.length() * sizeof(char16_t));
  }
}

void ForEachField(DBTabelle& table,
                  std::function<void(DBFeld const&)> const& use) {
  auto* const entry = table.GetDirEntry(false);
  if (entry == nullptr) return;
  for (auto const* field = entry->GetDefinition()->GetDefinition();
       field != nullptr; field = field->next) {
    use(*field);
  }
}

// Names are copied: what a table is used for may make the manager new.
void ForEachTable(std::function<void(char const*, DBTabelle&)> const& use) {
  auto* const manager = DBbase::GetDBBaseInstance();
  auto* const directory = manager->GetDirectory();
  if (directory == nullptr) return;
  for (auto* entry = directory->GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    DBTabelle* table = nullptr;
    if (manager->OpenTabelle(entry->GetName(), table) == 1) {
      use(entry->GetName(), *table);
    }
  }
}

int SearchColumn(DBTabelle& table, DBFeld const& field) {
  table.SelectZeile(field.name, 7L);
  table.SelectZeile(field.name, 1.5);
  table.SelectZeile(field.name, L"no such text");
  if (field.type != DBTypeString) return 3;
  (void)table.FindRows(field.name, zWString(u"A.*a"), true);
  return 4;
}

void ChangeColumn(DBTabelle& table, DBFeld const& field) {
  table.SelectColumn(field.name);
  for (long const row : {0L, table.GetAnzahlZeilen() - 1L}) {
    table.SelectZeile(row);
    table.SetWert(field.type == DBTypeInteger ? row + 3 : 4L);
    table.SetWert(2.5);
    if (field.type != DBTypeString) continue;
    table.SetWert(u"changed, and longer than it was before");
    table.SetWert("short");
  }
}

void AppendRows(DBTabelle& table) {
  std::map<std::string, std::wstring> values;
  ForEachField(table, [&](DBFeld const& field) { values[field.name] = L"7"; });
  for (auto const action : {DBTabelle::ActionInsert, DBTabelle::ActionUpdate,
                            DBTabelle::ActionAppend}) {
    table.SetZeileWerte(values, action);
  }
  for (bool const user : {false, true}) {
    if (!table.NeueZeile(user)) continue;
    table.SelectColumn("ID");
    table.SetWert(table.NewUserID());
  }
}

}  // namespace

std::string ValuesOf(DBTabelle& table) {
  std::string bytes;
  ForEachField(table, [&](DBFeld const& field) {
    table.SelectColumn(field.name);
    for (short language = 0; language < kLanguages; ++language) {
      DBbase::SetSprache(language);
      AppendColumn(table, &bytes);
      if (field.type != DBTypeString) break;
    }
  });
  DBbase::SetSprache(0);
  return bytes;
}

std::map<std::string, std::string> AllValues() {
  std::map<std::string, std::string> values;
  ForEachTable([&](char const* name, DBTabelle& table) {
    values.emplace(name, ValuesOf(table));
  });
  return values;
}

int SearchEverywhere() {
  int searches = 0;
  ForEachTable([&](char const*, DBTabelle& table) {
    ForEachField(table, [&](DBFeld const& field) {
      searches += SearchColumn(table, field);
    });
    table.SelectZeile("ID", 3L);
    table.SelectZeile("FOLGE", table.MaxFolge());
    (void)table.GetRowByID(2);
    (void)table.GetRowByFolge(table.MaxFolge() + 1);
    (void)table.GetAnzahlAktiveZeilen();
    searches += 5;
  });
  return searches;
}

void ChangeEverything() {
  ForEachTable([](char const*, DBTabelle& table) {
    ForEachField(table,
                 [&](DBFeld const& field) { ChangeColumn(table, field); });
    AppendRows(table);
    table.MakeIndexID();
    table.MakeIndexFolge();
    table.MakeIndexStatus();
    table.ResortIndexID();
  });
}

}  // namespace tabwerk::test
