#include "tests/cli/tool_test.h"

#include "ztypes.h"

namespace tabwerk::test {
namespace {

constexpr char kArticle[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n";
constexpr char kEmpty[] = "integer ID,string NAME\n";

std::string AsText(std::vector<unsigned char> const& bytes) {
  return {bytes.begin(), bytes.end()};
}

}  // namespace

ToolRun ToolTest::Run(std::vector<std::string> const& arguments) const {
  return RunTool(folder_.folder(), arguments);
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
  std::string snapshot;
  for (std::string const& name : folder_.Names()) {
    auto const path = folder_.folder() / name;
    auto const time = std::filesystem::last_write_time(path);
    snapshot += name + " " + std::to_string(time.time_since_epoch().count()) +
                " " + folder_.Content(name) + "\n";
  }
  return snapshot;
}

}  // namespace tabwerk::test
