// Any bytes as the index file of a fixed database: tables, indices and the
// index file that stays are those of the plain model, and the next opening
// finds them as they are.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DBbase.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/repair.h"
#include "tests/support/judge.h"
#include "tests/support/plain_database.h"
#include "tests/support/plain_manager.h"
#include "tests/support/plain_model.h"
#include "tests/support/table_state.h"

namespace {

namespace model = tabwerk::test::model;
namespace fuzz = tabwerk::fuzz;
using fuzz::PrivateFolder;
using fuzz::Require;
using fuzz::RequireEqual;
using tabwerk::test::PlainIndex;

using Rows = std::vector<std::u16string>;

model::FileImage::Table MakeTable(char const* name, char const* definition,
                                  Rows const& rows) {
  model::FileImage::Table table{name, definition, {}};
  for (auto const& row : rows) {
    model::AppendRow(model::ParseDefinition(definition), row, &table.part);
  }
  return table;
}

constexpr char kArticles[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME\n";
constexpr char kList[] = "string NAME,integer FOLGE,integer ID\n";

// Five rows in each table, one ID twice, one row inactive, one without a place.
std::map<std::string, model::FileImage> const& Disk() {
  static auto const* const disk = new std::map<std::string, model::FileImage>{
      {"MAIN.db",
       {tabwerk::test::PlainHeader::kCurrent,
        1000,
        {MakeTable("ARTIKEL", kArticles,
                   {u"1|1|0|Anna", u"2|2|0|Bert", u"3|0|1|Carl"}),
         MakeTable("LISTE", kList, {u"a|2|7", u"b|1|8", u"c|3|7"})}}},
      {"USER.UDB",
       {tabwerk::test::PlainHeader::kCurrent,
        2000,
        {MakeTable("ARTIKEL", kArticles, {u"20000|3|0|Dora", u"20001|4|0|E"}),
         MakeTable("LISTE", kList, {u"d|4|20000", u"e|5|20001"})}}}};
  return *disk;
}

std::string Encoded(PlainIndex const& index) {
  return tabwerk::test::AsText(EncodeIndex(index));
}

// Nothing for bytes that are no index: also for negative counts, which the
// plain reader takes for none.
std::optional<PlainIndex> Decoded(std::string const& bytes) {
  auto index = tabwerk::test::DecodeIndex({bytes.begin(), bytes.end()}, 2);
  if (index && Encoded(*index) != bytes) index.reset();
  return index;
}

// Once: no input changes them.
bool WriteDatabaseFiles() {
  for (auto const& [name, image] : Disk()) {
    PrivateFolder::Get().Write(
        name, tabwerk::test::AsText(EncodeDatabase(model::ToPlain(image))));
  }
  return true;
}

void RequireSameTables(model::Manager& expected) {
  auto& manager = *DBbase::GetDBBaseInstance();
  for (auto const& name : expected.TableNames()) {
    DBTabelle* table = nullptr;
    Require(manager.OpenTabelle(name.c_str(), table) == 1, "all tables open");
    auto& judge = *expected.OpenTable(name);
    RequireEqual(tabwerk::test::BlocksOf(judge),
                 tabwerk::test::BlocksOf(*table),
                 "rows and texts are the plain model's");
    RequireEqual(tabwerk::test::IndicesOf(judge),
                 tabwerk::test::Indices(*table),
                 "indices are the plain model's");
    RequireEqual(tabwerk::test::SelectionOf(judge),
                 tabwerk::test::Selection(*table),
                 "the selection is the plain model's");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  std::string const bytes(fuzz::AsText({data, size}));
  static bool const written = WriteDatabaseFiles();
  static auto const before = PrivateFolder::Get().Files();
  Require(written, "there is a database");
  PrivateFolder::Get().Write("STOCK.idx", bytes);
  Require(fuzz::OpenDatabase(u"STOCK", {"MAIN.db", "USER.UDB"}, true),
          "a database opens whatever its index holds");

  model::Manager expected({"MAIN.db", "USER.UDB"});
  expected.disk = Disk();
  expected.index = Decoded(bytes);
  expected.Open(true);
  RequireSameTables(expected);
  fuzz::CloseLibrary();

  auto const after = PrivateFolder::Get().Files();
  Require(after.size() == before.size() + 1 &&
              after.at("MAIN.db") == before.at("MAIN.db") &&
              after.at("USER.UDB") == before.at("USER.UDB"),
          "opening changes nothing but the index file");
  auto const index = Decoded(after.at("STOCK.idx"));
  Require(index.has_value(), "a sound index file stays");
  RequireEqual(Encoded(*expected.index), Encoded(*index),
               "the index file is the plain model's");

  Require(fuzz::OpenDatabase(u"STOCK", {"MAIN.db", "USER.UDB"}, true),
          "the database opens again");
  fuzz::CloseLibrary();
  Require(PrivateFolder::Get().Files() == after,
          "the next opening changes nothing");
  return 0;
}

#ifdef TABWERK_FUZZ
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data,
                                               std::size_t size,
                                               std::size_t max_size,
                                               unsigned seed) {
  return fuzz::MutateAndRepair(
      data, size, max_size, seed,
      [](fuzz::Bytes const& bytes, std::uint32_t choice) {
        fuzz::IndexShape const shape{{1000, 2000}, {5, 5}};
        return RepairIndex(bytes, shape, choice);
      });
}
#endif
