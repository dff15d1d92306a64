#include "table/pattern_tree.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace tabwerk {
namespace {

namespace codes = std::regex_constants;

using Kind = PatternKind;
using Node = PatternNode;

// Groups inside each other: the parser goes down into them.
constexpr int kMaxNesting = 200;
// Nodes above each other: the compiler goes down into them.
constexpr std::int32_t kMaxDepth = 1000;
// Expressions like "[a-z]" that differ.
constexpr std::size_t kMaxSets = 4096;

[[noreturn]] void Fail(codes::error_type code) { throw std::regex_error(code); }

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

bool IsHexDigit(char16_t unit) {
  return IsDigit(unit) || (unit >= u'a' && unit <= u'f') ||
         (unit >= u'A' && unit <= u'F');
}

bool IsLetterOrDigit(char16_t unit) {
  char16_t const lower = unit | 0x20;
  return IsDigit(unit) || (lower >= u'a' && lower <= u'z');
}

class Parser {
 public:
  explicit Parser(std::u16string_view text) : text_(text) {}

  PatternTree Run() {
    tree_.root = ParseChoice();
    if (!AtEnd()) Fail(codes::error_paren);
    CheckTotal(SizeOf(tree_.root));
    return std::move(tree_);
  }

 private:
  bool AtEnd() const { return position_ == text_.size(); }
  bool IsNext(char16_t unit) const {
    return !AtEnd() && text_[position_] == unit;
  }
  bool Take(char16_t unit) {
    if (!IsNext(unit)) return false;
    ++position_;
    return true;
  }
  bool Take(std::u16string_view units) {
    if (text_.substr(position_, units.size()) != units) return false;
    position_ += units.size();
    return true;
  }
  // The next unit; the pattern must not end here.
  char16_t TakeAny(codes::error_type code) {
    if (AtEnd()) Fail(code);
    return text_[position_++];
  }

  std::int64_t SizeOf(std::int32_t node) const { return NodeAt(node).size; }
  Node& NodeAt(std::int32_t node) {
    return tree_.nodes[static_cast<std::size_t>(node)];
  }
  Node const& NodeAt(std::int32_t node) const {
    return tree_.nodes[static_cast<std::size_t>(node)];
  }

  std::int32_t Add(Node node) {
    if (node.size > kMaxPatternSize) Fail(codes::error_complexity);
    if (node.depth > kMaxDepth) Fail(codes::error_stack);
    tree_.nodes.push_back(node);
    return static_cast<std::int32_t>(tree_.nodes.size() - 1);
  }
  std::int32_t AddParent(Kind kind, std::vector<std::int32_t> const& children);
  std::int32_t AddSet(std::u16string_view expression);
  void CheckTotal(std::int64_t size) {
    total_ += size;
    if (total_ > kMaxPatternSize) Fail(codes::error_complexity);
  }

  void Enter() {
    if (++nesting_ > kMaxNesting) Fail(codes::error_stack);
  }

  std::int32_t ParseChoice();
  std::int32_t ParseSequence();
  std::int32_t ParseTerm();
  std::optional<std::int32_t> ParseAssertion();
  std::int32_t ParseLookahead(Kind kind);
  std::int32_t ParseAtom();
  std::int32_t ParseGroup();
  std::int32_t ParseEscape();
  std::int32_t ParseBracket();
  void SkipBracketClass(char16_t delimiter);
  std::int32_t ParseQuantifiers(std::int32_t node);
  std::int32_t Repeat(std::int32_t node, std::int64_t min, std::int64_t max);
  std::int32_t ParseCount(std::int32_t node);
  std::int64_t ParseNumber();

