// The folder that a benchmark program works in, and the files in it.
#ifndef TABWERK_BENCH_SUPPORT_FOLDER_H
#define TABWERK_BENCH_SUPPORT_FOLDER_H

#include <filesystem>
#include <string>
#include <string_view>

namespace tabwerk::bench {

// A folder of this process in the system's one for temporary files; deleted at
// the end of the process, with everything in it.  The process that made it may
// hand it to children, which leave it alone.
std::filesystem::path const& Folder();
void UseFolder(std::filesystem::path const& folder);
void DeleteFolder();

// Folder of the database of so many rows: MAIN.db, an empty USER.UDB and a
// valid STOCK.idx.  Made at the first call, with tabwerk.
std::filesystem::path const& Database(long rows);
// The same rows as table data (UTF-16LE), and the script that builds MAIN.db
// from them, in the database's folder.
std::filesystem::path TableDataPath(long rows);
std::string MainScript(std::filesystem::path const& target,
                       std::filesystem::path const& data);

void WriteBytes(std::filesystem::path const& path, std::string_view bytes);
// The units as bytes, little-endian, behind a mark if wanted.
void WriteUnits(std::filesystem::path const& path, std::u16string_view units,
                bool mark);

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_SUPPORT_FOLDER_H
