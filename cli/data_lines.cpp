#include "cli/data_lines.h"

#include <algorithm>
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
  std::u16string_view const line = LineAt(place.begin);
  std::size_t const from = std::min(place.offset, line.size());
  Place found(path_, place.number,
              CharacterCount(LineToUtf8(line.substr(0, from))) + 1);
  found.length = std::max<std::size_t>(
      1, CharacterCount(LineToUtf8(line.substr(from, place.length))));
  found.source = LineToUtf8(WithoutLineEnd(line));
  return found;
}

}  // namespace tabwerk::tool
