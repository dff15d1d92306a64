#include "tests/support/database_fixture.h"

#include "tests/support/fault_platform.h"

namespace tabwerk::test {
namespace {

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

DatabaseTest::DatabaseTest() {
  DBbase::Init({}, {});
  DBbase::SetSprache(0);
}

DatabaseTest::~DatabaseTest() {
  DBbase::Init({}, {});
  DBbase::SetSprache(0);
  zSplashMessage::GetSplashMessage()->SetCallback(nullptr, nullptr);
  EXPECT_EQ(0, OpenStreams());
}

std::string DatabaseTest::Path(std::string const& name) const {
  return folder_.PathUtf8(name);
}

bool DatabaseTest::FileExists(std::string const& name) const {
  return folder_.Exists(name);
}

std::string DatabaseTest::Files() const {
  std::string text;
  for (auto const& name : folder_.Names()) {
    text += (text.empty() ? "" : " ") + name;
  }
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
