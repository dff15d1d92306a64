#include "cli/script_context.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>
#include <vector>

#include "cli/files.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

constexpr std::array<std::string_view, 3> kKeywords = {"NEWDATABASE",
                                                       "NEWTABLE", "TABLEDATA"};

std::string UpperCase(std::string_view word) {
  return zWString::fromLatin1(word).ToUpper().toLatin1();
}

// Characters to be put in, left out or changed to get from one to the other.
std::size_t EditDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < to.size(); ++j) {
      std::size_t const changed = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

bool IsLetter(char character) {
  return (character >= 'A' && character <= 'Z') ||
         (character >= 'a' && character <= 'z');
}

}  // namespace

ScriptContext::ScriptContext(std::string const& script,
                             std::string const& content)
    : lines_(script, content) {
  CheckStart(content);
}

void ScriptContext::Add(Severity severity, Code code, Place where,
                        std::string what, std::string advice) {
  scan_.findings.push_back(
      {severity, {code, std::move(where), std::move(what), std::move(advice)}});
}

void ScriptContext::Error(Code code, Place where, std::string what,
                          std::string advice) {
  Add(Severity::kError, code, std::move(where), std::move(what),
      std::move(advice));
}

void ScriptContext::Warn(Code code, Place where, std::string what,
                         std::string advice) {
  Add(Severity::kWarning, code, std::move(where), std::move(what),
      std::move(advice));
}

void ScriptContext::Note(Code code, Place where, std::string what,
                         std::string advice) {
  Add(Severity::kNote, code, std::move(where), std::move(what),
      std::move(advice));
}

void ScriptContext::CheckStart(std::string_view content) {
  Place place = lines_.AtTextEnd();
  place.line = 1;
  place.column = 1;
  place.source.clear();
  is_utf16_ =
      content.starts_with("\xFF\xFE") || content.starts_with("\xFE\xFF");
  if (is_utf16_) {
    Warn(TW(237), place, "the script is UTF-16, but is read as 8-bit text",
         "save it as plain text (ASCII or Latin-1)");
  } else if (content.starts_with("\xEF\xBB\xBF")) {
    Warn(TW(237), place,
         "the script begins with a byte-order mark, which becomes a part of "
         "its first word",
         "save it without the mark");
  }
}

std::string_view ScriptContext::Next() {
  bool const was_later_piece = lines_.IsLaterPiece();
  std::string_view const line = lines_.Next();
  if (lines_.IsLaterPiece() && !was_later_piece && !line.empty()) {
    Warn(TW(232), lines_.At(line.substr(0, 1)),
         "the line is longer than 4,095 bytes; from here on it is read as "
         "another line",
         "make two lines of it");
  }
  if (lines_.IsCut() && !is_utf16_) {
    Warn(TW(235), lines_.At(),
         "what stands behind the NUL character is not read",
         "take the character out");
  }
  return line;
}

void ScriptContext::CheckCharacters(std::string_view word) {
  auto const is_odd = [](char character) {
    auto const byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F || character == ';';
  };
  auto const found = std::find_if(word.begin(), word.end(), is_odd);
  if (found == word.end()) return;
  auto const at = static_cast<std::size_t>(found - word.begin());
  std::string const what = *found == ';'    ? "a semicolon"
                           : *found == '\t' ? "a tab"
                           : *found == '\r' ? "a carriage return"
                                            : "a control character";
  Warn(TW(238), lines_.At(word.substr(at, 1)),
       what + " does not end the word, but becomes a part of it",
       "put blanks between words, and nothing behind the last one");
}

void ScriptContext::CheckEncoding(std::string_view word) {
  bool const is_plain = std::all_of(word.begin(), word.end(), [](char it) {
    return static_cast<unsigned char>(it) < 0x80;
  });
  if (is_plain || !IsUtf8(word)) return;
  Warn(TW(239), lines_.At(word),
       "names are read as Latin-1: this one becomes \"" +
           NameToUtf8(std::string(word).c_str()) + "\"",
       "use ASCII letters only, or save the script as Latin-1");
}

void ScriptContext::CheckRest(std::string_view rest) {
  std::string_view const word = NextWord(&rest, " \t\n;\r");
  if (word.empty()) return;
  auto const first = static_cast<unsigned char>(word.front());
  bool const is_comment = first < 0x80 && !IsLetter(word.front()) &&
                          !(first >= '0' && first <= '9');
  if (is_comment) return;
  Warn(TW(231), lines_.At(word), Quoted(word) + " is not read",
       "names and paths cannot have blanks; put a comment behind \"#\"");
}

bool IsKeyword(std::string_view word) {
  return std::find(kKeywords.begin(), kKeywords.end(), word) != kKeywords.end();
}

std::string_view SimilarKeyword(std::string_view word) {
  constexpr std::size_t kLongest = 16;
  constexpr std::size_t kMostEdits = 2;
  bool const is_word = std::all_of(word.begin(), word.end(), IsLetter);
  if (word.empty() || word.size() > kLongest || !is_word) return {};
  std::string const upper = UpperCase(word);
  std::string_view nearest;
  std::size_t least = kMostEdits + 1;
  auto const compare = [&](std::string_view keyword) {
    std::size_t const edits = EditDistance(upper, keyword);
    if (keyword == word || edits >= least) return;
    least = edits;
    nearest = keyword;
  };
  for (std::string_view const keyword : kKeywords) compare(keyword);
  compare(kEndOfDefinition);
  return nearest;
}

std::string Quoted(std::string_view word) {
  return "\"" + ScriptToUtf8(word) + "\"";
}

}  // namespace tabwerk::tool
