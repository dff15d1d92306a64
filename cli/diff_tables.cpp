#include "cli/diff_tables.h"

#include <cstddef>
#include <map>
#include <set>
#include <vector>

#include "cli/diff_table.h"
#include "cli/near_names.h"

namespace tabwerk::tool {
namespace {

// A table of one of them, or of both.
struct TablePair {
  std::string name;
  SnapshotTable const* before = nullptr;
  SnapshotTable const* after = nullptr;
};

// Those of the second one that are new stand behind the others.  Of several of
// one name the last one in the file counts, as for the library.
std::vector<TablePair> PairTables(Snapshot const& before,
                                  Snapshot const& after) {
  std::vector<TablePair> pairs;
  std::map<std::string, std::size_t> places;
  auto const pair_of = [&](std::string const& name) -> TablePair& {
    auto const [found, is_new] = places.emplace(name, pairs.size());
    if (is_new) pairs.push_back({name});
    return pairs[found->second];
  };
  for (SnapshotTable const& table : before.tables) {
    pair_of(table.name).before = &table;
  }
  for (SnapshotTable const& table : after.tables) {
    pair_of(table.name).after = &table;
  }
  return pairs;
}

// A problem for a name that is asked for and that there is not.
std::optional<Problem> CheckNames(std::vector<TablePair> const& pairs,
                                  DiffOptions const& options,
                                  std::string const& file) {
  std::set<std::string> tables;
  std::set<std::string> columns;
  for (TablePair const& pair : pairs) {
    tables.insert(pair.name);
    if (!options.WantsTable(pair.name)) continue;
    for (SnapshotTable const* const table : {pair.before, pair.after}) {
      if (table == nullptr) continue;
      for (DiffColumn const& column : DiffColumns(*table, DiffOptions())) {
        columns.insert(column.name);
      }
    }
  }
  for (std::string const& name : options.tables) {
    if (tables.contains(name)) continue;
    return NoSuchTable(file, name, {tables.begin(), tables.end()});
  }
  for (auto const* const asked : {&options.columns, &options.ignored}) {
    for (std::string const& name : *asked) {
      if (columns.contains(name)) continue;
      return NoSuchColumn(file, name, {columns.begin(), columns.end()});
    }
  }
  return std::nullopt;
}

// True when they differ.
bool ComparePair(TablePair const& pair, DiffOptions const& options,
                 DiffOut& out) {
  if (pair.before != nullptr && pair.after != nullptr) {
    return CompareTables(*pair.before, *pair.after, options, out);
  }
  if (pair.before != nullptr) {
    HandOutLoneTable(*pair.before, Change::kRemoved, options, out);
  } else {
    HandOutLoneTable(*pair.after, Change::kAdded, options, out);
  }
  return true;
}

}  // namespace

std::optional<Problem> CompareDatabases(Snapshot const& before,
                                        Snapshot const& after,
                                        DiffOptions const& options,
                                        DiffOut& out, bool* equal) {
  auto const pairs = PairTables(before, after);
  if (auto problem = CheckNames(pairs, options, before.files.main)) {
    return problem;
  }
  out.Begin(before.files, after.files);
  std::size_t table_count = 0;
  std::size_t different_count = 0;
  for (TablePair const& pair : pairs) {
    if (!options.WantsTable(pair.name)) continue;
    ++table_count;
    if (ComparePair(pair, options, out)) ++different_count;
  }
  out.End(table_count, different_count);
  *equal = different_count == 0;
  return std::nullopt;
}

}  // namespace tabwerk::tool
