// The definition of a table in a script.
#ifndef TABWERK_CLI_SCRIPT_DEFINITION_H
#define TABWERK_CLI_SCRIPT_DEFINITION_H

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "cli/script_context.h"

namespace tabwerk::tool {

// Reads the lines between NEWTABLE and ENDDEF.  Borrows the context.
class DefinitionScan {
 public:
  // keyword is that of the current line.
  DefinitionScan(ScriptContext& context, std::string_view keyword);

  // Reads to the end of the definition and fills in what the library makes of
  // it.  False when the current line is not the last of the definition but the
  // next statement.
  bool Run(ScriptTable* table);

 private:
  struct Column {
    std::string name;
    std::string type;
    Place where;  // of the name
    bool is_reported;
  };

  bool ReadLine(std::string_view name, std::string_view rest);
  void ReportIncomplete(std::string_view name);
  bool CheckColumn(std::string_view name, std::string_view type);
  bool CheckName(std::string_view name);
  void CheckSystemColumn(std::string_view name, DBType type);
  void Append(std::string_view name, std::string_view type);
  void CheckStored(DBDefinition const& definition);
  Column const* FirstReadOtherwise(DBDefinition const& definition) const;

  ScriptContext& context_;
  Place begin_;
  std::string table_name_;  // UTF-8
  std::string text_;        // as the library puts it together
  std::vector<Column> columns_;
  std::set<std::string, std::less<>> names_;
  bool is_sound_ = true;
  bool is_too_long_ = false;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SCRIPT_DEFINITION_H
