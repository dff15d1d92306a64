// How complete the texts of a database are in each language.
#ifndef TABWERK_CLI_LANGUAGE_COVERAGE_H
#define TABWERK_CLI_LANGUAGE_COVERAGE_H

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "cli/text_sections.h"
#include "ztypes.h"

namespace tabwerk::tool {

// Sections by their state.
struct SectionCounts {
  std::array<long long, kSectionStates> by_state{};

  long long& operator[](SectionState state) {
    return by_state[static_cast<std::size_t>(state)];
  }
  long long operator[](SectionState state) const {
    return by_state[static_cast<std::size_t>(state)];
  }
  void Add(SectionCounts const& other);
  long long All() const;
  // Of those that are complete, rounded down to hundredths, so that 100 means
  // all; 100 where there are none.
  double Percent() const;
  bool IsBelow(double percent) const;
};

struct ColumnCoverage {
  std::string table;  // UTF-8
  std::string column;
  long long texts = 0;  // that are not empty
  long long plain = 0;  // those without sections, the same in every language
  std::vector<SectionCounts> languages;
  // Pieces with text in them for the languages behind these.
  std::vector<long long> surplus;

  long long SurplusCount() const;
};

// A text that is not complete in a language, or has one too many.
struct IncompleteText {
  std::size_t row;
  std::size_t section;  // from 1, in the order of the translation; 0: surplus
  std::size_t language;
  char const* state;
  zWString const& text;
};

// A string column of a table.  Borrows the table, whose current row and column
// it moves; texts have to be read untranslated (DBbase::SetSprache(-1)).
class TextColumn {
 public:
  TextColumn(DBTabelle& table, DBFeld const& field)
      : table_(table), field_(field) {}

  // Pieces of the section that has most.
  std::size_t MostPieces();
  // Counts for so many languages; what is not complete, and each surplus
  // piece, goes to take_incomplete, if there is one.
  using TakeIncomplete = std::function<void(IncompleteText const&)>;
  ColumnCoverage Count(std::size_t languages,
                       TakeIncomplete const& take_incomplete);

  // The string columns that can be selected by their names.
  static std::vector<DBFeld const*> Of(DBTabelle& table);

 private:
  template <typename Visit>
  void VisitTexts(Visit visit);
  void CountText(std::size_t row, zWString const& text,
                 ColumnCoverage* coverage);
  void CountSurplus(std::size_t row, zWString const& text,
                    ColumnCoverage* coverage);

  DBTabelle& table_;
  DBFeld const& field_;
  TextSections sections_;
  std::vector<SectionState> states_;
  TakeIncomplete const* take_incomplete_ = nullptr;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_LANGUAGE_COVERAGE_H
