// A regular expression as a tree.
#ifndef TABWERK_TABLE_PATTERN_TREE_H
#define TABWERK_TABLE_PATTERN_TREE_H

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "table/pattern_units.h"

namespace tabwerk {

enum class PatternKind : std::uint8_t {
  kUnit,          // exactly `unit`
  kSet,           // a unit of sets[index]
  kBegin,         // at the start of the text
  kEnd,           // at its end
  kWordBoundary,  // between a unit of \w and one that is none
  kNoWordBoundary,
  kAhead,     // lookaheads[index] matches what follows
  kNoAhead,   // … does not
  kSequence,  // the children in order
  kChoice,    // one of the children
  kRepeat,    // the child min to max times
};

struct PatternNode {
  static constexpr std::int32_t kNone = -1;
  static constexpr std::int64_t kUnbounded = -1;

  PatternKind kind;
  char16_t unit = 0;
  std::int32_t index = kNone;
  std::int32_t first_child = kNone;
  std::int32_t next_sibling = kNone;
  std::int64_t min = 0;
  std::int64_t max = 0;
  // Upper bound of the instructions that the node takes.
  std::int64_t size = 1;
  // Nodes on the longest way down, this one included.
  std::int32_t depth = 1;
};

struct PatternTree {
  std::vector<PatternNode> nodes;
  std::int32_t root = PatternNode::kNone;
  // Roots of what "(?=" and "(?!" look for; inner ones before outer ones.
  std::vector<std::int32_t> lookaheads;
  std::vector<std::unique_ptr<UnitSet>> sets;
  // The set of \w; there when a word boundary is.
  std::int32_t word_set = PatternNode::kNone;
};

// Most instructions that a pattern may take, lookaheads included.
inline constexpr std::int64_t kMaxPatternSize = 100'000;

// Reads an expression in ECMAScript grammar.  Throws std::regex_error when it
// is malformed, nested too deeply (error_stack), too large, or refers to what
// an earlier group matched (error_complexity).
PatternTree ParsePattern(std::u16string_view text);

}  // namespace tabwerk

#endif  // TABWERK_TABLE_PATTERN_TREE_H
