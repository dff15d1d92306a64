#include "cli/user_rows.h"

#include <fmt/format.h>

#include <set>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/database_file.h"
#include "cli/field_value.h"
#include "cli/files.h"
#include "cli/table_list.h"

namespace tabwerk::tool {

std::optional<Problem> CheckUserFileName(DatabaseFiles const& files) {
  if (IsUserFile(files.user) && !IsUserFile(files.main)) return std::nullopt;
  return Problem{TW(104), files.user, "this is no name of a user file",
                 "a user file ends in \".UDB\", a main file does not"};
}

std::optional<Problem> CheckUserPart(DatabaseFiles const& files,
                                     std::string const& table_name,
                                     DBTabelle& table) {
  DBDirEntry const* const user_part = table.GetDirEntry(true);
  if (user_part == nullptr) {
    return Problem{TW(127), files.user,
                   "there is no table " + table_name + " in this file",
                   "it was made for an earlier main file; let the program "
                   "that uses it bring it up to date"};
  }
  for (DBFeld const* field = user_part->GetDefinition()->GetDefinition();
       field != nullptr; field = field->next) {
    if (field->type != DBTypeUnknown) continue;
    return Problem{TW(128), files.main,
                   "column " + NameToUtf8(field->name) + " of table " +
                       table_name + " has no type",
                   "correct the script of the main file and build it again"};
  }
  return std::nullopt;
}

std::optional<Problem> CheckNewRows(DatabaseFiles const& files,
                                    std::string const& table_name,
                                    DBTabelle& table) {
  std::set<std::string> names;
  for (DBFeld const* field :
       FieldsOf(*table.GetDirEntry(true)->GetDefinition())) {
    std::string const name = NameToUtf8(field->name);
    if (!names.insert(name).second) {
      return Problem{TW(628), files.main,
                     fmt::format("table {} has two columns {}, and values find "
                                 "the first one only",
                                 table_name, name),
                     "rename the second one in the script of the main file and "
                     "build it again"};
    }
    if (IsAssigned(name) && field->type != DBTypeInteger) {
      return Problem{TW(627), files.main,
                     fmt::format("column {} of table {} is no integer, as new "
                                 "rows need it",
                                 name, table_name),
                     "correct the script of the main file and build it again"};
    }
  }
  return std::nullopt;
}

std::optional<Problem> SaveUserFile(DatabaseFiles const& files) {
  zWString const name = zWString::fromUtf8(files.DatabaseName());
  if (!DBbase::GetDBBaseInstance()->Write(name, true, zWString())) {
    return Problem{TW(119), files.user,
                   "the rows could not be saved; the file is as it was",
                   "check that its folder and the folder for temporary files "
                   "can be written and have room"};
  }
  static_cast<void>(DBbase::GetDBBaseInstance()->Close(name));
  return std::nullopt;
}

}  // namespace tabwerk::tool
