// JSON of the tool: its values, and whether they are what docs/schema says.
//
// The library that reads it is known to json.cpp alone; a test that included it
// would take twice as long to compile.
#ifndef TABWERK_TESTS_CLI_JSON_H
#define TABWERK_TESTS_CLI_JSON_H

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>

namespace tabwerk::test {

// A value that was read.  A text that is no JSON, and a member or element that
// is not there, fail the test and are null.
class Json {
 public:
  static Json Parse(std::string const& text);

  Json operator[](char const* name) const;
  Json operator[](std::size_t index) const;
  Json operator[](int index) const {
    return (*this)[static_cast<std::size_t>(index)];
  }
  bool Has(char const* name) const;
  // Of an array or object; 0 for others.
  std::size_t Size() const;
  bool IsNull() const;
  bool IsTrue() const;
  // A string's characters; others as they are written.
  std::string Text() const;
  // As it is written, on one line or indented by so many blanks.
  std::string Dump(int indent = -1) const;

  friend bool operator==(Json const& a, Json const& b);
  friend bool operator==(Json const& value, std::string const& text) {
    return value == Json(text);
  }
  friend bool operator==(Json const& value, char const* text) {
    return value == Json(std::string(text));
  }
  friend bool operator==(Json const& value, long long number) {
    return value == Json(number);
  }
  friend bool operator==(Json const& value, int number) {
    return value == Json(number);
  }
  friend bool operator==(Json const& value, std::size_t number) {
    return value == Json(static_cast<long long>(number));
  }
  friend std::ostream& operator<<(std::ostream& stream, Json const& value);

 private:
  struct Value;
  explicit Json(std::shared_ptr<Value const> value);
  explicit Json(std::string const& text);
  explicit Json(long long number);

  std::shared_ptr<Value const> value_;
};

// What a text of JSON has that docs/schema/NAME.json does not allow, a line for
// each; empty when it is as described.  Knows the words type, enum, minimum,
// maximum, items, properties, required and additionalProperties; any other word
// of a schema that could forbid something is reported as well.
std::string AgainstSchema(std::string const& name, std::string const& text);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_JSON_H
