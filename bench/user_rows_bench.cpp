// How long it takes to add many user rows to a large table:
//
//   user_rows_bench [ROWS_IN_TABLE] [ROWS_TO_ADD]     (100000 100000)
//
// Prints seconds and microseconds a row for appending, importing, updating and
// inserting at the front.  Works in a folder of its own in the temporary
// folder.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "tabwerk.h"

namespace {

namespace fs = std::filesystem;

constexpr char kFields[] =
    "NEWTABLE ARTIKEL\nID integer\nFOLGE integer\nSTATUS integer\n"
    "NAME string\nPRICE real\nNOTE string\nENDDEF\n";

// Seconds since it was made.
class Watch {
 public:
  double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() -
                                         start_)
        .count();
  }

 private:
  std::chrono::steady_clock::time_point start_ =
      std::chrono::steady_clock::now();
};

void WriteUnits(fs::path const& path, std::string const& ascii, bool mark) {
  std::ofstream stream(path, std::ios::binary);
  if (mark) stream.write("\xFF\xFE", 2);
  for (char const c : ascii) {
    char const unit[2] = {c, 0};
    stream.write(unit, 2);
  }
}

std::string Name(long number) {
  return "Article " + std::to_string(number * 7919 % 1000003);
}

// Makes MAIN.db with so many rows and an empty USER.UDB.
bool MakeFiles(fs::path const& folder, long rows) {
  std::string data;
  for (long i = 1; i <= rows; ++i) {
    data += std::to_string(i) + "," + std::to_string(i) + ",0,\"" + Name(i) +
            "\",1.5,\"note\"\n";
  }
  WriteUnits(folder / "rows.txt", data, true);
  auto const script = [&](char const* file, bool with_rows) {
    auto const path = (folder / "make.script").string();
    std::ofstream(path) << "NEWDATABASE STOCK " << (folder / file).string()
                        << "\n"
                        << kFields
                        << (with_rows
                                ? "TABLEDATA ARTIKEL " +
                                      (folder / "rows.txt").string() + "\n"
                                : std::string());
    return DBInterpreter().ReadScript(path.c_str(), zWString()) == 1;
  };
  return script("MAIN.db", true) && script("USER.UDB", false);
}

DBTabelle* OpenFresh(fs::path const& folder) {
  DBbase::Init({u"STOCK"},
               {{zWString::fromUtf8((folder / "MAIN.db").string()),
                 zWString::fromUtf8((folder / "USER.UDB").string())}});
  DBTabelle* table = nullptr;
  auto* const manager = DBbase::GetDBBaseInstance();
  if (manager->Open(u"STOCK", true, false) == 0 ||
      manager->OpenTabelle("ARTIKEL", table) == 0) {
    std::puts("user_rows_bench: cannot open the database");
    std::exit(1);
  }
  return table;
}

void Report(char const* work, double seconds, long rows) {
  std::printf("%-18s %8.3f s %10.3f us a row\n", work, seconds,
              seconds * 1e6 / static_cast<double>(rows));
}

void Write(fs::path const& folder, char const* work, DBTabelle::Action action,
           long first_id, long rows) {
  auto* const table = OpenFresh(folder);
  Watch const watch;
  for (long i = 0; i < rows; ++i) {
    std::map<std::string, std::wstring> values{
        {"ID", std::to_wstring(first_id + i)},
        {"FOLGE", L"1"},
        {"STATUS", L"0"},
        {"NAME", L"New article " + std::to_wstring(i)},
        {"PRICE", L"2.5"},
        {"NOTE", L"a note"}};
    if (!table->SetZeileWerte(values, action)) {
      std::printf("user_rows_bench: %s failed at row %ld\n", work, i);
      std::exit(1);
    }
  }
  Report(work, watch.Seconds(), rows);
}

void Import(fs::path const& folder, long rows) {
  std::string data;
  for (long i = 0; i < rows; ++i) {
    data += "0;0;0;Imported " + std::to_string(i) + ";1,5;\"a note\"\n";
  }
  WriteUnits(folder / "import.txt", data, false);
  auto* const table = OpenFresh(folder);
  DBInterpreter interpreter;
  interpreter.SetTabelle(table);
  interpreter.OpenDatei((folder / "import.txt").string().c_str(), "rb");
  auto const before = table->GetAnzahlZeilen();
  Watch const watch;
  zWString version;
  interpreter.ReadDatei(version, true, L";");
  Report("import", watch.Seconds(), table->GetAnzahlZeilen() - before);
  interpreter.CloseDatei();
}

}  // namespace

int main(int argc, char** argv) {
  long const in_table = argc > 1 ? std::atol(argv[1]) : 100000;
  long const to_add = argc > 2 ? std::atol(argv[2]) : 100000;
  auto const folder = fs::temp_directory_path() / "tabwerk_user_rows_bench";
  fs::create_directories(folder);
  if (!MakeFiles(folder, in_table)) {
    std::puts("user_rows_bench: cannot make the database");
    return 1;
  }
  std::printf("%ld rows in the table, %ld rows added\n", in_table, to_add);
  Write(folder, "append", DBTabelle::ActionAppend, 0, to_add);
  Import(folder, to_add);
  Write(folder, "update", DBTabelle::ActionUpdate, 1,
        to_add < in_table ? to_add : in_table);
  Write(folder, "insert at place 1", DBTabelle::ActionInsert, 2000000, 100);
  DBbase::Init({}, {});
  fs::remove_all(folder);
}
