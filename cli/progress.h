// A sign of life while something takes long.
#ifndef TABWERK_CLI_PROGRESS_H
#define TABWERK_CLI_PROGRESS_H

#include <memory>
#include <string>

namespace tabwerk::tool {

// While it lives, a line on standard error that says what is done and for how
// long: only on a terminal, and only after half a second.  The library's own
// progress texts take the place of the first text.  One at a time.
class Progress {
 public:
  explicit Progress(std::string const& text);
  ~Progress();
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;

 private:
  struct State;
  std::unique_ptr<State> state_;  // null without a terminal
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_PROGRESS_H
