#include "cli/script_lines.h"

#include <algorithm>
#include <utility>

#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

constexpr char kEndOfText = '\x1A';  // Ctrl-Z

std::string WithoutLineEnds(std::string_view content) {
  std::string text;
  text.reserve(content.size());
  for (std::size_t i = 0; i < content.size(); ++i) {
    bool const before_line_feed =
        content[i] == '\r' && i + 1 < content.size() && content[i + 1] == '\n';
    if (!before_line_feed) text += content[i];
  }
  return text;
}

}  // namespace

ScriptLines::ScriptLines(std::string script, std::string_view content)
    : script_(std::move(script)) {
  std::size_t const end = std::min(content.find(kEndOfText), content.size());
  text_ = WithoutLineEnds(content.substr(0, end));
  std::string_view const rest = content.substr(end);
  has_hidden_rest_ =
      rest.find_first_not_of(std::string_view("\x1A \t\r\n\0", 6)) != rest.npos;
}

std::string_view ScriptLines::Next() {
  is_later_piece_ = !begins_line_;
  if (begins_line_) {
    ++number_;
    line_begin_ = at_;
  }
  std::string_view const rest = std::string_view(text_).substr(at_);
  std::size_t const line_feed = rest.substr(0, kMaxLineBytes).find('\n');
  bool const whole = line_feed != rest.npos;
  std::size_t const length =
      whole ? line_feed + 1 : std::min(rest.size(), kMaxLineBytes);
  at_ += length;
  begins_line_ = whole;
  at_end_ = !whole && length < kMaxLineBytes;
  std::string_view const line = rest.substr(0, length);
  current_ = line.substr(0, line.find('\0'));
  is_cut_ = line.find_first_not_of(std::string_view("\0\n", 2),
                                   current_.size()) != line.npos;
  return current_;
}

std::size_t ScriptLines::EndOf(std::string_view part) const {
  return static_cast<std::size_t>(part.data() - text_.data()) + part.size();
}

Place ScriptLines::PlaceOf(std::size_t number, std::size_t begin,
                           std::size_t end, std::size_t line_begin) const {
  std::string_view line = std::string_view(text_).substr(line_begin);
  line = line.substr(0, line.find('\n'));
  line = line.substr(0, line.find_last_not_of(" \t") + 1);
  auto const count = [this](std::size_t from, std::size_t to) {
    return CharacterCount(
        ScriptToUtf8(std::string_view(text_).substr(from, to - from)));
  };
  Place place(script_, number, count(line_begin, begin) + 1);
  place.source = ScriptToUtf8(line);
  place.length = std::max<std::size_t>(1, count(begin, end));
  return place;
}

Place ScriptLines::At(std::string_view word) const {
  if (word.empty()) {
    std::size_t const used = current_.find_last_not_of(" \t\n") + 1;
    std::size_t const end = EndOf(current_.substr(0, used));
    return PlaceOf(number_, end, end, line_begin_);
  }
  std::size_t const end = EndOf(word);
  return PlaceOf(number_, end - word.size(), end, line_begin_);
}

Place ScriptLines::AtTextEnd() const {
  auto const number = static_cast<std::size_t>(
      std::count(text_.begin(), text_.end(), '\n') + 1);
  std::size_t const line_begin = text_.rfind('\n') + 1;  // npos + 1 is 0
  return PlaceOf(number, text_.size(), text_.size(), line_begin);
}

std::string_view NextWord(std::string_view* line, std::string_view separators) {
  line->remove_prefix(
      std::min(line->find_first_not_of(separators), line->size()));
  std::size_t const length =
      std::min(line->find_first_of(separators), line->size());
  std::string_view const word = line->substr(0, length);
  line->remove_prefix(std::min(length + 1, line->size()));
  return word;
}

bool IsUtf8(std::string_view bytes) {
  return zWString::fromUtf8(bytes).toUtf8() == bytes;
}

std::string ScriptToUtf8(std::string_view bytes) {
  return IsUtf8(bytes) ? std::string(bytes)
                       : zWString::fromLatin1(bytes).toUtf8();
}

}  // namespace tabwerk::tool
