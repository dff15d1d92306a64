// Random regular expressions, well formed or not, and texts for them.
#ifndef TABWERK_TESTS_SWEEPS_PATTERN_SOURCE_H
#define TABWERK_TESTS_SWEEPS_PATTERN_SOURCE_H

#include <cstdint>
#include <random>
#include <string>

namespace tabwerk::test {

// The same seed gives the same patterns and texts.
class PatternSource {
 public:
  explicit PatternSource(std::uint32_t seed) : random_(seed) {}

  // One of the grammar, now and then with some units replaced, taken away or
  // put in; none is so deep that the standard library takes long for a short
  // text.
  std::u16string Pattern();
  // Up to eight units, of those that patterns have.
  std::u16string Text();

 private:
  bool OneIn(unsigned n) { return random_() % n == 0; }
  unsigned Below(unsigned n) { return static_cast<unsigned>(random_() % n); }
  std::u16string Unit();
  std::u16string Choice(int depth);
  std::u16string Atom(int depth);
  std::u16string Group(int depth);
  std::u16string Bracket();
  std::u16string Quantifier();
  void Spoil(std::u16string* pattern);

  std::mt19937 random_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_PATTERN_SOURCE_H
