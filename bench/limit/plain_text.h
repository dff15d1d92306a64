// Reading a text in the first language, by hand.
#ifndef TABWERK_BENCH_LIMIT_PLAIN_TEXT_H
#define TABWERK_BENCH_LIMIT_PLAIN_TEXT_H

#include <string_view>

namespace tabwerk::bench {

// The first piece of a text "#TS(one¬two)TS~"; any other text as it is.  Knows
// that the whole text is one section.
inline std::u16string_view PieceOf(std::u16string_view text) {
  constexpr std::u16string_view kOpening = u"#TS(";
  if (!text.starts_with(kOpening)) return text;
  text.remove_prefix(kOpening.size());
  return text.substr(0, text.find(u'\u00AC'));
}

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_LIMIT_PLAIN_TEXT_H
