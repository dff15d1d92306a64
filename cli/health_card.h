// What "tabwerk info" says of a database file.
#ifndef TABWERK_CLI_HEALTH_CARD_H
#define TABWERK_CLI_HEALTH_CARD_H

#include <optional>
#include <string>
#include <vector>

#include "cli/database_file.h"
#include "cli/errors.h"

namespace tabwerk::tool {

// Seconds behind the last date that four digits of a year can show.
inline constexpr std::int64_t kEndOfDates = 253402300800;

// kSound: header, list of tables and the blocks of rows and texts can be what
// the file says; what stands in rows and texts is not looked at.
enum class Verdict { kSound, kEmpty, kDamaged };

char const* VerdictText(Verdict verdict);

struct HealthCard {
  DatabaseFile file;
  // That texts have pieces for; 1 at least, 0 where no table can be read.
  int languages = 0;
  std::string index_file;  // of a user file
  std::string index_state;
  Verdict verdict = Verdict::kDamaged;
};

// Fills in all but the index.  A damaged file is no problem; one that does not
// open is.
std::optional<Problem> ExamineFile(std::string const& path, HealthCard* card);

std::string CardAsText(HealthCard const& card);
std::string CardsAsJson(std::vector<HealthCard> const& cards);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_HEALTH_CARD_H
