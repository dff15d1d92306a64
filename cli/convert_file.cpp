#include "cli/convert_file.h"

#include <set>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/file_content.h"
#include "cli/file_image.h"
#include "cli/files.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "cli/text.h"
#include "schema/container.h"
#include "schema/directory_access.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

// Of a place in the file.
Problem At(FileImage const& image, std::int64_t byte, Code code,
           std::string const& what, std::string const& advice) {
  Problem problem{code, image.path, what, advice};
  problem.where.byte = byte;
  return problem;
}

// A column's type is kept as a number, so the word of an unknown one is not.
void WarnOfTypes(FileImage const& image, RecordImage const& record) {
  for (DBFeld const* field = record.definition.GetDefinition();
       field != nullptr; field = field->next) {
    if (field->type != DBTypeUnknown) continue;
    Warn(At(image, record.definition_at, TW(328),
            "table " + Escape(record.name) + ", column " +
                NameToUtf8(field->name) +
                ": its type is not known and becomes \"unknown\"",
            "it holds no value, before and after"));
  }
}

// The first thing in the list of tables that a save would lose or does not
// take.
std::optional<Problem> ListProblem(FileImage const& image) {
  std::set<std::string> names;
  for (RecordImage const& record : image.records) {
    std::string const table = "table " + Escape(record.name) + ": ";
    std::string text;
    if (record.name.empty()) {
      return At(image, record.name_at, TW(322), "a table has no name",
                "restore the file from a backup");
    }
    if (!names.insert(record.name).second) {
      return At(image, record.start_at, TW(323),
                table +
                    "an earlier table has the same name, so that one of "
                    "them would be lost",
                "restore the file from a backup");
    }
    if (!tabwerk::StoredText(record.definition, &text)) {
      return At(image, record.definition_at, TW(329),
                table +
                    "its definition cannot be written as it was read (a "
                    "name of 64 characters or more?)",
                "correct it in the script and build the database anew");
    }
    std::int64_t const used = record.row_count * record.RowSize();
    if (used < record.row_size) {
      return At(image, record.rows.offset + used, TW(342),
                table + Count(record.row_size - used, "byte") +
                    " of the row block stand behind its last row, and would "
                    "be lost",
                "save it anew with the program that wrote it");
    }
    WarnOfTypes(image, record);
  }
  return std::nullopt;
}

// The first text of a table that a save does not take.
std::optional<Problem> TextProblem(std::string const& path,
                                   TableContent const& table) {
  std::optional<Problem> problem;
  ForEachPlace(
      table, [&](std::int32_t place, std::int32_t row, DBFeld const& field) {
        auto const text = table.part->strings->Text(place);
        if (text && text->size() <= format::kMaxTextUnits) return true;
        std::string const where =
            "table " + NameToUtf8(table.entry->GetName()) + ", row " +
            std::to_string(row) + ", column " + NameToUtf8(field.name) + ": ";
        if (text) {
          problem = Problem{
              TW(624), path,
              where + "the text has " + std::to_string(text->size()) +
                  " characters, over " + std::to_string(format::kMaxTextUnits),
              "shorten it with the program that wrote it"};
        } else {
          problem = Problem{TW(614), path,
                            where + "its text lies outside the file's texts",
                            "restore the file from a backup"};
        }
        return false;
      });
  return problem;
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
  FileImage image;
  if (auto problem = ReadFileImage(path, false, &image)) return problem;
  if (auto problem = ListProblem(image)) return problem;
  Progress progress("examining " + path,
                    static_cast<long long>(file->tables.size()), "tables");
  long long done = 0;
  for (TableSummary const& summary : file->tables) {
    DBTabelle* table = nullptr;
    if (auto problem = FindTable(files, summary.name, &table)) return problem;
    DBDirEntry* const entry = table->GetDirEntry(false);
    auto problem =
        TextProblem(path, {entry, DirectoryAccess::Part(*entry, 0), true});
    if (problem) return problem;
    progress.Advance(++done);
  }
  return std::nullopt;
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
