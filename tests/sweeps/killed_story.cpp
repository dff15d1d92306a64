#include "tests/sweeps/killed_story.h"

#include "tests/support/sweep.h"

namespace tabwerk::test {

void KilledStory::JudgeKilled(Writing writing) {
  EXPECT_EQ("", UndocumentedLeftovers());
  auto const state = StateNow();
  bool const is_new = state == "new";
  EXPECT_TRUE(state == "old" || is_new)
      << "seen: " << state << "\nold:  " << old_state_
      << "\nnew:  " << new_state_;
  ++(is_new ? new_count_ : old_count_);
  SaveOnceMore(writing, is_new);
  EXPECT_EQ(new_state_, Observe());
  EXPECT_EQ("", LeftoversOfTheSave());
}

// The same writing again, where it is not done yet; a plain save else.
void KilledStory::SaveOnceMore(Writing writing, bool is_new) {
  // A copy does not change the rows that the next one is made of.
  bool const is_done = is_new && writing != Writing::kCopy;
  if (is_done || OnlyOpens(writing)) {
    OpenStock();
  } else {
    ASSERT_TRUE(Prepare(Folder(), writing));
  }
  EXPECT_TRUE(
      CarryOut(Folder(), OnlyOpens(writing) ? Writing::kUserFile : writing));
}

// Lock files, trial copies and waiting indices for stamps that files carry.
std::string KilledStory::LeftoversOfTheSave() const {
  std::string left;
  for (auto const* name : {"STOCK.idxL", "STOCK.idxT", "USER.UDBL", "USER.UDBT",
                           "MAIN.dbL", "MAIN.dbT", "COPY.dbL", "COPY.dbT"}) {
    if (FileExists(name)) left += std::string(" ") + name;
  }
  for (auto const* file : {"MAIN.db", "USER.UDB"}) {
    auto const stamp = ReadDatabase(Path(file)).time_stamp;
    auto const waiting = "STOCK.idx." + std::to_string(stamp);
    if (FileExists(waiting)) left += " " + waiting;
  }
  return left;
}

void KilledStory::Report(std::string const& name, Writing writing,
                         std::size_t points) const {
  EXPECT_LT(0U, old_count_ + new_count_);
  if (WholeSweep() && !OnlyOpens(writing)) {
    EXPECT_LT(0U, old_count_);
    EXPECT_LT(0U, new_count_);
  }
  std::chrono::duration<double> const time =
      std::chrono::steady_clock::now() - begin_;
  ReportSweep(name + ", " + NameOf(writing),
              "points " + std::to_string(points) + ", tried " +
                  std::to_string(old_count_ + new_count_) + ", old " +
                  std::to_string(old_count_) + ", new " +
                  std::to_string(new_count_) + ", seconds " +
                  std::to_string(static_cast<int>(time.count())));
}

}  // namespace tabwerk::test
