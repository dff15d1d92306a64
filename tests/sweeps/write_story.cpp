#include "tests/sweeps/write_story.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "DBInterpreter.h"
#include "tests/support/fault_platform.h"

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
constexpr char kTempVariable[] = "TMP";
#else
constexpr char kTempVariable[] = "TMPDIR";
#endif

void SetVariable(char const* name, std::string const& value) {
#ifdef _WIN32
  _putenv_s(name, value.c_str());
#else
  if (value.empty()) {
    unsetenv(name);
  } else {
    setenv(name, value.c_str(), 1);
  }
#endif
}

// What tests do to tables, for code that is no test.
struct Hands : DatabaseTest {
  using DatabaseTest::AddArticle;
  using DatabaseTest::Manager;
  using DatabaseTest::SetNumber;
  using DatabaseTest::SetText;
  using DatabaseTest::Table;
};

bool OpenStockIn(std::string const& folder, bool creates = false) {
  return DBbase::Init({W("STOCK")},
                      {{W(folder + "MAIN.db"), W(folder + "USER.UDB")}}) &&
         Hands::Manager()->Open(W("STOCK"), true, creates) == 1;
}

bool Place(char const* table, long row, long folge, long status) {
  auto* const opened = Hands::Table(table);
  return Hands::SetNumber(opened, row, "FOLGE", folge) &&
         Hands::SetNumber(opened, row, "STATUS", status);
}

// Rows that are switched off have the place 0, the others 1, 2, 3 …, so that
// every opening leaves them as they are.
bool ChangeOrderAndStatus() {
  return Place("A", 0, 1, 0) && Place("A", 1, 2, 0) && Place("A", 3, 0, 1) &&
         Place("A", 4, 3, 0) && Place("B", 0, 0, 1) && Place("B", 1, 1, 0);
}

bool ChangeMainRows() {
  return Hands::SetText(Hands::Table("A"), 0, "NAME", "Anja the new") &&
         Hands::SetText(Hands::Table("B"), 1, "NAME", "");
}

bool ChangeUserRows() {
  Hands::AddArticle(Hands::Table("A"), 20001, 4, "Emil");
  return Hands::SetText(Hands::Table("A"), 4, "NAME", "Dorothea");
}

bool IsOneOf(std::string const& name,
             std::vector<std::string_view> const& names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// "STOCK.idx.1000".
bool IsWaitingIndex(std::string const& name) {
  std::string_view constexpr kStart = "STOCK.idx.";
  return name.size() > kStart.size() && name.rfind(kStart, 0) == 0 &&
         name.find_first_not_of("0123456789", kStart.size()) ==
             std::string::npos;
}

// The rows "[ID|FOLGE|STATUS|NAME]…" without the FOLGE of those that are
// switched off: they have no place, and the number in the file tells nothing.
std::string WithoutIdlePlaces(std::string const& rows) {
  std::string shown;
  for (std::size_t at = 0; at < rows.size();) {
    auto const folge = rows.find('|', at);
    auto const status = rows.find('|', folge + 1);
    auto const end = rows.find(']', status);
    if (end == std::string::npos) return "BAD: " + rows;
    bool const idle = rows.compare(status, 3, "|0|") != 0;
    shown += idle ? rows.substr(at, folge - at) + "|-" +
                        rows.substr(status, end + 1 - status)
                  : rows.substr(at, end + 1 - at);
    at = end + 1;
  }
  return shown;
}

}  // namespace

char const* NameOf(Writing writing) {
  switch (writing) {
    case Writing::kUserFile:
      return "UserFile";
    case Writing::kMainFile:
      return "MainFile";
    case Writing::kCopy:
      return "Copy";
    case Writing::kScript:
      return "Script";
    case Writing::kIndex:
      return "Index";
    case Writing::kOpening:
      return "Opening";
    case Writing::kOpening2:
      return "Opening2";
    case Writing::kCreation:
      break;
  }
  return "Creation";
}

Writing WritingOf(std::string const& name) {
  for (Writing const writing : kWritings) {
    if (name == NameOf(writing)) return writing;
  }
  return Writing::kCreation;
}

bool OnlyOpens(Writing writing) {
  return writing == Writing::kOpening || writing == Writing::kOpening2;
}

std::string NameOfCase(testing::TestParamInfo<Writing> const& tested) {
  return NameOf(tested.param);
}

