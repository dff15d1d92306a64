#include "tests/support/fault_platform.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <set>
#include <string_view>
#include <utility>

#include "tests/support/child_process.h"
#include "tests/support/disk_trace.h"
#include "tests/support/memory_meter.h"

namespace tabwerk::test {
namespace {

struct Plan {
  std::int64_t calls_left = 0;  // until the one that is meant; 0: none is
  CallSet calls = 0;
  bool kills = false;
  bool lasting = false;
  platform::Error error = platform::Error::kInputOutput;
  Portion portion = Portion::kHalf;
  std::function<void()> action = {};
};

struct State {
  bool guarded = false;
  bool failing = false;  // a lasting failure has begun
  bool fired = false;
  CallSet first_failed = 0;
  Plan plan;
  std::array<std::int64_t, kCallKinds> counts = {};
  std::int64_t bytes_read = 0;
  std::int64_t bytes_written = 0;
  std::vector<std::string> trace;
  std::set<FILE*> failed_streams;
  platform::Error last_open_error = platform::Error::kNone;
  int open_streams = 0;
  int live_blocks = 0;
  bool skips_sync = false;
};

State& TheState() {
  static State state;
  return state;
}

// Counts the call; true when it is to fail.
bool MustFail(Call call) {
  State& state = TheState();
  if (!state.guarded) {
    return false;
  }
  ++state.counts[static_cast<std::size_t>(call)];
  Plan& plan = state.plan;
  if ((plan.calls & Only(call)) == 0) {
    return false;
  }
  if (state.failing) {
    return true;
  }
  if (plan.calls_left == 0 || --plan.calls_left > 0) {
    return false;
  }
  if (plan.kills) {
    EndAtOnce(kKilledExitCode);
  }
  state.fired = true;
  if (plan.action) {
    state.guarded = false;
    plan.action();
    state.guarded = true;
    return false;
  }
  state.first_failed = Only(call);
  state.failing = plan.lasting;
  return true;
}

std::string NameOf(zWString const& path) {
  zSplitPath const split(path);
  return (split.GetFileName() + split.GetExtension()).toUtf8();
}

void Note(std::string_view what, std::string const& operand) {
  State& state = TheState();
  if (state.guarded) {
    state.trace.push_back(std::string(what) + " " + operand);
  }
}

FILE* Opened(FILE* stream) {
  TheState().open_streams += stream != nullptr ? 1 : 0;
  return stream;
}

// What a failing call does of that many bytes or units.
std::size_t PortionOf(std::size_t size) {
  switch (TheState().plan.portion) {
    case Portion::kNothing:
      return 0;
    case Portion::kOneByte:
      return std::min<std::size_t>(size, 1);
    case Portion::kAllButOne:
      return size - std::min<std::size_t>(size, 1);
    case Portion::kHalf:
      break;
  }
  return size / 2;
}

std::size_t CountRead(std::size_t bytes) {
  TheState().bytes_read += static_cast<std::int64_t>(bytes);
  return bytes;
}

std::size_t CountWritten(std::size_t bytes) {
  TheState().bytes_written += static_cast<std::int64_t>(bytes);
  return bytes;
}

// The bytes of a file that is about to be copied.
void CountCopy(zWString const& from) {
  auto error = platform::Error::kNone;
  auto* const stream = platform::os::OpenFile(
      from, platform::Mode::kRead, platform::Share::kDenyNone, &error);
  if (stream == nullptr) return;
  auto const size = static_cast<std::size_t>(platform::os::FileSize(stream));
  CountRead(size);
  CountWritten(size);
  platform::os::Close(stream);
}

void MarkFailed(FILE* stream) { TheState().failed_streams.insert(stream); }

void* Taken(void* block) {
  TheState().live_blocks += block != nullptr ? 1 : 0;
  NoteTaken(block);
  return block;
}

}  // namespace

FaultGuard::FaultGuard() {
  State& state = TheState();
  assert(!state.guarded);
  state.guarded = true;
  state.failing = false;
  state.fired = false;
  state.first_failed = 0;
  state.plan = Plan();
  state.counts = {};
  state.bytes_read = 0;
  state.bytes_written = 0;
  state.trace.clear();
}

FaultGuard::~FaultGuard() {
  State& state = TheState();
  state.guarded = false;
  state.failing = false;
  state.plan = Plan();
  state.trace.clear();
  state.failed_streams.clear();
}

void FaultGuard::FailAt(std::int64_t n, Lasting lasting, CallSet calls,
                        platform::Error error, Portion portion) {
  State& state = TheState();
  state.failing = false;
  state.fired = false;
  state.first_failed = 0;
  state.plan = Plan{.calls_left = n,
                    .calls = calls,
                    .lasting = lasting == Lasting::kForGood,
                    .error = error,
                    .portion = portion};
}

void FaultGuard::KillAt(std::int64_t n, CallSet calls) {
  TheState().plan = Plan{.calls_left = n, .calls = calls, .kills = true};
}

void FaultGuard::ActAt(std::int64_t n, CallSet calls,
                       std::function<void()> action) {
  TheState().fired = false;
  TheState().plan =
      Plan{.calls_left = n, .calls = calls, .action = std::move(action)};
}

void FaultGuard::Disarm() {
  TheState().failing = false;
  TheState().plan = Plan();
}

bool FaultGuard::Fired() const { return TheState().fired; }

CallSet FaultGuard::FirstFailed() const { return TheState().first_failed; }

std::int64_t FaultGuard::Count(CallSet calls) const {
  std::int64_t sum = 0;
  for (std::size_t kind = 0; kind < kCallKinds; ++kind) {
    bool const wanted = (calls >> kind & 1) != 0;
    sum += wanted ? TheState().counts[kind] : 0;
  }
  return sum;
}

std::int64_t FaultGuard::BytesRead() const { return TheState().bytes_read; }

std::int64_t FaultGuard::BytesWritten() const {
  return TheState().bytes_written;
}

std::vector<std::string> const& FaultGuard::Trace() const {
  return TheState().trace;
}

SyncSkip::SyncSkip() { TheState().skips_sync = true; }

SyncSkip::~SyncSkip() { TheState().skips_sync = false; }

platform::Error LastOpenError() { return TheState().last_open_error; }

int OpenStreams() { return TheState().open_streams; }

int LiveBlocks() { return TheState().live_blocks; }

}  // namespace tabwerk::test

