#include "cli/convert_file.h"

#include "DBDirectory.h"
#include "DBTabelle.h"
#include "DBbase.h"
#include "cli/files.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "cli/translated_text.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

// The first text of a table that a save does not take.
std::optional<Problem> TextProblem(std::string const& path,
                                   std::string const& name, DBTabelle& table) {
  long const count = table.GetAnzahlZeilen();
  for (DBFeld const* field =
           table.GetDirEntry(false)->GetDefinition()->GetDefinition();
       field != nullptr; field = field->next) {
    if (field->type != DBTypeString) continue;
    table.SelectColumn(field->name);
    for (long row = 0; row < count; ++row) {
      zWString text;
      table.SelectZeile(row);
      bool const is_there = table.GetWert(text) == 1;
      if (is_there && text.length() <= format::kMaxTextUnits) continue;
      std::string const place = "table " + name + ", row " +
                                std::to_string(row) + ", column " +
                                NameToUtf8(field->name) + ": ";
      if (!is_there) {
        return Problem{TW(614), path,
                       place + "its text lies outside the file's texts",
                       "restore the file from a backup"};
      }
      return Problem{TW(624), path,
                     place + "the text has " + std::to_string(text.length()) +
                         " characters, over " +
                         std::to_string(format::kMaxTextUnits),
                     "shorten it with the program that wrote it"};
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<Problem> Examine(std::string const& path, DatabaseFile* file) {
  if (auto problem = ReadDatabaseFile(path, file)) return problem;
  if (file->IsDamaged()) {
    return Problem{TW(125), path, "the file is damaged, and stays as it is",
                   "restore it from a backup; \"tabwerk info\" shows what is "
                   "left"};
  }
  DatabaseFiles const files{path, "", ""};
  if (auto problem = OpenToLook(files)) return problem;
  Progress progress("examining " + path,
                    static_cast<long long>(file->tables.size()), "tables");
  DBbase::SetSprache(kAsStored);
  std::optional<Problem> problem;
  long long done = 0;
  for (TableSummary const& summary : file->tables) {
    DBTabelle* table = nullptr;
    problem = FindTable(files, summary.name, &table);
    if (!problem) problem = TextProblem(path, summary.name, *table);
    if (problem) break;
    progress.Advance(++done);
  }
  DBbase::SetSprache(0);
  return problem;
}

std::optional<Problem> ConvertFile(std::string const& path,
                                   std::string const& target) {
  Progress const progress("writing " + target);
  zWString const name =
      zWString::fromUtf8(DatabaseFiles{path, "", ""}.DatabaseName());
  bool const written = DBbase::GetDBBaseInstance()->Write(
      name, false, zWString::fromUtf8(target));
  // The manager lets go of the files.
  static_cast<void>(DBbase::Init({}, {}));
  if (written) return std::nullopt;
  return Problem{TW(119), target, "the file could not be written",
                 "check that its folder and the folder for temporary files can "
                 "be written and have room"};
}

}  // namespace tabwerk::tool
