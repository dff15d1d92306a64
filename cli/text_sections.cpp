#include "cli/text_sections.h"

#include <algorithm>

namespace tabwerk::tool {
namespace {

constexpr std::u16string_view kOpening = u"#TS(";
constexpr std::u16string_view kClosing = u")TS~";
constexpr char16_t kSeparator = u'\u00AC';

}  // namespace

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
  for (std::size_t at = 0;;) {
    std::size_t const begin = text.find(kOpening, at);
    if (begin == text.npos) break;
    std::size_t const content = begin + kOpening.size();
    std::size_t const close = text.find(kClosing, begin);
    is_unclosed_ = close == text.npos;
    if (is_unclosed_) {
      end = begin;
      break;
    }
    AddPieces(text.substr(content, close - content));
    at = close + kClosing.size();
  }
  // A new opening marker would need a "#" that opens no section yet.
  auto const signs = std::count(
      text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), u'#');
  is_plain_ = static_cast<std::size_t>(signs) == sections_.size();
}

void TextSections::AddPieces(std::u16string_view content) {
  Section section{pieces_.size(), 0};
  for (;;) {
    std::size_t const separator = content.find(kSeparator);
    pieces_.push_back(content.substr(0, separator));
    if (separator == content.npos) break;
    content.remove_prefix(separator + 1);
  }
  section.last = pieces_.size();
  sections_.push_back(section);
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
    std::size_t const begin = text.find(kOpening, at);
    if (begin == text.npos) return;
    std::size_t const close = text.find(kClosing, begin);
    if (close == text.npos) {
      states->push_back(SectionState::kUnclosed);
      return;
    }
    std::size_t const content = begin + kOpening.size();
    section.pieces_.clear();
    section.AddPieces(
        std::u16string_view(text).substr(content, close - content));
    std::size_t const end = close + kClosing.size();
    if (language >= section.pieces_.size()) {
      states->push_back(SectionState::kMissing);
      section.Read(std::u16string_view(text).substr(end));
      section.AddUntranslated(language, 0, states);
      return;
    }
    std::u16string const piece(section.pieces_[language]);
    states->push_back(piece.empty() ? SectionState::kEmpty
                                    : SectionState::kComplete);
    text.replace(begin, end - begin, piece);
    // A new marker may begin in the units before the piece.
    at = begin - std::min(begin, kOpening.size() - 1);
  }
}

}  // namespace tabwerk::tool
