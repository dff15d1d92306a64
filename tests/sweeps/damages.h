// Every way to damage a file that the sweeps try.
#ifndef TABWERK_TESTS_SWEEPS_DAMAGES_H
#define TABWERK_TESTS_SWEEPS_DAMAGES_H

#include <cstddef>
#include <string>

namespace tabwerk::test {

// The file cut at every length, every single bit flipped, and every 32-bit
// number, at every byte, set to -1, 0, 1, the largest, the smallest, and the
// size of the file less one, as it is and plus one.
//
// Neighbouring points lie far from each other, so that points at even distances
// are damages of all kinds at all places.
class Damages {
 public:
  explicit Damages(std::string bytes);
  // Of the beginning of a larger file of that size.
  Damages(std::string bytes, std::size_t file_size);

  struct Damage {
    std::string bytes;
    std::string name;  // "bit 3 of byte 77"
    // The bytes that may differ, first and behind the last; for a cut those
    // that are missing.
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  std::size_t count() const { return count_; }
  std::string const& whole() const { return bytes_; }
  Damage At(std::size_t point) const;

 private:
  Damage Cut(std::size_t length) const;
  Damage Flip(std::size_t bit) const;
  Damage Set(std::size_t number) const;

  std::string bytes_;
  std::size_t file_size_;
  std::size_t number_places_;
  std::size_t count_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_DAMAGES_H
