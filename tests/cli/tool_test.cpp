#include "tests/cli/tool_test.h"

#include <algorithm>
#include <utility>

#include "tests/support/places.h"
#include "ztypes.h"

namespace tabwerk::test {
namespace {

constexpr char kArticle[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n";
constexpr char kEmpty[] = "integer ID,string NAME\n";

using Files = std::vector<std::pair<std::string, std::string>>;

// The files of the example database, built once in this process.
Files const& ExampleFiles() {
  static Files const files = [] {
    TempFolder const folder;
    std::filesystem::copy(ProjectPath("examples/reference"), folder.folder());
    Files made;
    for (char const* const name : {"geo", "user"}) {
      auto const run =
          RunTool(folder.folder(), {"build", name + std::string(".script")});
      EXPECT_EQ(0, run.exit_code) << run.err;
    }
    for (char const* const name : {"geo.db", "GEO.UDB"}) {
      made.emplace_back(name, folder.ReadBytes(name));
    }
    return made;
  }();
  return files;
}

}  // namespace

ToolRun ToolTest::Run(std::vector<std::string> const& arguments) const {
  return RunTool(folder_.folder(), arguments);
}

ToolRun ToolTest::RunWith(ToolCall const& call) const {
  return RunTool(folder_.folder(), call);
}

ToolRun ToolTest::RunToLook(std::vector<std::string> const& arguments) const {
  std::string const before = Snapshot();
  ToolRun const run = Run(arguments);
  EXPECT_EQ(before, Snapshot()) << testing::PrintToString(arguments);
  return run;
}

void ToolTest::MakeExample() const {
  for (auto const& [name, bytes] : ExampleFiles()) folder_.Make(name, bytes);
}

void ToolTest::MakeLongScript(std::size_t rows) const {
  folder_.Make("a.script",
               "NEWDATABASE a a.db\nNEWTABLE T\nID integer\nENDDEF\n"
               "TABLEDATA T t.txt\n");
  std::string text = "\xFF\xFE";
  for (std::size_t i = 0; i < rows; ++i) text.append("7\0\n\0", 4);
  folder_.Make("t.txt", text);
}

void ToolTest::MakeUnits(std::string const& name, std::string_view utf8,
                         bool with_mark) const {
  std::string bytes = with_mark ? "\xFF\xFE" : "";
  zWString const text = zWString::fromUtf8(utf8);
  for (char16_t const unit : text.view()) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  folder_.Make(name, bytes);
}

void ToolTest::MakeDatabase(std::string const& name,
                            PlainDatabase const& database) const {
  folder_.Make(name, AsText(EncodeDatabase(database)));
}

std::string ToolTest::Rows(std::string const& name,
                           std::string const& table) const {
  std::string const bytes = folder_.Content(name);
  auto const database = DecodeDatabase({bytes.begin(), bytes.end()});
  return database ? RowsOf(*database, table) : "no database";
}

void ToolTest::MakeMainFile() const {
  MakeDatabase("stock.db",
               {PlainHeader::kCurrent,
                1000,
                {{"ARTICLE",
                  kArticle,
                  {"1|1|0|#TS(Bolt¬Bolzen¬ボルト)TS~|0.25", "2|2|0|Nut|1.5"}},
                 {"EMPTY", kEmpty, {}}}});
}

void ToolTest::MakeUserFile() const {
  MakeDatabase("STOCK.UDB", {PlainHeader::kCurrent,
                             2000,
                             {{"ARTICLE", kArticle, {"20000|3|0|Washer|0.5"}},
                              {"EMPTY", kEmpty, {}}}});
}

void ToolTest::MakeStock() const {
  MakeMainFile();
  MakeUserFile();
}

std::string ToolTest::Snapshot() const {
  std::vector<std::string> files;
  for (auto const& entry :
       std::filesystem::recursive_directory_iterator(folder_.folder())) {
    auto const name =
        entry.path().lexically_relative(folder_.folder()).u8string();
    std::string const key(name.begin(), name.end());
    if (entry.is_directory()) {
      files.push_back(key + "/");
      continue;
    }
    auto const time = entry.last_write_time().time_since_epoch().count();
    files.push_back(key + " " + std::to_string(time) + " " +
                    folder_.Content(key));
  }
  std::sort(files.begin(), files.end());
  std::string snapshot;
  for (std::string const& file : files) snapshot += file + "\n";
  return snapshot;
}

}  // namespace tabwerk::test
