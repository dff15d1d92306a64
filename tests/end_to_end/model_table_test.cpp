// Tables judged by the plain model on random operations.
//
// TABWERK_SEED sets the seed of the first sequence, TABWERK_OPERATIONS the
// number of operations in all.  A failure tells the seed of its sequence: with
// it as TABWERK_SEED the failing sequence is the first one.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "DBbase.h"
#include "platform/platform.h"
#include "tests/end_to_end/judge.h"
#include "tests/end_to_end/random_values.h"
#include "tests/end_to_end/table_judge.h"
#include "tests/support/plain_model.h"
#include "tests/support/table_builder.h"
#include "tests/support/temp_folder.h"

namespace {

namespace model = tabwerk::test::model;
namespace platform = tabwerk::platform;
using tabwerk::test::AnyFileRow;
using tabwerk::test::Outcome;
using tabwerk::test::Random;
using tabwerk::test::TableJudge;
using tabwerk::test::TestTable;

constexpr int kOperations = 40000;
constexpr int kOperationsPerSequence = 250;
constexpr int kOperationsPerFullState = 25;

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

// One table in the library and in the model, seen through one or two objects.
struct Sequence {
  Sequence(Random& random, char const* shape, FILE* stream)
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
  Sequence(Sequence const&) = delete;
  Sequence& operator=(Sequence const&) = delete;

  // Some tables have 31 rows and more: searches for reals end early there.
  void AddRows(Random& random) {
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

  TestTable library;
  model::Entry entry;
  DBTabelle second_library;
  std::vector<model::Table> models;
  std::vector<TableJudge> judges;
};

class ModelTable : public testing::Test {
 protected:
  ModelTable() {
    auto error = platform::Error::kNone;
    stream_ = platform::OpenFile(folder_.Path("section"),
                                 platform::Mode::kCreateUpdate,
                                 platform::Share::kDenyNone, &error);
    SetLanguage();
  }
  ~ModelTable() override {
    (void)platform::Close(stream_);
    SetLanguage();
  }

  static void SetLanguage() {
    DBbase::SetSprache(0);
    model::SetLanguage(0);
  }

  // False, with the failure told, when the two differ.
  bool Agree(Outcome const& outcome, std::vector<std::string> const& log) {
    if (outcome.expected == outcome.got) return true;
    ADD_FAILURE() << outcome.what << "\nexpected " << outcome.expected
                  << "\ngot      " << outcome.got << "\nafter\n"
                  << tabwerk::test::Tail(log);
    return false;
  }

  bool RunSequence(std::uint32_t seed, int operations) {
    Random random(seed);
    auto const* const shape = tabwerk::test::AnyOf(random, kShapes);
    SCOPED_TRACE("TABWERK_SEED=" + std::to_string(seed) + " " + shape);
    SetLanguage();
    Sequence sequence(random, shape, stream_);
    std::vector<std::string> log;
    for (int i = 1; i <= operations; ++i) {
      auto const object = static_cast<std::size_t>(random.OneIn(5));
      auto& judge = sequence.judges[object];
      auto const outcome = judge.Operate();
      log.push_back(std::to_string(object) + ": " + outcome.what + " -> " +
                    outcome.expected);
      if (!Agree(outcome, log) || !Agree(judge.VisibleState(), log)) {
        return false;
      }
      if (i % kOperationsPerFullState != 0 && i != operations) continue;
      for (auto& each : sequence.judges) {
        if (!Agree(each.FullState(), log)) return false;
      }
    }
    return true;
  }

  tabwerk::test::TempFolder folder_;
  FILE* stream_ = nullptr;
};

TEST_F(ModelTable, AgreesWithTheLibraryOnRandomOperations) {
  ASSERT_NE(nullptr, stream_);
  auto seed = tabwerk::test::FirstSeed();
  int left = tabwerk::test::OperationCount(kOperations);
  for (; left > 0; left -= kOperationsPerSequence, ++seed) {
    if (!RunSequence(seed, std::min(left, kOperationsPerSequence))) return;
  }
}

}  // namespace
