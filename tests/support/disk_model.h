// What a power loss can leave of a folder.
//
// A disk keeps its promises and nothing more:
//   - Bytes that were written and not synced are there, or missing, or zero, or
//     there in part, for each file by itself.
//   - Names that were made, moved or deleted and not synced with their folder
//     are as before or as after, each by itself, so that a later change may be
//     on the disk and an earlier one not.  A move is never half done.
//   - A file that was synced has its bytes under whatever name it has; its
//     name may still be missing.
#ifndef TABWERK_TESTS_SUPPORT_DISK_MODEL_H
#define TABWERK_TESTS_SUPPORT_DISK_MODEL_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tests/support/disk_trace.h"

namespace tabwerk::test {

using FileBytes = std::vector<unsigned char>;
// Content of a folder's files by name.
using FolderImage = std::map<std::string, FileBytes>;

// A folder as it may be found, and after how many steps.
struct LossStates {
  // The largest number of steps after which each state is possible.
  std::map<FolderImage, std::size_t> states;
  // How many ways lead to them.
  std::size_t ways = 0;
};

// Every state of the folder that a power loss before, between and after the
// steps can leave.  folder ends with a separator; what happens elsewhere is
// left out.
LossStates StatesAfterPowerLoss(FolderImage const& start,
                                std::vector<DiskStep> const& steps,
                                std::string const& folder);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_DISK_MODEL_H
