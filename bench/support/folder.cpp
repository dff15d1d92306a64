#include "bench/support/folder.h"

#include <unistd.h>

#include <fstream>
#include <map>

#include "bench/support/check.h"
#include "bench/support/host.h"
#include "bench/support/rows.h"
#include "tabwerk.h"

namespace tabwerk::bench {
namespace {

namespace fs = std::filesystem;

fs::path& TheFolder() {
  static fs::path folder;
  return folder;
}

std::u16string Widened(std::string const& text) {
  return std::u16string(text.begin(), text.end());
}

std::string PriceText(double price) {
  auto const quarters = static_cast<long>(price * 4);
  constexpr char const* kFractions[] = {"", ".25", ".5", ".75"};
  return std::to_string(quarters / 4) + kFractions[quarters % 4];
}

std::u16string TableData(long count) {
  std::u16string data;
  for (auto const& row : Rows(count)) {
    data += Widened(std::to_string(row.id) + "," + std::to_string(row.folge) +
                    "," + std::to_string(row.status) + ",\"");
    data += row.name;
    data += Widened("\"," + PriceText(row.price) + ",\"");
    data += row.note;
    data += u"\"\n";
  }
  return data;
}

std::string Script(fs::path const& target) {
  return "NEWDATABASE STOCK " + target.string() +
         "\nNEWTABLE ARTIKEL\nID integer\nFOLGE integer\nSTATUS integer\n"
         "NAME string\nPRICE real\nNOTE string\nENDDEF\n";
}

void RunScript(fs::path const& folder, std::string const& script) {
  auto const path = folder / "make.script";
  WriteBytes(path, script);
  Require(DBInterpreter().ReadScript(path.c_str(), zWString()) == 1,
          "the database cannot be made");
}

fs::path MakeDatabase(long rows) {
  auto const folder = Folder() / std::to_string(rows);
  if (!fs::create_directories(folder)) return folder;
  auto const data = TableDataPath(rows);
  WriteUnits(data, TableData(rows), true);
  RunScript(folder, MainScript(folder / "MAIN.db", data));
  RunScript(folder, Script(folder / "USER.UDB"));
  (void)OpenTable(folder, Access::kRead);  // writes the index
  CloseAll();
  return folder;
}

}  // namespace

fs::path const& Folder() {
  if (TheFolder().empty()) {
    TheFolder() = fs::temp_directory_path() /
                  ("tabwerk_bench_" + std::to_string(getpid()));
    fs::create_directories(TheFolder());
  }
  return TheFolder();
}

void UseFolder(fs::path const& folder) { TheFolder() = folder; }

void DeleteFolder() {
  CloseAll();
  if (!TheFolder().empty()) fs::remove_all(TheFolder());
}

fs::path const& Database(long rows) {
  static std::map<long, fs::path> made;
  auto& folder = made[rows];
  if (folder.empty()) folder = MakeDatabase(rows);
  return folder;
}

fs::path TableDataPath(long rows) {
  return Folder() / std::to_string(rows) / "rows.txt";
}

std::string MainScript(fs::path const& target, fs::path const& data) {
  return Script(target) + "TABLEDATA ARTIKEL " + data.string() + "\n";
}

void WriteBytes(fs::path const& path, std::string_view bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  Require(stream.flush().good(), "a file cannot be written");
}

void WriteUnits(fs::path const& path, std::u16string_view units, bool mark) {
  auto const* const bytes =
      static_cast<char const*>(static_cast<void const*>(units.data()));
  std::string content(mark ? "\xFF\xFE" : "");
  content.append(bytes, 2 * units.size());
  WriteBytes(path, content);
}

}  // namespace tabwerk::bench
