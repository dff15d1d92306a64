// Any sequence of calls on a table, seen through two objects: every answer and
// all that is stored are those of the plain model.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "DBbase.h"
#include "fuzz/fuzz_support.h"
#include "platform/platform.h"
#include "tests/support/judge.h"
#include "tests/support/judged_sequence.h"
#include "tests/support/plain_model.h"

namespace {

namespace platform = tabwerk::platform;
using tabwerk::fuzz::PrivateFolder;
using tabwerk::test::JudgedSequence;
using tabwerk::test::Outcome;
using tabwerk::test::Random;

constexpr int kMostCalls = 400;
constexpr int kCallsPerFullState = 25;

void RequireAgreed(Outcome const& outcome,
                   std::vector<std::string> const& log) {
  if (outcome.expected == outcome.got) return;
  std::fprintf(stderr, "%safter\n%s", (outcome.what + "\n").c_str(),
               tabwerk::test::Tail(log).c_str());
  tabwerk::fuzz::RequireEqual(outcome.expected, outcome.got,
                              "the library answers as the plain model does");
}

void RequireSame(JudgedSequence* sequence,
                 std::vector<std::string> const& log) {
  for (auto& judge : sequence->judges) RequireAgreed(judge.FullState(), log);
}

void RunCalls(Random& random, JudgedSequence* sequence) {
  std::vector<std::string> log;
  for (int i = 1; i <= kMostCalls && !random.UsedUp(); ++i) {
    auto& judge = sequence->judges[random.OneIn(5) ? 1 : 0];
    auto const outcome = judge.Operate();
    log.push_back(outcome.what + " -> " + outcome.expected);
    RequireAgreed(outcome, log);
    RequireAgreed(judge.VisibleState(), log);
    if (i % kCallsPerFullState == 0) RequireSame(sequence, log);
  }
  RequireSame(sequence, log);
}

}  // namespace

// The bytes make the choices: definition, rows, calls and their arguments.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  Random random(std::span<std::uint8_t const>(data, size));
  auto error = platform::Error::kNone;
  FILE* const stream = platform::OpenFile(
      zWString::fromUtf8(PrivateFolder::Get().Path("section")),
      platform::Mode::kCreateUpdate, platform::Share::kDenyNone, &error);
  tabwerk::fuzz::Require(stream != nullptr, "the scratch file opens");
  DBbase::SetSprache(0);
  tabwerk::test::model::SetLanguage(0);
  {
    JudgedSequence sequence(random, tabwerk::test::AnyShape(random), stream);
    RunCalls(random, &sequence);
  }
  (void)platform::Close(stream);
  DBbase::SetSprache(0);
  return 0;
}
