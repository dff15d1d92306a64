// A database file that one program has open and another one opens: the nine
// cells of holder and second opener, within one program and between two.
#include <gtest/gtest.h>

#include "tests/support/child_process.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"

namespace tabwerk::test {
namespace {

// The flags of DBDirectory::OpenDBdatei.
struct Opening {
  char const* name;
  bool write;
  bool create;
};

// Creation last, because it empties the file.
constexpr Opening kOpenings[] = {
    {"read", false, false}, {"update", true, false}, {"create", true, true}};

bool OpenIn(DBDirectory* directory, std::string const& path,
            Opening const& opening) {
  directory->Initialize(W("STOCK"), {W(path)});
  return directory->OpenDBdatei(0, opening.write, opening.create);
}

CHILD_FUNCTION(HoldDatabaseFile) {
  for (Opening const& opening : kOpenings) {
    if (args[1] != opening.name) continue;
    DBDirectory directory;
    TellParent(OpenIn(&directory, args[0], opening) ? "holds" : "fails");
    AwaitParent();
    return 0;
  }
  return 1;
}

class SweepShareCells : public DatabaseTest {
 protected:
  void Make() const { MakeArticles("USER.UDB", 2000, {"20000|1|0|Dora"}); }

  // What reading, updating and creating answer.
  std::string Answers() const {
    std::string answers;
    for (Opening const& opening : kOpenings) {
      DBDirectory directory;
      bool const opened = OpenIn(&directory, Path("USER.UDB"), opening);
      bool const held = LastOpenError() == platform::Error::kHeld;
      answers += opened ? " ok" : held ? " held" : " other error";
    }
    return answers;
  }

  std::string AnswersInOneProgram(Opening const& held) const {
    Make();
    DBDirectory holder;
    EXPECT_TRUE(OpenIn(&holder, Path("USER.UDB"), held));
    return Answers();
  }

  // Then the holder is killed, and all are welcome at once.
  std::string AnswersBetweenPrograms(Opening const& held) const {
    Make();
    ChildProcess holder("HoldDatabaseFile", {Path("USER.UDB"), held.name});
    EXPECT_EQ("holds", holder.ReadLine());
    auto const answers = Answers();
    holder.Kill();
    Make();
    EXPECT_EQ(" ok ok ok", Answers());
    return answers;
  }
};

constexpr char const* kAnswers[] = {" ok ok held", " ok held held",
                                    " held held held"};

TEST_F(SweepShareCells, AnswerInOneProgram) {
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(kAnswers[i], AnswersInOneProgram(kOpenings[i]));
  }
}

TEST_F(SweepShareCells, AnswerTheSameBetweenPrograms) {
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(kAnswers[i], AnswersBetweenPrograms(kOpenings[i]));
  }
}

TEST_F(SweepShareCells, RefusedCreationKeepsTheRows) {
  Make();
  DBDirectory holder;
  ASSERT_TRUE(OpenIn(&holder, Path("USER.UDB"), kOpenings[0]));
  DBDirectory other;
  EXPECT_FALSE(OpenIn(&other, Path("USER.UDB"), kOpenings[2]));
  EXPECT_EQ("[20000|1|0|Dora]",
            RowsOf(ReadDatabase(Path("USER.UDB")), "ARTIKEL"));
}

}  // namespace
}  // namespace tabwerk::test
