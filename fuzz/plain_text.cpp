#include "fuzz/plain_text.h"

namespace tabwerk::fuzz {

std::vector<std::u16string> PlainPieces(std::u16string const& units) {
  constexpr std::size_t kMostUnits = 4095;
  std::vector<std::u16string> pieces;
  std::u16string piece;
  auto const end_piece = [&] {
    pieces.push_back(piece.substr(0, piece.find(u'\0')));
    piece.clear();
  };
  for (char16_t const unit : units) {
    piece += unit;
    if (unit == u'\n' || piece.size() == kMostUnits) end_piece();
  }
  if (!piece.empty()) end_piece();
  return pieces;
}

}  // namespace tabwerk::fuzz
