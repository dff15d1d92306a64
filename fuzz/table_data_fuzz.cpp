// Any bytes as table data: rows, texts and the error are those that the plain
// model gets from the same lines.
#include <array>
#include <cstddef>
#include <cstdint>
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
    "string VERSION,integer ID\n",
    "real A,string B,string C,real D\n",
    "string NAME,string NAME,integer ID,integer ID\n",
    "integer ID,unknown X,string NAME\n",
    "string ONLY\n"};

// What the library is to answer.
struct Expected {
  int result = 1;
  int error = 0;
  std::u16string version;
};

std::u16string WithoutEnds(std::u16string const& text, char16_t const* ends) {
  auto const first = text.find_first_not_of(ends);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(ends) + 1 - first);
}

std::u16string WithoutLineEnd(std::u16string const& line) {
  auto const last = line.find_last_not_of(u"\r\n");
  return line.substr(0, last == line.npos ? 0 : last + 1);
}

bool StoreToken(model::Table* table, model::Field const& field,
                std::u16string const& token, Expected* expected) {
  // The first column of that name.
  table->SelectColumn(field.name);
  switch (field.type) {
    case model::Type::kInteger:
      return table->SetInteger(model::ToInteger(token)) != 0;
    case model::Type::kReal:
      return table->SetReal(model::ToReal(token)) != 0;
    case model::Type::kString: {
      auto const text = WithoutEnds(token, u"\"");
      if (field.name == "VERSION") expected->version = text;
      return table->SetText(text) != 0;
    }
    case model::Type::kUnknown:
      break;
  }
  return false;
}

// False when the line ends the reading.
bool ReadLine(model::Table* table, std::u16string const& line,
              Expected* expected) {
  auto const tokens = tabwerk::fuzz::PlainTokens(line, u',');
  if (!tokens.empty() && !tokens.front().empty() && !table->NewRow(false)) {
    expected->error = 3;
    return false;
  }
  auto const& fields = table->entry->definition.fields;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (i == fields.size()) {
      expected->error = 1;
      return true;
    }
    if (!StoreToken(table, fields[i], tokens[i], expected)) {
      expected->error = 2;
      return false;
    }
  }
  return true;
}

Expected ReadPlain(model::Table* table, std::u16string const& units) {
  Expected expected;
  for (auto const& piece : tabwerk::fuzz::PlainPieces(units)) {
    if (ReadLine(table, WithoutLineEnd(piece), &expected)) continue;
    expected.result = 0;
    break;
  }
  return expected;
}

}  // namespace

// The first byte is the definition, the others are the file.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  JudgedTable table(kShapes[data[0] % kShapes.size()], 1);
  std::span<std::uint8_t const> const file(data + 1, size - 1);
  auto const& folder = PrivateFolder::Get();
  folder.Write("data.dat", tabwerk::fuzz::AsText(file));

  DBInterpreter interpreter;
  interpreter.SetTabelle(&table.library.table);
  Require(interpreter.OpenDatei(folder.Path("data.dat").c_str(), "rb") == 1,
          "the data file opens");
  zWString version;
  int const result = interpreter.ReadDatei(version, false, nullptr);
  interpreter.CloseDatei();

  auto const expected = ReadPlain(
      &table.model, tabwerk::fuzz::AsUnits(file.size() < 2 ? file.first(0)
                                                           : file.subspan(2)));
  Require(result == expected.result, "the result is the plain model's");
  Require(interpreter.GetError() == expected.error,
          "the error is the plain model's");
  Require((interpreter.GetError() == 0) == (*interpreter.GetErrorString() == 0),
          "an error, and nothing else, has a text");
  Require(version.view() == expected.version,
          "the version is the plain model's");
  table.RequireSame();
  Require(tabwerk::fuzz::OpenStreams() == 0, "no stream stays open");
  return 0;
}