bool Prepare(std::string const& folder, Writing writing) {
  switch (writing) {
    case Writing::kUserFile:
      return OpenStockIn(folder) && ChangeUserRows() && ChangeOrderAndStatus();
    case Writing::kMainFile:
      return OpenStockIn(folder) && ChangeMainRows() && ChangeOrderAndStatus();
    case Writing::kCopy:
      return OpenStockIn(folder) && ChangeMainRows();
    case Writing::kIndex:
      return OpenStockIn(folder) && ChangeOrderAndStatus();
    case Writing::kScript:
    case Writing::kOpening:
    case Writing::kOpening2:
    case Writing::kCreation:
      break;
  }
  return true;
}

bool CarryOut(std::string const& folder, Writing writing) {
  constexpr int kIndexWritten = 2;
  auto* const manager = Hands::Manager();
  switch (writing) {
    case Writing::kUserFile:
      return manager->Write(W("STOCK"), true, W(""));
    case Writing::kMainFile:
      return manager->Write(W("STOCK"), false, W(""));
    case Writing::kCopy:
      return manager->Write(W("STOCK"), false, W(folder + "COPY.db"));
    case Writing::kScript:
      return DBInterpreter().ReadScript((folder + "make.txt").c_str(), W("")) ==
             1;
    case Writing::kIndex:
      return manager->WriteIndexToFile(nullptr) == kIndexWritten;
    case Writing::kCreation:
      return OpenStockIn(folder, true);
    case Writing::kOpening:
    case Writing::kOpening2:
      break;
  }
  return OpenStockIn(folder);
}

WriteStory::WriteStory() {
  char const* const temp = std::getenv(kTempVariable);
  temp_before_ = temp == nullptr ? "" : temp;
  fs::create_directory(Path("tmp"));
  SetVariable(kTempVariable, Path("tmp"));
}

WriteStory::~WriteStory() { SetVariable(kTempVariable, temp_before_); }

FolderImage WriteStory::TakeImage() const {
  FolderImage image;
  for (auto const& entry : fs::directory_iterator(Folder())) {
    if (!entry.is_regular_file()) continue;
    auto const name = entry.path().filename().string();
    image[name] = Bytes(name);
  }
  return image;
}

void WriteStory::PutImage(FolderImage const& image) const {
  DBbase::Init({}, {});  // closes the files
  for (auto const& [name, bytes] : TakeImage()) {
    if (image.count(name) == 0) fs::remove(Path(name));
  }
  for (auto const& [name, bytes] : image) WriteFileBytes(Path(name), bytes);
  for (auto const& entry : fs::directory_iterator(Path("tmp"))) {
    fs::remove(entry.path());
  }
}

void WriteStory::MakeScript() const {
  auto const text = [this](std::string const& name, std::string_view ascii) {
    std::vector<unsigned char> units = {0xFF, 0xFE};
    for (char const character : ascii) {
      units.push_back(static_cast<unsigned char>(character));
      units.push_back(0);
    }
    WriteFileBytes(Path(name), units);
  };
  text("a.txt",
       "1,1,0,\"Anja\"\r\n2,2,0,\"Bert\"\r\n3,3,0,\"Carl\"\r\n"
       "4,4,0,\"Cleo\"\r\n5,5,0,\"Doris\"\r\n");
  text("b.txt", "1,1,0,\"red\"\r\n2,2,0,\"lime\"\r\n");
  constexpr char kColumnLines[] =
      "ID integer\nFOLGE integer\nSTATUS integer\nNAME string\nENDDEF\n";
  std::string const script = "NEWDATABASE stock " + Path("MAIN.db") +
                             "\nNEWTABLE A\n" + kColumnLines + "TABLEDATA A " +
                             Path("a.txt") + "\nNEWTABLE B\n" + kColumnLines +
                             "TABLEDATA B " + Path("b.txt") + "\n";
  WriteFileBytes(Path("make.txt"), {script.begin(), script.end()});
}

// Order and status stand in the index before, too, so that its loss is seen.
void WriteStory::MakeStart() const {
  MakeFile("MAIN.db",
           {PlainHeader::kCurrent,
            1000,
            {{"A",
              kArticles,
              {"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl", "4|4|0|Cleo"}},
             {"B", kArticles, {"1|1|0|red", "2|2|0|green", "3|3|0|blue"}}}});
  MakeFile("USER.UDB",
           {PlainHeader::kCurrent,
            2000,
            {{"A", kArticles, {"20000|5|0|Dora"}}, {"B", kArticles, {}}}});
  MakeFile("COPY.db", {PlainHeader::kCurrent,
                       500,
                       {{"A", kArticles, {"1|1|0|earlier"}},
                        {"B", kArticles, {"1|1|0|colour"}}}});
  MakeScript();
  ASSERT_TRUE(OpenStockIn(Folder()));
  ASSERT_TRUE(Place("A", 0, 2, 0) && Place("A", 1, 1, 0) &&
              Place("A", 2, 0, 1) && Place("A", 3, 3, 0) &&
              Place("A", 4, 4, 0) && Place("B", 2, 0, 1));
  ASSERT_TRUE(CarryOut(Folder(), Writing::kUserFile));
}

