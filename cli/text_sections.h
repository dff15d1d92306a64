// What a text offers in each language: "#TS(one¬two)TS~".
//
// The library replaces the sections of a text front to back and stops at the
// first that lacks a piece for the language; so one incomplete section keeps
// all behind it from being translated.
#ifndef TABWERK_CLI_TEXT_SECTIONS_H
#define TABWERK_CLI_TEXT_SECTIONS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tabwerk::tool {

// Of a section in a language.
enum class SectionState {
  kComplete,
  kEmpty,     // the piece is there, without a character
  kMissing,   // there is no piece
  kBlocked,   // there is one, but an earlier section stops the translation
  kUnclosed,  // the section does not end
};
inline constexpr std::size_t kSectionStates = 5;

char const* SectionStateName(SectionState state);

// One text.  Can be used for one after the other.
class TextSections {
 public:
  // The text has to stay while the object is asked.
  void Read(std::u16string_view text);

  bool HasSections() const { return !sections_.empty() || is_unclosed_; }
  // Pieces of the section that has most.
  std::size_t MostPieces() const;
  // The sections that are met when the text is translated, in their order, and
  // behind the one that stops it those that follow in the text.  Linear in the
  // text's length, but where sections make new ones linear in that times the
  // number of sections.
  void GetStates(std::size_t language, std::vector<SectionState>* states) const;
  // Sections of the text as it stands that have a piece for the language with
  // something in it.
  std::size_t CountPieces(std::size_t language) const;

 private:
  // Pieces [first, last) of pieces_.
  struct Section {
    std::size_t first;
    std::size_t last;
  };

  void AddSection(std::u16string_view content);
  void AddUntranslated(std::size_t language, std::size_t first_section,
                       std::vector<SectionState>* states) const;
  void GetStatesStepByStep(std::size_t language,
                           std::vector<SectionState>* states) const;

  std::u16string_view text_;
  std::vector<Section> sections_;
  std::vector<std::u16string_view> pieces_;
  bool is_unclosed_ = false;
  // Replacing a section makes no new one, whatever the language.
  bool is_plain_ = true;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TEXT_SECTIONS_H
