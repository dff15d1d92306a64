#include "cli/language_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "DBDirectory.h"
#include "cli/files.h"

namespace tabwerk::tool {
namespace {

constexpr SectionState kIncompleteStates[] = {
    SectionState::kMissing, SectionState::kEmpty, SectionState::kBlocked,
    SectionState::kUnclosed};

Cell CountCell(std::size_t number) { return static_cast<std::int64_t>(number); }

// "100 %", "98.43 % (4 missing, 1 empty)".
std::string InShort(SectionCounts const& counts) {
  std::string text = fmt::format("{} %", counts.Percent());
  std::string rest;
  for (SectionState const state : kIncompleteStates) {
    if (counts[state] == 0) continue;
    rest += (rest.empty() ? " (" : ", ") +
            fmt::format("{} {}", counts[state], SectionStateName(state));
  }
  return rest.empty() ? text : text + rest + ")";
}

// The IDs of all rows; missing without such a column.
std::vector<Cell> IdsOf(DBTabelle& table) {
  auto const rows = static_cast<std::size_t>(table.GetAnzahlZeilen());
  std::vector<Cell> ids(rows);
  bool const has_ids = table.SelectColumn("ID") == 1;
  for (std::size_t row = 0; has_ids && row < rows; ++row) {
    long id = 0;
    table.SelectZeile(static_cast<long>(row));
    if (table.GetWert(id) == 1) ids[row] = std::int64_t{id};
  }
  return ids;
}

}  // namespace

LanguageRows::LanguageRows(OutputOptions const& options,
                           LanguageNames const* languages, bool cells)
    : form_(cells ? Form::kCells
            : options.format == "auto" && options.columns.empty()
                ? Form::kMatrix
                : Form::kRows),
      languages_(*languages),
      out_(options) {}

std::vector<ColumnHead> LanguageRows::Heads() const {
  constexpr CellType kNumber = CellType::kInteger;
  if (form_ == Form::kCells) {
    return {{"TABLE"},
            {"FILE"},
            {"ROW", kNumber},
            {"ID", kNumber},
            {"COLUMN"},
            {"SECTION", kNumber},
            {"LANGUAGE", kNumber},
            {"NAME"},
            {"STATE"},
            {"TEXT"}};
  }
  if (form_ == Form::kRows) {
    return {{"TABLE"},
            {"COLUMN"},
            {"LANGUAGE", kNumber},
            {"NAME"},
            {"SECTIONS", kNumber},
            {"COMPLETE", kNumber},
            {"EMPTY", kNumber},
            {"MISSING", kNumber},
            {"BLOCKED", kNumber},
            {"UNCLOSED", kNumber},
            {"SURPLUS", kNumber},
            {"PERCENT", CellType::kReal}};
  }
  std::vector<ColumnHead> heads = {
      {"TABLE"}, {"COLUMN"}, {"TEXTS", kNumber}, {"PLAIN", kNumber}};
  for (std::size_t k = 0; k < languages_.Count(); ++k) {
    if (!languages_.Wants(k)) continue;
    std::string const name = languages_.Name(k);
    heads.push_back({name.empty() ? std::to_string(k) : name});
  }
  heads.push_back({"SURPLUS", kNumber});
  return heads;
}

std::optional<Problem> LanguageRows::Begin() {
  total_.languages.resize(languages_.Count());
  return out_.Begin(Heads());
}

void LanguageRows::BeginTable(DBTabelle& table, DatabaseFiles const& files) {
  DBDirEntry const& entry = *table.GetDirEntry(false);
  table_ = NameToUtf8(entry.GetName());
  main_file_ = files.main;
  user_file_ = files.user;
  main_rows_ = static_cast<std::size_t>(std::max(0L, entry.GetPartRows(0)));
  ids_.clear();
  if (form_ == Form::kCells) ids_ = IdsOf(table);
}

void LanguageRows::Add(DBTabelle& table, DBFeld const& field) {
  TextColumn::TakeIncomplete take;
  if (form_ == Form::kCells) {
    take = [this, column = NameToUtf8(field.name)](IncompleteText const& it) {
      AddCell(column, it);
    };
  }
  ColumnCoverage const coverage =
      TextColumn(table, field).Count(languages_.Count(), take);
  // A column without any section, for example of codes, is not translated.
  if (coverage.plain == coverage.texts) return;
  AddToTotal(coverage);
  if (form_ == Form::kMatrix) AddMatrixRow(coverage);
  if (form_ == Form::kRows) AddRows(coverage);
}

void LanguageRows::AddToTotal(ColumnCoverage const& coverage) {
  total_.texts += coverage.texts;
  total_.plain += coverage.plain;
  for (std::size_t k = 0; k < total_.languages.size(); ++k) {
    total_.languages[k].Add(coverage.languages[k]);
  }
  if (total_.surplus.size() < coverage.surplus.size()) {
    total_.surplus.resize(coverage.surplus.size());
  }
  for (std::size_t k = 0; k < coverage.surplus.size(); ++k) {
    total_.surplus[k] += coverage.surplus[k];
  }
}

void LanguageRows::AddMatrixRow(ColumnCoverage const& coverage) {
  std::vector<Cell> cells = {
      coverage.table.empty() ? Cell("(all)") : Cell(coverage.table),
      TextCell(coverage.column), std::int64_t{coverage.texts},
      std::int64_t{coverage.plain}};
  for (std::size_t k = 0; k < coverage.languages.size(); ++k) {
    if (languages_.Wants(k)) cells.emplace_back(InShort(coverage.languages[k]));
  }
  cells.emplace_back(std::int64_t{coverage.SurplusCount()});
  out_.Add(std::move(cells));
}

void LanguageRows::AddRows(ColumnCoverage const& coverage) {
  for (std::size_t k = 0; k < coverage.languages.size(); ++k) {
    if (!languages_.Wants(k)) continue;
    SectionCounts const& counts = coverage.languages[k];
    out_.Add({TextCell(coverage.table), TextCell(coverage.column), CountCell(k),
              TextCell(languages_.Name(k)), std::int64_t{counts.All()},
              std::int64_t{counts[SectionState::kComplete]},
              std::int64_t{counts[SectionState::kEmpty]},
              std::int64_t{counts[SectionState::kMissing]},
              std::int64_t{counts[SectionState::kBlocked]},
              std::int64_t{counts[SectionState::kUnclosed]}, std::int64_t{0},
              counts.Percent()});
  }
  AddSurplusRows(coverage);
}

void LanguageRows::AddSurplusRows(ColumnCoverage const& coverage) {
  for (std::size_t k = 0; k < coverage.surplus.size(); ++k) {
    if (coverage.surplus[k] == 0) continue;
    if (!languages_.Wants(coverage.languages.size() + k)) continue;
    std::vector<Cell> cells = {TextCell(coverage.table),
                               TextCell(coverage.column),
                               CountCell(coverage.languages.size() + k)};
    cells.resize(Heads().size());
    cells[cells.size() - 2] = std::int64_t{coverage.surplus[k]};
    out_.Add(std::move(cells));
  }
}

void LanguageRows::AddCell(std::string const& column,
                           IncompleteText const& cell) {
  if (!languages_.Wants(cell.language) || !out_.WantsMore()) return;
  bool const is_main = cell.row < main_rows_;
  out_.Add({table_, is_main ? main_file_ : user_file_, CountCell(cell.row),
            ids_[cell.row], column,
            cell.section == 0 ? Cell() : CountCell(cell.section),
            CountCell(cell.language), TextCell(languages_.Name(cell.language)),
            std::string(cell.state), cell.text.toUtf8()});
}

std::optional<Problem> LanguageRows::End() {
  if (total_.texts > 0 && form_ == Form::kMatrix) AddMatrixRow(total_);
  if (total_.texts > 0 && form_ == Form::kRows) AddRows(total_);
  return out_.End();
}

}  // namespace tabwerk::tool
