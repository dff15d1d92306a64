// JSON and newline-delimited JSON.
#include <algorithm>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/named_rows.h"

namespace tabwerk::tool {
namespace {

// Walks over a text and tells how far it was read.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = char const*;
  using reference = char const&;

  CountingIterator(char const* at, char const** furthest)
      : at_(at), furthest_(furthest) {}

  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    *furthest_ = ++at_;
    return *this;
  }
  bool operator==(CountingIterator const& other) const {
    return at_ == other.at_;
  }

 private:
  char const* at_;
  char const** furthest_;
};

// Makes rows of what a parser reads.
class JsonRows : public nlohmann::json_sax<nlohmann::json> {
 public:
  JsonRows(NamedForm form, std::string_view text, NamedRows* rows)
      : row_depth_(form == NamedForm::kJson ? 1 : 0),
        text_(text),
        places_(text),
        rows_(*rows) {}

  // For the parser: the part of the text that is read.
  CountingIterator From(std::size_t offset) {
    at_ = text_.data() + offset;
    return {at_, &at_};
  }
  CountingIterator To(std::size_t offset) {
    end_ = offset;
    return {text_.data() + offset, &at_};
  }
  std::optional<NamedObjection> const& Failure() const { return failure_; }

  bool null() override { return Ignore(); }
  bool boolean(bool) override {
    return Object(TW(634), "true and false are no values of a table");
  }
  bool number_integer(number_integer_t value) override {
    return Value(std::to_string(value));
  }
  bool number_unsigned(number_unsigned_t value) override {
    return Value(std::to_string(value));
  }
  bool number_float(number_float_t, string_t const& digits) override {
    return Value(digits);
  }
  bool string(string_t& value) override { return Value(value); }
  bool binary(binary_t&) override { return Ignore(); }
  bool start_object(std::size_t) override;
  bool end_object() override;
  bool start_array(std::size_t) override;
  bool end_array() override {
    --depth_;
    return true;
  }
  bool key(string_t& name) override;
  bool parse_error(std::size_t, std::string const&,
                   nlohmann::json::exception const&) override {
    return Fail(Offset(), "this is no JSON");
  }

 private:
  std::size_t Offset() const {
    return static_cast<std::size_t>(at_ - text_.data());
  }
  bool InRow() const { return depth_ == row_depth_ + 1; }
  bool Fail(std::size_t offset, char const* what) {
    if (!failure_) failure_ = {TW(633), places_.At(offset), what};
    return false;
  }
  bool Ignore() {
    if (depth_ > row_depth_) return true;
    return Fail(Offset() - 1, "a row is an object of columns and values");
  }
  bool Value(std::string text);
  bool Object(Code code, char const* what);

  int row_depth_;
  int depth_ = 0;
  std::string_view text_;
  PlaceFinder places_;
  NamedRows& rows_;
  char const* at_ = nullptr;
  std::size_t end_ = 0;  // of the part that is read
  std::map<std::string, std::size_t> columns_;
  std::size_t column_ = 0;
  std::size_t row_start_ = 0;
  TextPlace place_;  // of the value behind the last key
  NamedRow row_;
  std::optional<NamedObjection> failure_;
};

bool JsonRows::start_object(std::size_t) {
  if (depth_ < row_depth_) return Fail(Offset() - 1, "rows stand in an array");
  if (InRow()) {
    static_cast<void>(Object(TW(634), "an object is no value of a table"));
  }
  if (depth_++ > row_depth_) return true;
  row_ = NamedRow();
  row_start_ = Offset() - 1;
  return true;
}

bool JsonRows::end_object() {
  if (--depth_ > row_depth_) return true;
  row_.source = text_.substr(row_start_, Offset() - row_start_);
  rows_.rows.push_back(std::move(row_));
  return true;
}

bool JsonRows::start_array(std::size_t) {
  if (depth_ == row_depth_) {
    return Fail(Offset() - 1, "a row is an object of columns and values");
  }
  if (InRow()) {
    static_cast<void>(Object(TW(634), "an array is no value of a table"));
  }
  ++depth_;
  return true;
}

bool JsonRows::key(string_t& name) {
  if (!InRow()) return true;
  // Not in the next line, where the value is missing.
  std::size_t const value = text_.find_first_not_of(" \t\r\n:", Offset());
  place_ = places_.At(std::min(value, end_));
  auto const [it, is_new] = columns_.emplace(name, rows_.columns.size());
  if (is_new) rows_.columns.push_back({name, place_});
  column_ = it->second;
  return true;
}

bool JsonRows::Value(std::string text) {
  if (!InRow()) return Ignore();
  row_.cells.push_back({column_, std::move(text), place_});
  return true;
}

bool JsonRows::Object(Code code, char const* what) {
  if (!InRow()) return Ignore();
  if (!row_.objection) row_.objection = {code, place_, what};
  return true;
}

}  // namespace

std::optional<Problem> ReadJson(NamedForm form, std::string const& file,
                                std::string_view text, NamedRows* rows) {
  JsonRows sax(form, text, rows);
  bool const by_line = form == NamedForm::kNdjson;
  // An empty text is no JSON, but holds no lines.
  for (std::size_t start = 0;
       start < text.size() || (start == 0 && !by_line);) {
    std::size_t const end =
        by_line ? std::min(text.find('\n', start), text.size()) : text.size();
    std::string_view const part = text.substr(start, end - start);
    bool const is_empty =
        by_line && part.find_first_not_of(" \t\r") == part.npos;
    bool const sound = is_empty || nlohmann::json::sax_parse(sax.From(start),
                                                             sax.To(end), &sax);
    if (!sound) {
      NamedObjection const failure =
          sax.Failure().value_or(NamedObjection{TW(633), {}, "no JSON"});
      return Problem{failure.code,
                     Place(file, failure.place.line, failure.place.character),
                     failure.what, "correct the text; nothing was changed"};
    }
    start = end + 1;
  }
  return std::nullopt;
}

}  // namespace tabwerk::tool
