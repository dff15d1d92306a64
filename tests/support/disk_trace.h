// What a program does to the disk, step by step, as the seam of test builds
// sees it.
//
//   DiskTrace trace;
//   EXPECT_TRUE(manager->Write(…));
//   trace.steps();
#ifndef TABWERK_TESTS_SUPPORT_DISK_TRACE_H
#define TABWERK_TESTS_SUPPORT_DISK_TRACE_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace tabwerk::test {

struct DiskStep {
  enum class Kind : std::uint8_t {
    kCreate,      // an empty file of a new name
    kTruncate,    // the file has no bytes any more
    kWrite,       // bytes at an offset
    kSync,        // the file's bytes are on the disk
    kSyncFolder,  // the names in the file's folder are on the disk
    kRename,      // to a name that may be taken
    kDelete,
  };
  Kind kind;
  std::string path;  // UTF-8
  std::string target = {};
  std::int64_t offset = 0;
  std::vector<unsigned char> bytes = {};
};

// "Write USER.UDBT", "Rename USER.UDBT > USER.UDB".
std::string Describe(DiskStep const& step);

// Notes the steps for as long as it lives.  One at a time.  A step that fails
// is not noted.  Files that OpenPlain opens are left out: the library only
// reads them.
class DiskTrace {
 public:
  DiskTrace();
  ~DiskTrace();
  DiskTrace(DiskTrace const&) = delete;
  DiskTrace& operator=(DiskTrace const&) = delete;

  std::vector<DiskStep> const& steps() const;
};

// For the seam; they do nothing while there is no trace.
bool IsTraced();
void TraceOpened(FILE* stream, zWString const& path, platform::Mode mode,
                 bool was_there);
void TraceWritten(FILE* stream, std::int64_t offset, void const* bytes,
                  std::size_t size);
void TraceSynced(FILE* stream);
void TraceClosed(FILE* stream);
void TraceCopied(zWString const& path);
// kCreate, kSyncFolder, kDelete.
void TraceStep(DiskStep::Kind kind, zWString const& path);
// The move is on the disk when it returns.
void TraceReplaced(zWString const& from, zWString const& to);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_DISK_TRACE_H
