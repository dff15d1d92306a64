// Any bytes as a main file and a user file: they are refused and left alone, or
// every value can be read, the index that is made serves the next opening, and
// a saved row is there again.
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "DBbase.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/repair.h"

namespace {

namespace fuzz = tabwerk::fuzz;
using fuzz::PrivateFolder;
using fuzz::Require;
using fuzz::RequireEqual;

// No text of it can be too long to be written, which ends the process.
constexpr std::size_t kMostWritten = 16'000;

using Contents = std::map<std::string, std::string>;

bool Open() {
  return fuzz::OpenDatabase(u"STOCK", {"MAIN.db", "USER.UDB"}, true);
}

bool Save() {
  return DBbase::GetDBBaseInstance()->Write(u"STOCK", true, zWString());
}

void RequireSame(Contents const& expected, Contents const& got) {
  Require(expected.size() == got.size(), "the same tables are there");
  for (auto const& [name, content] : expected) {
    auto const found = got.find(name);
    Require(found != got.end(), "every table is there");
    RequireEqual(content, found->second, "a table reads the same");
  }
}

// Places lead to rows, and active rows are counted as a host counts them.
void RequireSoundIndices() {
  auto& manager = *DBbase::GetDBBaseInstance();
  for (auto const* entry = manager.GetDirectory()->GetEntries();
       entry != nullptr; entry = entry->GetNext()) {
    DBTabelle* table = nullptr;
    if (manager.OpenTabelle(entry->GetName(), table) != 1) continue;
    long const rows = table->GetAnzahlZeilen();
    for (long place = -1; place <= table->MaxFolge() + 1; ++place) {
      long const row = table->GetRowByFolge(place);
      Require(row >= -1 && row < rows, "a place leads to a row or to none");
    }
    int const active = table->GetAnzahlAktiveZeilen();
    Require(active >= 0 && active <= rows, "no more rows are active than are");
  }
}

// False when a name is written before the ID of its row: it then goes into the
// row with the ID 0, where there is one.
bool NamesFollowTheId(DBDirEntry const& entry) {
  for (auto const* field = entry.GetDefinition()->GetDefinition();
       field != nullptr; field = field->next) {
    std::string_view const name = field->name;
    if (name == "ID") return true;
    if (name == "NAME" || name == "BEZ_DIN") return false;
  }
  return true;
}

// A new row in the first table that takes one.  False when some of its values
// may have gone into a shipped row, where the save of a user file does not keep
// them: one was refused half written, or its table knows it by no ID.
bool AddRow() {
  auto& manager = *DBbase::GetDBBaseInstance();
  for (auto const* entry = manager.GetDirectory()->GetEntries();
       entry != nullptr; entry = entry->GetNext()) {
    DBTabelle* table = nullptr;
    if (manager.OpenTabelle(entry->GetName(), table) != 1) continue;
    std::map<std::string, std::wstring> values{
        {"NAME", L"new"}, {"PREIS", L"1.5"}, {"STATUS", L"0"}};
    long const rows = table->GetAnzahlZeilen();
    bool const appended = table->SetZeileWerte(values, DBTabelle::ActionAppend);
    long const added = table->GetAnzahlZeilen() - rows;
    Require(added >= (appended ? 1 : 0) && added <= 1, "one row is appended");
    if (appended) return NamesFollowTheId(*entry);
    if (added > 0) return false;
  }
  return true;
}

// Saves what is in memory, which then reads the same; the order is what the
// index makes of it.
void RequireSaved() {
  auto const main = PrivateFolder::Get().Files()["MAIN.db"];
  auto const values = fuzz::ContentOfDatabase(fuzz::Columns::kNotOrder);
  if (!Save()) return;
  RequireSame(values, fuzz::ContentOfDatabase(fuzz::Columns::kNotOrder));
  auto const files = PrivateFolder::Get().Files();
  Require(files.at("MAIN.db") == main, "a save leaves the main file alone");
  Require(files.size() == 3, "a save leaves two files and their index");
  fuzz::CloseLibrary();
  Require(Open(), "what was saved can be opened");
  RequireSame(values, fuzz::ContentOfDatabase(fuzz::Columns::kNotOrder));
  Require(PrivateFolder::Get().Files() == files,
          "the index of a save serves the next opening");
}

void RunOpened(std::size_t size) {
  auto const content = fuzz::ContentOfDatabase();
  RequireSoundIndices();
  fuzz::CloseLibrary();
  auto const files = PrivateFolder::Get().Files();
  Require(Open(), "what was opened can be opened again");
  RequireSame(content, fuzz::ContentOfDatabase());
  Require(PrivateFolder::Get().Files() == files,
          "the index that was made serves the next opening");
  bool const kept = AddRow();
  if (kept && size <= kMostWritten) RequireSaved();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  auto const& folder = PrivateFolder::Get();
  auto const [main, user] =
      fuzz::SplitPair(std::string(fuzz::AsText({data, size})));
  folder.Write("MAIN.db", main);
  folder.Write("USER.UDB", user);
  auto const before = folder.Files();
  if (Open()) {
    RunOpened(size);
  } else {
    fuzz::CloseLibrary();
    Require(folder.Files() == before, "what is refused is left alone");
  }
  fuzz::CloseLibrary();
  folder.Clear();
  return 0;
}

#ifdef TABWERK_FUZZ
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data,
                                               std::size_t size,
                                               std::size_t max_size,
                                               unsigned seed) {
  return fuzz::MutateAndRepair(data, size, max_size, seed, fuzz::RepairPair);
}
#endif
