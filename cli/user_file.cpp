#include "cli/user_file.h"

#include <memory>
#include <system_error>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/files.h"
#include "cli/index_state.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

// Gives the directory the tables of another one, without rows.
bool CopyTables(DBDirectory const& from, DBDirectory* to) {
  DBDirEntry const* entry = from.GetEntries();
  while (entry != nullptr && entry->GetNext() != nullptr) {
    entry = entry->GetNext();
  }
  // From the end: reading has turned the order of the file round.
  for (; entry != nullptr; entry = entry->GetPrevious()) {
    auto definition = std::make_unique<DBDefinition>(*entry->GetDefinition());
    if (to->AddEntry(definition.release(), entry->GetName(),
                     to->GetFileiName(0), false, 0, 0, 0, 0, 0) == 0) {
      return false;
    }
  }
  return true;
}

bool WriteEmpty(DBDirectory const& main, fs::path const& path) {
  DBDirectory directory;
  directory.Initialize(zWString(), {zWString::fromUtf8(ToUtf8(path))});
  bool const written = directory.OpenDBdatei(0, true, true) &&
                       CopyTables(main, &directory) &&
                       directory.WriteToFile(directory.GetFile(0), 0) == 1;
  directory.CloseDBdatei();
  // What was lost on closing shows when the file is read.
  DBDirectory copy;
  copy.Initialize(zWString(), {zWString::fromUtf8(ToUtf8(path))});
  return written && copy.OpenDBdatei(0, false, false);
}

}  // namespace

NewUserFile::NewUserFile(DatabaseFiles const& files)
    : files_(files),
      path_(ToPath(files.user)),
      index_(IndexPath(files.user, files.DatabaseName())),
      had_index_(!IndexFiles(files).empty()) {}

NewUserFile::~NewUserFile() {
  if (is_kept_) return;
  std::error_code ignored;  // an index, or an empty user file, does no harm
  // While the manager keeps others from saving.
  bool const is_fresh = !had_index_ && (was_made_ || !is_index_kept_);
  if (is_fresh) fs::remove(index_, ignored);
  if (!was_made_) return;
  static_cast<void>(DBbase::Init({}, {}));
  fs::remove(path_, ignored);
}

std::optional<Problem> NewUserFile::MakeWhenMissing() {
  std::error_code error;
  if (fs::exists(path_, error)) return std::nullopt;
  DBDirectory main;
  main.Initialize(zWString(), {zWString::fromUtf8(files_.main)});
  if (!main.OpenDBdatei(0, false, false)) {
    return WhyNotOpened(files_.main, Access::kRead);
  }
  // Complete before it gets its name.
  fs::path const draft = ToPath(files_.user + ".new");
  bool const written = WriteEmpty(main, draft);
  if (written) fs::rename(draft, path_, error);
  was_made_ = written && !error;
  if (was_made_) return std::nullopt;
  fs::remove(draft, error);
  return Problem{TW(115), files_.user, "the user file cannot be made",
                 "check that its folder exists, can be written and has room"};
}

}  // namespace tabwerk::tool