  std::u16string_view text_;
  std::size_t position_ = 0;
  int nesting_ = 0;
  std::int64_t total_ = 0;
  PatternTree tree_;
  std::map<std::u16string, std::int32_t, std::less<>> set_numbers_;
};

std::int32_t Parser::AddParent(Kind kind,
                               std::vector<std::int32_t> const& children) {
  if (children.size() == 1) return children.front();
  Node parent{.kind = kind};
  std::int32_t* link = &parent.first_child;
  for (std::int32_t const child : children) {
    *link = child;
    link = &NodeAt(child).next_sibling;
    parent.depth = std::max(parent.depth, NodeAt(child).depth + 1);
    // A choice has a fork before and a jump behind each of its children.
    parent.size += SizeOf(child) + (kind == Kind::kChoice ? 2 : 0);
  }
  return Add(parent);
}

std::int32_t Parser::AddSet(std::u16string_view expression) {
  auto const known = set_numbers_.find(expression);
  if (known != set_numbers_.end()) return known->second;
  if (tree_.sets.size() == kMaxSets) Fail(codes::error_complexity);
  auto const number = static_cast<std::int32_t>(tree_.sets.size());
  tree_.sets.push_back(std::make_unique<UnitSet>(expression));
  set_numbers_.emplace(expression, number);
  return number;
}

std::int32_t Parser::ParseChoice() {
  std::vector<std::int32_t> children{ParseSequence()};
  while (Take(u'|')) children.push_back(ParseSequence());
  return AddParent(Kind::kChoice, children);
}

std::int32_t Parser::ParseSequence() {
  std::vector<std::int32_t> children;
  while (!AtEnd() && !IsNext(u'|') && !IsNext(u')')) {
    children.push_back(ParseTerm());
  }
  return AddParent(Kind::kSequence, children);
}

std::int32_t Parser::ParseTerm() {
  // An assertion takes no quantifier.
  if (auto const assertion = ParseAssertion()) return *assertion;
  return ParseQuantifiers(ParseAtom());
}

std::optional<std::int32_t> Parser::ParseAssertion() {
  if (Take(u'^')) return Add({.kind = Kind::kBegin});
  if (Take(u'$')) return Add({.kind = Kind::kEnd});
  if (Take(u"(?=")) return ParseLookahead(Kind::kAhead);
  if (Take(u"(?!")) return ParseLookahead(Kind::kNoAhead);
  bool const boundary = Take(u"\\b");
  if (!boundary && !Take(u"\\B")) return std::nullopt;
  tree_.word_set = AddSet(u"\\w");
  return Add({.kind = boundary ? Kind::kWordBoundary : Kind::kNoWordBoundary});
}

std::int32_t Parser::ParseLookahead(Kind kind) {
  Enter();
  std::int32_t const root = ParseChoice();
  if (!Take(u')')) Fail(codes::error_paren);
  --nesting_;
  CheckTotal(SizeOf(root) + 1);
  tree_.lookaheads.push_back(root);
  return Add({.kind = kind,
              .index = static_cast<std::int32_t>(tree_.lookaheads.size() - 1)});
}

std::int32_t Parser::ParseAtom() {
  char16_t const unit = TakeAny(codes::error_paren);
  switch (unit) {
    case u'*':
    case u'+':
    case u'?':
    case u'{':
      Fail(codes::error_badrepeat);
    case u'.':
      return Add({.kind = Kind::kSet, .index = AddSet(u".")});
    case u'\\':
      return ParseEscape();
    case u'(':
      return ParseGroup();
    case u'[':
      return ParseBracket();
    default:
      return Add({.kind = Kind::kUnit, .unit = unit});
  }
}

std::int32_t Parser::ParseGroup() {
  if (IsNext(u'?') && !Take(u"?:")) Fail(codes::error_paren);
  Enter();
  std::int32_t const node = ParseChoice();
  if (!Take(u')')) Fail(codes::error_paren);
  --nesting_;
  return node;
}

// Behind the backslash.
std::int32_t Parser::ParseEscape() {
  std::size_t const begin = position_ - 1;
  char16_t const unit = TakeAny(codes::error_escape);
  if (unit == u'c') {
    TakeAny(codes::error_escape);
  } else if (unit == u'x' || unit == u'u') {
    for (int digits = unit == u'x' ? 2 : 4; digits > 0; --digits) {
      if (!IsHexDigit(TakeAny(codes::error_escape))) Fail(codes::error_escape);
    }
  } else if (unit != u'0' && IsDigit(unit)) {
    // What a group matched before cannot be found in bounded time.
    Fail(codes::error_complexity);
  } else if (unit < 0x80 && !IsLetterOrDigit(unit)) {
    return Add({.kind = Kind::kUnit, .unit = unit});
  }
  auto const expression = text_.substr(begin, position_ - begin);
  return Add({.kind = Kind::kSet, .index = AddSet(expression)});
}

// Behind the opening bracket.
std::int32_t Parser::ParseBracket() {
  std::size_t const begin = position_ - 1;
  Take(u'^');
  for (;;) {
    char16_t const unit = TakeAny(codes::error_brack);
    if (unit == u']') break;
    if (unit == u'\\') {
      if (TakeAny(codes::error_escape) == u'c') TakeAny(codes::error_escape);
    } else if (unit == u'[' && (IsNext(u'.') || IsNext(u':') || IsNext(u'='))) {
      SkipBracketClass(text_[position_++]);
    }
  }
  auto const expression = text_.substr(begin, position_ - begin);
  return Add({.kind = Kind::kSet, .index = AddSet(expression)});
}

// To behind "delimiter]".
void Parser::SkipBracketClass(char16_t delimiter) {
  auto const code =
      delimiter == u':' ? codes::error_ctype : codes::error_collate;
  while (TakeAny(code) != delimiter) {
  }
  if (!Take(u']')) Fail(code);
}

std::int32_t Parser::ParseQuantifiers(std::int32_t node) {
  for (;;) {
    if (Take(u'*')) {
      node = Repeat(node, 0, Node::kUnbounded);
    } else if (Take(u'+')) {
      node = Repeat(node, 1, Node::kUnbounded);
    } else if (Take(u'?')) {
      node = Repeat(node, 0, 1);
    } else if (Take(u'{')) {
      node = ParseCount(node);
    } else {
      return node;
    }
    // Lazy or not makes no difference to whether a whole text matches.
    Take(u'?');
  }
}

// Behind the opening brace.
std::int32_t Parser::ParseCount(std::int32_t node) {
  if (AtEnd()) Fail(codes::error_brace);
  if (!IsDigit(text_[position_])) Fail(codes::error_badbrace);
  std::int64_t const min = ParseNumber();
  std::int64_t max = min;
  if (Take(u',')) max = IsNext(u'}') ? Node::kUnbounded : ParseNumber();
  if (!Take(u'}')) Fail(AtEnd() ? codes::error_brace : codes::error_badbrace);
  if (max != Node::kUnbounded && max < min) Fail(codes::error_badbrace);
  return Repeat(node, min, max);
}

std::int64_t Parser::ParseNumber() {
  if (AtEnd()) Fail(codes::error_brace);
  if (!IsDigit(text_[position_])) Fail(codes::error_badbrace);
  std::int64_t number = 0;
  while (!AtEnd() && IsDigit(text_[position_])) {
    number = std::min<std::int64_t>(number * 10 + (text_[position_++] - u'0'),
                                    1'000'000'000);
  }
  return number;
}

std::int32_t Parser::Repeat(std::int32_t node, std::int64_t min,
                            std::int64_t max) {
  auto const is_simple = [](std::int64_t least, std::int64_t most) {
    return least <= 1 && (most == 1 || most == Node::kUnbounded);
  };
  Node& child = NodeAt(node);
  // "*", "+" and "?" upon each other are one of them again, so that a long row
  // of them is no deep tree.
  if (child.kind == Kind::kRepeat && is_simple(min, max) &&
      is_simple(child.min, child.max)) {
    min *= child.min;
    if (child.max == Node::kUnbounded) max = Node::kUnbounded;
    node = child.first_child;
  }
  // Each copy has a fork or a jump of its own.
  std::int64_t const copies = max == Node::kUnbounded ? min + 1 : max;
  std::int64_t const copy_size = SizeOf(node) + 2;
  std::int64_t const size = copies * copy_size + 1;
  return Add({.kind = Kind::kRepeat,
              .first_child = node,
              .min = min,
              .max = max,
              .size = size,
              .depth = NodeAt(node).depth + 1});
}

}  // namespace

PatternTree ParsePattern(std::u16string_view text) {
  return Parser(text).Run();
}

}  // namespace tabwerk
