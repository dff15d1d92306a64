// The tokenizer and the reading of lines once more, the plain way.
#ifndef TABWERK_FUZZ_PLAIN_TEXT_H
#define TABWERK_FUZZ_PLAIN_TEXT_H

#include <string>
#include <vector>

namespace tabwerk::fuzz {

// The tokens of a line: it is cut at every separator that stands neither
// behind an odd number of quotes nor inside "#TS(" … ")TS~"; blanks and tabs
// in front of a piece are dropped, and a last piece with nothing else in it.
template <typename String>
std::vector<String> PlainTokens(String const& line,
                                typename String::value_type separator) {
  using Character = typename String::value_type;
  auto const at = [&](std::size_t place, char const* marker) {
    for (; *marker != '\0'; ++marker, ++place) {
      if (place >= line.size() ||
          line[place] != static_cast<Character>(*marker)) {
        return false;
      }
    }
    return true;
  };
  auto const blank = [](Character character) {
    return character == ' ' || character == '\t';
  };
  std::vector<String> tokens;
  std::size_t place = 0;
  while (true) {
    while (place < line.size() && blank(line[place])) ++place;
    if (place == line.size()) return tokens;
    String token;
    bool quoted = false;
    bool marked = false;
    for (; place < line.size(); ++place) {
      if (line[place] == separator && !quoted && !marked) break;
      if (line[place] == '"') quoted = !quoted;
      if (marked) {
        marked = !at(place, ")TS~");
      } else {
        marked = at(place, "#TS(");
      }
      token += line[place];
    }
    tokens.push_back(token);
    if (place == line.size()) return tokens;
    ++place;  // the separator
  }
}

// The pieces in which a text file is read: up to and including a line feed, at
// most 4,095 units; of each, what stands before its first NUL.
std::vector<std::u16string> PlainPieces(std::u16string const& units);

}  // namespace tabwerk::fuzz

#endif  // TABWERK_FUZZ_PLAIN_TEXT_H
