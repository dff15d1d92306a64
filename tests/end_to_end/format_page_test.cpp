// Keeps the worked example of docs/format.md true.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/database_fixture.h"
#include "tests/support/hex_file.h"
#include "tests/support/places.h"

namespace tabwerk::test {
namespace {

class FormatPage : public DatabaseTest {
 protected:
  // The bytes of the page's block "```hex NAME".
  static std::vector<unsigned char> OnPage(std::string const& name) {
    auto const file = ReadFileBytes(ProjectPath("docs/format.md"));
    std::string const page(file.begin(), file.end());
    auto const start = page.find("hex " + name + "\n");
    EXPECT_NE(std::string::npos, start) << name;
    if (start == std::string::npos) return {};
    auto const body = page.find('\n', start) + 1;
    bool sound = false;
    auto const bytes =
        BytesOfHex(page.substr(body, page.find("```", body) - body), &sound);
    EXPECT_TRUE(sound);
    return std::vector<unsigned char>(bytes.begin(), bytes.end());
  }

  static std::vector<unsigned char> WithoutTimeStamp(
      std::vector<unsigned char> bytes) {
    for (std::size_t i = 11; i < 19 && i < bytes.size(); ++i) bytes[i] = 0;
    return bytes;
  }

  void MakeStock() const {
    WriteFileBytes(Path("MAIN.db"), OnPage("MAIN.db"));
    MakeArticles("USER.UDB", 2000, {"20000|1|0|Carl"});
  }
};

TEST_F(FormatPage, DatabaseFileReadsAsThePageSays) {
  MakeStock();
  OpenStock(false);
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert][20000|1|0|Carl]", Rows("ARTIKEL"));
}

TEST_F(FormatPage, DatabaseFileIsWrittenAsThePageSays) {
  MakeStock();
  Configure("STOCK", {"MAIN.db"});
  ASSERT_EQ(1, Manager()->Open(W("STOCK"), true, false));
  ASSERT_TRUE(Manager()->Write(W("STOCK"), false, W("")));
  EXPECT_EQ(WithoutTimeStamp(OnPage("MAIN.db")),
            WithoutTimeStamp(Bytes("MAIN.db")));
}

TEST_F(FormatPage, IndexFileIsReadAsThePageSays) {
  MakeStock();
  WriteFileBytes(Path("STOCK.idx"), OnPage("STOCK.idx"));
  OpenStock(false);
  EXPECT_EQ("[1|2|0|Anna][2|0|1|Bert][20000|1|0|Carl]", Rows("ARTIKEL"));
}

TEST_F(FormatPage, IndexFileIsWrittenAsThePageSays) {
  MakeStock();
  OpenStock();
  auto* const table = Table("ARTIKEL");
  ASSERT_TRUE(SetNumber(table, 0, "FOLGE", 2));
  ASSERT_TRUE(SetNumber(table, 1, "FOLGE", 0));
  ASSERT_TRUE(SetNumber(table, 1, "STATUS", 1));
  ASSERT_TRUE(SetNumber(table, 2, "FOLGE", 1));
  EXPECT_EQ(2, Manager()->WriteIndexToFile(nullptr));
  EXPECT_EQ(OnPage("STOCK.idx"), Bytes("STOCK.idx"));
}

}  // namespace
}  // namespace tabwerk::test
