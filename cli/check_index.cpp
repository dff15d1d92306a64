#include "cli/check_index.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "cli/check_rows.h"
#include "cli/files.h"
#include "cli/text.h"
#include "schema/bytes.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

using enum Severity;
constexpr std::size_t kValueBytes = sizeof(std::int32_t);

// An index that does not fit counts as missing.
constexpr char kLost[] =
    "order and status of shipped rows are lost with it: restore it from a "
    "backup together with the user file";
constexpr char kMadeAnew[] = "remove it, so that it is made anew";

// A section: its entries are numbers, one or two each.
struct Section {
  std::size_t count_at = 0;
  std::size_t first = 0;  // place of the first number
  std::int64_t count = 0;
};

class IndexCheck {
 public:
  IndexCheck(std::string const& path, std::string const& bytes,
             CheckReport& report)
      : path_(path), bytes_(bytes), report_(report) {}

  // with_rows as for CheckIndex.
  void Run(std::vector<std::int64_t> const& stamps,
           std::vector<TableImage> const& tables, bool with_rows) {
    auto const same = ReadStamps(stamps);
    if (!same) return;
    // The directory lists the tables of a file backwards.
    for (auto it = tables.rbegin(); it != tables.rend(); ++it) {
      if (!ReadTable(*it, *same, with_rows)) return;
    }
    if (at_ < bytes_.size()) {
      Unusable(TW(436), at_, "",
               fmt::format("{} stand behind the last section",
                           Count(Remaining(), "byte")));
      return;
    }
    if (!*same) {
      report_.Add(kNote, TW(438), At(0, ""),
                  "the index is older than the files and is brought up to date "
                  "at the next opening");
    }
  }

 private:
  CheckPlace At(std::size_t byte, std::string const& table) const {
    CheckPlace place;
    place.file = path_;
    place.byte = static_cast<std::int64_t>(byte);
    place.table = table;
    return place;
  }

  bool Unusable(Code code, std::size_t byte, std::string const& table,
                std::string const& what) {
    report_.Add(kError, code, At(byte, table), what, kLost);
    return false;
  }

  std::int64_t Remaining() const {
    return static_cast<std::int64_t>(bytes_.size() - at_);
  }

  template <typename T>
  T Load(std::size_t at) const {
    return LoadValue<T>(reinterpret_cast<std::byte const*>(bytes_.data() + at));
  }

  // The k-th number of a section.
  std::int32_t Number(Section const& section, std::int64_t k) const {
    return Load<std::int32_t>(PlaceOf(section, k));
  }
  static std::size_t PlaceOf(Section const& section, std::int64_t k) {
    return section.first + static_cast<std::size_t>(k) * kValueBytes;
  }

  // Whether they are those of the files; nothing when the index is too short.
  std::optional<bool> ReadStamps(std::vector<std::int64_t> const& stamps) {
    bool same = true;
    for (std::int64_t const stamp : stamps) {
      if (Remaining() < static_cast<std::int64_t>(sizeof stamp)) {
        Unusable(TW(431), bytes_.size(), "",
                 "the index ends inside its time stamps");
        return std::nullopt;
      }
      same = same && Load<std::int64_t>(at_) == stamp;
      at_ += sizeof stamp;
    }
    return same;
  }

  std::optional<Section> ReadSection(std::string_view tag, std::int64_t numbers,
                                     std::string const& table) {
    std::size_t const start = at_;
    if (bytes_.size() - at_ < tag.size() + kValueBytes) {
      Unusable(TW(431), bytes_.size(), table,
               fmt::format("the index ends before its {} section", tag));
      return std::nullopt;
    }
    if (bytes_.compare(at_, tag.size(), tag) != 0) {
      Unusable(TW(432), start, table,
               fmt::format("no {} section begins here; the index is one of "
                           "another database, or damaged",
                           tag));
      return std::nullopt;
    }
    at_ += tag.size();
    Section section{at_, at_ + kValueBytes, Load<std::int32_t>(at_)};
    at_ += kValueBytes;
    std::int64_t const size =
        section.count * numbers * static_cast<std::int64_t>(kValueBytes);
    if (section.count < 0 || size > Remaining()) {
      Unusable(TW(433), section.count_at, table,
               fmt::format("the {} section cannot have {} entries", tag,
                           section.count));
      return std::nullopt;
    }
    at_ += static_cast<std::size_t>(size);
    return section;
  }

  // False when a row number of the section, whose entries have so many
  // numbers, is none of a table of so many rows.
  bool CheckRowNumbers(Section const& section, std::int64_t numbers,
                       std::int32_t lowest, std::int64_t rows,
                       std::string const& table) {
    for (std::int64_t i = 0; i < section.count; ++i) {
      std::int64_t const k = i * numbers + numbers - 1;
      std::int32_t const row = Number(section, k);
      if (row >= lowest && row < rows) continue;
      return Unusable(TW(435), PlaceOf(section, k), table,
                      fmt::format("the table has no row {}", row));
    }
    return true;
  }

