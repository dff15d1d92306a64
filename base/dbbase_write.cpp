// Writing a database file back to disk.
#include <cstddef>
#include <optional>

#include "DBbase.h"
#include "base/manager_access.h"
#include "base/save.h"
#include "platform/guarded.h"
#include "schema/directory_access.h"

using tabwerk::DirectoryAccess;
using tabwerk::Guarded;
using tabwerk::ManagerAccess;
using tabwerk::Save;

namespace {

struct Target {
  std::size_t file;
  zWString path;
};

// Which file's data go where for a named database.
std::optional<Target> NamedTarget(DBDirectory const& directory,
                                  bool to_user_file,
                                  zWString const& target_path) {
  // Kept: with a path of its own, the first file's data are written whatever
  // to_user_file says.
  if (!target_path.isEmpty()) return Target{0, target_path};
  auto const file = to_user_file ? directory.GetUserFile() : 0;
  if (file < 0) return std::nullopt;
  auto const index = static_cast<std::size_t>(file);
  auto const& files = DirectoryAccess::Files(directory);
  if (index >= files.size()) return std::nullopt;
  return Target{index, files[index].name};
}

}  // namespace

bool DBbase::Write(zWString const& name, bool toUserFile,
                   zWString const& targetPath) {
  return Guarded(false, [&] {
    if (ManagerAccess::Current(*this) == nullptr) return false;
    std::optional<Target> target;
    if (!name.isEmpty()) {
      if (!FindFile(name)) return false;
      target = NamedTarget(*current_, toUserFile, targetPath);
    } else if (!DirectoryAccess::Name(*current_).isEmpty()) {
      // Kept: without a name, the first file is written to its own path.
      target = NamedTarget(*current_, false, zWString());
    }
    if (!target || target->file >= current_->GetNumberFiles()) return false;
    if (!current_->FileIsOpen(false, false)) return false;
    if (!Save(*current_, target->file, target->path).Run()) return false;
    (void)Close(zWString());
    // Not examined: the file is written even when a database of the catalogue
    // does not open again.  The call deletes this object.
    (void)ReOpen(true);
    return true;
  });
}
