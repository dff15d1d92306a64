#include "tests/support/database_fixture.h"

#include <algorithm>
#include <atomic>
#include <filesystem>

#include "tests/support/fault_platform.h"

namespace fs = std::filesystem;

namespace tabwerk::test {
namespace {

std::string NewFolder() {
  static std::atomic<int> number{0};
  auto const base = fs::temp_directory_path();
  for (;;) {
    auto const folder =
        base / ("tabwerk_test_" +
                std::to_string(std::filesystem::file_time_type::clock::now()
                                   .time_since_epoch()
                                   .count()) +
                "_" + std::to_string(++number));
    if (fs::create_directory(folder)) return folder.string();
  }
}

std::string ValueText(DBTabelle& table) {
  long integer = 0;
  if (table.GetWert(integer) != 0) return std::to_string(integer);
  double real = 0;
  if (table.GetWert(real) != 0) return zWString(real, 0).toUtf8();
  zWString text;
  if (table.GetWert(text) != 0) return text.toUtf8();
  return "?";
}

}  // namespace

zWString W(std::string const& utf8) { return zWString::fromUtf8(utf8); }

DatabaseTest::DatabaseTest() : folder_(NewFolder()) {
  DBbase::Init({}, {});
  DBbase::SetSprache(0);
}

DatabaseTest::~DatabaseTest() {
  DBbase::Init({}, {});
  DBbase::SetSprache(0);
  zSplashMessage::GetSplashMessage()->SetCallback(nullptr, nullptr);
  EXPECT_EQ(0, OpenStreams());
  std::error_code ignored;  // what cannot be removed is left to the system
  fs::remove_all(folder_, ignored);
}

std::string DatabaseTest::Path(std::string const& name) const {
  return (fs::path(folder_) / name).string();
}

bool DatabaseTest::FileExists(std::string const& name) const {
  return fs::exists(Path(name));
}

std::string DatabaseTest::Files() const {
  std::vector<std::string> names;
  for (auto const& file : fs::directory_iterator(folder_)) {
    names.push_back(file.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  std::string text;
  for (auto const& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

std::vector<unsigned char> DatabaseTest::Bytes(std::string const& name) const {
  return ReadFileBytes(Path(name));
}

void DatabaseTest::MakeFile(std::string const& name,
                            PlainDatabase const& database) const {
  WriteFileBytes(Path(name), EncodeDatabase(database));
}

void DatabaseTest::MakeArticles(std::string const& name,
                                std::int64_t time_stamp,
                                std::vector<std::string> const& rows) const {
  MakeFile(name,
           {PlainHeader::kCurrent, time_stamp, {{"ARTIKEL", kArticles, rows}}});
}

void DatabaseTest::Configure(std::string const& name,
                             std::vector<std::string> const& files) const {
  std::vector<zWString> paths;
  for (auto const& file : files) paths.push_back(W(Path(file)));
  ASSERT_TRUE(DBbase::Init({W(name)}, {paths}));
}

void DatabaseTest::OpenStock(bool for_write) const {
  Configure("STOCK", {"MAIN.db", "USER.UDB"});
  ASSERT_EQ(1, Manager()->Open(W("STOCK"), for_write, false));
}

DBTabelle* DatabaseTest::Table(char const* name) {
  DBTabelle* table = nullptr;
  return Manager()->OpenTabelle(name, table) == 1 ? table : nullptr;
}

std::string DatabaseTest::Column(DBTabelle* table, char const* column) {
  if (table == nullptr) return "-";
  std::string values;
  table->SelectColumn(column);
  for (long row = 0; table->SelectZeile(row) == 1; ++row) {
    values += "[" + ValueText(*table) + "]";
  }
  return values;
}

std::string DatabaseTest::Rows(char const* name) {
  auto* const table = Table(name);
  if (table == nullptr) return "-";
  std::string rows;
  auto* const definition = table->GetDirEntry(false)->GetDefinition();
  for (long row = 0; table->SelectZeile(row) == 1; ++row) {
    std::string values;
    for (auto* field = definition->GetDefinition(); field != nullptr;
         field = field->next) {
      table->SelectColumn(field->name);
      values += (values.empty() ? "" : "|") + ValueText(*table);
    }
    rows += "[" + values + "]";
  }
  return rows;
}

void DatabaseTest::AddArticle(DBTabelle* table, long id, long folge,
                              std::string const& name) {
  ASSERT_TRUE(table->NeueZeile(true));
  table->SelectColumn("ID");
  ASSERT_EQ(1, table->SetWert(id));
  table->SelectColumn("FOLGE");
  ASSERT_EQ(1, table->SetWert(folge));
  table->SelectColumn("NAME");
  ASSERT_EQ(1, table->SetWert(W(name).utf16()));
}

bool DatabaseTest::SetNumber(DBTabelle* table, long row, char const* column,
                             long value) {
  return table->SelectColumn(column) == 1 && table->SelectZeile(row) == 1 &&
         table->SetWert(value) == 1;
}

bool DatabaseTest::SetText(DBTabelle* table, long row, char const* column,
                           std::string const& text) {
  return table->SelectColumn(column) == 1 && table->SelectZeile(row) == 1 &&
         table->SetWert(W(text).utf16()) == 1;
}

}  // namespace tabwerk::test
