// docs/user-file.md: its code is compiled and run here, and what it says about
// the files is what is found in them.
//
// The code between a line "// page: NAME" and the next "// page end" stands in
// the page behind a line "<!-- NAME -->", word for word.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tabwerk.h"
#include "tests/support/child_process.h"
#include "tests/support/database_fixture.h"
#include "tests/support/places.h"

namespace {

// page: open
namespace fs = std::filesystem;

zWString Text(fs::path const& path) { return zWString(path.u16string()); }

DBbase* Manager() { return DBbase::GetDBBaseInstance(); }

// True when a table has no part in the user's file, so that it takes no rows:
// at the first start, and when the vendor has added a table.
bool LacksUserPart() {
  for (DBDirEntry* entry = Manager()->GetDirectory()->GetEntries();
       entry != nullptr; entry = entry->GetNext()) {
    if (entry->GetNumberOfParts() < 2) return true;
  }
  return false;
}

bool Save() { return Manager()->Write(u"STOCK", true, u""); }

// Opens the shipped file and the user's file for writing.  At the first start
// of the program the user's file is made.
bool OpenFiles(fs::path const& program, fs::path const& user) {
  fs::path const user_file = user / "STOCK.UDB";
  // A file of no bytes is a user file that has no tables yet.
  if (!fs::exists(user_file)) std::ofstream(user_file, std::ios::binary);
  DBbase::Init({u"STOCK"}, {{Text(program / "stock.db"), Text(user_file)}});
  if (Manager()->Open(u"STOCK", true, false) != 1) return false;
  // A save gives it the tables of the shipped file.
  return !LacksUserPart() || Save();
}
// page end

// page: read
// The table, fetched anew: Init and Write delete the tables of before.
DBTabelle* Articles() {
  DBTabelle* table = nullptr;
  return Manager()->OpenTabelle("ARTIKEL", table) == 1 ? table : nullptr;
}

// The names in the user's order and the current language.
std::vector<zWString> NamesInOrder() {
  std::vector<zWString> names;
  DBTabelle* const table = Articles();
  if (table == nullptr || table->SelectColumn("NAME") != 1) return names;
  for (long place = 1; place <= table->MaxFolge(); ++place) {
    long const row = table->GetRowByFolge(place);
    zWString name;
    if (row >= 0 && table->SelectZeile(row) == 1 && table->GetWert(name) == 1) {
      names.push_back(name);
    }
  }
  return names;
}
// page end

// page: add
bool AppendArticle(std::wstring const& name) {
  std::map<std::string, std::wstring> values{{"NAME", name}};
  DBTabelle* const table = Articles();
  return table != nullptr &&
         table->SetZeileWerte(values, DBTabelle::ActionAppend);
}

// Puts a row where another one stands; that one and all behind it move back.
bool InsertArticle(long place, std::wstring const& name) {
  DBTabelle* const table = Articles();
  if (table == nullptr) return false;
  std::map<std::string, std::wstring> values{
      {"ID", std::to_wstring(table->NewUserID())},
      {"FOLGE", std::to_wstring(place)},
      {"NAME", name}};
  return table->SetZeileWerte(values, DBTabelle::ActionInsert);
}
// page end

// page: texts
// The text with all its languages: of language -1 no section has a piece, so
// none is replaced.
zWString WholeText(DBTabelle* table) {
  zWString text;
  DBbase::SetSprache(-1);
  table->GetWert(text);
  DBbase::SetSprache(0);
  return text;
}

bool SetName(long id, zWString const& text) {
  DBTabelle* const table = Articles();
  return table != nullptr && table->SelectColumn("NAME") == 1 &&
         table->SelectZeile("ID", id) == 1 && table->SetWert(text.utf16()) == 1;
}
// page end

// page: order
bool SetNumber(DBTabelle* table, long id, char const* column, long value) {
  return table != nullptr && table->SelectColumn(column) == 1 &&
         table->SelectZeile("ID", id) == 1 && table->SetWert(value) == 1;
}

// A row that is switched off keeps its texts and gives up its place.  The index
// remembers a row's old place, too, until it is built anew.
bool SwitchOff(long id) {
  DBTabelle* const table = Articles();
  if (!SetNumber(table, id, "STATUS", 1) || !SetNumber(table, id, "FOLGE", 0)) {
    return false;
  }
  table->MakeIndexFolge();
  return true;
}

// Puts the rows with these IDs at the places 1, 2, 3 and so on.
bool SetOrder(std::vector<long> const& ids) {
  DBTabelle* const table = Articles();
  long place = 0;
  for (long const id : ids) {
    if (!SetNumber(table, id, "FOLGE", ++place)) return false;
  }
  if (table != nullptr) table->MakeIndexFolge();
  return true;
}
// page end

// page: number
// Numbers the active rows 1, 2, 3 and so on in the order in which they stand.
// Of two rows with one place the shipped one comes first; rows without a place
// come last.
bool NumberAnew() {
  DBTabelle* const table = Articles();
  if (table == nullptr) return false;
  std::vector<std::pair<long, long>> rows;  // place, row
  for (long row = 0; row < table->GetAnzahlZeilen(); ++row) {
    long status = 0;
    long place = 0;
    if (table->SelectZeile(row) != 1 || table->SelectColumn("STATUS") != 1 ||
        table->GetWert(status) != 1 || table->SelectColumn("FOLGE") != 1 ||
        table->GetWert(place) != 1) {
      return false;
    }
    if (place == 0) place = std::numeric_limits<long>::max();
    rows.emplace_back(status == 0 ? place : 0, row);
  }
  std::sort(rows.begin(), rows.end());
  long next = 0;
  for (auto const& [place, row] : rows) {
    table->SelectZeile(row);
    if (table->SetWert(place == 0 ? 0L : ++next) != 1) return false;
  }
  table->MakeIndexFolge();
  return true;
}
// page end

// page: backup
// Copies what the user has made.  Both files are needed: the order and the
// status of shipped rows are in the index file only.
void BackUp(fs::path const& user, fs::path const& backup) {
  for (char const* const name : {"STOCK.UDB", "STOCK.idx"}) {
    // MinGW's copy_file cannot overwrite.
    fs::remove(backup / name);
    fs::copy_file(user / name, backup / name);
  }
}
// page end

// page: carry-over
struct OldArticle {
  long id;
  zWString name;  // with all its languages
};

// The rows of a user file whose shipped file is gone: alone, it is a database
// of its own, without order and status of shipped rows.
std::vector<OldArticle> ReadOldArticles(fs::path const& old_user_file) {
  std::vector<OldArticle> articles;
  DBbase::Init({u"OLD"}, {{Text(old_user_file)}});
  if (Manager()->Open(u"OLD", false, false) != 1) return articles;
  DBTabelle* const table = Articles();
  if (table == nullptr) return articles;
  for (long row = 0; row < table->GetAnzahlZeilen(); ++row) {
    OldArticle article{};
    table->SelectZeile(row);
    table->SelectColumn("ID");
    table->GetWert(article.id);
    table->SelectColumn("NAME");
    article.name = WholeText(table);
    articles.push_back(article);
  }
  return articles;
}

// Adds them to the open database, with their IDs, at the end of the order.
bool AddOldArticles(std::vector<OldArticle> const& articles) {
  DBTabelle* const table = Articles();
  if (table == nullptr) return false;
  for (OldArticle const& article : articles) {
    std::map<std::string, std::wstring> values{
        {"ID", std::to_wstring(article.id)},
        {"FOLGE", L"2147483647"},  // a place that no row has: the end
        {"NAME", article.name.toStdWString()}};
    if (!table->SetZeileWerte(values, DBTabelle::ActionInsert)) return false;
  }
  return true;
}
// page end

// page: share
enum class Opened { kForWriting, kForReading, kNot };

// Opens for writing or, while another program has it open for writing, for
// reading.
Opened OpenShared(fs::path const& program, fs::path const& user) {
  if (OpenFiles(program, user)) return Opened::kForWriting;
  // A database that does not open leaves the manager: configure it again.
  DBbase::Init({u"STOCK"},
               {{Text(program / "stock.db"), Text(user / "STOCK.UDB")}});
  return Manager()->Open(u"STOCK", false, false) == 1 ? Opened::kForReading
                                                      : Opened::kNot;
}
// page end

}  // namespace

