// One run of a database script.
#ifndef TABWERK_INTERP_SCRIPT_RUN_H
#define TABWERK_INTERP_SCRIPT_RUN_H

#include <string>
#include <string_view>
#include <vector>

#include "DBInterpreter.h"
#include "DBTabelle.h"
#include "interp/script_reader.h"

namespace tabwerk {

// The configuration of the manager.
struct Configuration {
  std::vector<zWString> names;
  std::vector<std::vector<zWString>> files;
};

// Carries out the statements of a script with the process-wide manager, which
// has the script's database alone from "NEWDATABASE" on.  The database's file
// stays as it is until Write; where there is none, an empty one is made.
//
// Every run ends with Write or Abandon.
class ScriptRun {
 public:
  // Table data is read with the interpreter, which outlives the run.
  explicit ScriptRun(DBInterpreter& interpreter) : interpreter_(interpreter) {}
  ScriptRun(ScriptRun const&) = delete;
  ScriptRun& operator=(ScriptRun const&) = delete;

  // Carries out all statements.  False at the first one that fails.  Throws
  // std::bad_alloc.
  bool Execute(ScriptReader& script);
  // Writes the database and configures the manager as before the run.  False
  // when it was not written; a file that the run made is then gone.
  bool Write(Configuration const& before);
  // Closes the database and removes a file that the run made.  The manager
  // keeps the configuration of the script.
  void Abandon();

  // The value of the column VERSION that the last "TABLEDATA VERSION" read.
  zWString const& ReadVersion() const { return read_version_; }

 private:
  bool ExecuteStatement(std::string_view keyword, Words const& words,
                        ScriptReader& script);
  bool NewDatabase(Words words);
  bool NewTable(Words words, ScriptReader& script);
  bool CreateTable(std::string const& name, std::string const& definition);
  bool TableData(Words words);
  bool ReadData(zWString* version);
  bool ConfigureManager();
  void RemoveMadeFile();

  DBInterpreter& interpreter_;
  zWString database_name_;
  zWString database_file_;
  bool database_open_ = false;
  bool made_ = false;  // an empty file, by this run
  zWString made_file_;
  DBTabelle* table_ = nullptr;  // the manager's
  zWString read_version_;
};

}  // namespace tabwerk

#endif  // TABWERK_INTERP_SCRIPT_RUN_H
