// tabwerk export: the script and the table data that rebuild a database.
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "cli/commands.h"
#include "cli/export_tables.h"
#include "cli/files.h"
#include "cli/index_state.h"
#include "cli/out_file.h"
#include "cli/session.h"
#include "cli/settings.h"
#include "cli/text.h"
#include "cli/writing.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

// Room for a table's name behind it.
constexpr std::size_t kMaxBaseLength = 100;

// How the files of a database are called that is called so.
std::string BaseName(std::string const& path) {
  std::string const stem = ToUtf8(ToPath(path).stem());
  bool const is_plain =
      !stem.empty() && stem.size() <= kMaxBaseLength &&
      std::all_of(stem.begin(), stem.end(), [](char it) {
        auto const byte = static_cast<unsigned char>(it);
        return byte < 0x80 && (std::isalnum(byte) != 0 || it == '_');
      });
  return is_plain ? stem : "database";
}

class ExportCommand : public Command {
 public:
  void Declare(Options& options) override {
    options.Add("FILE", main_, "The database file").Required();
    options.Add("USERFILE", user_,
                "The user file that belongs to it (NAME.UDB)");
    options
        .Add("-d,--directory", folder_,
             "The folder for the files; it is made when it is missing")
        .Required()
        .Value("DIR");
    options.AddFlag("--force", force_, "Replace files that are there");
    options.AddFlag("--backup", write_.backup,
                    "With --force: first copy the files that are there to "
                    "NAME.bak (NAME.bak2 …)");
    options.AddFlag("--dry-run", write_.dry_run,
                    "Do all of it, say what would be written, "
                    "and write nothing");
    options.Notes(
        "The script is called after FILE, and \"tabwerk build\" makes of it,\n"
        "in DIR, a file of the same bytes but for the time of writing.  That\n"
        "is tried before anything is written.  What scripts and table data\n"
        "cannot say is refused, with its place.  A user file gets a script of\n"
        "its own; order and status that stand in its index are left out.");
  }

  ExitCode Run() override {
    std::string const base = BaseName(main_);
    std::vector<std::pair<std::string, std::string>> sources = {{main_, base}};
    if (!user_.empty()) sources.emplace_back(user_, base + "-user");
    std::vector<ExportedDatabase> databases;
    for (auto const& [path, name] : sources) {
      ExportRefusals refusals;
      ExportedDatabase& exported = databases.emplace_back();
      if (auto problem = ExportTables(path, name, &exported, &refusals)) {
        return Report(*problem);
      }
      if (refusals.count > 0) return ReportRefusals(path, refusals);
      if (auto problem = TryOut(exported, path)) return Report(*problem);
    }
    if (auto problem = WriteFiles(databases)) return Report(*problem);
    WarnOfIndex();
    Summarise(databases);
    return ExitCode::kDone;
  }

 private:
  // A file's path as it would be typed, with "/" on every system.
  std::string InFolder(std::string const& name) const {
    bool const ends = folder_.ends_with('/') || folder_.ends_with('\\');
    return folder_ + (ends ? "" : "/") + name;
  }

  static ExitCode ReportRefusals(std::string const& path,
                                 ExportRefusals const& refusals) {
    ExitCode code = ExitCode::kFindings;
    for (Problem const& problem : refusals.first) code = Report(problem);
    auto const more =
        refusals.count - static_cast<long long>(refusals.first.size());
    if (more > 0) {
      code = Report({TW(155), path, std::to_string(more) + " more like these",
                     "mend those above first"});
    }
    return code;
  }

  static std::optional<Problem> TryOut(ExportedDatabase const& exported,
                                       std::string const& path) {
    TemporaryFolder const folder;
    if (folder.path().empty()) return TemporaryFolder::WhyMissing();
    return CheckRebuilt(exported, path, folder.path());
  }

