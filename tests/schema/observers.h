// Short texts that tell what definitions and directories hold.
#ifndef TABWERK_TESTS_SCHEMA_OBSERVERS_H
#define TABWERK_TESTS_SCHEMA_OBSERVERS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "DBDirectory.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {

// "ID:2@0 NAME:3@4 size 8": names, types, offsets; "!" behind a field whose
// link to its predecessor is missing or wrong.
std::string Layout(DBDefinition const& definition);
std::string LayoutOf(char const* text);
// What GenerateString writes; "?" when it fails.
std::string TextOf(DBDefinition const& definition);

// "T2:1 T1:2": the tables in list order with their numbers of parts.
std::string Tables(DBDirectory const& directory);
// "rows 2 in 48@18 texts 9@0": counts, sizes and offsets of that part of the
// table, with " damaged" behind them; "-" when there is no such part.
std::string Numbers(DBDirectory const& directory, char const* table,
                    std::size_t part = 0);
// "1 0 2": the row counts of the table's parts.
std::string PartRows(DBDirectory const& directory, char const* table);

// A directory of the files of that name in the folder, none of them open.
void Initialize(DBDirectory* directory, TempFolder const& folder,
                std::vector<std::string> const& files);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SCHEMA_OBSERVERS_H
