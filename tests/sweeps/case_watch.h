// Names and times the cases of a sweep.
#ifndef TABWERK_TESTS_SWEEPS_CASE_WATCH_H
#define TABWERK_TESTS_SWEEPS_CASE_WATCH_H

#include <cstdint>
#include <functional>
#include <string>

namespace tabwerk::test {

// Most time that a case may take.  It tells a hang from work: some cases take a
// tenth of it.  Sanitizers, and valgrind more so, slow the code down.
double CaseSeconds();

// Runs cases in this process.  When one of them crashes, or does not come back
// for two minutes, the program ends and says which one it was.
class CaseWatch {
 public:
  CaseWatch();
  ~CaseWatch();
  CaseWatch(CaseWatch const&) = delete;
  CaseWatch& operator=(CaseWatch const&) = delete;

  // Runs work, which must come to the same each time: where it takes longer
  // than CaseSeconds, perhaps because other programs had the processor, it is
  // run again, and the test fails when three runs do.
  void Run(std::string const& name, std::function<void()> const& work);

  std::int64_t cases() const { return cases_; }
  // "1234 cases in 5.6 s, slowest 12.3 ms (bit 3 of byte 77)".
  std::string Figures() const;

 private:
  double Timed(std::function<void()> const& work);

  std::int64_t cases_ = 0;
  double total_ = 0;  // seconds
  double slowest_ = 0;
  std::string slowest_name_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_CASE_WATCH_H
