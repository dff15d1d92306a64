// The rows that all benchmarks work on, the same in every run.
#ifndef TABWERK_BENCH_SUPPORT_ROWS_H
#define TABWERK_BENCH_SUPPORT_ROWS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "bench/limit/plain_text.h"

namespace tabwerk::bench {

// One article.  The name has 8 to 24 units, in every tenth row in two languages
// ("#TS(English¬German)TS~"); the note has 0 to 120.  Prices are multiples of
// 1/4, so that their sums are exact in any order.
struct Row {
  std::int32_t id;
  std::int32_t folge;
  std::int32_t status;
  double price;
  std::u16string name;
  std::u16string note;

  // The name as a reader in the first language sees it.
  std::u16string_view Name() const { return PieceOf(name); }
};

// That many rows, with IDs from 1 on; made once, the last number asked for is
// kept.
std::vector<Row> const& Rows(long count);

// The IDs of so many rows in random order, each once.
std::vector<std::int32_t> const& ShuffledIds(long count);

// What stands for the texts of many answers: their lengths and first and last
// units.
class TextSum {
 public:
  void Add(std::u16string_view text) {
    std::uint64_t value = text.size();
    if (!text.empty()) value += text.front() * 31U + text.back() * 1009U;
    sum_ += value;
  }
  std::uint64_t value() const { return sum_; }

 private:
  std::uint64_t sum_ = 0;
};

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_SUPPORT_ROWS_H
