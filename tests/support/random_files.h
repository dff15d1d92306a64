// Random database files.
#ifndef TABWERK_TESTS_SUPPORT_RANDOM_FILES_H
#define TABWERK_TESTS_SUPPORT_RANDOM_FILES_H

#include "tests/support/plain_manager.h"
#include "tests/support/random_table.h"

namespace tabwerk::test {

// A file of any header form with some of five tables, not all of which have the
// usual columns, and few rows.
model::FileImage AnyFile(Random& random, bool is_first);
// Rows come, go and change places; now and then the last table goes, or the
// order of the tables is turned around.
void ChangeFile(Random& random, model::FileImage* image);
// The name of one of the five tables.
char const* AnyTable(Random& random);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_RANDOM_FILES_H
