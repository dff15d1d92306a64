// Scripts that build a database while calls to the system fail.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "DBInterpreter.h"
#include "tests/sweeps/fault_sweep.h"

namespace tabwerk::test {
namespace {

constexpr std::string_view kTables =
    "NEWTABLE ARTIKEL\nID integer\nFOLGE integer\nSTATUS integer\n"
    "NAME string\nPREIS real\nENDDEF\n"
    "TABLEDATA ARTIKEL artikel.txt\n"
    "NEWTABLE FARBE\nID integer\nFOLGE integer\nSTATUS integer\n"
    "NAME string\nENDDEF\n"
    "TABLEDATA FARBE farbe.txt\n";

class ScriptSweep : public FaultSweepTest {
 protected:
  void Text(FileSet* files, char const* name, std::string_view text) const {
    (*files)[name] = {text.begin(), text.end()};
  }
  void Data(FileSet* files, char const* name, std::string_view ascii) const {
    std::string text = "\xFF\xFE";
    for (char const character : ascii) {
      text += character;
      text += '\0';
    }
    Text(files, name, text);
  }
  // old_ with a script that builds that file.
  FileSet WithScript(std::string const& target) const {
    auto files = old_;
    std::string script =
        "NEWDATABASE stock " + Path(target) + "\n" + std::string(kTables);
    for (auto const* data : {"artikel.txt", "farbe.txt"}) {
      script.replace(script.find(data), std::string_view(data).size(),
                     Path(data));
    }
    Text(&files, "make.txt", script);
    // Annabella has another name, Gerd is new.
    Data(&files, "artikel.txt",
         "1,1,0,\"Annabella\",1.5\r\n2,0,0,\"Bert\",2.5\r\n"
         "3,3,0,\"Carl\",3.5\r\n4,4,0,\"Gerd\",5.5\r\n");
    Data(&files, "farbe.txt", "1,1,0,\"red\"\r\n2,2,0,\"blue\"\r\n");
    return files;
  }
  static int Build(std::string const& path) {
    DBInterpreter interpreter;
    return interpreter.ReadScript(path.c_str(), zWString(u"1"));
  }
  static std::string Configured() {
    std::vector<zWString> names;
    std::vector<std::vector<zWString>> files;
    Manager()->GetInit(names, files);
    std::string text;
    for (auto const& name : names) text += "[" + name.toUtf8() + "]";
    return text;
  }

  void ExpectBuilt(std::string const& target) {
    EXPECT_EQ(kNewArtikel, InFile(target.c_str()));
    EXPECT_EQ("[1|1|0|red][2|2|0|blue]", InFile(target.c_str(), "FARBE"));
  }
  // The file is as it was before; an empty one may stay where Delete fails.
  void ExpectAsBefore(FileSet const& begin, std::string const& target,
                      Outcome const& outcome) {
    if (begin.count(target) != 0) {
      EXPECT_EQ(begin.at(target), Bytes(target));
    } else if (outcome.CouldCleanUp()) {
      EXPECT_FALSE(FileExists(target));
    } else if (FileExists(target)) {
      EXPECT_EQ(0U, Bytes(target).size());
    }
  }
  void Judge(FileSet const& begin, std::string const& target,
             std::string const& new_tables, Outcome const& outcome) {
    bool const built = outcome.result == 1;
    EXPECT_TRUE(outcome.fired || built);
    EXPECT_TRUE(Configured() == "[BEFORE]" ||
                (!built && Configured() == "[STOCK]"));
    DBbase::Init({}, {});
    std::vector<std::string> known{target};
    for (auto const& [name, bytes] : begin) {
      known.push_back(name);
      if (name == target) continue;
      EXPECT_EQ(bytes, Bytes(name)) << name;
    }
    ExpectNoForeignFiles(known);
    if (built) {
      ExpectBuilt(target);
    } else {
      ExpectAsBefore(begin, target, outcome);
    }
    ExpectSoundFiles();
    EXPECT_EQ(built ? new_tables : kOldTables, Reopened());
    DBbase::Init({}, {});
    ExpectSoundFiles();
    EXPECT_EQ(1, Build(Path("make.txt"))) << "second attempt";
    ExpectBuilt(target);
    EXPECT_EQ(new_tables, Reopened());
  }
  void SweepScript(std::string const& target, FileSet const& begin,
                   std::string const& new_tables) {
    auto const path = Path("make.txt");
    SweepCalls("", {[&] {
                      Restore(begin);
                      Configure("BEFORE", {"MAIN.db", "USER.UDB"});
                    },
                    [&] { return Build(path); },
                    [&](Outcome const& outcome) {
                      Judge(begin, target, new_tables, outcome);
                    }});
  }

  static constexpr char kNewArtikel[] =
      "[1|1|0|Annabella|1.5][2|0|0|Bert|2.5][3|3|0|Carl|3.5][4|4|0|Gerd|5.5]";
  // The user's order and status carry over to the rows of the new file.
  static constexpr char kNewTables[] =
      "ARTIKEL [1|4|0|Annabella|1.5][2|0|1|Bert|2.5][3|2|0|Carl|3.5]"
      "[4|3|0|Gerd|5.5][20000|1|0|Dora|4.5] FARBE [1|2|0|red][2|1|0|blue]";
};

INSTANTIATE_FAULT_SWEEP(ScriptSweep);

TEST_P(ScriptSweep, ANewFile) {
  SweepScript("NEW.db", WithScript("NEW.db"), kOldTables);
}

TEST_P(ScriptSweep, OverTheMainFileOfAUserFile) {
  SweepScript("MAIN.db", WithScript("MAIN.db"), kNewTables);
}

TEST_P(ScriptSweep, AUserFile) {
  auto begin = WithScript("OTHER.UDB");
  begin["OTHER.UDB"] = old_.at("USER.UDB");
  SweepScript("OTHER.UDB", begin, kOldTables);
}

}  // namespace
}  // namespace tabwerk::test
