// tabwerk check as a program, on sound files, and on any bytes.
#include <algorithm>
#include <random>
#include <sstream>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/file_image.h"
#include "cli/text_markers.h"
#include "tests/cli/check_fixture.h"
#include "tests/cli/expected.h"
#include "tests/cli/translation.h"
#include "tests/support/hex_file.h"
#include "tests/support/places.h"

namespace tabwerk::test {
namespace {

using ToolCheck = CheckTest;
using CheckDamage = CheckTest;
using CheckHealth = CheckTest;

// --- The program -------------------------------------------------------------

TEST_F(ToolCheck, SaysThatAllIsWell) {
  MakeStock();
  auto const run = RunToLook({"check", "stock.db", "STOCK.UDB"});
  EXPECT_EQ("stock.db, STOCK.UDB: no mistakes in 2 tables with 3 rows\n",
            run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ("", Run({"check", "stock.db", "-q"}).out);
}

TEST_F(ToolCheck, FindsNothingInTheExample) {
  MakeExample();
  EXPECT_EQ("geo.db: no mistakes in 4 tables with 1094 rows\n",
            Run({"check", "geo.db"}).out);
  EXPECT_EQ("geo.db, GEO.UDB: no mistakes in 4 tables with 1094 rows\n",
            Run({"check", "geo.db", "GEO.UDB"}).out);
  EXPECT_EQ("GEO.UDB: no mistakes in 4 tables with 0 rows\n",
            Run({"check", "GEO.UDB"}).out);
}

class ToolCheckMistakes : public CheckTest {
 protected:
  // One of most kinds of content.
  ToolCheckMistakes() {
    MakeDatabase("stock.db",
                 {PlainHeader::kCurrent,
                  1000,
                  {{"ARTICLE",
                    "integer ID,integer FOLGE,integer STATUS,string NAME\n",
                    {"1|1|0|#TS(Bolt¬Bolzen)TS~", "2|1|0|#TS(Nut¬Mutter",
                     "2|5|9|Pin", "4|2|0|a)TS~"}}}});
  }
};

TEST_F(ToolCheckMistakes, AreToldWithTheirPlaces) {
  auto const run = RunToLook({"check", "stock.db"});
  EXPECT_EQ(Expected("check_mistakes", run.out), run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolCheckMistakes, ComeAsRecords) {
  auto const run = Run({"check", "stock.db", "--format", "ndjson"});
  EXPECT_EQ(Expected("check_mistakes_ndjson", run.out), run.out);
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolCheckMistakes, AreNoneForAQuickCheck) {
  EXPECT_EQ(0, RunToLook({"check", "--quick", "stock.db"}).exit_code);
}

TEST_F(ToolCheckMistakes, AreCountedBehindTheFirstOnes) {
  std::vector<std::string> rows;
  for (int i = 0; i < 50; ++i) rows.push_back("7");
  MakeDatabase("t.db",
               {PlainHeader::kCurrent, 1000, {{"T", "integer ID\n", rows}}});
  auto const run = Run({"check", "t.db", "--most", "1"});
  EXPECT_EQ(
      "t.db:@68: warning[TW410]: table T, row 1 (ID 7), column ID: row 0 has "
      "the same ID, and only one of them is found by it; give one of them "
      "another ID\n"
      "t.db: warning[TW410]: table T: 48 more of this kind; --most 0 shows "
      "all\n"
      "0 errors, 2 warnings\n",
      run.out);
  auto const all = Run({"check", "t.db", "--most", "0"}).out;
  EXPECT_EQ(50, std::count(all.begin(), all.end(), '\n'));
}

TEST_F(ToolCheck, HasAnExitCodeForEachCase) {
  EXPECT_EQ(3, Run({"check", "none.db"}).exit_code);
  MakeStock();
  EXPECT_EQ(3, Run({"check", "stock.db", "NONE.UDB"}).exit_code);
  folder_.Make("cut.db", folder_.ReadBytes("stock.db").substr(0, 60));
  EXPECT_EQ(4, RunToLook({"check", "cut.db"}).exit_code);
  EXPECT_EQ(4, RunToLook({"check", "--quick", "cut.db"}).exit_code);
  EXPECT_EQ(2, Run({"check"}).exit_code);
  DBDirectory holder;
  holder.Initialize(zWString(), {folder_.Path("STOCK.UDB")});
  ASSERT_TRUE(holder.OpenDBdatei(0, true, true));
  EXPECT_EQ(5, Run({"check", "stock.db", "STOCK.UDB"}).exit_code);
}

// In the second file the last row has the ID of the first one.
TEST_F(ToolCheck, FindsTheOneMistakeInManyRows) {
  constexpr int kRows = 100000;
  std::vector<std::string> rows;
  for (int i = 1; i <= kRows; ++i) {
    std::string const n = std::to_string(i);
    rows.push_back(n + "|" + n + "|0|#TS(Part " + n + "¬Teil " + n + ")TS~");
  }
  std::string bytes = File(
      {{"T", "integer ID,integer FOLGE,integer STATUS,string NAME\n", rows}});
  folder_.WriteBytes("large.db", bytes);
  EXPECT_EQ("large.db: no mistakes in 1 table with 100000 rows\n",
            Run({"check", "large.db"}).out);
  std::size_t const last = bytes.size() - 16;
  folder_.WriteBytes("large.db", bytes.replace(last, 4, Le32(1)));
  auto const run = Run({"check", "large.db"});
  EXPECT_EQ(0U, run.out.find("large.db:@" + std::to_string(last) +
                             ": warning[TW410]: table T, row 99999 (ID 1), "
                             "column ID: row 0 has the same ID"))
      << run.out;
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolCheckMistakes, AreReportedAsLostOnAFullDisk) {
  ToolCall call = {{"check", "stock.db", "--format", "json"}, "", {}};
  call.output = OutputTo::kFullDisk;
  auto const run = RunWith(call);
  EXPECT_NE(std::string::npos, run.err.find("TW120")) << run.err;
  EXPECT_EQ(3, run.exit_code);
}

// --- Sound files -------------------------------------------------------------

TEST_F(CheckHealth, GoldenFilesHaveNoFindings) {
  for (char const* const name :
       {"current_2025", "headerless_2014", "version_2016", "version_2018"}) {
    folder_.WriteBytes("USER.UDB", HexFile("user_2025"));
    EXPECT_EQ("", Check(HexFile(name))) << name;
    std::filesystem::remove(folder_.folder() / "USER.UDB");
    EXPECT_EQ("", Check(HexFile(name))) << name;
  }
}

// A database of the library's own making: rows come, go and change their places
// through the class interface, with saves and openings in between.
class CheckSaved : public CheckTest {
 protected:
  static constexpr char kDefinition[] =
      "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n";

  CheckSaved() {
    std::vector<std::string> rows;
    for (int i = 1; i <= 12; ++i) {
      std::string const n = std::to_string(i);
      rows.push_back(n + "|" + n + "|0|#TS(Part " + n + "¬Teil " + n +
                     ")TS~|1.5");
    }
    folder_.WriteBytes("main.db", File({{"OTHER", "string A,real B\n", {"x|2"}},
                                        {"T", kDefinition, rows}}));
    folder_.WriteBytes("USER.UDB", "");
  }

  DBTabelle* Open() const {
    DBbase::Init({u"MAIN"},
                 {{folder_.Path("main.db"), folder_.Path("USER.UDB")}});
    EXPECT_EQ(1, DBbase::GetDBBaseInstance()->Open(u"MAIN", true, false));
    return Table();
  }
  static DBTabelle* Table() {
    DBTabelle* table = nullptr;
    EXPECT_EQ(1, DBbase::GetDBBaseInstance()->OpenTabelle("T", table));
    return table;
  }
  static bool Save() {
    return DBbase::GetDBBaseInstance()->Write(u"MAIN", true, u"");
  }

  static void AnyStep(std::mt19937& random, DBTabelle* table) {
    auto const any = [&random](int most) {
      return std::uniform_int_distribution<int>(1, most)(random);
    };
    auto const rows = static_cast<int>(table->GetAnzahlZeilen());
    std::map<std::string, std::wstring> values{
        {"NAME",
         L"#TS(New " + std::to_wstring(any(1000000)) + L"\u00ACNeu)TS~"},
        {"PRICE", std::to_wstring(any(100))}};
    if (any(2) == 1) {
      EXPECT_TRUE(table->SetZeileWerte(values, DBTabelle::ActionAppend));
    } else {
      values["ID"] = std::to_wstring(table->NewUserID());
      values["FOLGE"] = std::to_wstring(any(rows));
      EXPECT_TRUE(table->SetZeileWerte(values, DBTabelle::ActionInsert));
    }
  }
};

TEST_F(CheckSaved, DatabasesHaveNoFindings) {
  std::mt19937 random(20240101);
  Open();
  ASSERT_TRUE(Save());  // gives the user file its tables
  for (int round = 0; round < 6; ++round) {
    Open();
    for (int i = 0; i < 5; ++i) AnyStep(random, Table());
    ASSERT_TRUE(Save());
    DBbase::Init({}, {});
    EXPECT_EQ("", CheckFiles()) << round;
    EXPECT_EQ("", CheckFiles(true)) << round;
  }
  EXPECT_TRUE(folder_.Exists("MAIN.idx"));
}

// Rows without any sense: no rule of form finds fault with what the library
// has written.
TEST_F(CheckSaved, OnlyContentsOfAnyRowsAreFound) {
  std::mt19937 random(20240102);
  Open();
  ASSERT_TRUE(Save());
  for (int round = 0; round < 6; ++round) {
    DBTabelle* const table = Open();
    for (int i = 0; i < 8; ++i) {
      ASSERT_TRUE(table->NeueZeile(true));
      for (char const* const column : {"ID", "FOLGE", "STATUS"}) {
        table->SelectColumn(column);
        table->SetWert(static_cast<long>(random() % 30) - 2);
      }
    }
    ASSERT_TRUE(Save());
    DBbase::Init({}, {});
    std::istringstream lines(CheckFiles());
    for (std::string line; std::getline(lines, line);) {
      int const number = std::stoi(line.substr(1, 3));
      EXPECT_TRUE((number >= 410 && number <= 425) || number == 443) << line;
    }
  }
}

// --- Any bytes ---------------------------------------------------------------

// Whether the library gives all tables of a file.
bool LibraryLoads(zWString const& path, bool* opens) {
  DBbase::Init({u"MAIN"}, {{path}});
  *opens = DBbase::GetDBBaseInstance()->Open(u"MAIN", false, false) == 1;
  bool all = *opens;
  for (DBDirEntry* entry =
           *opens ? DBbase::GetDBBaseInstance()->GetDirectory()->GetEntries()
                  : nullptr;
       entry != nullptr; entry = entry->GetNext()) {
    all = all && entry->GetPartLoaded(0);
  }
  DBbase::Init({}, {});
  return all;
}

// Damage is what keeps a table from being loaded, no more and no less.
class CheckFlips : public CheckTest {
 protected:
  void Flip(std::string bytes, std::size_t at, unsigned char mask) const {
    bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ mask);
    std::string const found = Check(bytes);
    bool opens = false;
    bool const loads = LibraryLoads(folder_.Path("main.db"), &opens);
    EXPECT_EQ(loads ? "loads" : "does not load",
              std::string(ExitCode() == 4 ? "does not load" : "loads"))
        << "byte " << at << " xor " << int{mask} << "\n"
        << found;
    std::string const quick = CheckFiles(true);
    EXPECT_EQ(loads, ExitCode() != 4) << "byte " << at;
    EXPECT_EQ(0U, found.find(quick)) << quick << "\n" << found;
  }
};

TEST_F(CheckFlips, AgreeWithTheLibraryInTheDirectory) {
  std::mt19937 random(20240103);
  for (char const* const name :
       {"current_2025", "headerless_2014", "version_2016", "version_2018"}) {
    std::string const bytes = HexFile(name);
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      Flip(bytes, at, static_cast<unsigned char>(1 + random() % 255));
    }
  }
}

TEST_F(CheckFlips, AgreeWithTheLibraryForTwoFiles) {
  std::mt19937 random(20240104);
  std::string const user = HexFile("user_2025");
  std::string const main = HexFile("current_2025");
  folder_.WriteBytes("main.db", main);
  for (int i = 0; i < 300; ++i) {
    std::string bytes = user;
    for (int k = 0; k < 3; ++k) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    folder_.WriteBytes("USER.UDB", bytes);
    std::string const found = CheckFiles();
    EXPECT_EQ(std::string::npos, found.find("problem")) << found;
    bool const has_mistakes = ("\n" + found).find("\nE") != found.npos ||
                              ("\n" + found).find("\nW") != found.npos;
    EXPECT_EQ(has_mistakes, ExitCode() != 0) << found;
  }
}

TEST_F(CheckFlips, AFileCutAnywhereIsTold) {
  MakeExample();
  std::string const bytes = folder_.ReadBytes("geo.db");
  for (std::size_t size = 0; size < bytes.size(); size += 997) {
    EXPECT_NE("", Check(bytes.substr(0, size))) << size;
    EXPECT_EQ(4, ExitCode()) << size;
  }
}

TEST_F(CheckFlips, AnyIndexIsJudgedAsTheLibraryDoes) {
  std::mt19937 random(20240105);
  folder_.WriteBytes("main.db", HexFile("current_2025"));
  folder_.WriteBytes("USER.UDB", HexFile("user_2025"));
  MakeIndex({{1700000000, 1700000100},
             {{{{1, 0}, {2, 1}, {20000, 2}}, {-1, 1, 0, 2}, {0, 0, 0}}}});
  std::string const sound = folder_.ReadBytes("MAIN.idx");
  EXPECT_EQ("", CheckFiles());
  for (int i = 0; i < 300; ++i) {
    std::string bytes = sound;
    bytes[random() % bytes.size()] = static_cast<char>(random());
    if (i % 4 == 0) bytes.resize(random() % bytes.size());
    folder_.WriteBytes("MAIN.idx", bytes);
    std::string const found = CheckFiles();
    // An index that counts as missing is made anew as the rows say; one that
    // is sound stays.
    DBbase::Init({u"MAIN"},
                 {{folder_.Path("main.db"), folder_.Path("USER.UDB")}});
    ASSERT_EQ(1, DBbase::GetDBBaseInstance()->Open(u"MAIN", false, false));
    DBbase::Init({}, {});
    std::string const after = folder_.ReadBytes("MAIN.idx");
    if (found.find("E43") != found.npos) {
      EXPECT_EQ(sound, after) << found;
    } else if (found.find("N438") == found.npos) {
      EXPECT_EQ(bytes, after) << found;
    }
  }
}

// --- Markers -----------------------------------------------------------------

// A text with sound markers is, in each language that all its sections have,
// what stands between them with their pieces.
TEST(TextMarkers, AreThoseOfTheTranslation) {
  std::mt19937 random(20240106);
  int sound = 0;
  for (int i = 0; i < 3000; ++i) {
    std::u16string text;
    for (auto n = random() % 9; n > 0; --n) {
      constexpr std::u16string_view kPieces[] = {u"#TS(", u")TS~", u"\u00AC",
                                                 u"a",    u"b c",  u"#"};
      text += kPieces[random() % std::size(kPieces)];
    }
    auto const sections = tool::MarkedSections(text);
    auto const faults = tool::MarkerFaults(text);
    if (sections.empty() || !faults.empty()) {
      // Whatever is wrong, text without a marker stays as it is.
      if (!tool::HasMarkers(text)) {
        EXPECT_EQ(text, Translated(text, 0));
      }
      continue;
    }
    ++sound;
    std::size_t languages = sections.front().pieces.size();
    for (auto const& it : sections) {
      languages = std::min(languages, it.pieces.size());
    }
    for (std::size_t language = 0; language < languages; ++language) {
      std::u16string expected;
      std::size_t from = 0;
      for (auto const& it : sections) {
        expected += text.substr(from, it.begin - from);
        expected += it.pieces[language];
        from = it.end;
      }
      expected += text.substr(from);
      // What comes together may make a new marker.
      if (tool::HasMarkers(expected)) continue;
      EXPECT_EQ(expected, Translated(text, static_cast<int>(language)));
    }
  }
  EXPECT_LE(100, sound);
}

// A blocked section shows with its markers, an unclosed one in each language.
TEST(TextMarkers, FaultsShowInTheTranslation) {
  std::u16string const blocked = u"#TS(a)TS~ #TS(b\u00ACc)TS~";
  EXPECT_EQ(blocked, Translated(blocked, 1));
  EXPECT_EQ(u"a b", Translated(blocked, 0));
  EXPECT_EQ(u"a #TS(b", Translated(u"#TS(a)TS~ #TS(b", 0));
  EXPECT_EQ(u"a)TS~", Translated(u"a)TS~", 0));
}

}  // namespace
}  // namespace tabwerk::test
