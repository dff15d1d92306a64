// The index file of a database: its names, its check and its making.
#ifndef TABWERK_BASE_INDEX_FILE_H
#define TABWERK_BASE_INDEX_FILE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "DBDirectory.h"
#include "DBTabelle.h"
#include "platform/block.h"
#include "ztypes.h"

namespace tabwerk {

// How the content of an index file relates to the database it lies beside.
enum class IndexContent : std::uint8_t {
  kValid,     // it was written for exactly these files
  kStale,     // well formed, but a file has changed since
  kUnusable,  // not an index of this database: counts as missing
};

// Time stamps of all files.  This and the functions below throw std::bad_alloc
// where an exported function would answer with less.
std::vector<long long> TimeStamps(DBDirectory const& directory);

// Path of a database's index file: the user file's folder, the database's
// name, ".idx".  Empty when the database has no user file; a user file in the
// first position does not count.
zWString IndexPath(DBDirectory const& directory);

// The index that a save has written, but not yet moved to its place, for the
// moment when the database file that it belongs to carries this time stamp.
zWString PendingIndexPath(zWString const& index_path, std::int64_t time_stamp);

// The tables of a database in the order of its entries.  False when one of them
// is not wholly in memory; *tables then has the others.
bool LoadedTables(DBDirectory const& directory,
                  std::vector<DBTabelle*>* tables);

// The whole content of an index file.  Nothing when it cannot be read; *missing
// tells whether there is none.
std::optional<platform::Block> ReadIndexBytes(zWString const& path,
                                              bool* missing);

// Checks the whole content before anything of it is applied: time stamps, the
// three sections of every table with sizes and row numbers as the writer makes
// them, and nothing behind them.
IndexContent CheckIndex(std::span<std::byte const> content,
                        DBDirectory const& directory,
                        std::vector<DBTabelle*> const& tables);

// True when the content has, at that position, the time stamp that stands there
// in stamps: it was written when the file already had it.
bool KnowsStamp(std::span<std::byte const> content,
                std::vector<long long> const& stamps, std::size_t position);

// True when the content has these time stamps, but for the one at that
// position.
bool KnowsStampsBut(std::span<std::byte const> content,
                    std::vector<long long> const& stamps, std::size_t position);

// Number of bytes of the time stamps, which the sections follow.
std::size_t StampBytes(DBDirectory const& directory);

// Rebuilds a table's indices from its rows.
void BuildIndices(DBTabelle& table);

// Copies of these tables with rebuilt indices, for WriteIndex: the tables keep
// theirs and their selection whatever becomes of it.
std::vector<DBTabelle> RebuiltCopiesOf(std::vector<DBTabelle*> const& tables);
std::vector<DBTabelle*> PointersTo(std::vector<DBTabelle>& tables);

// Writes an index file with these time stamps and, in this order, the indices
// of these tables, which are those of their rows.  The file is complete and on
// the disk when this returns true; otherwise it is deleted again.
bool WriteIndex(zWString const& path, std::vector<long long> const& time_stamps,
                std::vector<DBTabelle*> const& tables);

}  // namespace tabwerk

#endif  // TABWERK_BASE_INDEX_FILE_H
