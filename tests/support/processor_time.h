// How long something computes.
#ifndef TABWERK_TESTS_SUPPORT_PROCESSOR_TIME_H
#define TABWERK_TESTS_SUPPORT_PROCESSOR_TIME_H

namespace tabwerk::test {

// Counts the seconds of processor that this process has used since the object
// was made.  What other programs do to the machine does not count, so that a
// bound tells the way something grows and not the load.
class ProcessorTime {
 public:
  ProcessorTime();

  double Seconds() const;

 private:
  double begin_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_PROCESSOR_TIME_H
