#include "table/pattern.h"

#include <algorithm>
#include <regex>
#include <utility>

namespace tabwerk {
namespace {

namespace codes = std::regex_constants;

using Kind = PatternKind;
using Node = PatternNode;

// Longest expression in units.
constexpr std::size_t kMaxExpression = 65'536;
// Up to this length the standard library judges an expression; it takes up to
// 600 bytes of stack for each unit.
constexpr std::size_t kMaxJudged = 400;
// Steps for one text; half a second.
constexpr std::uint64_t kMaxSteps = 60'000'000;
// What a position costs a lookahead, which is asked at every one of them.
constexpr std::uint64_t kStepsOfPosition = 4;

// Lets the standard library find what is wrong with an expression.
void Judge(std::u16string_view expression) {
#ifdef __GLIBCXX__
  // Also refuses what this mode cannot match without back-tracking.
  constexpr auto kFlags = codes::ECMAScript | codes::__polynomial;
#else
  constexpr auto kFlags = codes::ECMAScript;
#endif
  try {
    std::wregex const judged(WidenUnits(expression), kFlags);
  } catch (std::regex_error const& error) {
    // Its limit on the size of an expression is as good as ours.
    if (error.code() != codes::error_space) throw;
    throw std::regex_error(codes::error_complexity);
  }
}

// True when a number in it may be too large for the standard library.
bool HasLongNumber(std::u16string_view expression) {
  constexpr int kMostDigits = 9;
  int digits = 0;
  for (char16_t const unit : expression) {
    digits = unit >= u'0' && unit <= u'9' ? digits + 1 : 0;
    if (digits > kMostDigits) return true;
  }
  return false;
}

std::int32_t CodeSize(auto const& program) {
  return static_cast<std::int32_t>(program->code.size());
}

}  // namespace

Pattern::Pattern(std::u16string_view expression) {
  if (expression.size() > kMaxExpression) {
    throw std::regex_error(codes::error_complexity);
  }
  if (expression.size() <= kMaxJudged && !HasLongNumber(expression)) {
    Judge(expression);
  }
  tree_ = ParsePattern(expression);
  program_ = Compile(tree_.root, false);
  for (std::int32_t const root : tree_.lookaheads) {
    lookaheads_.push_back(Compile(root, true));
  }
  FindKinds();
  MakeStates();
}

// --- Compiling ------------------------------------------------------------

PatternNode const& Pattern::NodeAt(std::int32_t node) const {
  return tree_.nodes[static_cast<std::size_t>(node)];
}

Pattern::Program Pattern::Compile(std::int32_t root, bool backwards) const {
  Program program;
  program.backwards = backwards;
  Emit(&program, root);
  program.code.push_back({.op = Op::kAccept});
  return program;
}

void Pattern::Emit(Program* program, std::int32_t node_number) const {
  Node const& node = NodeAt(node_number);
  switch (node.kind) {
    case Kind::kUnit:
      program->code.push_back({.op = Op::kUnit, .a = node.unit});
      break;
    case Kind::kSet:
      program->code.push_back({.op = Op::kSet, .a = node.index});
      break;
    case Kind::kSequence:
      EmitSequence(program, node);
      break;
    case Kind::kChoice:
      EmitChoice(program, node);
      break;
    case Kind::kRepeat:
      EmitRepeat(program, node);
      break;
    default:
      program->code.push_back(
          {.op = Op::kAssert, .kind = node.kind, .a = node.index});
  }
}

void Pattern::EmitSequence(Program* program, Node const& node) const {
  std::vector<std::int32_t> children;
  for (std::int32_t child = node.first_child; child != Node::kNone;
       child = NodeAt(child).next_sibling) {
    children.push_back(child);
  }
  if (program->backwards) std::reverse(children.begin(), children.end());
  for (std::int32_t const child : children) Emit(program, child);
}

void Pattern::EmitChoice(Program* program, Node const& node) const {
  std::vector<std::size_t> jumps;
  for (std::int32_t child = node.first_child; child != Node::kNone;
       child = NodeAt(child).next_sibling) {
    bool const last = NodeAt(child).next_sibling == Node::kNone;
    std::size_t const fork = program->code.size();
    if (!last) {
      program->code.push_back({.op = Op::kFork, .a = CodeSize(program) + 1});
    }
    Emit(program, child);
    if (last) break;
    jumps.push_back(program->code.size());
    program->code.push_back({.op = Op::kJump});
    program->code[fork].b = CodeSize(program);
  }
  for (std::size_t const jump : jumps)
    program->code[jump].a = CodeSize(program);
}

void Pattern::EmitRepeat(Program* program, Node const& node) const {
  for (std::int64_t i = 0; i < node.min; ++i) Emit(program, node.first_child);
  if (node.max == Node::kUnbounded) {
    std::size_t const fork = program->code.size();
    program->code.push_back({.op = Op::kFork, .a = CodeSize(program) + 1});
    Emit(program, node.first_child);
    program->code.push_back(
        {.op = Op::kJump, .a = static_cast<std::int32_t>(fork)});
    program->code[fork].b = CodeSize(program);
    return;
  }
  std::vector<std::size_t> forks;
  for (std::int64_t i = node.min; i < node.max; ++i) {
    forks.push_back(program->code.size());
    program->code.push_back({.op = Op::kFork, .a = CodeSize(program) + 1});
    Emit(program, node.first_child);
  }
  for (std::size_t const fork : forks)
    program->code[fork].b = CodeSize(program);
}

// --- Matching by states -----------------------------------------------------

// Leaves kind_sample_ empty where states do not suffice: what an assertion says
// depends on more than the units before, every kind needs a bit, and the states
// of a long program may be many and large.
void Pattern::FindKinds() {
  constexpr std::size_t kMostKinds = 64;
  constexpr std::size_t kMostInstructions = 1024;
  if (program_.code.size() > kMostInstructions) return;
  for (auto const& instruction : program_.code) {
    bool const consumes =
        instruction.op == Op::kUnit || instruction.op == Op::kSet;
    if (!consumes) {
      kind_of_.push_back(-1);
      if (instruction.op != Op::kAssert) continue;
      kind_sample_.clear();
      return;
    }
    auto const same = std::find_if(
        kind_sample_.begin(), kind_sample_.end(), [&](auto const& sample) {
          return sample.op == instruction.op && sample.a == instruction.a;
        });
    kind_of_.push_back(static_cast<std::int32_t>(same - kind_sample_.begin()));
    if (same == kind_sample_.end()) kind_sample_.push_back(instruction);
    if (kind_sample_.size() <= kMostKinds) continue;
    kind_sample_.clear();
    return;
  }
}

void Pattern::MakeStates() {
  if (kind_sample_.empty()) return;
  Threads start;
  NextRound(program_.code.size());
  Follow(program_, 0, 0, &start);
  states_.emplace(
      Closure(std::move(start)),
      [this](char16_t unit) { return KindsOf(unit); },
      [this](PatternStates::Places const& from, std::uint64_t kinds) {
        return FollowPlaces(from, kinds);
      });
}

std::uint64_t Pattern::KindsOf(char16_t unit) {
  std::uint64_t kinds = 0;
  for (std::size_t kind = 0; kind < kind_sample_.size(); ++kind) {
    if (Consumes(kind_sample_[kind], unit)) kinds |= std::uint64_t{1} << kind;
  }
  return kinds;
}

PatternStates::Places Pattern::Closure(Threads threads) const {
  std::sort(threads.waiting.begin(), threads.waiting.end());
  return {std::move(threads.waiting), threads.accepted};
}

PatternStates::Places Pattern::FollowPlaces(PatternStates::Places const& from,
                                            std::uint64_t kinds) {
  steps_ = 0;
  Threads reached;
  NextRound(program_.code.size());
  for (std::int32_t const place : from.waiting) {
    auto const kind = kind_of_[static_cast<std::size_t>(place)];
    // No assertion looks at the position.
    if ((kinds >> kind & 1) != 0) Follow(program_, place + 1, 0, &reached);
  }
  return Closure(std::move(reached));
}

bool Pattern::Matches(std::u16string_view text) {
  if (states_) {
    auto const verdict = states_->Matches(text);
    if (verdict != PatternStates::Verdict::kUnknown) {
      return verdict == PatternStates::Verdict::kMatches;
    }
  }
  return MatchesBySteps(text);
}

std::optional<bool> Pattern::MatchesStored(std::u16string_view units) {
  using Verdict = PatternStates::Verdict;
  auto const verdict =
      states_ ? states_->MatchesStored(units) : Verdict::kUnknown;
  if (verdict == Verdict::kMatches) return true;
  if (verdict == Verdict::kDoesNot) return false;
  return std::nullopt;
}

// --- Matching step by step --------------------------------------------------

bool Pattern::MatchesBySteps(std::u16string_view text) {
  text_ = text;
  steps_ = 0;
  found_ahead_.resize(lookaheads_.size());
  for (std::size_t i = 0; i < lookaheads_.size(); ++i) LookAhead(i);

  Threads now;
  Threads next;
  NextRound(program_.code.size());
  Follow(program_, 0, 0, &now);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (now.waiting.empty()) return false;
    next.waiting.clear();
    next.accepted = false;
    NextRound(program_.code.size());
    CountSteps(now.waiting.size());
    for (std::int32_t const place : now.waiting) {
      if (Consumes(program_.code[static_cast<std::size_t>(place)], text[i])) {
        Follow(program_, place + 1, i + 1, &next);
      }
    }
    std::swap(now, next);
  }
  return now.accepted;
}

