#include "fuzz/judged_table.h"

#include "fuzz/fuzz_support.h"
#include "tests/support/judge.h"
#include "tests/support/table_state.h"

namespace tabwerk::fuzz {
namespace {

test::model::Entry MakeEntry(char const* definition, std::size_t part_count) {
  test::model::Entry entry{"T", test::model::ParseDefinition(definition), {}};
  entry.parts.resize(part_count);
  return entry;
}

}  // namespace

JudgedTable::JudgedTable(char const* definition, std::size_t part_count)
    : library(definition, part_count),
      entry(MakeEntry(definition, part_count)),
      model(&entry) {}

void JudgedTable::RequireSame() {
  RequireEqual(test::BlocksOf(model), test::BlocksOf(library.table),
               "rows and texts are those of the plain model");
  RequireEqual(test::IndicesOf(model), test::Indices(library.table),
               "indices are those of the plain model");
  RequireEqual(test::SelectionOf(model), test::Selection(library.table),
               "the selection is that of the plain model");
}

}  // namespace tabwerk::fuzz
