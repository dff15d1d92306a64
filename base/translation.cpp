#include "base/translation.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace tabwerk {
namespace {

constexpr std::u16string_view kOpening = u"#TS(";
constexpr std::u16string_view kClosing = u")TS~";
constexpr std::size_t kMarkerSize = 4;
constexpr char16_t kSeparator = u'\u00AC';

// Translates a text in its own buffer, in three regions that keep their order:
// finished text [0, done_), text under work [begin_, end_), and untouched text
// from rest_ on.  Text moves from the rest through the middle to the finished
// part, each unit a bounded number of times, so nested and repeated sections
// cost no more than their length.  The middle never holds a closing marker.
class Translator {
 public:
  Translator(std::u16string& text, short language)
      : text_(text), language_(language) {}

  void Run() {
    while (MoveToOpening() && ReplaceSection()) {
    }
    Compact();
  }

 private:
  std::u16string_view View(std::size_t from, std::size_t to) const {
    return std::u16string_view(text_).substr(from, to - from);
  }

  // Moves [from, to) behind the finished text.
  void Finish(std::size_t from, std::size_t to) {
    std::copy(text_.data() + from, text_.data() + to, text_.data() + done_);
    done_ += to - from;
  }

  // Makes the middle begin with the next opening marker; false when there is
  // none.
  bool MoveToOpening() {
    auto const in_middle = View(begin_, end_).find(kOpening);
    if (in_middle != std::u16string_view::npos) {
      Finish(begin_, begin_ + in_middle);
      begin_ += in_middle;
      return true;
    }
    // A marker may begin in the last units of the middle: give them back.
    auto const tail = std::min(end_ - begin_, kMarkerSize - 1);
    Finish(begin_, end_ - tail);
    std::copy_backward(text_.data() + end_ - tail, text_.data() + end_,
                       text_.data() + rest_);
    rest_ -= tail;
    begin_ = end_ = rest_;
    auto const in_rest = text_.find(kOpening, rest_);
    if (in_rest == std::u16string::npos) return false;
    Finish(rest_, in_rest);
    begin_ = in_rest;
    end_ = rest_ = in_rest + kMarkerSize;
    return true;
  }

  // Moves the section's content into the middle and takes the closing marker
  // out of the text.  Returns the place from which the content was added (the
  // content before it has no separator); nothing, and no change, when the
  // section is not closed.
  std::optional<std::size_t> TakeContent() {
    auto const middle_size = end_ - begin_;
    for (std::size_t tail =
             std::min(kMarkerSize - 1, middle_size - kMarkerSize);
         tail > 0; --tail) {
      // A closing marker that begins in the middle and ends in the rest.
      if (View(end_ - tail, end_) == kClosing.substr(0, tail) &&
          std::u16string_view(text_).substr(rest_).starts_with(
              kClosing.substr(tail))) {
        end_ -= tail;
        rest_ += kMarkerSize - tail;
        return end_;
      }
    }
    auto const closing = text_.find(kClosing, rest_);
    if (closing == std::u16string::npos) return std::nullopt;
    auto const added = end_;
    if (end_ != rest_) {
      std::copy(text_.data() + rest_, text_.data() + closing,
                text_.data() + end_);
    }
    end_ += closing - rest_;
    rest_ = closing + kMarkerSize;
    return added;
  }

  // Replaces the section at the start of the middle by its piece; false when
  // it is not closed or lacks the piece: the text is then as it was.
  bool ReplaceSection() {
    auto const added = TakeContent();
    if (!added) return false;
    // Counted as an unsigned number, so a negative language has no piece.
    auto wanted =
        static_cast<std::size_t>(static_cast<std::ptrdiff_t>(language_));
    auto piece = begin_ + kMarkerSize;
    auto search = *added;
    while (wanted > 0) {
      auto const separator = View(search, end_).find(kSeparator);
      if (separator == std::u16string_view::npos) {
        PutBackClosing();
        return false;
      }
      piece = search = search + separator + 1;
      --wanted;
    }
    auto const piece_size = View(search, end_).find(kSeparator);
    begin_ = piece;
    if (piece_size != std::u16string_view::npos) end_ = search + piece_size;
    // The end of the finished text and the piece may make a marker together.
    auto const tail = std::min(done_, kMarkerSize - 1);
    std::copy_backward(text_.data() + done_ - tail, text_.data() + done_,
                       text_.data() + begin_);
    done_ -= tail;
    begin_ -= tail;
    return true;
  }

  void PutBackClosing() {
    std::copy(kClosing.begin(), kClosing.end(), text_.data() + end_);
    end_ += kMarkerSize;
  }

  void Compact() {
    Finish(begin_, end_);
    Finish(rest_, text_.size());
    text_.resize(done_);
  }

  std::u16string& text_;
  short language_;
  std::size_t done_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t rest_ = 0;
};

}  // namespace

bool HasTranslation(std::u16string_view text) noexcept {
  return text.find(kOpening) != std::u16string_view::npos;
}

std::optional<char16_t> FirstTranslatedUnit(std::u16string_view text,
                                            short language) noexcept {
  if (!text.starts_with(kOpening)) return std::nullopt;
  short piece = 0;
  for (char16_t const unit : text.substr(kMarkerSize)) {
    // Here another section or the end of this one may begin.
    if (unit == kOpening.front() || unit == kClosing.front() || unit == 0)
      break;
    if (unit == kSeparator) {
      if (piece == language) break;  // an empty piece
      ++piece;
    } else if (piece == language) {
      return unit;
    }
  }
  return std::nullopt;
}

void TranslateText(std::u16string& text) {
  if (HasTranslation(text)) Translator(text, CurrentLanguage()).Run();
}

}  // namespace tabwerk