// Notes for every position of the text whether the lookahead matches there.
// It is read backwards, and may end (that is, begin here) at every position.
void Pattern::LookAhead(std::size_t lookahead) {
  Program const& program = lookaheads_[lookahead];
  auto& found = found_ahead_[lookahead];
  found.assign(text_.size() + 1, false);
  Threads now;
  Threads next;
  for (std::size_t position = text_.size();; --position) {
    NextRound(program.code.size());
    next.waiting.clear();
    next.accepted = false;
    CountSteps(now.waiting.size() + kStepsOfPosition);
    for (std::int32_t const place : now.waiting) {
      if (Consumes(program.code[static_cast<std::size_t>(place)],
                   text_[position])) {
        Follow(program, place + 1, position, &next);
      }
    }
    Follow(program, 0, position, &next);
    std::swap(now, next);
    found[position] = now.accepted;
    if (position == 0) return;
  }
}

// Adds what is reached from start without a unit.
void Pattern::Follow(Program const& program, std::int32_t start,
                     std::size_t position, Threads* threads) {
  pending_.assign(1, start);
  while (!pending_.empty()) {
    auto const place = static_cast<std::size_t>(pending_.back());
    pending_.pop_back();
    if (std::exchange(round_of_[place], round_) == round_) continue;
    CountSteps(1);
    Instruction const& instruction = program.code[place];
    switch (instruction.op) {
      case Op::kUnit:
      case Op::kSet:
        threads->waiting.push_back(static_cast<std::int32_t>(place));
        break;
      case Op::kAssert:
        if (Holds(instruction, position)) {
          pending_.push_back(static_cast<std::int32_t>(place) + 1);
        }
        break;
      case Op::kFork:
        pending_.push_back(instruction.b);
        pending_.push_back(instruction.a);
        break;
      case Op::kJump:
        pending_.push_back(instruction.a);
        break;
      case Op::kAccept:
        threads->accepted = true;
        break;
    }
  }
}

