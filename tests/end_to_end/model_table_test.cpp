// Tables judged by the plain model on random operations.
//
// TABWERK_SEED sets the seed of the first sequence, TABWERK_OPERATIONS the
// number of operations in all.  A failure tells the seed of its sequence: with
// it as TABWERK_SEED the failing sequence is the first one.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "DBbase.h"
#include "platform/platform.h"
#include "tests/support/judge.h"
#include "tests/support/judged_sequence.h"
#include "tests/support/plain_model.h"
#include "tests/support/random_run.h"
#include "tests/support/temp_folder.h"

namespace {

namespace model = tabwerk::test::model;
namespace platform = tabwerk::platform;
using tabwerk::test::Outcome;
using tabwerk::test::Random;

constexpr int kTableOperations = 40000;
constexpr int kOperationsPerTable = 250;
constexpr int kOperationsPerTableState = 25;

class ModelTable : public testing::Test {
 protected:
  ModelTable() {
    auto error = platform::Error::kNone;
    stream_ = platform::OpenFile(folder_.Path("section"),
                                 platform::Mode::kCreateUpdate,
                                 platform::Share::kDenyNone, &error);
    SetLanguage();
  }
  ~ModelTable() override {
    (void)platform::Close(stream_);
    SetLanguage();
  }

  static void SetLanguage() {
    DBbase::SetSprache(0);
    model::SetLanguage(0);
  }

  // False, with the failure told, when the two differ.
  bool Agree(Outcome const& outcome, std::vector<std::string> const& log) {
    if (outcome.expected == outcome.got) return true;
    ADD_FAILURE() << outcome.what << "\nexpected " << outcome.expected
                  << "\ngot      " << outcome.got << "\nafter\n"
                  << tabwerk::test::Tail(log);
    return false;
  }

  bool RunSequence(std::uint32_t seed, int operations) {
    Random random(seed);
    auto const* const shape = tabwerk::test::AnyShape(random);
    SCOPED_TRACE("TABWERK_SEED=" + std::to_string(seed) + " " + shape);
    SetLanguage();
    tabwerk::test::JudgedSequence sequence(random, shape, stream_);
    std::vector<std::string> log;
    for (int i = 1; i <= operations; ++i) {
      auto const object = static_cast<std::size_t>(random.OneIn(5));
      auto& judge = sequence.judges[object];
      auto const outcome = judge.Operate();
      log.push_back(std::to_string(object) + ": " + outcome.what + " -> " +
                    outcome.expected);
      if (!Agree(outcome, log) || !Agree(judge.VisibleState(), log)) {
        return false;
      }
      if (i % kOperationsPerTableState != 0 && i != operations) continue;
      for (auto& each : sequence.judges) {
        if (!Agree(each.FullState(), log)) return false;
      }
    }
    return true;
  }

  tabwerk::test::TempFolder folder_;
  FILE* stream_ = nullptr;
};

TEST_F(ModelTable, AgreesWithTheLibraryOnRandomOperations) {
  ASSERT_NE(nullptr, stream_);
  auto seed = tabwerk::test::FirstSeed();
  int left = tabwerk::test::OperationCount(kTableOperations);
  for (; left > 0; left -= kOperationsPerTable, ++seed) {
    if (!RunSequence(seed, std::min(left, kOperationsPerTable))) return;
  }
}

}  // namespace
