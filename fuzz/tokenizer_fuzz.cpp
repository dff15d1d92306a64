// Any line with any separator: its tokens are those of the plain tokenizer,
// in a copy of the interpreter as well.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "DBInterpreter.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/plain_text.h"

namespace {

using tabwerk::fuzz::Require;

// The first longest of a line that the interpreter takes.
constexpr std::size_t kMaxLine = 16384;

void RequireTokens(std::vector<std::wstring> const& expected,
                   DBInterpreter& interpreter, wchar_t* token,
                   wchar_t separator) {
  for (auto const& each : expected) {
    Require(token != nullptr && each == token, "each token is the plain one");
    token = interpreter.GetNextToken(nullptr, separator);
  }
  Require(token == nullptr, "there is no further token");
  Require(interpreter.GetNextToken(nullptr, separator) == nullptr,
          "there is no token behind the last one");
}

}  // namespace

// The first unit is the separator, the others are the line.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  auto const units = tabwerk::fuzz::AsUnits({data, size});
  if (units.empty()) return 0;
  auto const separator = static_cast<wchar_t>(units[0]);
  std::wstring line(units.begin() + 1, units.end());
  DBInterpreter interpreter;
  wchar_t* const token = interpreter.GetNextToken(line.data(), separator);
  // The line ends at its first NUL.
  line.resize(line.find(L'\0') == line.npos ? line.size() : line.find(L'\0'));
  if (line.size() > kMaxLine) {
    Require(token == nullptr, "a line over the limit has no tokens");
    return 0;
  }
  auto const expected = tabwerk::fuzz::PlainTokens(line, separator);
  // A copy goes on in the same line, whose tokens are ended there.
  DBInterpreter copy(interpreter);
  RequireTokens(expected, copy, token, separator);
  DBInterpreter again;
  RequireTokens(expected, again, again.GetNextToken(line.data(), separator),
                separator);
  return 0;
}
