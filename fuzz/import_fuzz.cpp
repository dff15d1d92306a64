// Any bytes as delimited rows: the user's rows, texts and indices are those
// that the plain model gets from the same lines.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "DBInterpreter.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/judged_table.h"
#include "fuzz/plain_text.h"

namespace {

namespace model = tabwerk::test::model;
using tabwerk::fuzz::JudgedTable;
using tabwerk::fuzz::PrivateFolder;
using tabwerk::fuzz::Require;

constexpr std::array kShapes{
    "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n",
    "string NAME,integer FOLGE,integer ID,integer STATUS\n",
    "integer ID,integer FOLGE,integer STATUS,string NAME,string BEZ_DIN\n",
    "string NAME,string NAME,integer ID,integer ID\n",
    "integer ID,unknown X,string NAME\n",
    "real A,string B\n"};

constexpr std::array kSeparators{L';', L',', L'\t', L'|', L' ', L'"', L'\0'};

// Rows that are there before.
constexpr std::array kRows{"1|1|0|Pump|1.5", "2|2|0|Valve|2", "7|3|1|x|0"};

std::u16string ValueOf(std::u16string value, model::Type type) {
  if (type == model::Type::kReal || type == model::Type::kInteger) {
    std::replace(value.begin(), value.end(), u',', u'.');
  }
  bool const quoted =
      !value.empty() && value.front() == u'"' && value.back() == u'"';
  if (!quoted) return value;
  return value.size() == 1 ? u"" : value.substr(1, value.size() - 2);
}

// The number of the last error.
int ReadPlain(model::Table* table, std::u16string const& units,
              char16_t separator) {
  int error = 0;
  for (auto piece : tabwerk::fuzz::PlainPieces(units)) {
    if (piece.ends_with(u'\n')) piece.pop_back();
    auto const& fields = table->entry->definition.fields;
    auto tokens = tabwerk::fuzz::PlainTokens(piece, separator);
    if (tokens.size() > fields.size()) {
      error = 1;
      tokens.resize(fields.size());
    }
    model::Values values;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      table->SelectColumn(fields[i].name);
      values[fields[i].name] = ValueOf(tokens[i], fields[i].type);
    }
    table->SetRowValues(values, model::Table::Action::kAppend);
  }
  return error;
}

void AddRows(JudgedTable* table) {
  for (std::string const row : kRows) {
    table->library.AddRow(0, row);
    model::AppendRow(table->entry.definition,
                     std::u16string(row.begin(), row.end()),
                     &table->entry.parts[0]);
  }
  table->library.table.MakeIndexID();
  table->library.table.MakeIndexFolge();
  table->library.table.MakeIndexStatus();
  table->model.MakeIndexId();
  table->model.MakeIndexFolge();
  table->model.MakeIndexStatus();
}

}  // namespace

// The first byte is the definition, the second one the separator, the others
// are the file.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  if (size < 2) return 0;
  JudgedTable table(kShapes[data[0] % kShapes.size()], 2);
  AddRows(&table);
  wchar_t const separator[] = {kSeparators[data[1] % kSeparators.size()], 0};
  std::span<std::uint8_t const> const file(data + 2, size - 2);
  auto const& folder = PrivateFolder::Get();
  folder.Write("rows.txt", tabwerk::fuzz::AsText(file));

  DBInterpreter interpreter;
  interpreter.SetTabelle(&table.library.table);
  Require(interpreter.OpenDatei(folder.Path("rows.txt").c_str(), "rb") == 1,
          "the file opens");
  zWString version(u"kept");
  Require(interpreter.ReadDatei(version, true, separator) == 1,
          "an import always succeeds");
  interpreter.CloseDatei();
  Require(version == zWString(u"kept"), "an import has no version");

  int const error = ReadPlain(&table.model, tabwerk::fuzz::AsUnits(file),
                              static_cast<char16_t>(separator[0]));
  Require(interpreter.GetError() == error, "the error is the plain model's");
  table.RequireSame();
  Require(tabwerk::fuzz::OpenStreams() == 0, "no stream stays open");
  return 0;
}
