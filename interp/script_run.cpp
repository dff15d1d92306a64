#include "interp/script_run.h"

#include <memory>
#include <utility>

#include "DBbase.h"
#include "base/manager_access.h"
#include "interp/interpreter_access.h"
#include "platform/guarded.h"
#include "platform/platform.h"

namespace tabwerk {
namespace {

// Kept: each place of a script has separators of its own, so that a tab, for
// example, hides a statement behind an empty line.
constexpr std::string_view kKeywordSeparators = " \t\n;";
constexpr std::string_view kKeywordSeparatorsBehindEmptyLine = " \n";
constexpr std::string_view kDatabaseSeparators = " \n;";
constexpr std::string_view kTableSeparators = " \n";
constexpr std::string_view kFieldSeparators = " \t\n";
constexpr std::string_view kDataSeparators = " \t\n";

constexpr std::string_view kEndOfDefinition = "ENDDEF";
constexpr std::string_view kVersionTable = "VERSION";

// Bytes of a definition text, line feed included.
constexpr std::size_t kMaxDefinitionBytes = 16383;
constexpr std::size_t kMaxDataPathBytes = 259;

// The name as the manager looks databases up: before the first ".", in upper
// case.
zWString DatabaseName(std::string_view word) {
  return zWString::fromLatin1(word.substr(0, word.find('.'))).ToUpper();
}

// Reads the lines of a definition up to "ENDDEF" and puts them together.  False
// for a line that is no field and for a definition that does not end or is too
// long.
bool ReadDefinition(ScriptReader& script, std::string* definition) {
  for (;;) {
    Words words(script.ReadLine());
    std::string_view const name = words.Next(kFieldSeparators);
    if (name == kEndOfDefinition) break;
    std::string_view const type = words.Next(kFieldSeparators);
    if (type.empty()) return false;
    if (!definition->empty()) definition->append(", ");
    definition->append(type).append(" ").append(name);
    if (definition->size() >= kMaxDefinitionBytes) return false;
  }
  definition->append("\n");
  return true;
}

}  // namespace

bool ScriptRun::Execute(ScriptReader& script) {
  while (!script.AtEnd()) {
    Words words(script.ReadLine());
    std::string_view keyword = words.Next(kKeywordSeparators);
    while (keyword.empty() && !script.AtEnd()) {
      words = Words(script.ReadLine());
      keyword = words.Next(kKeywordSeparatorsBehindEmptyLine);
    }
    // Kept: a last line without a line feed is not carried out.
    if (script.AtEnd()) break;
    if (!ExecuteStatement(keyword, words, script)) return false;
  }
  // Half a script would replace a whole database.
  return !script.Failed();
}

bool ScriptRun::ExecuteStatement(std::string_view keyword, Words const& words,
                                 ScriptReader& script) {
  if (keyword == "NEWDATABASE") return NewDatabase(words);
  if (keyword == "NEWTABLE") return NewTable(words, script);
  if (keyword == "TABLEDATA") return TableData(words);
  return true;  // every other line is a comment
}

bool ScriptRun::NewDatabase(Words words) {
  std::string_view const name = words.Next(kDatabaseSeparators);
  std::string_view const file = words.Next(kDatabaseSeparators);
  if (file.empty()) return false;
  database_name_ = DatabaseName(name);
  database_file_ = zWString::fromLatin1(file);
  // Forgets an earlier database, unwritten, with its tables.
  if (!ConfigureManager()) return false;
  RemoveMadeFile();
  made_file_ = database_file_;
  database_open_ =
      ManagerAccess::OpenForReplacement(*DBbase::GetDBBaseInstance(),
                                        database_name_, &made_) == 1;
  return database_open_;
}

bool ScriptRun::NewTable(Words words, ScriptReader& script) {
  // Copied, because the next lines take the place of this one.
  std::string const name(words.Next(kTableSeparators));
  if (!database_open_ || name.empty()) return false;
  std::string definition;
  return ReadDefinition(script, &definition) && CreateTable(name, definition);
}

bool ScriptRun::CreateTable(std::string const& name,
                            std::string const& definition) {
  DBbase& manager = *DBbase::GetDBBaseInstance();
  DBDirectory* const directory = manager.GetDirectory();
  if (directory == nullptr ||
      directory->FindTable(name.c_str(), directory->GetEntries()) != nullptr) {
    return false;
  }
  auto fields = std::make_unique<DBDefinition>();
  if (fields->GenerateDefinition(definition.c_str()) == 0) return false;
  // A name that the directory refuses is not found by NeueTabelle.
  static_cast<void>(directory->AddEntry(fields.release(), name.c_str(),
                                        database_file_, false, 0, 0, 0, 0, 0));
  DBTabelle* table = nullptr;
  if (!manager.NeueTabelle(name.c_str(), table)) return false;
  table_ = table;
  return true;
}

bool ScriptRun::TableData(Words words) {
  std::string const table_word(words.Next(kDataSeparators));
  std::string const path(words.Next(kDataSeparators));
  if (path.empty() || path.size() > kMaxDataPathBytes) return false;
  // Kept: the data goes into the table that was made last, whatever the word.
  if (table_ == nullptr) return false;
  interpreter_.SetTabelle(table_);
  if (interpreter_.OpenDatei(path.c_str(), "rb") == 0) return false;
  // Errors in the data stay readable in the interpreter and do not stop the
  // script; data that cannot be read or kept does.
  zWString scratch;
  bool read = ReadData(&scratch);
  // Kept: reads the file from its start, so that every row is there twice.
  if (table_word == kVersionTable) read = ReadData(&read_version_) && read;
  interpreter_.CloseDatei();
  return read;
}

// False when there is data that is not in the table now.
bool ScriptRun::ReadData(zWString* version) {
  return Guarded(false, [&] {
    return InterpreterAccess::ReadTableData(interpreter_, version) !=
           DataResult::kLost;
  });
}

bool ScriptRun::Write(Configuration const& before) {
  // Made first: a database that is written must not lack the memory for it.
  auto restored = Guarded(std::unique_ptr<DBbase>(), [&] {
    return ManagerAccess::Make(before.names, before.files);
  });
  if (restored == nullptr) {
    Abandon();
    return false;
  }
  bool const written =
      DBbase::GetDBBaseInstance()->Write(database_name_, false, database_file_);
  interpreter_.SetTabelle(nullptr);
  ManagerAccess::Install(std::move(restored));
  if (!written) RemoveMadeFile();
  return written;
}

void ScriptRun::Abandon() {
  Guarded(false, [&] {
    // A database that did not open has left the manager by itself.
    if (database_open_) static_cast<void>(ConfigureManager());
    RemoveMadeFile();
    return true;
  });
}

// Gives the manager the database of the script, closed; all tables are gone.
// False when there is no memory.
bool ScriptRun::ConfigureManager() {
  table_ = nullptr;
  interpreter_.SetTabelle(nullptr);
  database_open_ = false;
  return DBbase::Init({database_name_}, {{database_file_}});
}

void ScriptRun::RemoveMadeFile() {
  if (!made_) return;
  // When the empty file cannot be removed, nothing is lost with it.
  static_cast<void>(platform::Delete(made_file_));
  made_ = false;
}

}  // namespace tabwerk