  std::optional<Problem> WriteFiles(
      std::vector<ExportedDatabase> const& databases) {
    std::vector<ExportedFile const*> files;
    for (ExportedDatabase const& database : databases) {
      for (ExportedFile const& file : database.files) files.push_back(&file);
    }
    fs::path const folder = ToPath(folder_);
    std::error_code error;
    for (ExportedFile const* file : files) {
      if (force_ || !fs::exists(folder / ToPath(file->name), error)) continue;
      return Problem{TW(150), InFolder(file->name), "the file is there already",
                     "name another folder behind -d, or add --force"};
    }
    if (write_.dry_run) return std::nullopt;
    bool const is_new = fs::create_directories(folder, error);
    if (!fs::is_directory(folder, error)) {
      return Problem{TW(115), folder_, "the folder cannot be made",
                     "check the permissions of the folder above it"};
    }
    auto problem = write_.backup ? BackUp(files) : std::nullopt;
    if (!problem) problem = WriteAll(files);
    // One with files in it stays.
    if (problem && is_new) fs::remove(folder, error);
    return problem;
  }

  std::optional<Problem> BackUp(std::vector<ExportedFile const*> const& files) {
    std::vector<fs::path> paths;
    paths.reserve(files.size());
    for (ExportedFile const* file : files) {
      paths.push_back(ToPath(InFolder(file->name)));
    }
    return MakeBackup(paths, &copies_);
  }

  // None of them appears before all of them have room, and where one cannot
  // take its place, those before it go back.
  std::optional<Problem> WriteAll(
      std::vector<ExportedFile const*> const& files) const {
    std::vector<std::unique_ptr<OutFile>> outputs;
    for (ExportedFile const* file : files) {
      outputs.push_back(std::make_unique<OutFile>(InFolder(file->name)));
      if (auto problem = outputs.back()->Open()) return problem;
      outputs.back()->Write(file->content);
      if (auto problem = outputs.back()->Flush()) return problem;
    }
    for (auto const& output : outputs) {
      if (auto problem = output->KeepReplaced()) return problem;
    }
    for (auto const& output : outputs) {
      auto problem = output->Close();
      if (!problem) continue;
      for (auto const& earlier : outputs) {
        if (auto const stays = earlier->Undo()) Report(*stays);
      }
      return problem;
    }
    return std::nullopt;
  }

  void WarnOfIndex() const {
    if (user_.empty()) return;
    fs::path const index =
        IndexPath(user_, DatabaseFiles{main_, user_, ""}.DatabaseName());
    std::error_code error;
    if (!fs::exists(index, error)) return;
    Warn({TW(156), ToUtf8(index),
          "order and status of shipped rows stand here, and are not exported",
          "keep a copy of this file with the export"});
  }

  void Summarise(std::vector<ExportedDatabase> const& databases) const {
    std::string ending = WriteEnding(write_, copies_);
    for (ExportedDatabase const& database : databases) {
      std::string const script = InFolder(database.files.front().name);
      auto const data_files = static_cast<long long>(database.files.size()) - 1;
      Conclude(fmt::format("{}: rebuilds {} with {}, {}, with {}{}", script,
                           database.database_file,
                           Count(database.table_count, "table"),
                           Count(database.row_count, "row"),
                           Count(data_files, "data file"), ending));
    }
  }

  std::string main_;
  std::string user_;
  std::string folder_;
  bool force_ = false;
  WriteOptions write_;
  std::vector<std::string> copies_;
};

}  // namespace

extern CommandEntry const kExportCommand;
CommandEntry const kExportCommand = {
    "export",
    Group::kMake,
    "Write the script and the data that rebuild a database",
    {{"export geo.db -d source", "source/geo.script and its data files"},
     {"export geo.db GEO.UDB -d source",
      "the user file, too, with a script of its own"},
     {"build geo.script -C source", "rebuild it"}},
    &MakeCommand<ExportCommand>};

}  // namespace tabwerk::tool
