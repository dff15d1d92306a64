// The rows in the table that was written by hand.
#ifndef TABWERK_BENCH_SUPPORT_PLAIN_ROWS_H
#define TABWERK_BENCH_SUPPORT_PLAIN_ROWS_H

#include "bench/limit/plain_table.h"
#include "bench/support/rows.h"

namespace tabwerk::bench {

// Appends one row, value by value.
void AppendRow(PlainTable* table, Row const& row, std::int32_t id_shift);
// All of them, filled once for all benchmarks that only read.
PlainTable& ReadPlainTable(long rows);

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_SUPPORT_PLAIN_ROWS_H
