// What stands in the way of the commands that write: whatever it is, they say
// so, change nothing and leave nothing behind.
#include <ostream>

#include "DBDirectory.h"
#include "tests/cli/tool_test.h"

#ifndef _WIN32
#include <grp.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#endif

namespace tabwerk::test {
namespace {

struct WritingCommand {
  std::string name;
  std::vector<std::string> arguments;
  std::string target;  // what it writes
};

std::ostream& operator<<(std::ostream& stream, WritingCommand const& command) {
  return stream << command.name;
}

WritingCommand RowCommand(std::string const& name,
                          std::vector<std::string> const& more) {
  std::vector<std::string> words = {name, "stock.db", "STOCK.UDB", "-t",
                                    "ARTICLE"};
  words.insert(words.end(), more.begin(), more.end());
  return {name, words, "STOCK.UDB"};
}

// All, or those that replace a file that is there.
std::vector<WritingCommand> WritingCommands(bool replacing) {
  std::vector<WritingCommand> commands = {
      {"build", {"build", "stock.script"}, "stock.db"},
      RowCommand("import", {"rows.csv"}),
      RowCommand("add", {"NAME=Rivet"}),
      RowCommand("set", {"PRICE=7", "--id", "20000"}),
      RowCommand("activate", {"--id", "2"}),
      RowCommand("deactivate", {"--id", "1"}),
      RowCommand("move", {"--id", "1", "--last"}),
  };
  if (replacing) return commands;
  commands.push_back({"export", {"export", "stock.db", "-d", "out"}, "out"});
  commands.push_back(
      {"convert", {"convert", "stock.db", "-o", "b.db"}, "b.db"});
  return commands;
}

class ObstacleTest : public ToolTest {
 protected:
  // Texts that are longer than every message.
  ObstacleTest() {
    constexpr char kDefinition[] =
        "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n";
    std::string const text(1500, 'x');
    MakeDatabase("stock.db",
                 {PlainHeader::kCurrent,
                  1000,
                  {{"ARTICLE",
                    kDefinition,
                    {"1|1|0|" + text + "|1", "2|2|0|" + text + "|1"}}}});
    MakeDatabase("STOCK.UDB",
                 {PlainHeader::kCurrent,
                  2000,
                  {{"ARTICLE", kDefinition, {"20000|3|0|" + text + "|2"}}}});
    folder_.Make("rows.csv", "NAME\nRivet\n");
    folder_.Make("stock.script",
                 "NEWDATABASE stock stock.db\nNEWTABLE T\nNAME string\nENDDEF\n"
                 "TABLEDATA T t.txt\n");
    MakeUnits("t.txt", "\"" + text + "\"\n");
    folder_.MakeFolder("temp");
    // An index file is there and belongs to the database.
    auto const run = Run(
        {"deactivate", "stock.db", "STOCK.UDB", "-t", "ARTICLE", "--id", "2"});
    EXPECT_EQ(0, run.exit_code) << run.err;
  }

  ToolCall CallOf(std::vector<std::string> const& words) const {
    std::string const temp = folder_.PathUtf8("temp");
    return {words, "", {{"TMPDIR", temp}, {"TMP", temp}, {"TEMP", temp}}};
  }

  std::string Names() const {
    std::string names;
    for (auto const& entry :
         std::filesystem::recursive_directory_iterator(folder_.folder())) {
      names += " " + entry.path().filename().string();
    }
    return "there are" + names;
  }

