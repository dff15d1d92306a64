// A sign of life while something takes long.
#ifndef TABWERK_CLI_PROGRESS_H
#define TABWERK_CLI_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace tabwerk::tool {

// While it lives, a line on standard error that says what is done: only on a
// terminal, only after half a second, not with -q.  Where the amount of work
// is known, there is a bar with the rate and the time that remains; else, and
// once all is done, the time so far.  The library's own progress texts take the
// place of the first text.  One at a time.
class Progress {
 public:
  // units are those of total: "rows"; total 0: not known.
  explicit Progress(std::string const& text, long long total = 0,
                    char const* units = "");
  ~Progress();
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;

  // So much of total is done.  Cheap enough for every row.
  void Advance(long long done);
  // Asks for it instead, on another thread, as long as this object lives.
  void Follow(std::function<long long()> done);

 private:
  struct State;
  std::unique_ptr<State> state_;  // null without a terminal
};

// Works on files are counted in these; units "KiB".
inline constexpr long long kKiB = 1024;

// What is drawn: "text  [#####     ]  50 %  1 200 rows/s, 3 s left", cut to fit
// into so many columns.  Behind 100 % stands the time so far.
std::string ProgressLine(std::string const& text, long long done,
                         long long total, char const* units,
                         std::chrono::milliseconds elapsed, std::size_t width);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_PROGRESS_H
