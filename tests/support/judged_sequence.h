// One table in the library and in the plain model, for random operations.
#ifndef TABWERK_TESTS_SUPPORT_JUDGED_SEQUENCE_H
#define TABWERK_TESTS_SUPPORT_JUDGED_SEQUENCE_H

#include <cstdio>
#include <vector>

#include "DBTabelle.h"
#include "tests/support/plain_model.h"
#include "tests/support/random_table.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_judge.h"

namespace tabwerk::test {

// A definition: the usual columns in every order, missing ones, ones of other
// types, names that come twice, unknown types.
char const* AnyShape(Random& random);

// A table of that definition with random rows, seen through two objects.
struct JudgedSequence {
  // stream is open for reading and writing and holds nothing of value.
  // Borrows all that it is given.
  JudgedSequence(Random& random, char const* shape, FILE* stream);
  JudgedSequence(JudgedSequence const&) = delete;
  JudgedSequence& operator=(JudgedSequence const&) = delete;

  TestTable library;
  model::Entry entry;
  DBTabelle second_library;
  std::vector<model::Table> models;
  std::vector<TableJudge> judges;

 private:
  void AddRows(Random& random);
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_JUDGED_SEQUENCE_H
