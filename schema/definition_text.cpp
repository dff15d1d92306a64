// The text form of definitions.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "DBDefinition.h"
#include "schema/format.h"
#include "schema/layout.h"

namespace {

// Hands out the words of a definition's text.
class TextScanner {
 public:
  explicit TextScanner(std::string_view text) : rest_(text) {}

  // A type word as it is compared: what stands before it belongs to it, except
  // everything up to its last blank.  So a leading tab, "=" or line feed makes
  // it unknown.
  bool NextType(std::string_view* word) {
    if (!NextToken(" =\t", word)) return false;
    word->remove_prefix(word->rfind(' ') + 1);  // npos + 1 is 0
    return true;
  }

  // A name, with the delimiters that stand before it.
  bool NextName(std::string_view* name) { return NextToken(" \t,;\n", name); }

 private:
  // The text up to the first delimiter behind the first other character.
  // Exactly that delimiter is used up.  False when only delimiters are left.
  bool NextToken(std::string_view delimiters, std::string_view* token) {
    auto const start = rest_.find_first_not_of(delimiters);
    if (start == std::string_view::npos) return false;
    auto const end =
        std::min(rest_.find_first_of(delimiters, start), rest_.size());
    *token = rest_.substr(0, end);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return true;
  }

  std::string_view rest_;
};

DBType TypeOf(std::string_view word) {
  if (word == "real" || word == "DOUBLE") return DBTypeReal;
  if (word == "integer" || word == "LONG") return DBTypeInteger;
  if (word == "string" || word == "STRING") return DBTypeString;
  return DBTypeUnknown;
}

std::string_view WordOf(DBType type) {
  switch (type) {
    case DBTypeReal:
      return "real";
    case DBTypeInteger:
      return "integer";
    case DBTypeString:
      return "string";
    case DBTypeUnknown:
      break;
  }
  return "unknown";
}

std::string_view NameOf(DBFeld const& field) {
  return {field.name,
          static_cast<std::size_t>(
              std::find(field.name, field.name + DBFeld::kNameSize, '\0') -
              field.name)};
}

// The part of a text that is read: what a buffer of the format's size holds
// before its NUL.
std::string_view ReadablePart(char const* text) {
  constexpr std::size_t kLimit = tabwerk::format::kMaxDefinition - 1;
  void const* end = std::memchr(text, '\0', kLimit);
  if (end == nullptr) return {text, kLimit};
  return {text, static_cast<std::size_t>(static_cast<char const*>(end) - text)};
}

// Fills a new field.  Kept: a name that is too long leaves the field blank,
// without a link to its predecessor, although its bytes stay in the record.
void Fill(DBFeld* field, DBType type, std::string_view name,
          std::int32_t offset, DBFeld* previous) {
  if (name.size() >= DBFeld::kNameSize) return;
  field->type = type;
  name.copy(field->name, name.size());
  field->offset = offset;
  field->previous = previous;
}

char* Put(char* to, std::string_view text) {
  return std::copy(text.begin(), text.end(), to);
}

}  // namespace

int DBDefinition::GenerateDefinition(char const* text) {
  std::unique_ptr<DBFeld> first;
  DBFeld* last = nullptr;
  std::int32_t size = 0;
  TextScanner scanner(text == nullptr ? std::string_view()
                                      : ReadablePart(text));
  std::string_view word;
  std::string_view name;
  bool complete = true;
  while (scanner.NextType(&word) && scanner.NextName(&name)) {
    auto* field = new (std::nothrow) DBFeld;
    if (field == nullptr) {
      first.reset();
      size = 0;
      complete = false;
      break;
    }
    DBType const type = TypeOf(word);
    Fill(field, type, name, size, last);
    if (last == nullptr) {
      first.reset(field);
    } else {
      last->next = field;
    }
    last = field;
    size += tabwerk::ValueSize(type);
  }
  // Last, for the text may stand in one of the old fields.
  delete std::exchange(fields_, first.release());
  memory_size_ = size;
  return complete ? 1 : 0;
}

int DBDefinition::GenerateString(char* buffer, long size) const {
  std::size_t length = 0;
  for (DBFeld const* field = fields_; field != nullptr; field = field->next) {
    length += WordOf(field->type).size() + 1 + NameOf(*field).size() + 1;
  }
  // Kept: the NUL is not counted; callers rely on a buffer of exactly the
  // text's length passing.
  if (buffer == nullptr || size < 0 ||
      static_cast<std::size_t>(size) < length) {
    return 0;
  }
  char* end = buffer;
  for (DBFeld const* field = fields_; field != nullptr; field = field->next) {
    end = Put(end, WordOf(field->type));
    *end++ = ' ';
    end = Put(end, NameOf(*field));
    *end++ = field->next != nullptr ? ',' : '\n';
  }
  *end = '\0';
  return 1;
}
