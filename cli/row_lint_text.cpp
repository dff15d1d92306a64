// Characters, quotes and sections in lines of table data.
#include <algorithm>

#include "cli/row_lint.h"
#include "cli/text_markers.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

constexpr std::size_t kMarkerUnits = kOpening.size();
constexpr std::size_t kMaxTokenizedUnits = 16384;

bool IsHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool IsLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

}  // namespace

void RowLint::CheckCharacters() const {
  // Whole lines, once each.
  if (lines_.IsLaterPiece()) return;
  std::u16string_view const line = lines_.Line();
  std::size_t const nul = line.find(u'\0');
  if (nul != line.npos) {
    Warn(TW(254), lines_.At(nul),
         "what stands behind the NUL character is not read",
         "take the character out");
  }
  std::size_t const mark = line.find(u'\uFEFF');
  if (mark != line.npos) {
    Warn(TW(270), lines_.At(mark),
         "a byte-order mark inside the file becomes a part of the value",
         "take it out; it is left over where files were joined");
  }
  CheckHalfCharacters();
}

void RowLint::CheckHalfCharacters() const {
  std::u16string_view const line = lines_.Line();
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (IsHigh(line[i]) && i + 1 < line.size() && IsLow(line[i + 1])) {
      ++i;
    } else if (IsHigh(line[i]) || IsLow(line[i])) {
      Warn(TW(269), lines_.At(i),
           "half of a character stands alone (a surrogate without its pair)",
           "see whether a program has cut the text");
      return;  // one for a line
    }
  }
}

void RowLint::CheckLongLine() {
  if (lines_.IsLaterPiece()) return;
  Warn(TW(255), lines_.At(DataLines::kMaxLineUnits),
       "the line is longer than 4,095 characters; from here on it is read as "
       "another row",
       "shorten its texts");
  for (SplitValue const& value : SplitLine(
           tokenizer_, lines_.Line().substr(0, kMaxTokenizedUnits), u',')) {
    if (value.text.size() <= format::kMaxTextUnits) continue;
    Warn(TW(256), lines_.At(value.offset),
         "the text is longer than 8,095 characters, which no database holds",
         "make two texts of it");
  }
}

void RowLint::CheckText(SplitValue const& value) {
  CheckSections(value);
  CheckQuotes(value);
}

void RowLint::CheckQuotes(SplitValue const& value) {
  std::u16string_view const text = value.text;
  if (std::count(text.begin(), text.end(), u'"') % 2 != 0) {
    is_open_ = true;
    Warn(TW(266), lines_.At(value.offset + text.rfind(u'"')),
         "a quote without its pair: commas behind it do not end the value",
         "close it; a text that needs a quote inside has to have two");
    return;
  }
  std::size_t const end = text.find_last_not_of(u" \t") + 1;
  if (end > 0 && end < text.size() && text[end - 1] == u'"') {
    Warn(TW(267), lines_.At(value.offset + end - 1),
         "blanks follow the quote, so it becomes a part of the text",
         "put the comma right behind the quote");
  }
}

void RowLint::CheckSections(SplitValue const& value) {
  std::u16string_view const text = value.text;
  std::size_t at = 0;
  for (;;) {
    SectionPlace const place = FindSection(text, at);
    std::size_t const stray = text.substr(0, place.begin).find(kClosing, at);
    if (stray != text.npos) {
      Warn(TW(268), lines_.At(value.offset + stray, kMarkerUnits),
           "\")TS~\" without a \"#TS(\" before it becomes a part of the text",
           "take it out, or begin the section");
    }
    if (!place.IsThere()) return;
    if (!place.IsClosed()) {
      is_open_ = true;
      Warn(TW(265), lines_.At(value.offset + place.begin, kMarkerUnits),
           "\"#TS(\" is not closed: the text is not translated, and commas "
           "behind it do not end the value",
           "end the section with \")TS~\"");
      return;
    }
    std::size_t const inner =
        text.substr(0, place.closing).find(kOpening, place.begin + 1);
    if (inner != text.npos) {
      Warn(TW(271), lines_.At(value.offset + inner, kMarkerUnits),
           "\"#TS(\" inside a section: the first \")TS~\" ends both",
           "close the section before it");
    }
    at = place.End();
  }
}

}  // namespace tabwerk::tool
