#include "tests/support/judged_sequence.h"

#include <array>
#include <cstddef>
#include <string>

#include "tests/support/random_values.h"
#include "ztypes.h"

namespace tabwerk::test {
namespace {

constexpr std::array kShapes{
    "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE,integer "
    "N\n",
    "integer ID,integer FOLGE,integer STATUS,string NAME,string BEZ_DIN\n",
    // Other orders: which row is written depends on them.
    "string NAME,integer FOLGE,integer ID,integer STATUS\n",
    "integer STATUS,integer FOLGE,integer ID,string BEZ_DIN,string T\n",
    "integer FOLGE,integer N,integer STATUS,string T,integer ID\n",
    // Without one of the columns that have a meaning, or all of them.
    "integer ID,integer FOLGE,string NAME\n",
    "integer FOLGE,integer STATUS,string NAME,integer N\n",
    "integer ID,integer STATUS,string NAME\n",
    "string A,integer N,real PRICE\n", "string NAME\n", "real A,real B\n",
    // With columns of other types.
    "real ID,integer FOLGE,integer STATUS,string NAME\n",
    "string ID,integer FOLGE,integer STATUS,string NAME\n",
    "integer ID,string FOLGE,integer STATUS,string NAME\n",
    "integer ID,real FOLGE,integer N,integer STATUS\n",
    "integer ID,integer FOLGE,real STATUS,string NAME\n",
    "integer ID,integer FOLGE,string STATUS,string NAME\n",
    "integer NAME,real BEZ_DIN,integer ID,integer FOLGE,integer STATUS\n",
    // Names that come twice, types that are unknown.
    "integer ID,string NAME,integer ID,string NAME,integer FOLGE,real N,"
    "integer N\n",
    "integer ID,unknown X,string NAME,blob FOLGE,integer STATUS\n",
    "unknown A,blob B\n"};

}  // namespace

char const* AnyShape(Random& random) { return AnyOf(random, kShapes); }

JudgedSequence::JudgedSequence(Random& random, char const* shape, FILE* stream)
    : library(shape, static_cast<std::size_t>(
                         random.OneIn(2) ? 2 : random.Between(1, 3))),
      entry{"T", model::ParseDefinition(shape), {}},
      second_library(library.entry) {
  entry.parts.resize(library.entry->GetNumberOfParts());
  AddRows(random);
  second_library.SetDirEntry(library.entry);
  models.emplace_back(&entry);
  models.emplace_back(&entry);
  judges.emplace_back(library.table, models[0], random, stream);
  judges.emplace_back(second_library, models[1], random, stream);
}

// Some tables have 31 rows and more: searches for reals end early there.
void JudgedSequence::AddRows(Random& random) {
  int const rows =
      random.OneIn(3) ? random.Between(29, 40) : random.Between(0, 12);
  auto const last = static_cast<int>(entry.parts.size()) - 1;
  for (int i = 0; i < rows; ++i) {
    auto const part = static_cast<std::size_t>(random.Between(0, last));
    // Lone surrogates do not pass through UTF-8.
    auto const utf8 =
        zWString(AnyFileRow(random, entry.definition, rows)).toUtf8();
    auto const values = zWString::fromUtf8(utf8);
    model::AppendRow(entry.definition, std::u16string(values.view()),
                     &entry.parts[part]);
    library.AddRow(part, utf8);
  }
}

}  // namespace tabwerk::test
