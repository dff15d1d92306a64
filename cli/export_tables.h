// A database file as the script and the table data that rebuild it.
#ifndef TABWERK_CLI_EXPORT_TABLES_H
#define TABWERK_CLI_EXPORT_TABLES_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/errors.h"

namespace tabwerk::tool {

struct ExportedFile {
  std::string name;     // without a folder; ASCII
  std::string content;  // bytes
};

struct ExportedDatabase {
  std::vector<ExportedFile> files;  // the script first
  std::string database_file;        // the name that the script gives it
  long long table_count = 0;
  long long row_count = 0;
};

// Refusals beyond these are counted only.
inline constexpr std::size_t kMaxExportRefusals = 20;

struct ExportRefusals {
  void Add(Problem problem);

  std::vector<Problem> first;
  long long count = 0;
};

// Makes the files for the database file of that path, whose names begin with
// base.  Reads the file through the manager, alone.  A problem when it cannot
// be read or is damaged; refusals for what scripts and table data cannot say.
std::optional<Problem> ExportTables(std::string const& path,
                                    std::string const& base,
                                    ExportedDatabase* exported,
                                    ExportRefusals* refusals);

// Builds the database from its files in an empty folder, which becomes the
// current one meanwhile, and compares it with the file; a problem at the first
// byte, time stamp aside, that is another one.
std::optional<Problem> CheckRebuilt(ExportedDatabase const& exported,
                                    std::string const& path,
                                    std::filesystem::path const& folder);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_EXPORT_TABLES_H
