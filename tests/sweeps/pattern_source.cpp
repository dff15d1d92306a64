#include "tests/sweeps/pattern_source.h"

#include <iterator>

namespace tabwerk::test {

std::u16string PatternSource::Unit() {
  constexpr char16_t kRare[] = {u'-',   u'_',   u' ',   u'\n',  u'\r',  u'\t',
                                u',',   u'A',   u'Z',   0x00E4, 0x00DF, 0x2028,
                                0xD83D, 0xDE00, 0xFFFF, u'/',   u'=',   u':'};
  constexpr char16_t kCommon[] = {u'a', u'b', u'a', u'b', u'c', u'1', u'0'};
  if (OneIn(8)) return {kRare[Below(std::size(kRare))]};
  return {kCommon[Below(std::size(kCommon))]};
}

std::u16string PatternSource::Text() {
  std::u16string text;
  for (unsigned i = Below(9); i > 0; --i) text += Unit();
  return text;
}

std::u16string PatternSource::Choice(int depth) {
  std::u16string choice;
  for (unsigned branches = OneIn(3) ? 2 + Below(2) : 1; branches > 0;
       --branches) {
    for (unsigned i = Below(4); i > 0; --i) {
      choice += Atom(depth);
      if (OneIn(3)) choice += Quantifier();
    }
    if (branches > 1) choice += u'|';
  }
  return choice;
}

std::u16string PatternSource::Atom(int depth) {
  constexpr char16_t const* kEscapes[] = {
      u"\\d", u"\\D", u"\\w", u"\\W", u"\\s",  u"\\S",   u"\\.",     u"\\\\",
      u"\\(", u"\\n", u"\\t", u"\\0", u"\\cJ", u"\\x61", u"\\u0062", u"\\b",
      u"\\B", u"\\r", u"\\f", u"\\v", u"\\-",  u"\\/"};
  switch (Below(12)) {
    case 0:
    case 1:
      return depth > 0 ? Group(depth - 1) : Unit();
    case 2:
      return u".";
    case 3:
      return kEscapes[Below(std::size(kEscapes))];
    case 4:
      return Bracket();
    case 5:
      return OneIn(4) ? (OneIn(2) ? u"^" : u"$") : Unit();
    default:
      return Unit();
  }
}

std::u16string PatternSource::Group(int depth) {
  constexpr char16_t const* kOpen[] = {u"(", u"(", u"(?:", u"(?=", u"(?!"};
  return kOpen[Below(std::size(kOpen))] + Choice(depth) + u")";
}

std::u16string PatternSource::Bracket() {
  constexpr char16_t const* kParts[] = {
      u"a-b", u"0-9", u"a-z",       u"\\d",       u"\\w",   u"\\S", u"-",
      u"_",   u"b",   u"[:alpha:]", u"[:space:]", u"[=a=]", u"\\]", u"[.a.]",
      u"^",   u"A-Z", u"\\b",       u"ab",        u"\\D",   u"."};
  std::u16string bracket = OneIn(3) ? u"[^" : u"[";
  for (unsigned i = Below(4); i > 0; --i) {
    bracket += kParts[Below(std::size(kParts))];
  }
  return bracket + u"]";
}

std::u16string PatternSource::Quantifier() {
  constexpr char16_t const* kQuantifiers[] = {
      u"*",   u"+",    u"?",     u"*?",   u"+?",    u"??", u"{2}",
      u"{0}", u"{1,}", u"{0,2}", u"{2}?", u"{1,3}", u"*",  u"?"};
  return kQuantifiers[Below(std::size(kQuantifiers))];
}

void PatternSource::Spoil(std::u16string* pattern) {
  constexpr std::u16string_view kUnits = u"()[]{}|*+?\\^$.,-:=!1a";
  for (unsigned i = 1 + Below(3); i > 0; --i) {
    auto const at = Below(static_cast<unsigned>(pattern->size()) + 1);
    char16_t const unit = kUnits[Below(static_cast<unsigned>(kUnits.size()))];
    switch (Below(3)) {
      case 0:
        pattern->insert(at, 1, unit);
        break;
      case 1:
        if (at < pattern->size()) (*pattern)[at] = unit;
        break;
      default:
        pattern->erase(at, 1);
    }
  }
}

std::u16string PatternSource::Pattern() {
  auto pattern = Choice(2);
  if (OneIn(4)) Spoil(&pattern);
  return pattern;
}

}  // namespace tabwerk::test
