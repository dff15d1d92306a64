#include "cli/data_lines.h"

#include <algorithm>
#include <cwchar>
#include <utility>

#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

std::u16string_view WithoutLineEnd(std::u16string_view line) {
  return line.substr(0, line.find_last_not_of(u"\r\n") + 1);
}

std::string LineToUtf8(std::u16string_view units) {
  return zWString(units).toUtf8();
}

}  // namespace

std::vector<SplitValue> SplitLine(DBInterpreter& tokenizer,
                                  std::u16string_view line,
                                  char16_t separator) {
  std::wstring units;
  units.reserve(line.size());
  for (char16_t const unit : line) units += static_cast<wchar_t>(unit);
  auto const wide_separator = static_cast<wchar_t>(separator);
  std::vector<SplitValue> values;
  std::size_t const begin = line.find_first_not_of(u" \t");
  wchar_t const* const first =
      tokenizer.GetNextToken(units.data(), wide_separator);
  for (wchar_t const* token = first; token != nullptr;
       token = tokenizer.GetNextToken(nullptr, wide_separator)) {
    std::size_t const offset = begin + static_cast<std::size_t>(token - first);
    values.push_back({offset, line.substr(offset, std::wcslen(token))});
  }
  return values;
}

Place PlaceInLine(std::string const& path, std::size_t number,
                  std::u16string_view line, std::size_t offset,
                  std::size_t length) {
  std::size_t const from = std::min(offset, line.size());
  Place found(path, number,
              CharacterCount(LineToUtf8(line.substr(0, from))) + 1);
  found.length = std::max<std::size_t>(
      1, CharacterCount(LineToUtf8(line.substr(from, length))));
  found.source = LineToUtf8(WithoutLineEnd(line));
  return found;
}

DataLines::DataLines(std::string path, std::string_view bytes)
    : path_(std::move(path)) {
  bytes.remove_prefix(std::min(kMarkBytes, bytes.size()));
  units_.resize(bytes.size() / 2);  // an odd last byte is left out
  for (std::size_t i = 0; i < units_.size(); ++i) {
    units_[i] = static_cast<char16_t>(
        static_cast<unsigned char>(bytes[2 * i]) |
        static_cast<unsigned>(static_cast<unsigned char>(bytes[2 * i + 1]))
            << 8);
  }
}

std::u16string_view DataLines::LineAt(std::size_t begin) const {
  std::u16string_view const rest = std::u16string_view(units_).substr(begin);
  return rest.substr(0, rest.find(u'\n'));
}

bool DataLines::Next() {
  if (at_ >= units_.size()) return false;
  bool const begins_line = at_ == 0 || units_[at_ - 1] == u'\n';
  if (begins_line) {
    ++number_;
    line_begin_ = at_;
    line_ = LineAt(at_);
    has_line_feed_ = at_ + line_.size() < units_.size();
  }
  std::size_t const end = line_begin_ + line_.size() + has_line_feed_;
  piece_begin_ = at_;
  at_ = std::min(end, at_ + kMaxLineUnits);
  std::u16string_view const piece =
      std::u16string_view(units_).substr(piece_begin_, at_ - piece_begin_);
  piece_ = WithoutLineEnd(piece.substr(0, piece.find(u'\0')));
  return true;
}

Place DataLines::At(LinePlace const& place) const {
  return PlaceInLine(path_, place.number, LineAt(place.begin), place.offset,
                     place.length);
}

}  // namespace tabwerk::tool
