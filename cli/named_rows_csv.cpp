// CSV and TSV.
#include <charconv>
#include <utility>

#include "cli/named_rows.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

// The text that a value of TSV stands for: "\t", "\n", "\r", "\\" and "\xHH"
// are one character, any other "\" is itself.
std::string Unescape(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    char const next = i + 1 < value.size() ? value[i + 1] : '\0';
    if (value[i] != '\\') {
      text += value[i];
    } else if (next == 't' || next == 'n' || next == 'r' || next == '\\') {
      text += next == 't'   ? '\t'
              : next == 'n' ? '\n'
              : next == 'r' ? '\r'
                            : '\\';
      ++i;
    } else {
      unsigned code = 0;
      bool const is_code =
          next == 'x' && i + 3 < value.size() &&
          std::from_chars(value.data() + i + 2, value.data() + i + 4, code, 16)
                  .ptr == value.data() + i + 4 &&
          code < 0x80;
      text += is_code ? static_cast<char>(code) : value[i];
      if (is_code) i += 3;
    }
  }
  return text;
}

// Takes records off a text.
class DelimitedReader {
 public:
  DelimitedReader(NamedForm form, std::string const& file,
                  std::string_view text, char separator)
      : is_csv_(form == NamedForm::kCsv),
        file_(file),
        text_(text),
        separator_(is_csv_ ? separator : '\t'),
        places_(text) {}

  // A record; its cells are numbered.  False at the end of the text and where
  // it cannot be gone on with.
  bool Next(NamedRow* row);
  std::optional<Problem> const& Failure() const { return failure_; }

 private:
  bool AtLineEnd() const {
    return at_ >= text_.size() || text_[at_] == '\n' ||
           (text_[at_] == '\r' && at_ + 1 < text_.size() &&
            text_[at_ + 1] == '\n');
  }
  void SkipLineEnd() {
    if (at_ < text_.size() && text_[at_] == '\r') ++at_;
    if (at_ < text_.size()) ++at_;
  }
  std::string Quoted(TextPlace start, NamedRow* row);
  std::string Plain();

  bool is_csv_;
  std::string const& file_;
  std::string_view text_;
  char separator_;
  PlaceFinder places_;
  std::size_t at_ = 0;
  std::optional<Problem> failure_;
};

bool DelimitedReader::Next(NamedRow* row) {
  while (at_ < text_.size() && AtLineEnd()) SkipLineEnd();
  if (at_ >= text_.size()) return false;
  *row = NamedRow();
  std::size_t const start = at_;
  for (;;) {
    TextPlace const place = places_.At(at_);
    bool const is_quoted = is_csv_ && at_ < text_.size() && text_[at_] == '"';
    std::string value = is_quoted ? Quoted(place, row) : Plain();
    if (failure_) return false;
    row->cells.push_back({row->cells.size(), std::move(value), place});
    if (AtLineEnd()) break;
    ++at_;  // the separator
  }
  row->source = text_.substr(start, at_ - start);
  SkipLineEnd();
  return true;
}

std::string DelimitedReader::Quoted(TextPlace start, NamedRow* row) {
  std::string value;
  for (++at_; at_ < text_.size(); ++at_) {
    if (text_[at_] == '"') {
      bool const is_double = at_ + 1 < text_.size() && text_[at_ + 1] == '"';
      if (!is_double) break;
      ++at_;
    }
    value += text_[at_];
  }
  if (at_ >= text_.size()) {
    failure_ = Problem{TW(632), Place(file_, start.line, start.character),
                       "the double quote that opens here is never closed",
                       "close it, or double it where it belongs to the text; "
                       "nothing was changed"};
    return value;
  }
  ++at_;
  if (AtLineEnd() || text_[at_] == separator_) return value;
  if (!row->objection) {
    row->objection = {TW(631), places_.At(at_),
                      "there is text behind a closing double quote"};
  }
  return value + Plain();
}

std::string DelimitedReader::Plain() {
  std::size_t const start = at_;
  while (!AtLineEnd() && text_[at_] != separator_) ++at_;
  std::string_view const value = text_.substr(start, at_ - start);
  return is_csv_ ? std::string(value) : Unescape(value);
}

}  // namespace

std::optional<Problem> ReadDelimited(NamedForm form, std::string const& file,
                                     std::string_view text, char separator,
                                     NamedRows* rows) {
  DelimitedReader reader(form, file, text, separator);
  NamedRow row;
  if (reader.Next(&row)) {
    rows->head = row.source;
    for (NamedCell& cell : row.cells) {
      rows->columns.push_back({std::move(cell.text), cell.place});
    }
  }
  while (reader.Next(&row)) {
    std::size_t const count = row.cells.size();
    std::size_t const wanted = rows->columns.size();
    if (!row.objection && count != wanted) {
      std::size_t const odd = count > wanted ? wanted : count - 1;
      row.objection = {TW(603), row.cells[odd].place,
                       Count(static_cast<long long>(count), "value") + " for " +
                           Count(static_cast<long long>(wanted), "column")};
    }
    rows->rows.push_back(std::move(row));
  }
  return reader.Failure();
}

}  // namespace tabwerk::tool
