// Any text as a definition: its fields lie in the record one behind the other,
// and so they do in a copy and in what a file keeps of it.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "DBDefinition.h"
#include "fuzz/fuzz_support.h"
#include "schema/container.h"
#include "schema/layout.h"

namespace {

using tabwerk::fuzz::Require;

std::int32_t SizeOf(DBType type) {
  if (type == DBTypeReal) return 8;
  return type == DBTypeInteger || type == DBTypeString ? 4 : 0;
}

// A name that was too long: the field is blank, its value stays in the record.
bool IsBlank(DBFeld const& field) {
  return field.type == DBTypeUnknown && field.name[0] == '\0' &&
         field.offset == 0;
}

void RequirePacked(DBDefinition const& definition) {
  std::int32_t end = 0;
  bool blank_before = false;
  DBFeld const* previous = nullptr;
  for (auto const* field = definition.GetDefinition(); field != nullptr;
       previous = field, field = field->next) {
    Require(std::memchr(field->name, 0, sizeof field->name) != nullptr,
            "every name ends");
    DBFeld* found = nullptr;
    Require(definition.GetOffset(field->name, found) == 1 &&
                found->offset <= field->offset,
            "every name leads to the first field of that name");
    if (IsBlank(*field)) {
      blank_before = true;
      continue;
    }
    Require(field->offset == end || (blank_before && field->offset > end),
            "fields lie one behind the other");
    Require(field->previous == previous, "the chain leads back");
    end = field->offset + SizeOf(field->type);
  }
  Require(definition.GetMemorySize() == end ||
              (blank_before && definition.GetMemorySize() > end),
          "a record ends behind its last field");
}

void RequireSame(DBDefinition const& expected, DBDefinition const& got) {
  RequirePacked(got);
  Require(tabwerk::SameLayout(expected, got), "a copy has the same layout");
  auto const* other = got.GetDefinition();
  for (auto const* field = expected.GetDefinition(); field != nullptr;
       field = field->next, other = other->next) {
    Require(std::strcmp(field->name, other->name) == 0,
            "a copy has the same names");
  }
}

// The text form fills a buffer of its length and leaves a shorter one alone.
void RequireTextForm(DBDefinition const& definition) {
  std::size_t length = 0;
  for (auto const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    constexpr std::size_t kWord[] = {7, 4, 7, 6};  // "unknown", "real" …
    length += kWord[field->type] + std::strlen(field->name) + 2;
  }
  std::vector<char> buffer(length + 1, '?');
  if (length > 0) {
    Require(definition.GenerateString(buffer.data(),
                                      static_cast<long>(length) - 1) == 0 &&
                buffer.front() == '?',
            "a buffer that is too short stays as it is");
  }
  Require(definition.GenerateString(buffer.data(), static_cast<long>(length)) ==
                  1 &&
              std::strlen(buffer.data()) == length,
          "a buffer of the text's length is enough");
  RequirePacked(DBDefinition(buffer.data()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  DBDefinition const definition(text.c_str());
  RequirePacked(definition);
  RequireTextForm(definition);
  RequireSame(definition, DBDefinition(definition));
  DBDefinition assigned("integer ID,string NAME\n");
  assigned = definition;
  RequireSame(definition, assigned);
  std::string stored;
  if (tabwerk::StoredText(definition, &stored)) {
    Require(stored.size() < tabwerk::format::kMaxDefinition,
            "what a file keeps fits into its record");
    Require(tabwerk::SameLayout(definition, DBDefinition(stored.c_str())),
            "what a file keeps reads back to the same layout");
  }
  return 0;
}