namespace tabwerk::test {
namespace {

std::string ReadText(std::string const& file) {
  auto const bytes = ReadFileBytes(ProjectPath(file));
  std::string text(bytes.begin(), bytes.end());
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  return text;
}

// The blocks of the page by their names: the lines between the fences.
std::map<std::string, std::string> PageBlocks() {
  std::map<std::string, std::string> blocks;
  std::istringstream lines(ReadText("docs/user-file.md"));
  std::string line;
  std::string name;
  bool inside = false;
  while (std::getline(lines, line)) {
    if (line.starts_with("```")) {
      if (inside) name.clear();
      inside = !inside;
    } else if (inside) {
      blocks[name] += line + "\n";
    } else if (line.starts_with("<!-- ") && line.ends_with(" -->")) {
      name = line.substr(5, line.size() - 9);
    }
  }
  return blocks;
}

// The code of this file by the names of its blocks.
std::map<std::string, std::string> SourceBlocks() {
  std::map<std::string, std::string> blocks;
  std::istringstream lines(
      ReadText("tests/end_to_end/user_file_page_test.cpp"));
  std::string const start = "// page: ";
  std::string line;
  std::string name;
  while (std::getline(lines, line)) {
    if (line.starts_with(start)) {
      name = line.substr(start.size());
    } else if (line == "// page end") {
      name.clear();
    } else if (!name.empty()) {
      blocks[name] += line + "\n";
    }
  }
  return blocks;
}

CHILD_FUNCTION(HoldPageStock) {
  TellParent(OpenFiles(args[0], args[1]) ? "open" : "refused");
  AwaitParent();
  return 0;
}

// The shipped file in one folder, the user's files in another.
class UserFilePage : public DatabaseTest {
 protected:
  UserFilePage() {
    fs::create_directories(program_);
    fs::create_directories(user_);
    Ship(1000, {"1|1|0|#TS(Bolt¬Schraube)TS~", "2|2|0|#TS(Nut¬Mutter)TS~",
                "3|3|0|#TS(Pin¬Stift)TS~"});
  }