  // It fails so, says so, and every file is as it was.
  void Fails(ToolCall const& call, int exit_code) const {
    std::string const before = Snapshot();
    auto const run = RunWith(call);
    EXPECT_EQ(exit_code, run.exit_code) << run.out << run.err;
    EXPECT_NE(std::string::npos, run.err.find(": error[TW")) << run.err;
    EXPECT_EQ("", run.out);
    EXPECT_TRUE(before == Snapshot()) << Names();
  }
};

class ToolObstacle : public ObstacleTest,
                     public testing::WithParamInterface<WritingCommand> {
 protected:
  ToolCall Call() const {
    std::vector<std::string> words = GetParam().arguments;
    // import names its rows first.
    if (words.front() == "import") {
      words.insert(words.begin() + 1, words.back());
      words.pop_back();
    }
    return CallOf(words);
  }
};

TEST_P(ToolObstacle, NoneIsThere) {
  std::string const before = Snapshot();
  auto const run = RunWith(Call());
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_TRUE(before != Snapshot());
  EXPECT_TRUE(std::filesystem::is_empty(folder_.folder() / "temp"));
}

// Of the commands that change a file that is there.
class ToolReplacement : public ToolObstacle {};

TEST_P(ToolReplacement, AnotherProcessHoldsTheFile) {
  DBDirectory writer;
  writer.Initialize(zWString(), {folder_.Path(GetParam().target)});
  ASSERT_TRUE(writer.OpenDBdatei(0, true, false));
  Fails(Call(), 5);
}

TEST_P(ToolReplacement, AFolderHasItsName) {
  std::filesystem::remove(folder_.folder() / GetParam().target);
  folder_.MakeFolder(GetParam().target);
  Fails(Call(), 3);
}

TEST_P(ToolReplacement, ItsFolderIsNotThere) {
  ToolCall call = Call();
  bool is_named = false;
  for (std::string& word : call.arguments) {
    if (word != GetParam().target) continue;
    word = "none/" + word;
    is_named = true;
  }
  if (!is_named) {
    folder_.Make("stock.script", "NEWDATABASE stock none/stock.db\n");
  }
  Fails(call, 3);
}

#ifdef _WIN32

// There is no other user to become; what is read-only nobody writes.
TEST_P(ToolReplacement, TheFileIsReadOnly) {
  auto const file = folder_.folder() / GetParam().target;
  std::filesystem::permissions(file, std::filesystem::perms::owner_read);
  Fails(Call(), 3);
  std::filesystem::permissions(file, std::filesystem::perms::owner_all);
}

#else

// What is written beyond is refused, as where there is no room.
void LimitFileSize(rlim_t bytes) {
  rlimit const limit = {bytes, bytes};
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
  if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(127);
}

TEST_P(ToolObstacle, TheDiskIsFull) {
  // A save that fails leaves there what it has written.
  TempFolder const temp;
  ToolCall call = Call();
  call.environment = {{"TMPDIR", temp.PathUtf8("")}};
  call.prepare = [] { LimitFileSize(1024); };
  Fails(call, 3);
}

constexpr unsigned kNobody = 65534;

void BecomeNobody() {
  if (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 ||
      setuid(kNobody) != 0) {
    _exit(126);
  }
}

TEST_P(ToolObstacle, TheUserMayNotWrite) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  ToolCall call = Call();
  call.prepare = BecomeNobody;
  ToolCall version = {{"--version"}, "", {}};
  version.prepare = call.prepare;
  if (RunWith(version).exit_code != 0) {
    GTEST_SKIP() << "the tool cannot be reached by nobody";
  }
  std::filesystem::permissions(folder_.folder(),
                               std::filesystem::perms::others_all,
                               std::filesystem::perm_options::remove);
  std::filesystem::permissions(
      folder_.folder(),
      std::filesystem::perms::others_read | std::filesystem::perms::others_exec,
      std::filesystem::perm_options::add);
  // The folder for temporary files is open to all.
  std::filesystem::permissions(folder_.folder() / "temp",
                               std::filesystem::perms::all);
  Fails(call, 3);
}

#endif

std::string NameOf(testing::TestParamInfo<WritingCommand> const& test) {
  return test.param.name;
}

INSTANTIATE_TEST_SUITE_P(Of, ToolObstacle,
                         testing::ValuesIn(WritingCommands(false)), NameOf);
INSTANTIATE_TEST_SUITE_P(Of, ToolReplacement,
                         testing::ValuesIn(WritingCommands(true)), NameOf);

// Which number the message has.
class ToolNumber : public ObstacleTest {
 protected:
  void FailsWith(char const* number, ToolCall const& call) const {
    std::string const before = Snapshot();
    auto const run = RunWith(call);
    EXPECT_NE(std::string::npos, run.err.find(number)) << run.err;
    EXPECT_EQ(3, run.exit_code);
    EXPECT_TRUE(before == Snapshot()) << Names();
  }
};

TEST_F(ToolNumber, NoFolderForTemporaryFiles) {
  std::filesystem::remove(folder_.folder() / "temp");
  FailsWith("tabwerk: error[TW118]: the folder for temporary files ",
            CallOf({"show", "stock.db", "STOCK.UDB", "ARTICLE"}));
}

// In the way of the trial copy.
TEST_F(ToolNumber, TheDatabaseIsNotSaved) {
  TempFolder const temp;
  for (auto const& [trial, words] :
       std::vector<std::pair<std::string, std::vector<std::string>>>{
           {"STOCK.UDBT",
            {"set", "stock.db", "STOCK.UDB", "-t", "ARTICLE", "--id", "20000",
             "PRICE=7"}},
           {"b.dbT", {"convert", "stock.db", "-o", "b.db"}},
           {"stock.dbT", {"build", "stock.script"}}}) {
    folder_.MakeFolder(trial);
    folder_.Make(trial + "/file", "");
    ToolCall call = CallOf(words);
    // A save that fails leaves there what it has written.
    for (auto& [name, value] : call.environment) value = temp.PathUtf8("");
    FailsWith("error[TW119]: ", call);
    std::filesystem::remove_all(folder_.folder() / trial);
  }
}

#ifndef _WIN32

// What was wrong: the copies that had been made stayed.
TEST_F(ToolNumber, NoRoomForTheBackup) {
  folder_.Make("stock.db", "small");
  ToolCall call = CallOf({"add", "stock.db", "STOCK.UDB", "-t", "ARTICLE",
                          "NAME=Rivet", "--backup"});
  call.prepare = [] { LimitFileSize(1024); };
  FailsWith("STOCK.UDB.bak: error[TW131]: the backup cannot be made; ", call);
}

TEST_F(ToolNumber, NotEnoughMemory) {
#ifdef TABWERK_SANITIZED
  GTEST_SKIP() << "the sanitizer itself takes more than can be forbidden";
#endif
  std::filesystem::resize_file(folder_.folder() / "rows.csv", 1U << 30);
  ToolCall call =
      CallOf({"import", "rows.csv", "stock.db", "STOCK.UDB", "-t", "ARTICLE"});
  call.prepare = [] {
    constexpr rlim_t kBytes = 1U << 29;
    rlimit const limit = {kBytes, kBytes};
    if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(127);
  };
  auto const run = RunWith(call);
  EXPECT_EQ(0U, run.err.find("tabwerk: error[TW121]: there is not enough "))
      << run.err;
  EXPECT_EQ(3, run.exit_code);
}

// No thread can be made for the line that shows the progress.
TEST_F(ToolNumber, TheSystemRefusesSomething) {
#ifdef TABWERK_SANITIZED
  GTEST_SKIP() << "the sanitizer itself makes a thread, at the end";
#endif
  if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  ToolCall call = CallOf({"show", "stock.db", "ARTICLE", "-o", "/dev/null"});
  call.prepare = BecomeNobody;
  std::filesystem::permissions(folder_.folder(), std::filesystem::perms::all);
  if (RunWith(call).exit_code != 0) {
    GTEST_SKIP() << "the tool cannot be reached by nobody";
  }
  call.prepare = [] {
    rlimit const limit = {0, 0};
    if (setrlimit(RLIMIT_NPROC, &limit) != 0) _exit(127);
    BecomeNobody();
  };
  auto const run = RunToolOnTerminal(folder_.folder(), call, 80);
  EXPECT_NE(std::string::npos, run.out.find("tabwerk: error[TW122]: "))
      << run.out;
  EXPECT_EQ(3, run.exit_code);
}

#endif

// Of the commands that write files beside the database.
using ToolCopy = ObstacleTest;

TEST_F(ToolCopy, ConvertLeavesAFileAloneThatAnotherProcessWrites) {
  DBDirectory writer;
  writer.Initialize(zWString(), {folder_.Path("stock.db")});
  ASSERT_TRUE(writer.OpenDBdatei(0, true, false));
  Fails(CallOf({"convert", "stock.db", "--backup"}), 5);
}

// What was wrong: the backup was made before it was asked who has the file.
TEST_F(ToolCopy, ConvertMakesNoBackupOfAFileThatAnotherProcessReads) {
  DBDirectory reader;
  reader.Initialize(zWString(), {folder_.Path("stock.db")});
  ASSERT_TRUE(reader.OpenDBdatei(0, false, false));
  Fails(CallOf({"convert", "stock.db", "--backup"}), 5);
}

TEST_F(ToolCopy, ConvertTellsOfATargetWithoutAFolder) {
  Fails(CallOf({"convert", "stock.db", "-o", "none/b.db"}), 3);
  Fails(CallOf({"convert", "stock.db", "-o", "none/b.db", "--dry-run"}), 3);
}

TEST_F(ToolCopy, ExportTellsOfAFileInPlaceOfItsFolder) {
  folder_.Make("out", "a file");
  Fails(CallOf({"export", "stock.db", "-d", "out"}), 3);
}

#ifndef _WIN32

// What was wrong: the script was replaced, the data were not.
TEST_F(ToolCopy, ExportBringsBackWhatItHasReplacedBeforeAFileThatItCannot) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  using std::filesystem::perms;
  ToolCall call = CallOf({"export", "stock.db", "-d", "out", "--force"});
  EXPECT_EQ(0, RunWith(call).exit_code);
  folder_.Make("out/stock.script", "# mine\n");
  // In such a folder nobody replaces the files of others.
  for (char const* const name : {"", "out", "temp"}) {
    std::filesystem::permissions(folder_.folder() / name,
                                 perms::all | perms::sticky_bit);
  }
  std::string const script = folder_.PathUtf8("out/stock.script");
  ASSERT_EQ(0, chown(script.c_str(), kNobody, kNobody));
  call.prepare = BecomeNobody;
  ToolCall version = {{"--version"}, "", {}};
  version.prepare = BecomeNobody;
  if (RunWith(version).exit_code != 0) {
    GTEST_SKIP() << "the tool cannot be reached by nobody";
  }
  Fails(call, 3);
  EXPECT_EQ("# mine\n", folder_.Content("out/stock.script"));
  // One that is read-only stays so.
  std::filesystem::permissions(script, perms::owner_read);
  Fails(call, 3);
  EXPECT_EQ(perms::owner_read, std::filesystem::status(script).permissions());
  // One that was not there is gone.
  std::filesystem::remove(script);
  Fails(call, 3);
}

