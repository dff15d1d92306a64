#include "cli/check_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cli/check_structure.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

using enum Severity;

constexpr std::int32_t kFirstUserId = 20000;

void CheckSystemColumns(TableImage const& table, CheckReport& report) {
  for (char const* const name : {"ID", "FOLGE", "STATUS"}) {
    DBFeld* field = nullptr;
    if (table.definition().GetOffset(name, field) == 0) continue;
    if (field->type == DBTypeInteger || table.parts().empty()) continue;
    PartImage const& part = table.parts().front();
    CheckPlace place = At(*part.file, *part.record, part.record->definition_at);
    place.column = name;
    report.Add(kNote, TW(426), place,
               "the column holds no integers, so that the table counts as one "
               "without it");
  }
}

// --- IDs ---------------------------------------------------------------------

void CheckDoubleIds(TableImage const& table, CheckReport& report) {
  auto const ids = table.SortedIds();
  for (std::size_t i = 1; i < ids.size(); ++i) {
    if (ids[i].id != ids[i - 1].id) continue;
    PartImage const& part = table.PartOf(ids[i].row);
    CheckPlace const place =
        table.PlaceOf(part, ids[i].row - part.first_row, *table.id());
    report.Add(kWarning, TW(410), place,
               fmt::format("row {} has the same ID, and only one of them is "
                           "found by it",
                           ids[i - 1].row),
               "give one of them another ID");
  }
}

void CheckIdRanges(TableImage const& table, CheckReport& report) {
  bool const has_user_file = table.parts().back().is_user_file;
  for (PartImage const& part : table.parts()) {
    for (std::int64_t row = 0; row < part.RowCount(); ++row) {
      std::int32_t const id = part.Number(row, *table.id());
      if (part.is_user_file == (id >= kFirstUserId)) continue;
      if (part.is_user_file) {
        report.Add(kWarning, TW(411), table.PlaceOf(part, row, *table.id()),
                   "a row of the user has an ID below 20000, which a new main "
                   "file may give to another one",
                   "give it an ID from 20000 on");
      } else if (has_user_file) {
        report.Add(kWarning, TW(412), table.PlaceOf(part, row, *table.id()),
                   "a shipped row has an ID from 20000 on, which the user may "
                   "have given to another one",
                   "give it an ID below 20000");
      }
    }
  }
}

// --- Order -------------------------------------------------------------------

bool IsActive(TableImage const& table, PartImage const& part,
              std::int64_t row) {
  return table.status() == nullptr || part.Number(row, *table.status()) == 0;
}

// The places of the rows of a main file.
class MainOrder {
 public:
  MainOrder(TableImage const& table, CheckReport& report)
      : table_(table),
        part_(table.parts().front()),
        report_(report),
        row_at_(static_cast<std::size_t>(table.RowCount()) + 1, -1) {}

  void Run() {
    for (std::int64_t row = 0; row < part_.RowCount(); ++row) Enter(row);
    if (last_place_ == 0) return;  // the table has no order
    if (first_without_ >= 0) {
      report_.Add(kNote, TW(423), Where(first_without_),
                  fmt::format("{} of the main file {} no place in the order",
                              Count(without_, "active row"),
                              without_ == 1 ? "has" : "have"),
                  "give every active row a place");
    }
    CheckGaps();
  }

 private:
  CheckPlace Where(std::int64_t row) const {
    return table_.PlaceOf(part_, row, *table_.folge());
  }

  void Enter(std::int64_t row) {
    std::int32_t const place = part_.Number(row, *table_.folge());
    bool const is_active = IsActive(table_, part_, row);
    if (place == 0) {
      if (!is_active) return;
      if (without_++ == 0) first_without_ = row;
      return;
    }
    if (place < 0 || place > table_.RowCount()) {
      report_.Add(kWarning, TW(421), Where(row),
                  fmt::format("place {} is none of 1 to {}, so that the row is "
                              "not in the order",
                              place, table_.RowCount()),
                  "number the rows 1, 2, 3 and so on");
      return;
    }
    auto& taken = row_at_[static_cast<std::size_t>(place)];
    if (taken >= 0 && (is_active || IsActive(table_, part_, taken))) {
      report_.Add(kWarning, TW(420), Where(row),
                  fmt::format("row {} has place {}, too, so that only one of "
                              "them is in the order",
                              taken, place),
                  "give one of them another place");
    }
    taken = static_cast<std::int32_t>(row);
    last_place_ = std::max(last_place_, place);
  }

