// Any command line with the files that it names and any standard input: the
// tool ends with one of its exit codes, says why when it fails, and leaves
// nothing but what the command is for.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "cli/run_tool.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/named_parts.h"
#include "fuzz/standard_streams.h"
#include "ztypes.h"

namespace {

namespace fuzz = tabwerk::fuzz;
using fuzz::PrivateFolder;
using fuzz::Require;

using Files = std::map<std::string, std::string>;

constexpr int kFindings = 1;
constexpr int kLastExitCode = 6;

// The tool makes its folders for temporary files where the system says.
void MoveTemporaryFiles() {
  auto const folder = PrivateFolder::Get().TemporaryFiles().string();
#ifdef _WIN32
  _putenv_s("TMP", folder.c_str());
  _putenv_s("TEMP", folder.c_str());
#else
  setenv("TMPDIR", folder.c_str(), 1);
#endif
}

// No path in it leads out of the folder.  The library is confined by its seam,
// but the tool itself opens files, too.
std::string Confined(std::string text, std::string_view separators) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    bool const dots = text[i] == '.' && i > 0 && text[i - 1] == '.';
    if (dots || separators.find(text[i]) != separators.npos) text[i] = '_';
  }
  return text;
}

std::vector<std::string> Arguments(std::string const& text) {
  constexpr std::size_t kMost = 16;
  std::vector<std::string> arguments;
  std::size_t place = 0;
  while (place < text.size() && arguments.size() < kMost) {
    auto const end = std::min(text.find('\n', place), text.size());
    // A command line has no NUL.
    auto const argument = text.substr(place, end - place);
    arguments.push_back(
        Confined(argument.substr(0, argument.find('\0')), "/\\:"));
    place = end + 1;
  }
  return arguments;
}

// Rows may come out into any file, a database included.
bool NamesAnOutput(std::string const& argument) {
  return argument.starts_with("-o") || argument.starts_with("--o");
}

bool OnlyLooks(std::vector<std::string> const& arguments) {
  constexpr std::string_view kWrite[] = {"activate", "add",        "build",
                                         "convert",  "deactivate", "export",
                                         "import",   "move",       "set"};
  return std::ranges::none_of(arguments, NamesAnOutput) &&
         std::ranges::none_of(arguments, [&](std::string const& argument) {
           return std::ranges::find(kWrite, argument) != std::end(kWrite);
         });
}

bool IsDatabaseFile(std::string const& name) {
  return name.ends_with(".db") || name.ends_with(".UDB") ||
         name.ends_with(".idx");
}

void RequireUntouched(Files const& before, Files const& after) {
  for (auto const& [name, content] : before) {
    if (!IsDatabaseFile(name)) continue;
    auto const found = after.find(name);
    Require(found != after.end() && found->second == content,
            "a command that looks changes no database");
  }
}

// What the library leaves of a save that failed.
bool IsOfFailedSave(std::string const& name) {
  std::string const temporary(PrivateFolder::kTemporary);
  return name.starts_with(temporary + "dta") ||
         name.starts_with(temporary + "dir");
}

// A trial copy or a lock file stands beside the file that it is for; an index
// that waits has a number behind its name.
bool IsOfASave(std::string const& name, Files const& after) {
  bool const beside = (name.ends_with('T') || name.ends_with('L')) &&
                      after.count(name.substr(0, name.size() - 1)) != 0;
  auto const stem = name.substr(0, name.find_last_not_of("0123456789") + 1);
  return beside || (stem != name && stem.ends_with(".idx."));
}

// A file that the input itself names may be called anything.
void RequireNothingLeft(Files const& before, Files const& after, bool failed,
                        std::string const& input) {
  for (auto const& [name, content] : after) {
    if (before.count(name) != 0 || (failed && IsOfFailedSave(name))) continue;
    if (input.find(name) != input.npos) continue;
    Require(!name.starts_with(PrivateFolder::kTemporary),
            "no temporary file is left");
    Require(!IsOfASave(name, after), "no file of a save is left");
  }
}

}  // namespace

// The first part has the arguments, one a line; a file "stdin" is the standard
// input.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  static bool const moved = (MoveTemporaryFiles(), true);
  // No text of it can be too long to be written, which ends the process.
  constexpr std::size_t kMostBytes = 16'000;
  if (!moved || size > kMostBytes) return 0;
  auto const& folder = PrivateFolder::Get();
  std::string const input(fuzz::AsText({data, size}));
  fuzz::NamedParts const parts(input);
  folder.Write("stdin", "");
  for (auto const& [name, content] : parts.files) {
    folder.Write(name, Confined(content, "/\\"));
  }
  auto const arguments = Arguments(parts.first);
  auto const before = folder.Files();
  int code = 0;
  {
    fuzz::InPrivateFolder const here;
    fuzz::StandardStreams const streams(
        folder.Path("stdin"), folder.Aside("stdout"), folder.Aside("stderr"));
    code = tabwerk::tool::RunTool(arguments);
  }
  fuzz::CloseLibrary();

  auto const after = folder.Files();
  auto const messages = fuzz::ReadWhole(folder.Aside("stderr"));
  Require(code >= 0 && code <= kLastExitCode, "the exit code is a known one");
  Require(code <= kFindings || !messages.empty(), "a failure is explained");
  Require(zWString::fromUtf8(messages).toUtf8() == messages,
          "messages are UTF-8");
  if (OnlyLooks(arguments)) RequireUntouched(before, after);
  RequireNothingLeft(before, after, code != 0, input);
  folder.Clear();
  return 0;
}
