#include "cli/translated_text.h"

#include <algorithm>
#include <charconv>

#include "DBbase.h"
#include "cli/options.h"
#include "cli/text_markers.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

// The number; -1 for what is none.
short ParseLanguage(std::string const& text) {
  short number = -1;
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end && number >= 0 ? number
                                                            : short{-1};
}

std::string WrongChoice(std::string const& text) {
  if (text == "all" || text == "raw" || ParseLanguage(text) >= 0) return "";
  return text + " is neither a number from 0 to 32767 nor all or raw";
}

}  // namespace

int LanguageCount(std::u16string_view stored) {
  std::ptrdiff_t count = 0;
  SectionPlace place = FindSection(stored, 0);
  for (; place.IsClosed(); place = FindSection(stored, place.End())) {
    auto const content = place.Content(stored);
    count = std::max(
        count, 1 + std::count(content.begin(), content.end(), kSeparator));
  }
  return static_cast<int>(count);
}

int LanguageCount(DBTabelle& table, char const* column) {
  DBbase::SetSprache(kAsStored);
  if (table.SelectColumn(column) == 0) return 0;
  if (table.GetType() != DBTypeString) return 0;
  int count = 0;
  zWString text;
  for (long row = 0; row < table.GetAnzahlZeilen(); ++row) {
    table.SelectZeile(row);
    if (table.GetWert(text) != 1) continue;
    count = std::max(count, LanguageCount(text.view()));
  }
  return count;
}

short LanguageChoice::Number() const {
  return text == "raw" ? kAsStored : ParseLanguage(text);
}

void AddLanguageOption(Options& options, LanguageChoice* choice,
                       std::string const& help) {
  options.Add("--language", choice->text, help)
      .Check(&WrongChoice)
      .Value("LANGUAGE");
}

}  // namespace tabwerk::tool
