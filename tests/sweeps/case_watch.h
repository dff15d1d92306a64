// Names and times the cases of a sweep.
#ifndef TABWERK_TESTS_SWEEPS_CASE_WATCH_H
#define TABWERK_TESTS_SWEEPS_CASE_WATCH_H

#include <cstdint>
#include <functional>
#include <string>

namespace tabwerk::test {

// Most time of the processor that a case may take: a guard against hangs, which
// no case comes near to but searches that use up what a pattern may cost.  It
// is longer where sanitizers or valgrind (TABWERK_SLOW) slow the code down.
double CaseSeconds();

// How many of that many cases a short run has time for: a sixth where the code
// is slow.
int ShortCases(int cases);

// Runs cases in this process.  When one of them crashes, or does not come back
// for two minutes, the program ends and says which one it was.
class CaseWatch {
 public:
  CaseWatch();
  ~CaseWatch();
  CaseWatch(CaseWatch const&) = delete;
  CaseWatch& operator=(CaseWatch const&) = delete;

  // Runs work.  The test fails when that takes longer than CaseSeconds, or by
  // the clock ten times as long: it waits for something, or other programs had
  // the processor.
  void Run(std::string const& name, std::function<void()> const& work);

  std::int64_t cases() const { return cases_; }
  // "1234 cases in 5.6 s, slowest 12.3 ms of processor (bit 3 of byte 77)".
  std::string Figures() const;

 private:
  std::int64_t cases_ = 0;
  double total_ = 0;    // seconds by the clock
  double slowest_ = 0;  // seconds of the processor
  std::string slowest_name_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_CASE_WATCH_H
