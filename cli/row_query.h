// Which rows of a table are meant, and in which order.
#ifndef TABWERK_CLI_ROW_QUERY_H
#define TABWERK_CLI_ROW_QUERY_H

#include <optional>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "cli/errors.h"
#include "cli/translated_text.h"

namespace tabwerk::tool {

class Options;

// What the user asks for.  All conditions have to hold.
struct RowQuery {
  std::vector<int> ids;
  std::vector<int> rows;           // numbers from 0
  std::vector<std::string> where;  // "COLUMN=VALUE"
  std::vector<std::string> match;  // "COLUMN=PATTERN"
  bool active = false;
  std::string part;           // "main", "user" or empty for both
  std::string order = "row";  // "folge", "id" or "row"
};

// Adds --id, --row, --where, --match, --active, --part and --order.
void AddRowQueryOptions(Options& options, RowQuery* query);

// The rows of a table that a query chooses.  Moves the table's selection and
// the manager's language.
class RowChoice {
 public:
  // The texts of conditions are those of the language; of all of them one has
  // to fit.
  RowChoice(DBTabelle& table, LanguageChoice const& language);

  // A problem for a condition that makes no sense for the table.
  std::optional<Problem> Apply(RowQuery const& query);
  // What was chosen, in the order that was asked for.
  std::vector<long> const& rows() const { return rows_; }
  // IDs and rows that were asked for and that there are not: "the ID 7".
  std::vector<std::string> const& missing() const { return missing_; }

 private:
  // Keeps the rows that were chosen before and are among these.
  void Keep(std::vector<bool> const& rows);
  void KeepIds(std::vector<int> const& ids);
  void KeepRows(std::vector<int> const& rows);
  void KeepPart(bool user);
  std::optional<Problem> KeepEqual(std::string const& condition);
  std::optional<Problem> KeepMatches(std::string const& condition);
  std::optional<Problem> KeepActive();
  std::optional<Problem> Order(std::string const& order);

  std::optional<Problem> FindColumn(std::string const& name,
                                    DBFeld const** field);
  std::optional<Problem> SelectColumn(std::string const& name);
  std::vector<short> Languages(char const* column);
  std::vector<bool> RowsWithInteger(char const* column, long value);
  std::vector<bool> RowsWithReal(char const* column, double value);
  std::vector<bool> RowsWithText(char const* column, std::string const& value);
  std::size_t Size() const { return chosen_.size(); }

  DBTabelle& table_;
  LanguageChoice const& language_;
  std::vector<bool> chosen_;  // by row
  std::vector<long> rows_;
  std::vector<std::string> missing_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_ROW_QUERY_H
