// What has to hold after a writing program was killed.
#ifndef TABWERK_TESTS_SWEEPS_KILLED_STORY_H
#define TABWERK_TESTS_SWEEPS_KILLED_STORY_H

#include <chrono>
#include <cstddef>
#include <string>

#include "tests/sweeps/write_story.h"

namespace tabwerk::test {

class KilledStory : public WriteStory {
 protected:
  // The old or the new state, whole; what is left behind is documented; the
  // next save succeeds and takes it away.
  void JudgeKilled(Writing writing);

  // Prints how many points there are and what became of those that were tried.
  // Fails the test when none was, or when all of them left the same state.
  void Report(std::string const& name, Writing writing,
              std::size_t points) const;

 private:
  void SaveOnceMore(Writing writing, bool is_new);
  std::string LeftoversOfTheSave() const;

  std::size_t old_count_ = 0;
  std::size_t new_count_ = 0;
  std::chrono::steady_clock::time_point const begin_ =
      std::chrono::steady_clock::now();
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_KILLED_STORY_H