namespace tabwerk::platform {

using test::Call;
using test::DiskStep;
using test::MarkFailed;
using test::MustFail;
using test::TheState;

FILE* OpenFile(zWString const& path, Mode mode, Share share, Error* error) {
  test::Note("OpenFile", test::NameOf(path));
  if (MustFail(Call::kOpenFile)) {
    *error = TheState().last_open_error = TheState().plan.error;
    return nullptr;
  }
  bool const was_there = test::IsTraced() && os::Exists(path);
  FILE* const stream = os::OpenFile(path, mode, share, error);
  if (stream == nullptr) TheState().last_open_error = *error;
  test::TraceOpened(stream, path, mode, was_there);
  return test::Opened(stream);
}

FILE* OpenPlain(char const* path, char const* mode) {
  test::Note("OpenPlain", test::NameOf(zWString::fromUtf8(path)));
  return MustFail(Call::kOpenPlain) ? nullptr
                                    : test::Opened(os::OpenPlain(path, mode));
}

std::size_t Read(FILE* stream, void* bytes, std::size_t size) {
  if (MustFail(Call::kRead)) {
    MarkFailed(stream);
    return os::Read(stream, bytes, test::PortionOf(size));
  }
  return test::CountRead(os::Read(stream, bytes, size));
}

std::size_t Write(FILE* stream, void const* bytes, std::size_t size) {
  if (MustFail(Call::kWrite)) {
    MarkFailed(stream);
    return os::Write(stream, bytes, test::PortionOf(size));
  }
  auto const offset = test::IsTraced() ? os::Tell(stream) : 0;
  auto const taken = os::Write(stream, bytes, size);
  test::TraceWritten(stream, offset, bytes, taken);
  return test::CountWritten(taken);
}

bool WriteText(FILE* stream, std::u16string_view text) {
  if (MustFail(Call::kWrite)) {
    MarkFailed(stream);
    static_cast<void>(
        os::WriteText(stream, text.substr(0, test::PortionOf(text.size()))));
    return false;
  }
  return os::WriteText(stream, text);
}

bool Seek(FILE* stream, std::int64_t offset, Origin origin) {
  return !MustFail(Call::kSeek) && os::Seek(stream, offset, origin);
}

std::int64_t Tell(FILE* stream) {
  return MustFail(Call::kTell) ? -1 : os::Tell(stream);
}

std::int64_t FileSize(FILE* stream) {
  return MustFail(Call::kFileSize) ? -1 : os::FileSize(stream);
}

bool Failed(FILE* stream) {
  return TheState().failed_streams.count(stream) != 0 || os::Failed(stream);
}

bool Flush(FILE* stream) {
  if (MustFail(Call::kFlush)) {
    MarkFailed(stream);
    return false;
  }
  return os::Flush(stream);
}

bool Sync(FILE* stream) {
  if (MustFail(Call::kSync)) {
    MarkFailed(stream);
    return false;
  }
  bool const synced =
      TheState().skips_sync ? os::Flush(stream) : os::Sync(stream);
  if (synced) test::TraceSynced(stream);
  return synced;
}

void BeginSync(FILE* stream, std::int64_t offset, std::int64_t size) {
  os::BeginSync(stream, offset, size);
}

bool Close(FILE* stream) {
  bool const must_fail = MustFail(Call::kClose);
  TheState().failed_streams.erase(stream);
  --TheState().open_streams;
  test::TraceClosed(stream);
  return os::Close(stream) && !must_fail;
}

bool Exists(zWString const& path) {
  return !MustFail(Call::kExists) && os::Exists(path);
}

bool SameFile(zWString const& one, zWString const& other) {
  return os::SameFile(one, other);
}

Error Copy(zWString const& from, zWString const& to) {
  test::Note("Copy", test::NameOf(from) + " > " + test::NameOf(to));
  if (MustFail(Call::kCopy)) return TheState().plan.error;
  if (TheState().guarded) test::CountCopy(from);
  Error const result = os::Copy(from, to);
  if (result == Error::kNone) test::TraceCopied(to);
  return result;
}

Error Delete(zWString const& path) {
  test::Note("Delete", test::NameOf(path));
  if (MustFail(Call::kDelete)) return TheState().plan.error;
  Error const result = os::Delete(path);
  if (result == Error::kNone) test::TraceStep(DiskStep::Kind::kDelete, path);
  return result;
}

Error Replace(zWString const& from, zWString const& to) {
  test::Note("Replace", test::NameOf(from) + " > " + test::NameOf(to));
  if (MustFail(Call::kReplace)) return TheState().plan.error;
  Error const result = os::Replace(from, to);
  if (result == Error::kNone) test::TraceReplaced(from, to);
  return result;
}

bool SyncFolderOf(zWString const& path) {
  if (MustFail(Call::kSyncFolderOf)) return false;
  if (!TheState().skips_sync && !os::SyncFolderOf(path)) return false;
  test::TraceStep(DiskStep::Kind::kSyncFolder, path);
  return true;
}

bool ClearReadOnly(zWString const& path) {
  test::Note("ClearReadOnly", test::NameOf(path));
  return !MustFail(Call::kClearReadOnly) && os::ClearReadOnly(path);
}

zWString TempFolder() {
  return MustFail(Call::kTempFolder) ? zWString() : os::TempFolder();
}

zWString MakeTempFile(zWString const& folder, char const* prefix) {
  test::Note("MakeTempFile", prefix);
  if (MustFail(Call::kMakeTempFile)) return zWString();
  zWString const path = os::MakeTempFile(folder, prefix);
  if (!path.isEmpty()) test::TraceStep(DiskStep::Kind::kCreate, path);
  return path;
}

std::int64_t Now() { return os::Now(); }

void Pause(int milliseconds) {
  if (!TheState().failing) {
    os::Pause(milliseconds);
  }
}

void* Allocate(std::size_t size) {
  return MustFail(Call::kAllocate) ? nullptr : test::Taken(os::Allocate(size));
}

void* Reallocate(void* block, std::size_t size) {
  if (MustFail(Call::kReallocate)) {
    return nullptr;
  }
  if (block == nullptr) return test::Taken(os::Reallocate(block, size));
  test::NoteReturned(block);
  void* const moved = os::Reallocate(block, size);
  test::NoteTaken(moved != nullptr ? moved : block);
  return moved;
}

void Free(void* block) {
  TheState().live_blocks -= block != nullptr ? 1 : 0;
  test::NoteReturned(block);
  os::Free(block);
}

}  // namespace tabwerk::platform