  void Ship(std::int64_t time_stamp, std::vector<std::string> const& rows,
            char const* definition = kArticles) const {
    MakeFile(
        "program/stock.db",
        {PlainHeader::kCurrent, time_stamp, {{"ARTIKEL", definition, rows}}});
  }
  // What the user does in the page's second step.
  static void DoTheUsersWork() {
    EXPECT_TRUE(AppendArticle(L"Washer"));
    EXPECT_TRUE(InsertArticle(1, L"Ring"));
    EXPECT_TRUE(AppendArticle(L"Bolt"));
    EXPECT_TRUE(SetName(20000, u"#TS(Washer\u00ACScheibe)TS~"));
    EXPECT_TRUE(SwitchOff(2));
    EXPECT_TRUE(SetOrder({20001, 3, 1, 20000, 20002}));
  }
  void StartAndWork() const {
    ASSERT_TRUE(OpenFiles(program_, user_));
    DoTheUsersWork();
    ASSERT_TRUE(Save());
    DBbase::Init({}, {});
  }

  // The page's picture of the files: their rows, and what the index records.
  std::string Disk() const {
    std::string text;
    for (auto const* file : {"program/stock.db", "user/STOCK.UDB"}) {
      if (!FileExists(file)) continue;
      text += std::string(file) + "\n";
      if (Bytes(file).empty()) continue;
      for (auto const& table : ReadDatabase(Path(file)).tables) {
        for (auto const& row : table.rows) text += "    " + row + "\n";
      }
    }
    if (!FileExists("user/STOCK.idx")) return text;
    auto const index = DecodeIndex(Bytes("user/STOCK.idx"), 2);
    return text + "user/STOCK.idx\n    " +
           (index ? Describe(index->tables.at(0)) : "damaged") + "\n";
  }
  static std::string Order() {
    std::string text;
    for (auto const& name : NamesInOrder()) text += name.toUtf8() + "\n";
    return text;
  }
  static std::string Page(std::string const& block) {
    return PageBlocks()[block];
  }

