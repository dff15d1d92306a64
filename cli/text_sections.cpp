#include "cli/text_sections.h"

#include <algorithm>

#include "cli/text_markers.h"

namespace tabwerk::tool {
char const* SectionStateName(SectionState state) {
  switch (state) {
    case SectionState::kComplete:
      return "complete";
    case SectionState::kEmpty:
      return "empty";
    case SectionState::kMissing:
      return "missing";
    case SectionState::kBlocked:
      return "blocked";
    case SectionState::kUnclosed:
      break;
  }
  return "unclosed";
}

void TextSections::Read(std::u16string_view text) {
  text_ = text;
  sections_.clear();
  pieces_.clear();
  is_unclosed_ = false;
  std::size_t end = text.size();  // of what may be translated
  SectionPlace place = FindSection(text, 0);
  for (; place.IsClosed(); place = FindSection(text, place.End())) {
    AddSection(place.Content(text));
  }
  is_unclosed_ = place.IsThere();
  if (is_unclosed_) end = place.begin;
  // A new opening marker would need a "#" that opens no section yet.
  auto const signs = std::count(
      text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), u'#');
  is_plain_ = static_cast<std::size_t>(signs) == sections_.size();
}

void TextSections::AddSection(std::u16string_view content) {
  std::size_t const first = pieces_.size();
  AddPieces(content, &pieces_);
  sections_.push_back({first, pieces_.size()});
}

std::size_t TextSections::MostPieces() const {
  std::size_t most = 0;
  for (Section const& section : sections_) {
    most = std::max(most, section.last - section.first);
  }
  return most;
}

std::size_t TextSections::CountPieces(std::size_t language) const {
  auto const has_piece = [&](Section const& section) {
    return language < section.last - section.first &&
           !pieces_[section.first + language].empty();
  };
  return static_cast<std::size_t>(
      std::count_if(sections_.begin(), sections_.end(), has_piece));
}

void TextSections::GetStates(std::size_t language,
                             std::vector<SectionState>* states) const {
  states->clear();
  if (!is_plain_) {
    GetStatesStepByStep(language, states);
    return;
  }
  for (std::size_t i = 0; i < sections_.size(); ++i) {
    Section const& section = sections_[i];
    if (language >= section.last - section.first) {
      states->push_back(SectionState::kMissing);
      AddUntranslated(language, i + 1, states);
      return;
    }
    states->push_back(pieces_[section.first + language].empty()
                          ? SectionState::kEmpty
                          : SectionState::kComplete);
  }
  if (is_unclosed_) states->push_back(SectionState::kUnclosed);
}

// The sections behind the one that stops the translation.
void TextSections::AddUntranslated(std::size_t language,
                                   std::size_t first_section,
                                   std::vector<SectionState>* states) const {
  for (std::size_t i = first_section; i < sections_.size(); ++i) {
    bool const has_piece = language < sections_[i].last - sections_[i].first;
    states->push_back(has_piece ? SectionState::kBlocked
                                : SectionState::kMissing);
  }
  if (is_unclosed_) states->push_back(SectionState::kUnclosed);
}

// Replaces section by section, as the translation does.
void TextSections::GetStatesStepByStep(
    std::size_t language, std::vector<SectionState>* states) const {
  std::u16string text(text_);
  TextSections section;
  for (std::size_t at = 0;;) {
    SectionPlace const place = FindSection(text, at);
    if (!place.IsThere()) return;
    if (!place.IsClosed()) {
      states->push_back(SectionState::kUnclosed);
      return;
    }
    section.pieces_.clear();
    section.AddSection(place.Content(text));
    if (language >= section.pieces_.size()) {
      states->push_back(SectionState::kMissing);
      section.Read(std::u16string_view(text).substr(place.End()));
      section.AddUntranslated(language, 0, states);
      return;
    }
    std::u16string const piece(section.pieces_[language]);
    states->push_back(piece.empty() ? SectionState::kEmpty
                                    : SectionState::kComplete);
    text.replace(place.begin, place.End() - place.begin, piece);
    // A new marker may begin in the units before the piece.
    at = place.begin - std::min(place.begin, kOpening.size() - 1);
  }
}

}  // namespace tabwerk::tool
