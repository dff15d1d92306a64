// Regular expressions over texts of 16-bit units, matched in bounded time.
#ifndef TABWERK_TABLE_PATTERN_H
#define TABWERK_TABLE_PATTERN_H

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "table/pattern_states.h"
#include "table/pattern_tree.h"

namespace tabwerk {

// A compiled expression in ECMAScript grammar that matches whole texts.
//
// It runs all ways through the expression side by side (no back-tracking, no
// recursion), so a text of n units takes at most n × the expression's size.
// "." is one unit but CR and LF; classes such as \w are the standard library's.
// Not supported, because the time could not be bounded: \1, \2 … for what a
// group matched.
class Pattern {
 public:
  // Throws std::regex_error when the expression is malformed, nested too deeply
  // (error_stack) or cannot be matched in bounded time (error_complexity).
  explicit Pattern(std::u16string_view expression);

  Pattern(Pattern const&) = delete;
  Pattern& operator=(Pattern const&) = delete;

  // True when the whole text matches.  Throws std::regex_error
  // (error_complexity) when this text takes too long.
  bool Matches(std::u16string_view text);
  // The same for a text as it is stored, up to its NUL or the end of units;
  // nothing when that cannot be told before the text is translated.
  std::optional<bool> MatchesStored(std::u16string_view units);
  // As Matches, step by step, without what was remembered of other texts.
  bool MatchesBySteps(std::u16string_view text);

 private:
  enum class Op : std::uint8_t {
    kUnit,    // goes on behind a unit equal to a
    kSet,     // goes on behind a unit of set a
    kAssert,  // goes on when assertion kind holds here
    kFork,    // goes on at a and at b
    kJump,    // goes on at a
    kAccept,
  };
  struct Instruction {
    Op op;
    PatternKind kind = PatternKind::kUnit;  // of an assertion
    std::int32_t a = 0;
    std::int32_t b = 0;
  };
  // Instructions for one direction of reading.
  struct Program {
    std::vector<Instruction> code;
    bool backwards = false;
  };
  // Places of a program that are reached at one position of the text.
  struct Threads {
    std::vector<std::int32_t> waiting;  // at a unit or set
    bool accepted = false;
  };

  Program Compile(std::int32_t root, bool backwards) const;
  void Emit(Program* program, std::int32_t node) const;
  void EmitSequence(Program* program, PatternNode const& node) const;
  void EmitChoice(Program* program, PatternNode const& node) const;
  void EmitRepeat(Program* program, PatternNode const& node) const;
  PatternNode const& NodeAt(std::int32_t node) const;

  void FindKinds();
  std::uint64_t KindsOf(char16_t unit);
  PatternStates::Places Closure(Threads threads) const;
  PatternStates::Places FollowPlaces(PatternStates::Places const& from,
                                     std::uint64_t kinds);
  void MakeStates();

  void Follow(Program const& program, std::int32_t start, std::size_t position,
              Threads* threads);
  bool Consumes(Instruction const& instruction, char16_t unit);
  bool IsInSet(std::int32_t number, char16_t unit);
  bool Holds(Instruction const& assertion, std::size_t position);
  bool IsWordAt(std::size_t position);
  void LookAhead(std::size_t lookahead);
  void CountSteps(std::size_t steps);
  void NextRound(std::size_t code_size);

  PatternTree tree_;
  Program program_;
  std::vector<Program> lookaheads_;  // inner ones before outer ones

  // Instructions of the program that stand for the same units have one kind.
  std::vector<std::int32_t> kind_of_;     // by place; -1 for other instructions
  std::vector<Instruction> kind_sample_;  // an instruction of every kind
  std::optional<PatternStates> states_;   // none where they do not suffice

  // While a text is matched:
  std::u16string_view text_;
  std::vector<std::vector<bool>> found_ahead_;  // by lookahead and position
  std::vector<std::uint32_t> round_of_;  // when an instruction was reached last
  std::uint32_t round_ = 0;
  std::vector<std::int32_t> pending_;
  std::uint64_t steps_ = 0;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_PATTERN_H
