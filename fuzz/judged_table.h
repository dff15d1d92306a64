// One table in the library and in the plain model.
#ifndef TABWERK_FUZZ_JUDGED_TABLE_H
#define TABWERK_FUZZ_JUDGED_TABLE_H

#include <cstddef>

#include "DBInterpreter.h"
#include "tests/support/plain_model.h"
#include "tests/support/table_builder.h"

namespace tabwerk::fuzz {

struct JudgedTable {
  JudgedTable(char const* definition, std::size_t part_count);
  JudgedTable(JudgedTable const&) = delete;
  JudgedTable& operator=(JudgedTable const&) = delete;

  // Rows, texts, indices and selection agree, byte for byte.
  void RequireSame();

  test::TestTable library;
  test::model::Entry entry;
  test::model::Table model;
};

}  // namespace tabwerk::fuzz

#endif  // TABWERK_FUZZ_JUDGED_TABLE_H
