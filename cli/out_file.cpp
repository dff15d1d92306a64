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
  std::error_code ignored;  // what stays does no harm
  if (!kept_.empty()) fs::remove(kept_, ignored);
  if (draft_.empty()) return;
  stream_.close();
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

fs::path OutFile::FreeName(char const* suffix) const {
  std::error_code error;
  fs::path name;
  for (int i = 0; i < kDraftNames; ++i) {
    name = target_;
    name += fmt::format("{}{}", suffix, i);
    if (!fs::exists(name, error)) break;
  }
  return name;
}

void OutFile::OpenDraft(fs::file_status const& status) {
  std::error_code error;
  // A link stays one.
  if (fs::is_symlink(target_, error)) {
    fs::path const end = fs::canonical(target_, error);
    if (!error) target_ = end;
  }
  fs::path const draft = FreeName(".part");
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
    is_placed_ = true;
  }
  Tell("wrote " + path_);
  return std::nullopt;
}

std::optional<Problem> OutFile::KeepReplaced() {
  std::error_code error;
  if (draft_.empty() || !fs::exists(target_, error)) return std::nullopt;
  kept_ = FreeName(".old");
  kept_permissions_ = fs::status(target_, error).permissions();
  // A read-only file cannot be taken away on every system, nor can a link to
  // it.
  bool const is_read_only =
      (kept_permissions_ & fs::perms::owner_write) == fs::perms::none;
  if (!is_read_only) {
    fs::create_hard_link(target_, kept_, error);
    if (!error) return std::nullopt;
  }
  // Not every disk has links, and not everybody may make one.
  fs::copy_file(target_, kept_, error);
  if (error) return NotWritten();
  fs::permissions(kept_, fs::perms::owner_write, fs::perm_options::add, error);
  fs::last_write_time(kept_, fs::last_write_time(target_, error), error);
  return std::nullopt;
}

std::optional<Problem> OutFile::Undo() {
  if (!is_placed_) return std::nullopt;
  std::error_code error;
  if (kept_.empty()) {
    fs::remove(target_, error);
  } else {
    fs::rename(kept_, target_, error);
    std::error_code ignored;  // a link has them
    fs::permissions(target_, kept_permissions_, ignored);
  }
  is_placed_ = false;
  fs::path const kept = std::exchange(kept_, fs::path());
  if (!error) return std::nullopt;
  return Problem{TW(117), path_,
                 "the file is the new one, although not all are",
                 kept.empty() ? "remove it" : "the old one is " + ToUtf8(kept)};
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
