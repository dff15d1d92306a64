#include "cli/errors.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/console.h"
#include "cli/findings.h"
#include "cli/settings.h"
#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

constexpr char kBold[] = "1";
constexpr char kBlue[] = "1;34";
constexpr char kGreen[] = "1;32";

char const* StyleOf(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return "1;31";
    case Severity::kWarning:
      return "1;35";
    case Severity::kNote:
      break;
  }
  return "1;36";
}

// A line and what is meant in it, in characters.
struct Excerpt {
  std::string line;
  std::size_t column;
  std::size_t length;
};

// Cuts a line that is too long to be read down to what stands around the place.
Excerpt ExcerptOf(Place const& where) {
  constexpr std::size_t kMostShown = 120;
  constexpr std::size_t kShownBefore = 40;
  std::string const line = OneBlankEach(where.source);
  Excerpt excerpt{line, where.column, where.length};
  if (CharacterCount(line) <= kMostShown) return excerpt;
  std::string_view rest = line;
  std::size_t const left_out =
      where.column > kShownBefore ? where.column - kShownBefore : 0;
  TakeCharacters(&rest, left_out);
  excerpt.line = left_out > 0 ? "…" : "";
  excerpt.line += TakeCharacters(&rest, kMostShown);
  if (!rest.empty()) excerpt.line += "…";
  if (left_out > 0) excerpt.column = kShownBefore + 1;
  excerpt.length = std::min(excerpt.length, kMostShown - kShownBefore);
  return excerpt;
}

// The line with a mark below what is meant.
std::string SourceLines(Place const& where, bool colors) {
  auto const [line, column, length] = ExcerptOf(where);
  std::string const number = fmt::format("{:>5}", where.line);
  std::string text = Styled(number + " |", kBlue, colors) + " " + line + "\n";
  if (column == 0) return text;
  std::string_view rest = line;
  std::size_t const before = DisplayWidth(TakeCharacters(&rest, column - 1));
  std::size_t const marked =
      std::max<std::size_t>(1, DisplayWidth(TakeCharacters(&rest, length)));
  return text + Styled("      |", kBlue, colors) +
         std::string(before + 1, ' ') +
         Styled("^" + std::string(marked - 1, '~'), kGreen, colors) + "\n";
}

void Print(Problem const& problem, Severity severity) {
  // What was printed so far comes first where both go to one place.
  static_cast<void>(console::FlushOut());
  // Paths and names come from files and command lines of any bytes.
  std::string const text = CurrentSettings().records
                               ? FindingRecord(problem, severity) + "\n"
                               : Describe(problem, severity, ColorsErr());
  console::Err(zWString::fromUtf8(text).toUtf8());
}

}  // namespace

std::string Place::Text() const {
  std::string text = file;
  if (line > 0) text += fmt::format(":{}", line);
  if (line > 0 && column > 0) text += fmt::format(":{}", column);
  if (byte) text += fmt::format(":@{}", *byte);
  return text;
}

char const* SeverityText(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return "error";
    case Severity::kWarning:
      return "warning";
    case Severity::kNote:
      break;
  }
  return "note";
}

ExitCode Problem::Exit() const {
  CodeEntry const* const entry = FindCode(code);
  return entry != nullptr ? entry->exit : ExitCode::kFindings;
}

std::string Describe(Problem const& problem, Severity severity, bool colors) {
  std::string const place =
      problem.where.file.empty() ? "tabwerk" : problem.where.Text();
  std::string text = Styled(OneBlankEach(place) + ":", kBold, colors) + " ";
  text += Styled(
      fmt::format("{}[{}]:", SeverityText(severity), problem.code.Text()),
      StyleOf(severity), colors);
  text += " " + problem.what;
  if (!problem.advice.empty()) text += "; " + problem.advice;
  text += "\n";
  if (!problem.where.source.empty()) text += SourceLines(problem.where, colors);
  return text;
}

ExitCode Report(Problem const& problem) {
  Print(problem, Severity::kError);
  return problem.Exit();
}

void Warn(Problem const& problem, Severity severity) {
  if (!CurrentSettings().quiet) Print(problem, severity);
}

}  // namespace tabwerk::tool
