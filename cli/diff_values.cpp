#include "cli/diff_values.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "cli/text_markers.h"
#include "schema/layout.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

bool SameValue(SnapshotRow const& before, SnapshotRow const& after,
               ColumnPair const& column) {
  if (column.type == DBTypeString) {
    return before.Text(column.offset_before) == after.Text(column.offset_after);
  }
  return std::memcmp(before.Bytes(column.offset_before),
                     after.Bytes(column.offset_after),
                     static_cast<std::size_t>(ValueSize(column.type))) == 0;
}

Cell UnitsCell(std::u16string_view text) { return zWString(text).toUtf8(); }

// True when both have the same text around as many sections.
bool SameFrame(std::u16string_view before, std::u16string_view after,
               std::vector<MarkedSection> const& sections_before,
               std::vector<MarkedSection> const& sections_after) {
  if (sections_before.empty() ||
      sections_before.size() != sections_after.size()) {
    return false;
  }
  std::size_t from_before = 0;
  std::size_t from_after = 0;
  for (std::size_t i = 0; i < sections_before.size(); ++i) {
    if (before.substr(from_before, sections_before[i].begin - from_before) !=
        after.substr(from_after, sections_after[i].begin - from_after)) {
      return false;
    }
    from_before = sections_before[i].end;
    from_after = sections_after[i].end;
  }
  return before.substr(from_before) == after.substr(from_after);
}

}  // namespace

bool SameValues(SnapshotRow const& before, SnapshotRow const& after,
                std::vector<ColumnPair> const& columns) {
  return std::all_of(columns.begin(), columns.end(),
                     [&](ColumnPair const& column) {
                       return SameValue(before, after, column);
                     });
}

std::vector<CellDifference> ChangedCells(
    SnapshotRow const& before, SnapshotRow const& after,
    std::vector<ColumnPair> const& columns) {
  std::vector<CellDifference> cells;
  for (ColumnPair const& column : columns) {
    if (SameValue(before, after, column)) continue;
    if (column.type == DBTypeString) {
      auto pieces =
          ChangedPieces(column.name, before.Text(column.offset_before),
                        after.Text(column.offset_after));
      std::move(pieces.begin(), pieces.end(), std::back_inserter(cells));
    } else {
      cells.push_back({column.name,
                       {},
                       {},
                       ValueOf(before, column.type, column.offset_before),
                       ValueOf(after, column.type, column.offset_after)});
    }
  }
  return cells;
}

std::vector<CellDifference> ChangedPieces(std::string const& column,
                                          std::u16string_view before,
                                          std::u16string_view after) {
  auto const sections_before = MarkedSections(before);
  auto const sections_after = MarkedSections(after);
  if (!SameFrame(before, after, sections_before, sections_after)) {
    return {{column, {}, {}, UnitsCell(before), UnitsCell(after)}};
  }
  std::vector<CellDifference> changes;
  for (std::size_t i = 0; i < sections_before.size(); ++i) {
    auto const& old_pieces = sections_before[i].pieces;
    auto const& new_pieces = sections_after[i].pieces;
    std::size_t const count = std::max(old_pieces.size(), new_pieces.size());
    for (std::size_t language = 0; language < count; ++language) {
      CellDifference change{column, language, {}, {}, {}};
      if (sections_before.size() > 1) change.section = i + 1;
      if (language < old_pieces.size()) {
        change.before = UnitsCell(old_pieces[language]);
      }
      if (language < new_pieces.size()) {
        change.after = UnitsCell(new_pieces[language]);
      }
      bool const both =
          language < old_pieces.size() && language < new_pieces.size();
      if (both && old_pieces[language] == new_pieces[language]) continue;
      changes.push_back(std::move(change));
    }
  }
  return changes;
}

Cell ValueOf(SnapshotRow const& row, DBType type, std::int32_t offset) {
  switch (type) {
    case DBTypeInteger:
      return std::int64_t{row.Integer(offset)};
    case DBTypeReal:
      return row.Real(offset);
    case DBTypeString:
      return UnitsCell(row.Text(offset));
    case DBTypeUnknown:
      break;
  }
  return {};
}

}  // namespace tabwerk::tool