  // False when the sections cannot be those of the table.
  bool ReadTable(TableImage const& table, bool same, bool with_rows) {
    std::string const& name = table.name();
    auto const ids = ReadSection("ID", 2, name);
    if (!ids) return false;
    auto const folge = ReadSection("FOLGE", 1, name);
    if (!folge) return false;
    auto const status = ReadSection("STATUS", 1, name);
    if (!status) return false;
    std::int64_t const rows = status->count;
    if (folge->count != rows + 1 || ids->count > rows) {
      return Unusable(
          TW(434), ids->count_at, name,
          fmt::format("sections of {} IDs, {} places and {} rows do "
                      "not belong to one table",
                      ids->count, folge->count, rows));
    }
    if (!CheckRowNumbers(*ids, 2, 0, rows, name) ||
        !CheckRowNumbers(*folge, 1, -1, rows, name)) {
      return false;
    }
    if (!same || !table.IsWhole()) return true;
    if (rows != table.RowCount()) {
      return Unusable(
          TW(437), status->count_at, name,
          fmt::format("the index was written for these files, but for {} "
                      "instead of {}",
                      Count(rows, "row"), table.RowCount()));
    }
    if (with_rows) {
      CheckIds(*ids, table);
      CheckPlaces(*folge, table);
      CheckStatus(*status, table);
    }
    return true;
  }

  // --- A valid index against the rows ------------------------------------
  // --------------------------------------------

  void CheckIds(Section const& section, TableImage const& table) {
    if (table.id() == nullptr) return;
    auto const ids = table.SortedIds();
    std::int64_t entry = 0;
    for (std::size_t i = 0; i < ids.size(); ++i) {
      // Of rows with one ID the last one counts.
      if (i + 1 < ids.size() && ids[i + 1].id == ids[i].id) continue;
      if (entry == section.count) {
        report_.Add(kWarning, TW(440), At(at_, table.name()),
                    fmt::format("the index lacks ID {} of row {}", ids[i].id,
                                ids[i].row),
                    kMadeAnew);
        return;
      }
      RowId const found{Number(section, 2 * entry),
                        Number(section, 2 * entry + 1)};
      if (found != ids[i]) {
        return AddIdFinding(section, entry, found, ids[i], table);
      }
      ++entry;
    }
    if (entry < section.count) {
      report_.Add(kWarning, TW(440),
                  At(PlaceOf(section, 2 * entry), table.name()),
                  fmt::format("no row has ID {} of the index",
                              Number(section, 2 * entry)),
                  kMadeAnew);
    }
  }

  // The entries behind one that differs tell nothing more.
  void AddIdFinding(Section const& section, std::int64_t entry,
                    RowId const& found, RowId const& wanted,
                    TableImage const& table) {
    CheckPlace const place = At(PlaceOf(section, 2 * entry), table.name());
    bool const is_in_order =
        entry == 0 || Number(section, 2 * (entry - 1)) < found.id;
    if (!is_in_order) {
      report_.Add(kWarning, TW(441), place,
                  fmt::format("ID {} stands behind ID {}", found.id,
                              Number(section, 2 * (entry - 1))),
                  kMadeAnew);
      return;
    }
    report_.Add(
        kWarning, TW(440), place,
        fmt::format("the index says that ID {} is row {}, but the rows "
                    "say that ID {} is row {}; the order may be applied "
                    "to other rows than the user's",
                    found.id, found.row, wanted.id, wanted.row),
        kMadeAnew);
  }

  void CheckPlaces(Section const& section, TableImage const& table) {
    std::vector<bool> has_place(static_cast<std::size_t>(table.RowCount()));
    for (std::int64_t place = 0; place < section.count; ++place) {
      std::int32_t const row = Number(section, place);
      if (row < 0) continue;
      auto const index = static_cast<std::size_t>(row);
      if (has_place[index]) {
        report_.Add(kWarning, TW(442),
                    At(PlaceOf(section, place), table.name()),
                    fmt::format("row {} stands at place {} and at an earlier "
                                "one",
                                row, place),
                    "let the program number its rows anew");
      }
      has_place[index] = true;
    }
  }

  void CheckStatus(Section const& section, TableImage const& table) {
    for (PartImage const& part : table.parts()) {
      for (std::int64_t row = 0; row < part.RowCount(); ++row) {
        std::int64_t const at = part.first_row + row;
        std::int32_t const status = Number(section, at);
        if (status >= 0 && status <= kLastStatus) continue;
        // The row itself has been found out.
        if (table.status() != nullptr &&
            part.Number(row, *table.status()) == status) {
          continue;
        }
        report_.Add(kWarning, TW(443), At(PlaceOf(section, at), table.name()),
                    fmt::format("the index gives row {} status {}, which is "
                                "none of 0, 1 and 2",
                                at, status),
                    "set it to 0 (active) or 1 (inactive)");
      }
    }
  }

  std::string const& path_;
  std::string const& bytes_;
  CheckReport& report_;
  std::size_t at_ = 0;
};

}  // namespace

void CheckIndex(fs::path const& path, FileImage const& main,
                FileImage const& user, std::vector<TableImage> const& tables,
                bool with_rows, CheckReport& report) {
  std::string const name = ToUtf8(path);
  std::vector<std::int64_t> const stamps = {main.header.time_stamp,
                                            user.header.time_stamp};
  std::error_code error;
  for (std::int64_t const stamp : stamps) {
    fs::path const waiting = ToPath(fmt::format("{}.{}", name, stamp));
    if (!fs::exists(waiting, error)) continue;
    CheckPlace place;
    place.file = ToUtf8(waiting);
    report.Add(kNote, TW(439), place,
               "the index of an interrupted save; the next opening puts it in "
               "its place");
    // The one that it replaces tells nothing.
    return;
  }
  if (!fs::exists(path, error)) return;  // as before the first opening
  std::string bytes;
  if (!fs::is_regular_file(path, error) || !ReadWhole(path, &bytes)) {
    CheckPlace place;
    place.file = name;
    report.Add(kWarning, TW(430), place,
               "the index cannot be read, so that order and status of shipped "
               "rows are not applied",
               "check its permissions");
    return;
  }
  IndexCheck(name, bytes, report).Run(stamps, tables, with_rows);
}

}  // namespace tabwerk::tool