  fs::path const program_ = Path("program");
  fs::path const user_ = Path("user");
};

TEST_F(UserFilePage, ShowsTheCodeThatIsTestedHere) {
  auto const page = PageBlocks();
  EXPECT_LE(9U, SourceBlocks().size());
  for (auto const& [name, code] : SourceBlocks()) {
    auto const shown = page.find(name);
    ASSERT_NE(page.end(), shown) << name;
    EXPECT_EQ(code, shown->second) << name;
  }
}

TEST_F(UserFilePage, FirstStart) {
  EXPECT_EQ(Page("disk as shipped"), Disk());
  EXPECT_TRUE(OpenFiles(program_, user_));
  EXPECT_EQ(Page("disk after the first start"), Disk());
  EXPECT_FALSE(LacksUserPart());
}

TEST_F(UserFilePage, UsersWork) {
  EXPECT_TRUE(OpenFiles(program_, user_));
  DoTheUsersWork();
  EXPECT_EQ(Page("order of the user"), Order());
  EXPECT_TRUE(Save());
  EXPECT_EQ(Page("disk after the save"), Disk());
  EXPECT_EQ(Page("order of the user"), Order());
  DBbase::Init({}, {});
  EXPECT_TRUE(OpenFiles(program_, user_));
  EXPECT_EQ(Page("order of the user"), Order());
  DBbase::SetSprache(1);
  EXPECT_EQ(Page("order in German"), Order());
}

TEST_F(UserFilePage, NewShippedFile) {
  StartAndWork();
  Ship(2000, {"4|1|0|#TS(Clip¬Klammer)TS~", "1|2|0|#TS(Hex bolt¬Schraube)TS~",
              "2|3|0|#TS(Nut¬Mutter)TS~"});
  EXPECT_TRUE(OpenFiles(program_, user_));
  EXPECT_EQ(Page("order under the new file"), Order());
  EXPECT_EQ(Page("disk under the new file"), Disk());
  EXPECT_TRUE(NumberAnew());
  EXPECT_EQ(Page("order numbered anew"), Order());
  EXPECT_EQ("[5][2][0][3][1][4]", Column(Articles(), "FOLGE"));
  EXPECT_TRUE(Save());
  EXPECT_EQ(Page("order numbered anew"), Order());
}

TEST_F(UserFilePage, LostIndex) {
  StartAndWork();
  fs::create_directory(Path("backup"));
  BackUp(user_, Path("backup"));
  fs::remove(user_ / "STOCK.idx");
  EXPECT_TRUE(OpenFiles(program_, user_));
  EXPECT_EQ(Page("order without the index"), Order());
  EXPECT_TRUE(NumberAnew());
  EXPECT_EQ(Page("order numbered after the loss"), Order());
  DBbase::Init({}, {});
  BackUp(Path("backup"), user_);
  EXPECT_TRUE(OpenFiles(program_, user_));
  EXPECT_EQ(Page("order of the user"), Order());
}

TEST_F(UserFilePage, OtherShape) {
  StartAndWork();
  Ship(2000, {"1|1|0|Bolt|5"},
       "integer ID,integer FOLGE,integer STATUS,string NAME,integer MENGE\n");
  EXPECT_FALSE(OpenFiles(program_, user_));
  fs::rename(user_ / "STOCK.UDB", user_ / "STOCK-OLD.UDB");
  fs::rename(user_ / "STOCK.idx", user_ / "STOCK-OLD.idx");
  auto const articles = ReadOldArticles(user_ / "STOCK-OLD.UDB");
  EXPECT_EQ(3U, articles.size());
  EXPECT_TRUE(OpenFiles(program_, user_));
  EXPECT_TRUE(AddOldArticles(articles));
  EXPECT_TRUE(Save());
  EXPECT_EQ(Page("disk after carrying over"), Disk());
}

TEST_F(UserFilePage, TwoPrograms) {
  StartAndWork();
  {
    ChildProcess other("HoldPageStock", {program_.string(), user_.string()});
    EXPECT_EQ("open", other.ReadLine());
    EXPECT_EQ(Opened::kForReading, OpenShared(program_, user_));
    EXPECT_EQ(Page("order of the user"), Order());
  }
  EXPECT_EQ(Opened::kForWriting, OpenShared(program_, user_));
}

}  // namespace
}  // namespace tabwerk::test
