#include "cli/check_texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "cli/check_structure.h"
#include "cli/text.h"
#include "cli/text_markers.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

using enum Severity;
constexpr std::size_t kMaxUnits = format::kMaxTextUnits;

// The string block of one part.  Its cost is linear in its length, however the
// rows point into it.
class PartTexts {
 public:
  PartTexts(TableImage const& table, PartImage const& part, CheckReport& report)
      : table_(table), part_(part), report_(report) {
    Extent const& block = part.record->strings;
    units_.resize(static_cast<std::size_t>(block.size) / sizeof(char16_t));
    // The block need not lie at an even place.
    std::memcpy(units_.data(), part.file->bytes.data() + block.offset,
                units_.size() * sizeof(char16_t));
    has_row_.resize(units_.size());
  }

  void Run() {
    WalkBlock();
    DBFeld const* const first = part_.record->definition.GetDefinition();
    for (std::int64_t row = 0; row < part_.RowCount(); ++row) {
      for (DBFeld const* field = first; field != nullptr; field = field->next) {
        if (field->type == DBTypeString) CheckValue(row, *field);
      }
    }
    NoteSharing();
    NoteUnreferenced();
  }

 private:
  // A text that is longer than the limit.
  struct LongText {
    std::size_t begin;
    std::size_t end;
  };

  std::int64_t ByteOf(std::size_t unit) const {
    return part_.record->strings.offset +
           static_cast<std::int64_t>(unit * sizeof(char16_t));
  }

  std::u16string_view TextAt(std::size_t begin) const {
    std::u16string_view const rest = std::u16string_view(units_).substr(begin);
    return rest.substr(0, rest.find(u'\0'));
  }

  CheckPlace OfUnit(std::size_t unit) const {
    return At(*part_.file, *part_.record, ByteOf(unit));
  }

  // Finds what is too long, and a missing NUL.
  void WalkBlock() {
    for (std::size_t begin = 0; begin < units_.size();) {
      std::size_t const end = begin + TextAt(begin).size();
      if (end - begin > kMaxUnits) long_texts_.push_back({begin, end});
      if (end == units_.size()) {
        report_.Add(kWarning, TW(361), OfUnit(end),
                    "the last text of the string block has no NUL",
                    "save it anew with the program that uses it");
      }
      begin = end + 1;
    }
  }

  void CheckValue(std::int64_t row, DBFeld const& field) {
    std::int32_t const index = part_.Number(row, field);
    if (index < 0 || static_cast<std::size_t>(index) > units_.size()) {
      report_.Add(
          kError, TW(360), table_.PlaceOf(part_, row, field),
          fmt::format("the text is at unit {} of a string block of {}; it "
                      "cannot be read, and the file cannot be saved",
                      index,
                      Count(static_cast<long long>(units_.size()), "unit")),
          "restore the file from a backup, or give the row a text again");
      return;
    }
    auto const begin = static_cast<std::size_t>(index);
    if (begin == units_.size()) {
      // An empty block is a block of empty texts.
      if (begin > 0) {
        report_.Add(kWarning, TW(362), table_.PlaceOf(part_, row, field),
                    "the text is at the end of the string block and reads as "
                    "empty",
                    "save it anew with the program that uses it");
      }
      return;
    }
    CheckLength(row, field, begin);
    if (has_row_[begin]) {
      if (shared_count_++ == 0)
        first_shared_ = table_.PlaceOf(part_, row, field);
      return;
    }
    has_row_[begin] = true;
    if (begin > 0 && units_[begin - 1] != 0) {
      if (inside_count_++ == 0)
        first_inside_ = table_.PlaceOf(part_, row, field);
      return;
    }
    CheckMarkers(row, field, begin);
  }

  void CheckLength(std::int64_t row, DBFeld const& field, std::size_t begin) {
    auto const after = std::upper_bound(
        long_texts_.begin(), long_texts_.end(), begin,
        [](std::size_t at, LongText const& it) { return at < it.begin; });
    if (after == long_texts_.begin()) return;
    LongText const& text = *(after - 1);
    if (begin + kMaxUnits >= text.end) return;
    report_.Add(
        kError, TW(370), table_.PlaceOf(part_, row, field),
        fmt::format("the text has {} units; a program that saves a text "
                    "of more than {} is ended",
                    text.end - begin, kMaxUnits),
        "shorten the text");
  }

  void CheckMarkers(std::int64_t row, DBFeld const& field, std::size_t begin) {
    std::u16string_view const text = TextAt(begin);
    if (!HasMarkers(text)) return;
    for (auto const& [fault, at] : MarkerFaults(text)) {
      CheckPlace place = table_.PlaceOf(part_, row, field);
      place.byte = ByteOf(begin + at);
      AddMarkerFault(fault, place);
    }
  }

  void AddMarkerFault(MarkerFault fault, CheckPlace const& place) {
    switch (fault) {
      case MarkerFault::kUnclosed:
        return report_.Add(kWarning, TW(510), place,
                           "a section for several languages does not end, so "
                           "that it shows with its marker",
                           "end it with \")TS~\"");
      case MarkerFault::kNested:
        return report_.Add(kWarning, TW(511), place,
                           "a section for several languages begins inside "
                           "another one, which the next \")TS~\" ends",
                           "write sections one after the other");
      case MarkerFault::kStray:
        return report_.Add(kWarning, TW(512), place,
                           "\")TS~\" stands outside a section and shows",
                           "remove it, or begin the section with \"#TS(\"");
      case MarkerFault::kBlocked:
        return report_.Add(kWarning, TW(513), place,
                           "the section has more languages than an earlier "
                           "one of the text, and these never show",
                           "give every section of a text the same languages");
    }
  }

  void NoteSharing() {
    if (shared_count_ > 0) {
      report_.Add(kNote, TW(363), first_shared_,
                  fmt::format("the text is that of another value, too ({} in "
                              "the table); a change of one changes both",
                              Count(shared_count_, "such value")));
    }
    if (inside_count_ > 0) {
      report_.Add(kNote, TW(364), first_inside_,
                  fmt::format("the text begins inside another one ({} in the "
                              "table)",
                              Count(inside_count_, "such value")));
    }
  }

  void NoteUnreferenced() {
    std::size_t first = units_.size();
    long long count = 0;
    std::size_t unit_count = 0;
    for (std::size_t begin = 0; begin < units_.size();) {
      std::size_t const size =
          std::min(TextAt(begin).size() + 1, units_.size() - begin);
      if (!has_row_[begin]) {
        if (count++ == 0) first = begin;
        unit_count += size;
      }
      begin += size;
    }
    if (count == 0) return;
    report_.Add(kNote, TW(365), OfUnit(first),
                fmt::format("no row has {} ({}); the next save leaves them out",
                            Count(count, "text"),
                            Count(static_cast<long long>(unit_count), "unit")));
  }

  TableImage const& table_;
  PartImage const& part_;
  CheckReport& report_;
  std::u16string units_;
  std::vector<bool> has_row_;  // by unit: a value begins there
  std::vector<LongText> long_texts_;
  long long shared_count_ = 0;
  long long inside_count_ = 0;
  CheckPlace first_shared_;
  CheckPlace first_inside_;
};

}  // namespace

void CheckTexts(TableImage const& table, CheckReport& report) {
  for (PartImage const& part : table.parts()) {
    PartTexts(table, part, report).Run();
  }
}

}  // namespace tabwerk::tool
