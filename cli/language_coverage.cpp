#include "cli/language_coverage.h"

#include <algorithm>
#include <numeric>

#include "DBDirectory.h"
#include "cli/files.h"

namespace tabwerk::tool {

void SectionCounts::Add(SectionCounts const& other) {
  for (std::size_t i = 0; i < by_state.size(); ++i) {
    by_state[i] += other.by_state[i];
  }
}

long long SectionCounts::All() const {
  return std::accumulate(by_state.begin(), by_state.end(), 0LL);
}

double SectionCounts::Percent() const {
  long long const all = All();
  if (all == 0) return 100;
  long long const hundredths = (*this)[SectionState::kComplete] * 10000 / all;
  return static_cast<double>(hundredths) / 100;
}

bool SectionCounts::IsBelow(double percent) const {
  return static_cast<double>((*this)[SectionState::kComplete]) * 100 <
         percent * static_cast<double>(All());
}

long long ColumnCoverage::SurplusCount() const {
  return std::accumulate(surplus.begin(), surplus.end(), 0LL);
}

std::vector<DBFeld const*> TextColumn::Of(DBTabelle& table) {
  DBDefinition const& definition = *table.GetDirEntry(false)->GetDefinition();
  std::vector<DBFeld const*> columns;
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    DBFeld* first = nullptr;
    if (field->type != DBTypeString) continue;
    // A second column of one name is never seen.
    if (definition.GetOffset(field->name, first) == 1 && first == field) {
      columns.push_back(field);
    }
  }
  return columns;
}

template <typename Visit>
void TextColumn::VisitTexts(Visit visit) {
  if (table_.SelectColumn(field_.name) == 0) return;
  zWString text;
  long const rows = table_.GetAnzahlZeilen();
  for (long row = 0; row < rows; ++row) {
    table_.SelectZeile(row);
    if (table_.GetWert(text) != 1 || text.isEmpty()) continue;
    sections_.Read(text.view());
    visit(static_cast<std::size_t>(row), text);
  }
}

std::size_t TextColumn::MostPieces() {
  std::size_t most = 0;
  VisitTexts([&](std::size_t, zWString const&) {
    most = std::max(most, sections_.MostPieces());
  });
  return most;
}

ColumnCoverage TextColumn::Count(std::size_t languages,
                                 TakeIncomplete const& take_incomplete) {
  ColumnCoverage coverage;
  coverage.table = NameToUtf8(table_.GetDirEntry(false)->GetName());
  coverage.column = NameToUtf8(field_.name);
  coverage.languages.resize(languages);
  take_incomplete_ = take_incomplete ? &take_incomplete : nullptr;
  VisitTexts([&](std::size_t row, zWString const& text) {
    ++coverage.texts;
    if (!sections_.HasSections()) {
      ++coverage.plain;
      return;
    }
    CountText(row, text, &coverage);
    CountSurplus(row, text, &coverage);
  });
  return coverage;
}

void TextColumn::CountText(std::size_t row, zWString const& text,
                           ColumnCoverage* coverage) {
  for (std::size_t k = 0; k < coverage->languages.size(); ++k) {
    sections_.GetStates(k, &states_);
    for (std::size_t i = 0; i < states_.size(); ++i) {
      SectionState const state = states_[i];
      ++coverage->languages[k][state];
      if (take_incomplete_ != nullptr && state != SectionState::kComplete) {
        (*take_incomplete_)({row, i + 1, k, SectionStateName(state), text});
      }
    }
  }
}

void TextColumn::CountSurplus(std::size_t row, zWString const& text,
                              ColumnCoverage* coverage) {
  std::size_t const asked = coverage->languages.size();
  std::size_t const most = sections_.MostPieces();
  for (std::size_t k = asked; k < most; ++k) {
    std::size_t const count = sections_.CountPieces(k);
    if (count == 0) continue;
    if (coverage->surplus.size() <= k - asked) {
      coverage->surplus.resize(k - asked + 1);
    }
    coverage->surplus[k - asked] += static_cast<long long>(count);
    if (take_incomplete_ != nullptr) {
      (*take_incomplete_)({row, 0, k, "surplus", text});
    }
  }
}

}  // namespace tabwerk::tool