  // The user's rows may stand between the shipped ones.
  void CheckGaps() {
    for (PartImage const& part : table_.parts()) {
      for (std::int64_t row = 0; row < part.RowCount(); ++row) {
        std::int32_t const place = part.Number(row, *table_.folge());
        if (place > 0 && place <= table_.RowCount()) {
          row_at_[static_cast<std::size_t>(place)] = 0;
        }
      }
    }
    auto const end = row_at_.begin() + last_place_;
    auto const missing = std::count(row_at_.begin() + 1, end, -1);
    if (missing == 0) return;
    auto const first = std::find(row_at_.begin() + 1, end, -1);
    CheckPlace place;
    place.file = part_.file->path;
    place.table = table_.name();
    place.column = "FOLGE";
    report_.Add(
        kWarning, TW(422), place,
        fmt::format("no row has place {}{}; after a gap, rows that come "
                    "with a new main file move to the front",
                    first - row_at_.begin(),
                    missing == 1 ? ""
                                 : fmt::format(" (and {} more up to {})",
                                               missing - 1, last_place_)),
        "number the rows 1, 2, 3 and so on");
  }

  TableImage const& table_;
  PartImage const& part_;
  CheckReport& report_;
  std::vector<std::int32_t> row_at_;  // by place; -1: none
  std::int32_t last_place_ = 0;
  std::int64_t first_without_ = -1;
  long long without_ = 0;
};

// --- Status ------------------------------------------------------------------

void CheckStatus(TableImage const& table, CheckReport& report) {
  for (PartImage const& part : table.parts()) {
    for (std::int64_t row = 0; row < part.RowCount(); ++row) {
      std::int32_t const status = part.Number(row, *table.status());
      if (status >= 0 && status <= kLastStatus) continue;
      report.Add(
          kWarning, TW(425), table.PlaceOf(part, row, *table.status()),
          fmt::format("status {} is none of 0, 1 and 2; it becomes 1 when "
                      "the index is brought up to date",
                      status),
          "set it to 0 (active) or 1 (inactive)");
    }
  }
}

// Tables that are not put in order have no row at any place.
bool HasOrder(DBTabelle const& loaded) {
  for (long place = 1; place <= loaded.MaxFolge(); ++place) {
    if (loaded.GetRowByFolge(place) >= 0) return true;
  }
  return false;
}

}  // namespace

void CheckRows(TableImage const& table, CheckReport& report) {
  CheckSystemColumns(table, report);
  if (table.RowCount() == 0) return;
  if (table.id() != nullptr) {
    CheckDoubleIds(table, report);
    CheckIdRanges(table, report);
  }
  // The places of a user file mean something only among the main file's.
  if (table.folge() != nullptr && !table.parts().front().is_user_file) {
    MainOrder(table, report).Run();
  }
  if (table.status() != nullptr) CheckStatus(table, report);
}

void CheckOrder(TableImage const& table, DBTabelle& loaded,
                CheckReport& report) {
  if (table.folge() == nullptr || !HasOrder(loaded)) return;
  for (PartImage const& part : table.parts()) {
    for (std::int64_t row = 0; row < part.RowCount(); ++row) {
      long const at = static_cast<long>(part.first_row + row);
      long status = 0;
      long place = 0;
      loaded.SelectZeile(at);
      if (loaded.SelectColumn("STATUS") == 1) loaded.GetWert(status);
      loaded.SelectColumn("FOLGE");
      loaded.GetWert(place);
      long const found = loaded.GetRowByFolge(place);
      if (status != 0 || (place > 0 && found == at)) continue;
      report.Add(kNote, TW(424), table.PlaceOf(part, row),
                 place > 0 && found >= 0
                     ? fmt::format("the row is active, but row {} has its "
                                   "place, {}, in the order",
                                   found, place)
                     : fmt::format("the row is active, but has no place in the "
                                   "order (FOLGE is {})",
                                   place),
                 "let the program number its rows anew");
    }
  }
}

}  // namespace tabwerk::tool