#endif

// What was wrong: the script was replaced before the data could not be.
TEST_F(ToolCopy, ExportReplacesNothingWhenAFolderHasTheNameOfItsData) {
  folder_.MakeFolder("out");
  folder_.Make("out/stock.script", "old");
  folder_.MakeFolder("out/stock.article.dat");
  Fails(CallOf({"export", "stock.db", "-d", "out", "--force"}), 3);
}

using ToolPipe = ToolTest;

ToolCall WithoutReader(std::vector<std::string> const& arguments) {
  ToolCall call = {arguments, "", {}};
  call.output = OutputTo::kPipeWithoutReader;
  return call;
}

TEST_F(ToolPipe, EndsQuietlyWhenNobodyReads) {
  MakeExample();
  MakeStock();
  for (std::vector<std::string> const& arguments :
       std::vector<std::vector<std::string>>{
           {"show", "geo.db", "TERRITORY"},
           {"show", "geo.db", "TERRITORY", "--format", "json"},
           {"dump", "geo.db", "-t", "TERRITORY"},
           {"find", "a", "geo.db"},
           {"languages", "geo.db", "--cells"},
           {"info", "geo.db"},
           {"help"},
           {"add", "stock.db", "STOCK.UDB", "-t", "ARTICLE", "NAME=Rivet"}}) {
    auto const run = RunWith(WithoutReader(arguments));
    EXPECT_EQ("", run.err) << arguments.front();
    EXPECT_EQ(0, run.exit_code) << arguments.front();
  }
  EXPECT_NE(std::string::npos, Rows("STOCK.UDB", "ARTICLE").find("Rivet"));
  // What was found stays found.
  EXPECT_EQ(1,
            RunWith(WithoutReader({"diff", "geo.db", "stock.db"})).exit_code);
}

}  // namespace
}  // namespace tabwerk::test
