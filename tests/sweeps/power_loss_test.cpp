// The power fails before, between and after the steps of a write: every state
// that the disk may then have is made and opened.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <utility>

#include "tests/support/disk_model.h"
#include "tests/support/sweep.h"
#include "tests/sweeps/traced_child.h"
#include "tests/sweeps/write_story.h"

namespace tabwerk::test {
namespace {

using Kind = DiskStep::Kind;
using Steps = std::vector<DiskStep>;

bool IsSync(DiskStep const& step) {
  return step.kind == Kind::kSync || step.kind == Kind::kSyncFolder;
}

// Without the stamp of a waiting index: "Sync STOCK.idx.#".
std::string WithoutStamp(std::string text) {
  auto const at = text.find(".idx.");
  if (at != std::string::npos) {
    auto const digits = text.find_first_not_of("0123456789", at + 5);
    text.replace(at + 5, digits - at - 5, "#");
  }
  return text;
}

class SweepPower : public WriteStory,
                   public testing::WithParamInterface<Writing> {
 protected:
  void Record() {
    ASSERT_NO_FATAL_FAILURE(Begin(GetParam()));
    ASSERT_TRUE(Prepare(Folder(), GetParam()));
    before_ = TakeImage();
    DiskTrace const trace;
    ASSERT_TRUE(CarryOut(Folder(), GetParam()));
    steps_ = trace.steps();
  }

  // "old", "new", "lost" (old though the write has ended) or what is seen.
  std::string Judge(FolderImage const& image, bool is_end) const {
    PutImage(image);
    auto const seen = Observe();
    if (seen == new_state_) return "new";
    if (seen != old_state_) return seen;
    return is_end ? "lost" : "old";
  }

  // True when a power loss would do harm if that step were left out.
  bool IsNeeded(std::size_t step, LossStates const& harmless) const;

  FolderImage before_;
  Steps steps_;
};

bool SweepPower::IsNeeded(std::size_t step, LossStates const& harmless) const {
  auto steps = steps_;
  steps.erase(steps.begin() + static_cast<std::ptrdiff_t>(step));
  auto const found = StatesAfterPowerLoss(before_, steps, Folder());
  for (auto const& [image, last_step] : found.states) {
    bool const is_end = last_step == steps.size();
    if (harmless.states.count(image) != 0 && !is_end) continue;
    auto const outcome = Judge(image, is_end);
    if (outcome != "old" && outcome != "new") return true;
  }
  return false;
}

TEST_P(SweepPower, LeavesTheOldOrTheNewState) {
  auto const begin = std::chrono::steady_clock::now();
  ASSERT_NO_FATAL_FAILURE(Record());
  auto const found = StatesAfterPowerLoss(before_, steps_, Folder());
  std::vector<std::pair<FolderImage, std::size_t>> const states(
      found.states.begin(), found.states.end());
  std::size_t old_count = 0;
  std::size_t new_count = 0;
  Sweep const sweep(states.size(), 25);
  for (auto i = sweep.first(); i < states.size(); i += sweep.step()) {
    auto const& [image, last_step] = states[i];
    auto const outcome = Judge(image, last_step == steps_.size());
    ASSERT_TRUE(outcome == "old" || outcome == "new")
        << "before step " << last_step << ": " << outcome
        << "\nold: " << old_state_ << "\nnew: " << new_state_;
    ++(outcome == "new" ? new_count : old_count);
  }
  EXPECT_LT(0U, old_count + new_count);
  if (WholeSweep() && !OnlyOpens(GetParam())) {
    EXPECT_LT(0U, old_count);
    EXPECT_LT(0U, new_count);
  }
  std::chrono::duration<double> const time =
      std::chrono::steady_clock::now() - begin;
  ReportSweep(std::string("power loss, ") + NameOf(GetParam()),
              "steps " + std::to_string(steps_.size()) + ", ways " +
                  std::to_string(found.ways) + ", states " +
                  std::to_string(states.size()) + ", tried " +
                  std::to_string(old_count + new_count) + ", old " +
                  std::to_string(old_count) + ", new " +
                  std::to_string(new_count) + ", seconds " +
                  std::to_string(static_cast<int>(time.count())));
}

// The syncs without which a power loss does harm.  The others only make sure
// that a move is done before the program goes on.
std::vector<std::string> NeededSyncs(Writing writing) {
  switch (writing) {
    case Writing::kUserFile:
      return {"Sync STOCK.idx.#", "SyncFolder STOCK.idx.#", "Sync USER.UDBT",
              "SyncFolder USER.UDB", "Sync STOCK.idxT"};
    case Writing::kMainFile:
      return {"Sync STOCK.idx.#", "SyncFolder STOCK.idx.#", "Sync MAIN.dbT",
              "SyncFolder MAIN.db", "Sync STOCK.idxT"};
    case Writing::kCopy:
      // The move of the index behind it syncs the folder once more.
      return {"Sync STOCK.idx.#", "Sync COPY.dbT"};
    case Writing::kScript:
      return {"Sync MAIN.dbT", "SyncFolder MAIN.db"};
    case Writing::kIndex:
      return {"Sync STOCK.idxT", "SyncFolder STOCK.idx"};
    case Writing::kOpening:
    case Writing::kOpening2:
    case Writing::kCreation:
      break;
  }
  return {"Sync STOCK.idxT"};
}

// The sweep above is able to fail: it does when one of these is left out.
TEST_P(SweepPower, FindsTheHarmOfALeftOutSync) {
  ASSERT_NO_FATAL_FAILURE(Record());
  auto const harmless = StatesAfterPowerLoss(before_, steps_, Folder());
  auto const expected = NeededSyncs(GetParam());
  std::vector<std::string> needed;
  for (std::size_t i = 0; i < steps_.size(); ++i) {
    if (!IsSync(steps_[i])) continue;
    auto const name = WithoutStamp(Describe(steps_[i]));
    bool const is_expected =
        std::find(expected.begin(), expected.end(), name) != expected.end();
    // That a sync can be left out is known only when all states were tried.
    if (!WholeSweep() && !is_expected) continue;
    if (IsNeeded(i, harmless)) needed.push_back(name);
  }
  EXPECT_EQ(expected, needed);
}

// --- What is recorded is what happens
// ----------------------------------------

// What both know of a step that puts files or names on the disk.
std::string Shown(DiskStep const& step) {
  if (step.kind == Kind::kSyncFolder) return "SyncFolder";
  return WithoutStamp(Describe(step));
}

std::string NameIn(std::string const& path) {
  return path.substr(path.rfind('/') + 1);
}

// "fsync(5</tmp/x/USER.UDBT>) = 0", "rename("/tmp/x/A", "/tmp/x/B") = 0".
std::string Shown(KernelCall const& call) {
  auto const between = [&](char const* opening, char const* closing,
                           std::size_t* at) {
    auto const first = call.line.find(opening, *at) + 1;
    *at = call.line.find(closing, first) + 1;
    return call.line.substr(first, *at - 1 - first);
  };
  std::size_t at = 0;
  if (call.name == "fsync") {
    auto const path = between("<", ">", &at);
    return std::filesystem::is_directory(path)
               ? "SyncFolder"
               : WithoutStamp("Sync " + NameIn(path));
  }
  auto const from = NameIn(between("\"", "\"", &at));
  if (call.name == "unlink") return WithoutStamp("Delete " + from);
  return WithoutStamp("Rename " + from + " > " +
                      NameIn(between("\"", "\"", &at)));
}

TEST_P(SweepPower, RecordsWhatTheKernelIsToldToDo) {
  auto const reason = WhyNoStrace();
  if (!reason.empty()) GTEST_SKIP() << reason;
  ASSERT_NO_FATAL_FAILURE(Record());
  std::vector<std::string> recorded;
  for (auto const& step : steps_) {
    bool const is_in_folder = step.path.rfind(Path("tmp"), 0) != 0;
    if (is_in_folder && (IsSync(step) || step.kind == Kind::kRename ||
                         step.kind == Kind::kDelete)) {
      recorded.push_back(Shown(step));
    }
  }
  PutImage(start_);
  std::vector<std::string> told;
  for (auto const& call : ListKernelCalls(
           "-y -s 4096 -e trace=newfstatat,fsync,fdatasync,sync,syncfs,"
           "sync_file_range,rename,renameat,renameat2,unlink,unlinkat,link",
           Folder(), GetParam())) {
    bool const is_in_folder = call.line.find(Path("tmp")) == std::string::npos;
    if (call.name != "newfstatat" && is_in_folder) told.push_back(Shown(call));
  }
  EXPECT_EQ(recorded, told);
}

INSTANTIATE_TEST_SUITE_P(, SweepPower, testing::ValuesIn(kWritings),
                         NameOfCase);

}  // namespace
}  // namespace tabwerk::test
