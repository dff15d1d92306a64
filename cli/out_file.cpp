#include "cli/out_file.h"

#include <fmt/format.h>

#include <system_error>
#include <utility>

#include "cli/console.h"
#include "cli/database_file.h"
#include "cli/files.h"
#include "cli/settings.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

constexpr int kDraftNames = 100;

// The data of a database, which nobody wants to lose to a slip of the hand.
bool IsData(std::string const& path) {
  if (path.ends_with(format::kIndexFileExtension) || IsUserFile(path)) {
    return true;
  }
  std::ifstream file(ToPath(path), std::ios::binary);
  std::string start(format::kVersionTag.size(), '\0');
  file.read(start.data(), static_cast<std::streamsize>(start.size()));
  return file &&
         (start == format::kVersionTag || start == format::kRecordStart);
}

}  // namespace

OutFile::OutFile(std::string path) : path_(std::move(path)) {
  if (path_ == "-" || console::IsStandardOutput(ToPath(path_))) path_.clear();
}

OutFile::~OutFile() {
  if (draft_.empty()) return;
  stream_.close();
  std::error_code ignored;  // a draft that stays does no harm
  fs::remove(draft_, ignored);
}

std::optional<Problem> OutFile::Open() {
  if (IsStandardOutput()) return std::nullopt;
  std::error_code error;
  target_ = ToPath(path_);
  to_error_ = console::IsStandardError(target_);
  if (to_error_) return std::nullopt;
  if (console::IsDevice(target_)) {
    // Behind what is there, where it leads to a file.
    stream_.open(target_, std::ios::binary | std::ios::app);
    if (!stream_) return NotWritten();
    return std::nullopt;
  }
  auto const status = fs::status(target_, error);
  if (fs::is_directory(status)) {
    return Problem{TW(111), path_, "this is a folder",
                   "name a file for the output"};
  }
  if (fs::is_regular_file(status) && IsData(path_)) {
    return Problem{TW(108), path_, "output does not replace a database",
                   "name another file for the output"};
  }
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    stream_.open(target_, std::ios::binary);
  } else {
    OpenDraft(status);
  }
  if (!stream_) return NotWritten();
  return std::nullopt;
}

void OutFile::OpenDraft(fs::file_status const& status) {
  std::error_code error;
  // A link stays one.
  if (fs::is_symlink(target_, error)) {
    fs::path const end = fs::canonical(target_, error);
    if (!error) target_ = end;
  }
  fs::path draft;
  for (int i = 0; i < kDraftNames; ++i) {
    draft = target_;
    draft += fmt::format(".part{}", i);
    if (!fs::exists(draft, error)) break;
  }
  stream_.open(draft, std::ios::binary | std::ios::trunc);
  if (!stream_) return;
  draft_ = draft;
  // Who may read the old file may read the new one, and nobody else.
  if (fs::exists(status)) {
    fs::permissions(draft_, status.permissions() & fs::perms::all, error);
  }
}

void OutFile::Write(std::string_view text) {
  if (IsStandardOutput()) return console::Out(text);
  if (to_error_) return console::Err(text);
  stream_.write(text.data(), static_cast<std::streamsize>(text.size()));
}

bool OutFile::Failed() const {
  return IsStandardOutput() ? console::OutFailed() : stream_.fail();
}

std::optional<Problem> OutFile::Flush() {
  if (IsStandardOutput()) return std::nullopt;  // looked at when all is done
  stream_.flush();
  if (stream_.fail()) return NotWritten();
  return std::nullopt;
}

std::optional<Problem> OutFile::Close() {
  if (IsStandardOutput()) return std::nullopt;  // looked at when all is done
  if (stream_.is_open()) stream_.close();
  if (stream_.fail()) return NotWritten();
  if (!draft_.empty()) {
    std::error_code error;
    fs::rename(draft_, target_, error);
    if (error) return NotWritten();
    draft_.clear();
  }
  Tell("wrote " + path_);
  return std::nullopt;
}

bool OutFile::IsTerminal() const {
  return IsStandardOutput() && console::OutIsTerminal();
}

Problem OutFile::NotWritten() const {
  return {TW(117), path_, "the output cannot be written",
          "check its folder and the space on the disk, and that no program "
          "holds the file"};
}

}  // namespace tabwerk::tool
