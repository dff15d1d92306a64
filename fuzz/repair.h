// Makes damaged database and index files whole enough to be looked into:
// mutants whose tags, counts, sizes and offsets were hit would all end at the
// first check of the reader.
//
// A repair keeps what it can of the bytes and puts right what the file says
// about itself.  It is no judge of what is well-formed.
#ifndef TABWERK_FUZZ_REPAIR_H
#define TABWERK_FUZZ_REPAIR_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tabwerk::fuzz {

using Bytes = std::string;
// choice is a random number: some repairs leave one thing wrong.
using RepairFunction = Bytes (*)(Bytes const& bytes, std::uint32_t choice);

Bytes RepairDatabase(Bytes const& bytes, std::uint32_t choice);

// A main file and a user file, with a marker between them.  The tables of the
// user file get the names and definitions of the main file's.
Bytes RepairPair(Bytes const& bytes, std::uint32_t choice);
// The two files; without a marker both are the whole.
std::pair<Bytes, Bytes> SplitPair(Bytes const& bytes);
Bytes JoinPair(Bytes const& main, Bytes const& user);

// An index file for files of these stamps and tables of these numbers of rows.
struct IndexShape {
  std::vector<std::int64_t> time_stamps;
  std::vector<std::int32_t> row_counts;
};
Bytes RepairIndex(Bytes const& bytes, IndexShape const& shape,
                  std::uint32_t choice);

#ifdef TABWERK_FUZZ
// A custom mutator: libFuzzer's own mutations, mostly with a repair behind.
std::size_t MutateAndRepair(std::uint8_t* data, std::size_t size,
                            std::size_t max_size, unsigned seed,
                            RepairFunction repair);
#endif

}  // namespace tabwerk::fuzz

#endif  // TABWERK_FUZZ_REPAIR_H
