// Definitions and fields without memory.
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>

#include "DBDefinition.h"
#include "tests/sweeps/memory_operations.h"

namespace tabwerk::test {
namespace {

constexpr char kText[] = "integer ID,string NAME,real PRICE\n";

std::string Names(DBFeld const* field) {
  std::string names;
  for (; field != nullptr; field = field->next) {
    names += field->name + std::to_string(field->offset) + " ";
  }
  return names;
}

struct Definitions {
  std::string State() const {
    std::string state = Names(target.GetDefinition()) +
                        std::to_string(target.GetMemorySize()) + "|" +
                        Names(&field) + "|";
    if (made) state += "made " + Names(made->GetDefinition());
    if (made_field) state += "made " + Names(&*made_field);
    return state + buffer.data();
  }

  DBDefinition const source{kText};
  DBDefinition target{"real OLD,real OTHER\n"};
  DBFeld field{*target.GetDefinition()};
  std::optional<DBDefinition> made;
  std::optional<DBFeld> made_field;
  std::array<char, 100> buffer{};
};

}  // namespace

std::vector<Operation> DefinitionOperations() {
  using D = Definitions;
  return {
      In<D>(Promise::kNeedsNone,
            {"DBFeld::DBFeld()", "DBFeld::~DBFeld()",
             "DBDefinition::DBDefinition()", "DBDefinition::~DBDefinition()",
             "DBDefinition::GetDefinition()",
             "DBDefinition::GetDefinition() const",
             "DBDefinition::GetMemorySize() const",
             "DBDefinition::GetOffset(char const*, DBFeld*&) const",
             "DBDefinition::GenerateString(char*, long) const"},
            [](D& d) {
              DBFeld const blank;
              DBDefinition empty;
              DBFeld* found = nullptr;
              return blank.next == nullptr &&
                     empty.GetDefinition() == nullptr &&
                     empty.GetMemorySize() == 0 &&
                     d.target.GetOffset("OTHER", found) == 1 &&
                     d.source.GetDefinition() != nullptr &&
                     d.source.GenerateString(d.buffer.data(), 90) == 1;
            }),
      In<D>(Promise::kEmpties, {"DBFeld::DBFeld(DBFeld const&)"},
            [](D& d) {
              d.made_field.emplace(*d.source.GetDefinition());
              return true;
            },
            {[](D& d) {
              d.made_field.emplace(
                  *DBDefinition("integer ID\n").GetDefinition());
            }}),
      In<D>(Promise::kSilent, {"DBFeld::operator=(DBFeld const&)"},
            [](D& d) {
              d.field = *d.source.GetDefinition();
              return true;
            }),
      In<D>(Promise::kEmpties, {"DBDefinition::DBDefinition(char const*)"},
            [](D& d) {
              d.made.emplace(kText);
              return true;
            },
            {[](D& d) { d.made.emplace(); }}),
      In<D>(Promise::kEmpties,
            {"DBDefinition::DBDefinition(DBDefinition const&)"},
            [](D& d) {
              d.made.emplace(d.source);
              return true;
            },
            {[](D& d) { d.made.emplace(); }}),
      In<D>(Promise::kSilent, {"DBDefinition::operator=(DBDefinition const&)"},
            [](D& d) {
              d.target = d.source;
              return true;
            }),
      In<D>(Promise::kEmpties,
            {"DBDefinition::GenerateDefinition(char const*)"},
            [](D& d) { return d.target.GenerateDefinition(kText) == 1; },
            {[](D& d) { d.target = DBDefinition(); }}),
  };
}

TEST(SweepMemoryDefinitions, EveryAllocation) {
  SweepOperations(DefinitionOperations());
}

}  // namespace tabwerk::test
