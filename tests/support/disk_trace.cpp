#include "tests/support/disk_trace.h"

#include <cassert>
#include <filesystem>
#include <map>

#include "tests/support/plain_database.h"

namespace tabwerk::test {
namespace {

struct Recording {
  bool active = false;
  std::vector<DiskStep> steps;
  std::map<FILE*, std::string> paths;  // of open streams
};

Recording& Recorded() {
  static Recording state;
  return state;
}

std::string NameIn(std::string const& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

char const* NameOf(DiskStep::Kind kind) {
  switch (kind) {
    case DiskStep::Kind::kCreate:
      return "Create";
    case DiskStep::Kind::kTruncate:
      return "Truncate";
    case DiskStep::Kind::kWrite:
      return "Write";
    case DiskStep::Kind::kSync:
      return "Sync";
    case DiskStep::Kind::kSyncFolder:
      return "SyncFolder";
    case DiskStep::Kind::kRename:
      return "Rename";
    case DiskStep::Kind::kDelete:
      break;
  }
  return "Delete";
}

}  // namespace

std::string Describe(DiskStep const& step) {
  auto text = std::string(NameOf(step.kind)) + " " + NameIn(step.path);
  return step.target.empty() ? text : text + " > " + NameIn(step.target);
}

DiskTrace::DiskTrace() {
  assert(!Recorded().active);
  Recorded() = Recording();
  Recorded().active = true;
}

DiskTrace::~DiskTrace() { Recorded() = Recording(); }

std::vector<DiskStep> const& DiskTrace::steps() const {
  return Recorded().steps;
}

bool IsTraced() { return Recorded().active; }

void TraceOpened(FILE* stream, zWString const& path, platform::Mode mode,
                 bool was_there) {
  if (!IsTraced() || stream == nullptr) return;
  using platform::Mode;
  Recorded().paths[stream] = path.toUtf8();
  if (!was_there) {
    TraceStep(DiskStep::Kind::kCreate, path);
  } else if (mode == Mode::kCreate || mode == Mode::kCreateUpdate) {
    TraceStep(DiskStep::Kind::kTruncate, path);
  }
}

void TraceWritten(FILE* stream, std::int64_t offset, void const* bytes,
                  std::size_t size) {
  if (!IsTraced() || size == 0) return;
  auto const* first = static_cast<unsigned char const*>(bytes);
  Recorded().steps.push_back({DiskStep::Kind::kWrite,
                              Recorded().paths[stream],
                              {},
                              offset,
                              {first, first + size}});
}

void TraceSynced(FILE* stream) {
  if (!IsTraced()) return;
  Recorded().steps.push_back({DiskStep::Kind::kSync, Recorded().paths[stream]});
}

void TraceClosed(FILE* stream) { Recorded().paths.erase(stream); }

void TraceCopied(zWString const& path) {
  if (!IsTraced()) return;
  TraceStep(DiskStep::Kind::kCreate, path);
  Recorded().steps.push_back({DiskStep::Kind::kWrite,
                              path.toUtf8(),
                              {},
                              0,
                              ReadFileBytes(path.toUtf8())});
}

void TraceStep(DiskStep::Kind kind, zWString const& path) {
  if (IsTraced()) Recorded().steps.push_back({kind, path.toUtf8()});
}

void TraceReplaced(zWString const& from, zWString const& to) {
  if (!IsTraced()) return;
  Recorded().steps.push_back(
      {DiskStep::Kind::kRename, from.toUtf8(), to.toUtf8()});
  TraceStep(DiskStep::Kind::kSyncFolder, to);
}

}  // namespace tabwerk::test
