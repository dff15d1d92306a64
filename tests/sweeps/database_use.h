// Everything that a host can do with an open database, whatever it holds.
#ifndef TABWERK_TESTS_SWEEPS_DATABASE_USE_H
#define TABWERK_TESTS_SWEEPS_DATABASE_USE_H

#include <map>
#include <string>

#include "DBTabelle.h"

namespace tabwerk::test {

// The bytes of all values of the table, field by field and row by row, texts in
// the first three languages.
std::string ValuesOf(DBTabelle& table);

// ValuesOf every table of the manager's current database by its name; a table
// that cannot be loaded is left out.
std::map<std::string, std::string> AllValues();

// Looks for numbers and texts in every column, by value, by index and by
// pattern.  Returns how many searches there were.
int SearchEverywhere();

// Sets values of every column, appends rows to both files, writes whole rows
// and builds the indices.
void ChangeEverything();

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_DATABASE_USE_H
