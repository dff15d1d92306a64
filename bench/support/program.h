// What every benchmark program is made of.
#ifndef TABWERK_BENCH_SUPPORT_PROGRAM_H
#define TABWERK_BENCH_SUPPORT_PROGRAM_H

#include <benchmark/benchmark.h>

#include <filesystem>
#include <functional>
#include <string>

namespace tabwerk::bench {

// A benchmark program registers its work for a number of rows; called once for
// each number of --rows=N,N… (10,000, 100,000 and 1,000,000).
void Register(long rows);

// The clock that judges a work.
enum class Clock : bool {
  kProcessor,  // works in memory: other programs on the machine do not count
  kWall,       // works on files
};

// Registers one contender's form of a work under "work/contender/rows".  body
// does the work once for every round of the state; items is the number of
// lookups, rows … in one round.
void Add(char const* work, char const* contender, long rows, long items,
         Clock clock, std::function<void(benchmark::State&)> body);

// A work that a process of its own does (--child=NAME): its result is what is
// printed.  Registered from Register().
using ChildWork = std::function<double(long rows)>;
void AddChild(std::string const& name, ChildWork work);
// Starts this program anew for that work on this process's files and waits for
// its end; what it printed.
double RunChild(std::string const& name, long rows);

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_SUPPORT_PROGRAM_H
