#include "fuzz/fuzz_support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "DBDirectory.h"
#include "DBbase.h"

namespace tabwerk::fuzz {
namespace {

namespace fs = std::filesystem;

// Rows that are looked at from the start of a table.
constexpr long kMostRows = 2000;

// Without NULs, which are every other byte of a text, and with "?" for what is
// not ASCII.
std::string Shown(std::string_view text) {
  std::string shown;
  for (char const character : text) {
    bool const printable =
        character == '\n' || (character >= ' ' && character <= '~');
    if (character != '\0') shown += printable ? character : '?';
  }
  return shown;
}

void AddFiles(fs::path const& folder, std::string const& prefix,
              std::map<std::string, std::string>* files) {
  for (auto const& entry : fs::directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    files->emplace(prefix + entry.path().filename().string(),
                   ReadWhole(entry.path()));
  }
}

// The value at the current row in a column of that type.
std::string ValueOf(DBTabelle& table, DBType type) {
  long integer = 0;
  double real = 0;
  zWString text;
  int const as_integer = table.GetWert(integer);
  int const as_real = table.GetWert(real);
  int const as_text = table.GetWert(text);
  Require(as_integer == (type == DBTypeInteger ? 1 : 0),
          "an integer column, and no other, has integers");
  Require(as_real == (type == DBTypeReal ? 1 : 0),
          "a real column, and no other, has reals");
  Require(as_text == 0 || type == DBTypeString,
          "only a string column has strings");
  if (type == DBTypeInteger) return std::to_string(integer);
  if (type == DBTypeReal) return zWString(real, 0).toUtf8();
  std::string units;
  for (char16_t const unit : text.view()) {
    units += static_cast<char>(unit & 0xFF);
    units += static_cast<char>(unit >> 8);
  }
  return units;
}

bool IsOrder(std::string_view column) {
  return column == "FOLGE" || column == "STATUS";
}

}  // namespace

void Require(bool holds, std::string_view claim) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(claim.size()),
               claim.data());
  std::fflush(stderr);
  std::abort();
}

void RequireEqual(std::string_view expected, std::string_view got,
                  std::string_view claim) {
  if (expected == got) return;
  std::fprintf(stderr, "expected %s\ngot      %s\n", Shown(expected).c_str(),
               Shown(got).c_str());
  Require(false, claim);
}

std::string_view AsText(std::span<std::uint8_t const> bytes) {
  return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

std::u16string AsUnits(std::span<std::uint8_t const> bytes) {
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
  }
  return units;
}

std::string ReadWhole(std::filesystem::path const& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// --- The folder -------------------------------------------------------------

PrivateFolder& PrivateFolder::Get() {
  static PrivateFolder folder;
  return folder;
}

PrivateFolder::PrivateFolder() {
  std::random_device random;
  auto const temporary = fs::canonical(fs::temp_directory_path());
  do {
    root_ = temporary / ("tabwerk-fuzz-" + std::to_string(random()));
  } while (!fs::create_directory(root_));
  folder_ = root_ / "files";
  temporary_ = root_ / "temporary";
  fs::create_directory(folder_);
  fs::create_directory(temporary_);
}

PrivateFolder::~PrivateFolder() {
  std::error_code error;
  fs::remove_all(root_, error);
  if (error) std::fprintf(stderr, "left: %s\n", root_.string().c_str());
}

std::string PrivateFolder::Path(std::string const& name) const {
  auto const text = (folder_ / name).u8string();
  return {text.begin(), text.end()};
}

void PrivateFolder::Write(std::string const& name,
                          std::string_view bytes) const {
  std::ofstream file(folder_ / name, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  Require(file.good(), "the private folder can be written");
}

void PrivateFolder::Remove(std::string const& name) const {
  fs::remove(folder_ / name);
}

void PrivateFolder::Clear() const {
  for (auto const& folder : {folder_, temporary_}) {
    for (auto const& entry : fs::directory_iterator(folder)) {
      fs::remove_all(entry.path());
    }
  }
}

std::map<std::string, std::string> PrivateFolder::Files() const {
  std::map<std::string, std::string> files;
  AddFiles(folder_, "", &files);
  AddFiles(temporary_, std::string(kTemporary), &files);
  return files;
}

bool PrivateFolder::Holds(fs::path const& path) const {
  std::error_code error;
  auto const whole = fs::absolute(path, error).lexically_normal();
  auto const inside = [&](fs::path const& folder) {
    auto const end =
        std::mismatch(folder.begin(), folder.end(), whole.begin(), whole.end());
    return end.first == folder.end() && end.second != whole.end();
  };
  return !error && (inside(folder_) || inside(temporary_));
}

fs::path PrivateFolder::TemporaryFiles() const { return temporary_ / ""; }

InPrivateFolder::InPrivateFolder() : before_(fs::current_path()) {
  fs::current_path(PrivateFolder::Get().path());
}

InPrivateFolder::~InPrivateFolder() { fs::current_path(before_); }

// --- The library ------------------------------------------------------------

void CloseLibrary() {
  DBbase::Init({}, {});
  DBbase::SetSprache(0);
  Require(OpenStreams() == 0, "no stream stays open");
}

std::string ContentOf(DBTabelle& table, Columns columns) {
  long const rows = table.GetAnzahlZeilen();
  Require(rows >= 0, "no table has a negative number of rows");
  Require(table.SelectZeile(rows) == 0, "there is no row behind the last one");
  auto const& definition = *table.GetDirEntry(false)->GetDefinition();
  std::string content = std::to_string(rows) + " rows\n";
  for (long row = 0; row < std::min(rows, kMostRows); ++row) {
    Require(table.SelectZeile(row) == 1, "every row can be selected");
    for (auto const* field = definition.GetDefinition(); field != nullptr;
         field = field->next) {
      DBFeld* first = nullptr;
      Require(definition.GetOffset(field->name, first) == 1 &&
                  table.SelectColumn(field->name) == 1,
              "every column can be selected");
      auto const value = ValueOf(table, first->type);
      if (columns == Columns::kAll || !IsOrder(field->name)) {
        content += value + "|";
      }
    }
    content += "\n";
  }
  return content;
}

std::map<std::string, std::string> ContentOfDatabase(Columns columns) {
  std::map<std::string, std::string> contents;
  std::map<std::string, int> tables_of_name;
  auto& manager = *DBbase::GetDBBaseInstance();
  for (auto const* entry = manager.GetDirectory()->GetEntries();
       entry != nullptr; entry = entry->GetNext()) {
    DBTabelle* table = nullptr;
    bool const opened = manager.OpenTabelle(entry->GetName(), table) == 1;
    contents.emplace(entry->GetName(), opened ? ContentOf(*table, columns)
                                              : std::string(kNotLoaded));
    ++tables_of_name[entry->GetName()];
  }
  std::erase_if(contents, [&](auto const& content) {
    return tables_of_name[content.first] > 1;
  });
  return contents;
}

bool OpenDatabase(char16_t const* name,
                  std::initializer_list<char const*> files, bool for_write) {
  std::vector<zWString> paths;
  for (char const* const file : files) {
    paths.push_back(zWString::fromUtf8(PrivateFolder::Get().Path(file)));
  }
  DBbase::Init({name}, {paths});
  return DBbase::GetDBBaseInstance()->Open(name, for_write, false) == 1;
}

}  // namespace tabwerk::fuzz
