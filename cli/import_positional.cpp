// Rows whose values stand in the order of the columns.
#include "DBDirectory.h"
#include "DBInterpreter.h"
#include "cli/files.h"
#include "cli/import_rows.h"
#include "cli/import_source.h"
#include "cli/progress.h"

namespace tabwerk::tool {
namespace {

class PositionalSource : public ImportSource {
 public:
  PositionalSource(std::string name, char16_t separator)
      : name_(std::move(name)), separator_(separator) {}

  std::optional<Problem> Read(std::string bytes) override {
    rows_.emplace(bytes);
    if (rows_->IsPlausible(separator_)) return std::nullopt;
    return Problem{TW(129), name_, "this is no UTF-16LE text",
                   "save it as \"Unicode text\" (UTF-16, little-endian), or "
                   "say with --from what it is"};
  }

  std::optional<Problem> Sort(DBTabelle& table) override {
    RowJudge judge(*table.GetDirEntry(true)->GetDefinition(), separator_);
    for (RowLine const& line : rows_->Lines()) {
      if (line.text.empty()) continue;
      auto const objection = judge.Objection(line.text);
      if (!objection) {
        accepted_.append(line.text).append(u"\n");
        ++accepted_count_;
        continue;
      }
      rejected_.append(line.whole);
      ++rejected_count_;
      Warn({objection->code, PlaceOf(line, *objection), objection->what,
            "the line is rejected"});
    }
    return std::nullopt;
  }

  long AcceptedCount() const override { return accepted_count_; }
  long RejectedCount() const override { return rejected_count_; }
  char const* RejectedNoun() const override { return "line"; }
  std::string RejectedBytes() const override {
    return EncodeUnits(rejected_, rows_->HasMark());
  }

  std::optional<Problem> Append(DBTabelle& table, bool* complete) override {
    TemporaryFolder const folder;
    auto const path = folder.path() / "rows.txt";
    if (folder.path().empty() ||
        !WriteWhole(path, EncodeUnits(accepted_, false))) {
      return TemporaryFolder::WhyMissing();
    }
    long const rows_before = table.GetAnzahlZeilen();
    wchar_t const separator[] = {static_cast<wchar_t>(separator_), L'\0'};
    DBInterpreter interpreter;
    interpreter.SetTabelle(&table);
    if (interpreter.OpenDatei(ToUtf8(path).c_str(), "rb") == 0) {
      return TemporaryFolder::WhyMissing();
    }
    Progress progress("importing " + name_,
                      static_cast<long long>(2 * accepted_.size() / kKiB),
                      "KiB");
    progress.Follow(
        [&interpreter] { return interpreter.GetReadBytes() / kKiB; });
    zWString version;
    static_cast<void>(interpreter.ReadDatei(version, true, separator));
    interpreter.CloseDatei();
    // The import itself tells nothing of rows that it could not write.
    *complete = table.GetAnzahlZeilen() - rows_before == accepted_count_ &&
                interpreter.GetError() == 0;
    return std::nullopt;
  }

 private:
  Place PlaceOf(RowLine const& line, RowObjection const& objection) const {
    Place place = PlaceInLine(name_, line.number, line.text,
                              objection.offset.value_or(0), objection.length);
    if (!objection.offset) place.column = 0;
    return place;
  }

  std::string name_;
  char16_t separator_;
  std::optional<RowText> rows_;
  std::u16string accepted_;  // each with a line feed
  long accepted_count_ = 0;
  std::u16string rejected_;  // as they stood
  long rejected_count_ = 0;
};

}  // namespace

std::unique_ptr<ImportSource> MakePositionalSource(std::string const& name,
                                                   char16_t separator) {
  return std::make_unique<PositionalSource>(name, separator);
}

}  // namespace tabwerk::tool
