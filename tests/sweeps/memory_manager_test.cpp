// The manager and the interpreter without memory.  What they do to files is
// swept by what is left there (faults_*_test.cpp).
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/manager_access.h"
#include "tabwerk.h"
#include "tests/support/database_fixture.h"
#include "tests/support/plain_database.h"
#include "tests/support/private_temp.h"
#include "tests/sweeps/memory_operations.h"

namespace tabwerk::test {
namespace {

constexpr char kDefinition[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME\n";

// Two databases, the second one open for writing.
struct Manager {
  Manager() {
    MakeFile("A.db", {"1|1|0|Anna"});
    MakeFile("B.db", {"1|1|0|Bert", "2|2|0|Carl"});
    MakeFile("B.UDB", {"20000|3|0|Dora"});
    EXPECT_TRUE(DBbase::Init(names, files));
    EXPECT_EQ(1, Get()->Open(names[1], true, false));
  }
  ~Manager() { DBbase::Init({}, {}); }

  static DBbase* Get() { return DBbase::GetDBBaseInstance(); }
  void MakeFile(char const* name, std::vector<std::string> const& rows) const {
    WriteFileBytes(
        folder.PathUtf8(name),
        EncodeDatabase(
            {PlainHeader::kCurrent, 1000, {{"ARTIKEL", kDefinition, rows}}}));
  }
  std::string State() {
    auto* const current = Get()->GetDirectory();
    std::string state =
        std::to_string(Get()->FilesCount()) + " " +
        (current == nullptr ? "-" : current->GetName().toUtf8()) + " ";
    for (auto const& name : ManagerAccess::Names(*Get())) {
      state += name.toUtf8() + ",";
    }
    state += text.toUtf8() + "|" + std::to_string(got_names.size()) +
             std::to_string(got_files.size()) +
             (made ? " made " + std::to_string(made->FilesCount()) : "") +
             std::to_string(other.FilesCount());
    state += table != nullptr ? " table" : "";
    for (std::size_t i = 0; current && i < current->GetNumberFiles(); ++i) {
      state += current->GetFileOpen(i) != 0 ? ",open" : ",closed";
    }
    return state;
  }
  // Which tables are in memory as well.
  std::string LoadedState() {
    std::string state = State();
    auto* const current = Get()->GetDirectory();
    for (auto* entry = current->GetEntries(); entry != nullptr;
         entry = entry->GetNext()) {
      for (std::size_t i = 0; i < entry->GetNumberOfParts(); ++i) {
        state += entry->GetPartLoaded(i) ? " loaded" : " not loaded";
      }
    }
    return state;
  }

  TempFolder folder;
  std::vector<zWString> const names{W("A DATABASE OF A LONG NAME"),
                                    W("B DATABASE OF A LONG NAME")};
  std::vector<std::vector<zWString>> const files{
      {folder.Path("A.db")}, {folder.Path("B.db"), folder.Path("B.UDB")}};
  std::vector<zWString> const new_names{W("C DATABASE OF A LONG NAME")};
  std::vector<std::vector<zWString>> const new_files{{folder.Path("C.db")}};
  zWString const path = folder.Path("B DATABASE OF A LONG NAME.UDB");
  zWString const none;
  DBbase other{nullptr};
  std::optional<DBbase> made;
  std::vector<zWString> got_names;
  std::vector<std::vector<zWString>> got_files;
  zWString text = W("#TS(one that is long enough\u00ACtwo)TS~ and more");
  DBTabelle* table = nullptr;
};

// The rows of these parts of the open database have to be read again.
DBTabelle* Forget(std::vector<std::size_t> const& parts) {
  DBTabelle* loaded = nullptr;
  EXPECT_EQ(1, Manager::Get()->OpenTabelle("ARTIKEL", loaded));
  for (auto const part : parts) loaded->SetOpen(false, part);
  return loaded;
}

struct NotLoaded : Manager {
  NotLoaded() { bound.SetDirEntry(Forget({0})->GetDirEntry(false)); }
  std::string State() { return LoadedState(); }

  DBTabelle bound;
};

// Nothing is open yet.
struct Closed : Manager {
  Closed() { EXPECT_TRUE(DBbase::Init(names, files)); }
  std::string State() { return LoadedState(); }
};

// The database is open, but these parts of its table are not in memory; the
// table is handed out or not.
template <typename World, bool handed_out, std::size_t... parts>
void ReadWithout(World& m) {
  EXPECT_EQ(1, Manager::Get()->Open(m.names[1], true, false));
  auto* const table = Forget({parts...});
  if (handed_out) m.table = table;
}

template <typename World>
std::vector<void (*)(World&)> PartlyRead(
    std::vector<void (*)(World&)> states = {}) {
  states.insert(states.end(),
                {ReadWithout<World, false>, ReadWithout<World, false, 0>,
                 ReadWithout<World, false, 1>, ReadWithout<World, false, 0, 1>,
                 ReadWithout<World, true, 0>, ReadWithout<World, true, 1>,
                 ReadWithout<World, true, 0, 1>});
  return states;
}

using M = Manager;

std::vector<Operation> Configuring() {
  return {
      In<M>(Promise::kFails, {"DBbase::Init(", "DBbase::DBbase()"},
            [](M& m) { return DBbase::Init(m.new_names, m.new_files); }),
      In<M>(Promise::kPart, {"DBbase::AddFiles("},
            [](M& m) {
              DBbase::AddFiles(m.new_names, m.new_files, M::Get());
              return M::Get()->FilesCount() >= 3;
            }),
      In<M>(Promise::kSilent, {"DBbase::GetInit("},
            [](M& m) {
              M::Get()->GetInit(m.got_names, m.got_files);
              return true;
            }),
      In<M>(Promise::kFails,
            {"DBbase::SelectDB(zWString const&)",
             "DBbase::FindFile(zWString const&)"},
            [](M& m) { return M::Get()->SelectDB(m.names[0]); }),
      In<M>(Promise::kThrows, {"DBbase::DBbase(DBDirectory*)"},
            [](M& m) {
              m.made.emplace(nullptr);
              return true;
            }),
      In<M>(Promise::kThrows, {"DBbase::DBbase(DBbase const&)"},
            [](M& m) {
              m.made.emplace(*M::Get());
              return true;
            }),
      In<M>(Promise::kThrows, {"DBbase::operator=(DBbase const&)"},
            [](M& m) {
              m.other = *M::Get();
              return true;
            }),
      In<M>(Promise::kSilent, {"DBbase::DBTranslate(zWString&)"},
            [](M& m) {
              DBbase::DBTranslate(m.text);
              return true;
            }),
      In<M>(Promise::kNeedsNone,
            {"DBbase::~DBbase()", "DBbase::GetDBBaseInstance()",
             "DBbase::_instance", "DBbase::sprache",
             "DBbase::FilesCount() const", "DBbase::GetDirectory()",
             "DBbase::NotRegistered(zWString const&) const",
             "DBbase::SetSprache(short)", "DBbase::FindLastFile()"},
            [](M& m) {
              DBbase::SetSprache(0);
              return M::Get()->FilesCount() == 2 &&
                     M::Get()->GetDirectory() != nullptr &&
                     !M::Get()->NotRegistered(m.names[0]) &&
                     ManagerAccess::FindLastFile(*M::Get()) == 1;
            }),
  };
}

std::vector<Operation> OpeningDatabases() {
  return {
      // A table that found no memory is read when it is opened.  A database
      // that does not open leaves the catalogue: the next time the other one is
      // opened.
      In<Closed>(Promise::kPart, {"DBbase::OpenDatei("},
                 [](Closed& m) {
                   return M::Get()->OpenDatei(m.path, true, false) == 1 &&
                          M::Get()->OpenTabelle("ARTIKEL", m.table) == 1;
                 },
                 PartlyRead<Closed>({[](Closed& m) {
                   EXPECT_EQ(1, M::Get()->Close(m.names[1]));
                 }}),
                 {[](Closed& m) {
                   EXPECT_EQ(1, M::Get()->Close(m.names[1]));
                   EXPECT_EQ(1, M::Get()->Open(m.names[0], true, false));
                   EXPECT_EQ(1, M::Get()->OpenTabelle("ARTIKEL", m.table));
                 }}),
      In<M>(Promise::kFails, {"DBbase::Close(zWString const&)"},
            [](M& m) { return M::Get()->Close(m.names[0]) == 1; }),
      In<M>(Promise::kPart, {"DBbase::ReOpen(bool)"},
            [](M&) {
              return DBbase::GetDBBaseInstance()->ReOpen(true) != nullptr;
            },
            // Those before the one that did not open are open.
            {[](M& m) { EXPECT_TRUE(DBbase::Init(m.names, m.files)); },
             [](M& m) {
               EXPECT_TRUE(DBbase::Init(m.names, m.files));
               EXPECT_EQ(1, M::Get()->Close(m.names[0]));
             },
             [](M& m) {
               EXPECT_TRUE(DBbase::Init(m.names, m.files));
               EXPECT_EQ(1, M::Get()->Open(m.names[0], true, false));
               EXPECT_EQ(1, M::Get()->Close(m.names[1]));
             },
             [](M& m) {
               EXPECT_TRUE(DBbase::Init(m.names, m.files));
               EXPECT_EQ(1, M::Get()->Open(m.names[0], true, false));
             }}),
      In<NotLoaded>(
          Promise::kPart, {"DBbase::OpenTabelle("},
          [](NotLoaded& m) {
            return M::Get()->OpenTabelle("ARTIKEL", m.table) == 1;
          },
          PartlyRead<NotLoaded>()),
      In<NotLoaded>(Promise::kPart,
                    {"DBTabelle::ReadTabelle(unsigned long, DBDirectory*)",
                     "DBTabelle::ReadStrings(unsigned long, DBDirectory*)"},
                    [](NotLoaded& m) {
                      auto* const directory = M::Get()->GetDirectory();
                      directory->SelectTabelle("ARTIKEL");
                      return m.bound.ReadTabelle(0, directory) &&
                             m.bound.ReadStrings(0, directory);
                    }),
      In<M>(Promise::kFails, {"DBbase::NeueTabelle("},
            [](M& m) { return M::Get()->NeueTabelle("ARTIKEL", m.table); }),
  };
}

// An interpreter and a text file.
struct Interpreter {
  Interpreter() { WriteFileBytes(path, {0xFF, 0xFE, '1', 0, '\n', 0}); }
  std::string State() const {
    return std::to_string(interpreter.GetError()) +
           interpreter.GetErrorString() + (token != nullptr ? "token" : "");
  }

  TempFolder folder;
  std::string const path = folder.PathUtf8("a text file of a long name.txt");
  wchar_t line[7] = L"a;b;c ";
  DBInterpreter interpreter;
  wchar_t* token = nullptr;
};

}  // namespace

std::vector<Operation> ManagerOperations() {
  auto all = Configuring();
  auto const more = OpeningDatabases();
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

std::vector<Operation> InterpreterOperations() {
  using I = Interpreter;
  return {
      In<I>(Promise::kNeedsNone,
            {"DBInterpreter::DBInterpreter()",
             "DBInterpreter::DBInterpreter(DBInterpreter const&)",
             "DBInterpreter::operator=(DBInterpreter const&)",
             "DBInterpreter::~DBInterpreter()", "DBInterpreter::CloseDatei()",
             "DBInterpreter::GetError() const",
             "DBInterpreter::GetErrorString() const",
             "DBInterpreter::GetReadBytes() const",
             "DBInterpreter::SetTabelle(DBTabelle*)"},
            [](I& i) {
              DBInterpreter copy(i.interpreter);
              copy = i.interpreter;
              copy.SetTabelle(nullptr);
              copy.CloseDatei();
              return copy.GetError() == 0 && copy.GetErrorString()[0] == '\0' &&
                     copy.GetReadBytes() == 0;
            }),
      In<I>(Promise::kFails,
            {"DBInterpreter::OpenDatei(char const*, char const*)"},
            [](I& i) {
              return i.interpreter.OpenDatei(i.path.c_str(), "rb") == 1;
            }),
      In<I>(Promise::kFails, {"DBInterpreter::GetNextToken(wchar_t*, wchar_t)"},
            [](I& i) {
              i.token = i.interpreter.GetNextToken(i.line, L';');
              return i.token != nullptr;
            }),
  };
}

class SweepMemoryManager : protected PrivateTemp, public testing::Test {};

TEST_F(SweepMemoryManager, EveryAllocation) {
  SweepOperations(ManagerOperations());
}

class SweepMemoryInterpreter : protected PrivateTemp, public testing::Test {};

TEST_F(SweepMemoryInterpreter, EveryAllocation) {
  SweepOperations(InterpreterOperations());
}

}  // namespace tabwerk::test
