#include "cli/patterns.h"

#include <regex>
#include <string_view>

#include "ztypes.h"

namespace tabwerk::tool {
namespace {

char const* Reason(std::regex_error const& error) {
  namespace what = std::regex_constants;
  auto const code = error.code();
  if (code == what::error_paren) return "a parenthesis has no partner";
  if (code == what::error_brack) return "a bracket has no partner";
  if (code == what::error_brace) return "a brace has no partner";
  if (code == what::error_badbrace) {
    return "between braces stands something else than counts";
  }
  if (code == what::error_range) return "a range runs backwards";
  if (code == what::error_escape) return "\"\\\" stands before what it cannot";
  if (code == what::error_backref) {
    return "it refers to a group that there is not";
  }
  if (code == what::error_badrepeat)
    return "nothing stands before a repetition";
  if (code == what::error_complexity || code == what::error_stack ||
      code == what::error_space) {
    return "it would take too long";
  }
  return "it is malformed";
}

Problem BadPattern(std::string const& pattern, std::regex_error const& error) {
  return {TW(134), "",
          "the pattern " + pattern + " cannot be used: " + Reason(error),
          "write \"\\\" before a character that is meant as it stands"};
}

}  // namespace

std::string LiteralPattern(std::string const& text) {
  std::string pattern;
  for (char const character : text) {
    if (std::string_view("^$\\.*+?()[]{}|/").find(character) !=
        std::string_view::npos) {
      pattern += '\\';
    }
    pattern += character;
  }
  return pattern;
}

std::string PatternWithin(std::string const& pattern) {
  return "[\\s\\S]*(?:" + pattern + ")[\\s\\S]*";
}

std::optional<Problem> CheckPattern(std::string const& pattern) {
  DBTabelle none;
  std::vector<long> rows;
  return FindByPattern(none, "", pattern, &rows);
}

std::optional<Problem> FindByPattern(DBTabelle& table, char const* column,
                                     std::string const& pattern,
                                     std::vector<long>* rows) {
  try {
    *rows = table.FindRows(column, zWString::fromUtf8(pattern), false);
  } catch (std::regex_error const& error) {
    return BadPattern(pattern, error);
  }
  return std::nullopt;
}

}  // namespace tabwerk::tool
