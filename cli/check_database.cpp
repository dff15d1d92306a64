#include "cli/check_database.h"

#include <algorithm>
#include <utility>

#include "cli/check_index.h"
#include "cli/check_rows.h"
#include "cli/check_structure.h"
#include "cli/check_texts.h"
#include "cli/database_file.h"
#include "cli/index_state.h"

namespace tabwerk::tool {

DatabaseCheck::DatabaseCheck(DatabaseFiles files, bool quick)
    : files_(std::move(files)), quick_(quick) {}

bool DatabaseCheck::HasIndex() const {
  return IsUserFile(files_.user) && !IsUserFile(files_.main);
}

long long DatabaseCheck::TableCount() const {
  return static_cast<long long>(tables_.size());
}

long long DatabaseCheck::RowCount() const {
  long long count = 0;
  for (TableImage const& table : tables_) count += table.RowCount();
  return count;
}

std::optional<Problem> DatabaseCheck::Read() {
  if (auto problem = ReadFileImage(files_.main, !quick_, &main_)) {
    return problem;
  }
  if (!HasUserFile()) return std::nullopt;
  return ReadFileImage(files_.user, !quick_, &user_);
}

std::optional<Problem> DatabaseCheck::Run(CheckReport& report) {
  CheckStructure(report);
  CheckContents(report);
  if (HasIndex() && !tables_.empty()) {
    CheckIndex(IndexPath(files_.user, files_.DatabaseName()), main_, user_,
               tables_, !quick_, report);
    report.Flush();
  }
  return CheckLoaded(report);
}

void DatabaseCheck::CheckStructure(CheckReport& report) const {
  for (FileImage const* const image : {&main_, &user_}) {
    if (image == &user_ && !HasUserFile()) continue;
    CheckHeader(*image, report);
    CheckList(*image, image == &user_ || IsUserFile(image->path), report);
    CheckBlocks(*image, report);
  }
  if (HasUserFile()) CheckUserTables(main_, user_, report);
  report.Flush();
}

// Rows and texts, as far as they can be read.
void DatabaseCheck::CheckContents(CheckReport& report) {
  if (!main_.HasWholeList() || !user_.HasWholeList()) return;
  for (RecordImage const& record : main_.records) {
    tables_.emplace_back(main_, record, IsUserFile(main_.path),
                         HasUserFile() ? &user_ : nullptr);
    if (quick_) continue;
    CheckRows(tables_.back(), report);
    CheckTexts(tables_.back(), report);
    report.Flush();
  }
}

// What follows from the index and the rows together is asked of the library.
std::optional<Problem> DatabaseCheck::CheckLoaded(CheckReport& report) const {
  bool const can_be_loaded =
      !tables_.empty() &&
      std::all_of(tables_.begin(), tables_.end(),
                  [](TableImage const& it) { return it.IsWhole(); });
  if (quick_ || !HasIndex() || !can_be_loaded) return std::nullopt;
  if (auto problem = OpenToLook(files_)) return problem;
  for (TableImage const& table : tables_) {
    DBTabelle* loaded = nullptr;
    if (auto problem = FindTable(files_, table.name(), &loaded)) return problem;
    // Of two tables of one name the manager gives one.
    if (loaded->GetAnzahlZeilen() != table.RowCount()) continue;
    CheckOrder(table, *loaded, report);
    report.Flush();
  }
  return std::nullopt;
}

}  // namespace tabwerk::tool