bool Pattern::Consumes(Instruction const& instruction, char16_t unit) {
  if (instruction.op == Op::kUnit) return instruction.a == unit;
  return IsInSet(instruction.a, unit);
}

bool Pattern::IsInSet(std::int32_t number, char16_t unit) {
  UnitSet& set = *tree_.sets[static_cast<std::size_t>(number)];
  auto const known = set.Known(unit);
  if (known != UnitSet::Answer::kUnknown) {
    return known == UnitSet::Answer::kYes;
  }
  CountSteps(set.AskSteps());
  return set.Ask(unit);
}

bool Pattern::Holds(Instruction const& assertion, std::size_t position) {
  auto const ahead = [&] {
    return found_ahead_[static_cast<std::size_t>(assertion.a)][position];
  };
  switch (assertion.kind) {
    case Kind::kBegin:
      return position == 0;
    case Kind::kEnd:
      return position == text_.size();
    case Kind::kWordBoundary:
      return IsWordAt(position) != (position > 0 && IsWordAt(position - 1));
    case Kind::kNoWordBoundary:
      return IsWordAt(position) == (position > 0 && IsWordAt(position - 1));
    case Kind::kAhead:
      return ahead();
    default:
      return !ahead();
  }
}

bool Pattern::IsWordAt(std::size_t position) {
  return position < text_.size() && IsInSet(tree_.word_set, text_[position]);
}

void Pattern::CountSteps(std::size_t steps) {
  steps_ += steps;
  if (steps_ > kMaxSteps) throw std::regex_error(codes::error_complexity);
}

// From here on no instruction was reached yet.
void Pattern::NextRound(std::size_t code_size) {
  if (round_of_.size() < code_size) round_of_.resize(code_size, round_);
  if (++round_ != 0) return;
  std::fill(round_of_.begin(), round_of_.end(), 0);
  round_ = 1;
}

}  // namespace tabwerk
