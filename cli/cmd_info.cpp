// tabwerk info: what is in database files, and whether they are sound.
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/commands.h"
#include "cli/database_file.h"
#include "cli/files.h"
#include "cli/health_card.h"
#include "cli/index_state.h"
#include "cli/out_file.h"
#include "cli/session.h"
#include "cli/table_out.h"

namespace tabwerk::tool {
namespace {

class InfoCommand : public Command {
 public:
  void Declare(Options& options) override {
    options
        .Add("FILE", paths_,
             "Database files; a main file followed by its user file is "
             "taken as one database")
        .Required();
    options
        .Add("--name", name_,
             "Name of the database, where it is not that of the first "
             "FILE; the index file is called after it")
        .Value("NAME");
    output_.format = "text";
    options
        .Add("--format", output_.format,
             "text or json; table, csv, tsv, ndjson, md or list: a row for "
             "each table")
        .OneOf({"text", "json", "table", "csv", "tsv", "ndjson", "md", "list"})
        .Value("FORMAT")
        .Group("Output");
    options
        .Add("-o,--output", output_.file,
             "Write to this file, which appears when it is complete; - "
             "is standard output")
        .Value("FILE")
        .Group("Output");
    options.Notes(
        "A file is sound when its header, its list of tables and the blocks of"
        "\nrows and texts can be true.  No file is changed.");
  }

  ExitCode Run() override {
    if (output_.format == "text" || output_.format == "json") {
      return PrintCards();
    }
    ExitCode code = ExitCode::kDone;
    TableOut out(output_);
    if (auto problem = out.Begin({{"FILE"},
                                  {"TABLE"},
                                  {"ROWS", CellType::kInteger},
                                  {"VERDICT"},
                                  {"COLUMNS"}})) {
      return Report(*problem);
    }
    std::vector<HealthCard> cards;
    for (std::string const& path : paths_) {
      ExitCode const found = Examine(path, &cards, nullptr);
      if (code == ExitCode::kDone) code = found;
    }
    for (HealthCard const& card : cards) AddTables(card.file, out);
    if (auto const problem = out.End()) return Report(*problem);
    return code;
  }

 private:
  ExitCode PrintCards() const {
    OutFile out(output_.file);
    if (auto const problem = out.Open()) return Report(*problem);
    bool const as_text = output_.format == "text";
    ExitCode code = ExitCode::kDone;
    std::vector<HealthCard> cards;
    for (std::string const& path : paths_) {
      ExitCode const found = Examine(path, &cards, as_text ? &out : nullptr);
      if (code == ExitCode::kDone) code = found;
    }
    if (!as_text) out.Write(CardsAsJson(cards));
    if (auto const problem = out.Close()) return Report(*problem);
    return code;
  }

  static void AddTables(DatabaseFile const& file, TableOut& out) {
    for (TableSummary const& table : file.tables) {
      // The number of rows of a damaged one cannot be true.
      Cell rows;
      if (!table.damaged) rows = std::int64_t{table.row_count};
      out.Add({file.path, table.name, rows,
               VerdictText(table.damaged ? Verdict::kDamaged : Verdict::kSound),
               table.columns});
    }
  }

  // With its text, where there is a file for it.
  ExitCode Examine(std::string const& path, std::vector<HealthCard>* cards,
                   OutFile* text) const {
    HealthCard card;
    if (auto const problem = ExamineFile(path, &card)) return Report(*problem);
    cards->push_back(std::move(card));
    if (IsUserFile(path)) ExamineIndex(cards);
    if (text != nullptr) {
      text->Write((cards->size() > 1 ? "\n" : "") + CardAsText(cards->back()));
    }
    if (cards->back().verdict != Verdict::kDamaged) return ExitCode::kDone;
    return Report(
        {TW(125), path, "the file is damaged", "restore it from a backup"});
  }

  // That of the last card.
  void ExamineIndex(std::vector<HealthCard>* cards) const {
    HealthCard& card = cards->back();
    DatabaseFiles const database{cards->front().file.path, card.file.path,
                                 name_};
    auto const index = IndexPath(card.file.path, database.DatabaseName());
    card.index_file = ToUtf8(index);
    if (cards->size() > 1 && cards->size() == paths_.size()) {
      std::vector<DatabaseFile> files;
      for (HealthCard const& it : *cards) files.push_back(it.file);
      card.index_state = IndexState(index, files);
      return;
    }
    std::error_code error;
    card.index_state = std::filesystem::exists(index, error)
                           ? "there; name the main file before the user file "
                             "to have it examined"
                           : "missing; made at the next opening";
  }

  std::vector<std::string> paths_;
  std::string name_;
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kInfoCommand;
CommandEntry const kInfoCommand = {
    "info",
    Group::kLook,
    "Say what is in database files, and whether they are sound",
    {{"info geo.db", "one file"},
     {"info geo.db GEO.UDB", "a main file with its user file and the index"},
     {"info geo.db --format json", "for a program"}},
    &MakeCommand<InfoCommand>};

}  // namespace tabwerk::tool
