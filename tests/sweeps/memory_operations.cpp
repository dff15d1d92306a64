#include "tests/sweeps/memory_operations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <new>

#include "tests/support/fault_platform.h"
#include "tests/support/new_guard.h"
#include "tests/support/sweep.h"

namespace tabwerk::test {
namespace {

enum class Manner { kBlocksOnce, kBlocksForGood, kNewOnce, kNewForGood };

constexpr std::array kManners{Manner::kBlocksOnce, Manner::kBlocksForGood,
                              Manner::kNewOnce, Manner::kNewForGood};

bool IsNew(Manner manner) {
  return manner == Manner::kNewOnce || manner == Manner::kNewForGood;
}

struct Ending {
  bool fired = false;
  bool threw = false;
  bool done = false;
};

void RunCatching(Trial* trial, Ending* ending) {
  try {
    ending->done = trial->Run();
  } catch (std::bad_alloc const&) {
    ending->threw = true;
  }
}

Ending RunFailing(Trial* trial, int n, Manner manner) {
  Ending ending;
  if (IsNew(manner)) {
    NewGuard guard(n, manner == Manner::kNewOnce ? NewGuard::Lasting::kOnce
                                                 : NewGuard::Lasting::kForGood);
    RunCatching(trial, &ending);
    ending.fired = guard.Disarm();
  } else {
    FaultGuard faults;
    faults.FailAt(
        n, manner == Manner::kBlocksOnce ? Lasting::kOnce : Lasting::kForGood,
        kMemoryCalls);
    RunCatching(trial, &ending);
    ending.fired = faults.Fired();
  }
  return ending;
}

struct Figures {
  int failures = 0;
  int refused = 0;
};

class OperationSweep {
 public:
  OperationSweep(Operation const& operation, Figures* figures)
      : operation_(operation), figures_(figures) {
    auto const trial = operation_.make();
    before_ = trial->State();
    EXPECT_TRUE(trial->Run());
    after_ = trial->State();
    for (auto const& part : operation_.without_memory) parts_.push_back(part());
    for (auto const& again : operation_.again_after_a_part) {
      again_.push_back(again());
    }
  }

  void Run() {
    for (Manner const manner : kManners) {
      Sweep const sweep(CountCalls(manner), 100);
      auto n = 1 + static_cast<int>(sweep.first());
      while (RunPoint(n, manner) && !testing::Test::HasFailure()) {
        n += static_cast<int>(sweep.step());
      }
    }
    EXPECT_EQ(operation_.promise != Promise::kNeedsNone, failures_ > 0);
  }

 private:
  std::size_t CountCalls(Manner manner) const {
    auto const trial = operation_.make();
    FaultGuard const faults;
    auto const before = CountNews();
    EXPECT_TRUE(trial->Run());
    auto const calls =
        IsNew(manner) ? CountNews() - before : faults.Count(kMemoryCalls);
    return static_cast<std::size_t>(calls);
  }

  // False when nothing failed.
  bool RunPoint(int n, Manner manner) {
    SCOPED_TRACE("manner " + std::to_string(static_cast<int>(manner)) +
                 ", allocation " + std::to_string(n));
    auto const news = LiveNews();
    auto const blocks = LiveBlocks();
    bool fired = false;
    {
      auto const trial = operation_.make();
      auto const ending = RunFailing(trial.get(), n, manner);
      fired = ending.fired;
      Judge(ending, trial.get());
    }
    EXPECT_EQ(news, LiveNews());
    EXPECT_EQ(blocks, LiveBlocks());
    EXPECT_EQ(0, OpenStreams());
    if (fired) {
      ++failures_;
      ++figures_->failures;
    }
    return fired;
  }

  void Judge(Ending const& ending, Trial* trial) const {
    auto const state = trial->State();
    if (!ending.fired) {
      EXPECT_TRUE(ending.done);
      EXPECT_EQ(after_, state);
      return;
    }
    EXPECT_TRUE(!ending.threw || operation_.promise == Promise::kThrows);
    figures_->refused += ending.done ? 0 : 1;
    switch (operation_.promise) {
      case Promise::kNeedsNone:
        break;
      case Promise::kThrows:
      case Promise::kFails:
        EXPECT_EQ(ending.done ? after_ : before_, state);
        break;
      case Promise::kSilent:
        EXPECT_TRUE(ending.done);
        EXPECT_TRUE(state == before_ || state == after_) << state;
        break;
      case Promise::kEmpties:
        EXPECT_TRUE(state == after_ || Has(parts_, state)) << state;
        break;
      case Promise::kPart:
        EXPECT_TRUE(state == after_ ||
                    (!ending.done && (state == before_ || Has(parts_, state))))
            << (ending.done ? "done: " : "not done: ") << state
            << "\nbefore: " << before_ << Listed("\na part: ", parts_);
        break;
    }
    // It is usable as before.
    if (ending.done && state == after_) return;
    EXPECT_TRUE(trial->Run());
    auto const again = trial->State();
    if (Has(parts_, state) && Has(again_, again)) return;
    EXPECT_EQ(after_, again) << Listed("\nagain after a part: ", again_);
  }

  static bool Has(std::vector<std::string> const& states,
                  std::string const& state) {
    return std::find(states.begin(), states.end(), state) != states.end();
  }

  static std::string Listed(char const* title,
                            std::vector<std::string> const& states) {
    std::string list;
    for (auto const& state : states) list += title + state;
    return list;
  }

  Operation const& operation_;
  Figures* figures_;
  int failures_ = 0;
  std::string before_;
  std::string after_;
  std::vector<std::string> parts_;
  std::vector<std::string> again_;
};

}  // namespace

void SweepOperations(std::vector<Operation> const& operations) {
  Figures figures;
  std::size_t exports = 0;
  for (auto const& operation : operations) {
    SCOPED_TRACE(std::string(operation.exports.front()));
    exports += operation.exports.size();
    OperationSweep(operation, &figures).Run();
  }
  auto const* const test =
      testing::UnitTest::GetInstance()->current_test_info();
  ReportSweep(std::string(test->test_suite_name()) + "." + test->name(),
              "operations " + std::to_string(operations.size()) + " (" +
                  std::to_string(exports) + " exports), failures " +
                  std::to_string(figures.failures) + ", refused " +
                  std::to_string(figures.refused));
}

}  // namespace tabwerk::test