void WriteStory::SaveButTheIndex(Writing writing) const {
  FaultGuard faults;
  // Now and at the reopening.
  faults.FailAt(2, Lasting::kForGood, Only(Call::kReplace));
  ASSERT_TRUE(CarryOut(Folder(), writing));
}

void WriteStory::Begin(Writing writing) {
  MakeStart();
  if (writing == Writing::kOpening2) {
    ASSERT_TRUE(ChangeMainRows());
    SaveButTheIndex(Writing::kMainFile);
  }
  if (OnlyOpens(writing)) {
    ASSERT_TRUE(ChangeUserRows() && ChangeOrderAndStatus());
    SaveButTheIndex(Writing::kUserFile);
  }
  DBbase::Init({}, {});  // closes the files
  start_ = TakeImage();
  old_state_ = Observe();
  PutImage(start_);
  ASSERT_TRUE(Prepare(Folder(), writing));
  {
    FaultGuard faults;
    ASSERT_TRUE(CarryOut(Folder(), writing));
    calls_ = faults.Count(kFileCalls);
  }
  new_state_ = Observe();
  EXPECT_EQ(OnlyOpens(writing), old_state_ == new_state_);
  EXPECT_EQ(std::string::npos, (old_state_ + new_state_).find("BAD"));
  PutImage(start_);
}

// By table, because saving the first file reverses their order.
std::string WriteStory::IndexOnDisk() const {
  auto const index = DecodeIndex(Bytes("STOCK.idx"), 2);
  if (!index) return "BAD: no index";
  std::vector<std::int64_t> stamps;
  for (auto const* name : {"MAIN.db", "USER.UDB"}) {
    auto const file = DecodeDatabase(Bytes(name));
    if (!file) return std::string("BAD: no database file ") + name;
    stamps.push_back(file->time_stamp);
  }
  if (index->time_stamps != stamps) return "BAD: index of other files";
  std::map<std::string, std::string> sections;
  auto const* entry = Manager()->GetDirectory()->GetEntries();
  for (auto const& table : index->tables) {
    if (entry == nullptr) return "BAD: index of other tables";
    sections[entry->GetName()] = Describe(table);
    entry = entry->GetNext();
  }
  return sections["A"] + " " + sections["B"];
}

std::string WriteStory::Observe() const {
  auto const tables = [] {
    return " A " + WithoutIdlePlaces(Rows("A")) + " B " +
           WithoutIdlePlaces(Rows("B"));
  };
  DBbase::Init({W("COPY")}, {{W(Path("COPY.db"))}});
  if (Manager()->Open(W("COPY"), false, false) != 1) {
    return "BAD: COPY does not open";
  }
  auto seen = "COPY" + tables();
  if (!OpenStockIn(Folder())) return "BAD: STOCK does not open";
  seen += " STOCK" + tables() + " INDEX " + IndexOnDisk();
  DBbase::Init({}, {});  // closes the files
  return seen;
}

std::string WriteStory::StateNow() const {
  auto const seen = Observe();
  if (seen == old_state_) return "old";
  return seen == new_state_ ? "new" : seen;
}

std::string WriteStory::UndocumentedLeftovers() const {
  std::string others;
  for (auto const& entry : fs::directory_iterator(Folder())) {
    auto const name = entry.path().filename().string();
    if (start_.count(name) != 0 || IsWaitingIndex(name) ||
        IsOneOf(name,
                {"tmp", "STOCK.idxL", "STOCK.idxT", "USER.UDBL", "USER.UDBT",
                 "MAIN.dbL", "MAIN.dbT", "COPY.dbL", "COPY.dbT"})) {
      continue;
    }
    others += " " + name;
  }
  for (auto const& entry : fs::directory_iterator(Path("tmp"))) {
    auto const name = entry.path().filename().string();
    if (name.rfind("dta", 0) != 0 && name.rfind("dir", 0) != 0) {
      others += " tmp/" + name;
    }
  }
  return others;
}

}  // namespace tabwerk::test
