// The library as a host uses it.
#ifndef TABWERK_BENCH_SUPPORT_HOST_H
#define TABWERK_BENCH_SUPPORT_HOST_H

#include <filesystem>

#include "tabwerk.h"

namespace tabwerk::bench {

enum class Access : bool { kRead, kWrite };

// Opens the database STOCK of that folder (MAIN.db, USER.UDB) anew; its table.
DBTabelle* OpenTable(std::filesystem::path const& folder, Access access);
// Frees everything that is open.
void CloseAll();

// The table of the database of so many rows, opened once for all benchmarks
// that only read; opening another one closes it.
DBTabelle* ReadTable(long rows);

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_SUPPORT_HOST_H
