// tabwerk stats: what takes the room in database files.
#include <map>
#include <optional>
#include <string>

#include "cli/commands.h"
#include "cli/database_file.h"
#include "cli/file_content.h"
#include "cli/files.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "cli/table_out.h"
#include "cli/text_facts.h"
#include "schema/format.h"
#include "schema/part.h"

namespace tabwerk::tool {
namespace {

class StatsCommand : public Command {
 public:
  void Declare(Options& options) override {
    AddDatabaseOptions(options, &files_);
    AddOutputOptions(options, &output_);
    options.Notes(
        "ROW_BYTES and TEXT_BYTES are what rows and texts take in the file.\n"
        "Of the 16-bit units of the texts no row refers to UNUSED_UNITS;\n"
        "REPEATED texts stand there more than once and take REPEATED_UNITS.\n"
        "The LONGEST text, in units, stands in ROW and COLUMN; it can grow by\n"
        "ROOM before the file can no longer be saved.  No file is changed.");
  }

  ExitCode Run() override {
    if (auto const problem = CheckOrder(files_)) return Report(*problem);
    if (auto const problem = WhyNotCounted(files_.main)) {
      return Report(*problem);
    }
    if (!files_.user.empty()) {
      if (auto const problem = WhyNotCounted(files_.user)) {
        return Report(*problem);
      }
    }
    TableOut out(output_);
    if (auto const problem = out.Begin(Heads())) return Report(*problem);
    ExitCode code = Add(files_.main, "main", out);
    if (!files_.user.empty()) {
      ExitCode const of_user = Add(files_.user, "user", out);
      if (code == ExitCode::kDone) code = of_user;
    }
    if (auto const problem = out.End()) return Report(*problem);
    return code;
  }

 private:
  static std::vector<ColumnHead> Heads() {
    std::vector<ColumnHead> heads = {{"PART"}, {"TABLE"}};
    for (char const* const name :
         {"ROWS", "ROW_BYTES", "TEXTS", "TEXT_BYTES", "UNUSED_UNITS",
          "REPEATED", "REPEATED_UNITS", "LONGEST", "ROOM", "ROW"}) {
      heads.push_back({name, CellType::kInteger});
    }
    heads.push_back({"COLUMN"});
    return heads;
  }

  static std::optional<Problem> WhyNotCounted(std::string const& path) {
    DatabaseFile file;
    if (auto problem = ReadDatabaseFile(path, &file)) return problem;
    bool const has_list = !file.has_damaged_list && !file.tables.empty();
    // An empty file has nothing to be counted.
    if (has_list || file.size_bytes == 0) return std::nullopt;
    return WhyNotOpened(path, Access::kRead);
  }

  // A table that is damaged does not keep the others from being counted.
  ExitCode Add(std::string const& path, char const* part, TableOut& out) {
    Progress const progress("reading " + path);
    FileContent const content(path);
    ExitCode code = ExitCode::kDone;
    for (TableContent const& table : content.tables()) {
      if (table.loaded) {
        AddTable(table, part, out);
      } else {
        code = Report({TW(124), path,
                       "table " + NameToUtf8(table.entry->GetName()) +
                           " is damaged and cannot be loaded",
                       "restore the file from a backup"});
      }
    }
    return code;
  }

  void AddTable(TableContent const& table, char const* part, TableOut& out) {
    std::string const name = NameToUtf8(table.entry->GetName());
    TextFacts const facts = FactsOf(table);
    std::int64_t const rows = table.part->Rows();
    // Rows are numbered over both files.
    std::int64_t& rows_before = rows_before_[name];
    Cell longest;
    Cell room;
    Cell row;
    if (facts.longest >= 0) {
      longest = facts.longest;
      room = std::int64_t{format::kMaxTextUnits} - facts.longest;
      row = rows_before + facts.longest_row;
    }
    out.Add({part, name, rows,
             static_cast<std::int64_t>(table.part->rows.size()), facts.texts,
             2 * facts.units, facts.unused_units, facts.repeated,
             facts.repeated_units, longest, room, row, facts.longest_column});
    rows_before += rows;
  }

  DatabaseFiles files_;
  std::map<std::string, std::int64_t> rows_before_;
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kStatsCommand;
CommandEntry const kStatsCommand = {
    "stats",
    Group::kLook,
    "Count what takes the room in database files",
    {{"stats geo.db GEO.UDB", "a line for each table and file"},
     {"stats geo.db --columns TABLE,LONGEST,ROOM", "texts against the limit"}},
    &MakeCommand<StatsCommand>};

}  // namespace tabwerk::tool
