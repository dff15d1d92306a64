// What "old" and "new" mean in the sweeps, told in full.
#include <gtest/gtest.h>

#include "tests/sweeps/write_story.h"

namespace tabwerk::test {
namespace {

class SweepKillStates : public WriteStory {
 protected:
  static std::string State(std::string const& main, std::string const& user,
                           std::string const& colours,
                           std::string const& index) {
    return "COPY A [1|1|0|earlier] B [1|1|0|colour] STOCK A " + main + user +
           " B " + colours + " INDEX " + index;
  }
};

constexpr char kOldMain[] = "[1|2|0|Anna][2|1|0|Bert][3|-|1|Carl][4|3|0|Cleo]";
constexpr char kOldColours[] = "[1|1|0|red][2|2|0|green][3|-|1|blue]";
constexpr char kOldIndex[] =
    "ID 1>0 2>1 3>2 4>3 20000>4 FOLGE 2 1 0 3 4 -1 STATUS 0 0 1 0 0 "
    "ID 1>0 2>1 3>2 FOLGE 2 0 1 -1 STATUS 0 0 1";
constexpr char kNewMain[] = "[1|1|0|Anna][2|2|0|Bert][3|-|1|Carl][4|-|1|Cleo]";
constexpr char kNewColours[] = "[1|-|1|red][2|1|0|green][3|-|1|blue]";
constexpr char kNewColourIndex[] =
    " ID 1>0 2>1 3>2 FOLGE 2 1 -1 -1 STATUS 1 0 1";

TEST_F(SweepKillStates, OfTheUserFile) {
  Begin(Writing::kUserFile);
  EXPECT_EQ(State(kOldMain, "[20000|4|0|Dora]", kOldColours, kOldIndex),
            old_state_);
  EXPECT_EQ(State(kNewMain, "[20000|3|0|Dorothea][20001|4|0|Emil]", kNewColours,
                  std::string("ID 1>0 2>1 3>2 4>3 20000>4 20001>5 "
                              "FOLGE 3 0 1 4 5 -1 -1 STATUS 0 0 1 1 0 0") +
                      kNewColourIndex),
            new_state_);
}

TEST_F(SweepKillStates, OfTheMainFile) {
  Begin(Writing::kMainFile);
  EXPECT_EQ(State("[1|1|0|Anja the new][2|2|0|Bert][3|-|1|Carl][4|-|1|Cleo]",
                  "[20000|3|0|Dora]", "[1|-|1|red][2|1|0|][3|-|1|blue]",
                  std::string("ID 1>0 2>1 3>2 4>3 20000>4 "
                              "FOLGE 3 0 1 4 -1 -1 STATUS 0 0 1 1 0") +
                      kNewColourIndex),
            new_state_);
}

TEST_F(SweepKillStates, OfTheIndex) {
  Begin(Writing::kIndex);
  EXPECT_EQ(State(kNewMain, "[20000|3|0|Dora]", kNewColours,
                  std::string("ID 1>0 2>1 3>2 4>3 20000>4 "
                              "FOLGE 3 0 1 4 -1 -1 STATUS 0 0 1 1 0") +
                      kNewColourIndex),
            new_state_);
}

}  // namespace
}  // namespace tabwerk::test
