// Random operations on a table, done by the library and by the plain model.
#ifndef TABWERK_TESTS_SUPPORT_TABLE_JUDGE_H
#define TABWERK_TESTS_SUPPORT_TABLE_JUDGE_H

#include <cstdint>
#include <cstdio>
#include <string>

#include "DBTabelle.h"
#include "tests/support/judge.h"
#include "tests/support/plain_model.h"
#include "tests/support/random_table.h"

namespace tabwerk::test {

// Borrows everything that it is made of.
class TableJudge {
 public:
  // stream is open for reading and writing and holds nothing of value.
  TableJudge(DBTabelle& table, model::Table& model, Random& random,
             FILE* stream)
      : table_(table), model_(model), random_(random), stream_(stream) {}

  // One random operation.  may_read_sections admits those that replace the
  // indices by those of a file.
  Outcome Operate(bool may_read_sections = true);
  // The current row, column and value.
  Outcome VisibleState();
  // All rows, texts, indices and the selection.
  Outcome FullState();

 private:
  using Operation = Outcome (TableJudge::*)();
  struct Choice {
    int weight;
    Operation operation;
  };

  Outcome SelectColumn();
  Outcome SelectRow();
  Outcome SelectByInteger();
  Outcome SelectByReal();
  Outcome SelectByText();
  Outcome FindRows();
  Outcome SetInteger();
  Outcome SetReal();
  Outcome SetText();
  Outcome SetUnits();
  Outcome SetBytes();
  Outcome SetColumn();
  Outcome NewRow();
  Outcome NewUserId();
  Outcome Counts();
  Outcome LookUp();
  Outcome MakeIndex();
  Outcome WriteSection();
  Outcome ReadSection();
  Outcome Resort();
  Outcome SetRowValues();
  Outcome Dump();
  Outcome SetLanguage();

  int RowCount();
  std::string AnyColumn();
  model::Bytes AnySection(int which);
  void FillStream(model::Bytes const& bytes);
  model::Bytes StreamContent();

  DBTabelle& table_;
  model::Table& model_;
  Random& random_;
  FILE* stream_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_TABLE_JUDGE_H
