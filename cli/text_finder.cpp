#include "cli/text_finder.h"

#include <algorithm>
#include <tuple>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/patterns.h"
#include "cli/sole_column.h"
#include "cli/table_list.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

// One string column.
class ColumnSearch {
 public:
  ColumnSearch(DBTabelle& table, char const* name, std::size_t column,
               std::vector<TextHit>* hits)
      : table_(table), name_(name), column_(column), hits_(*hits) {}

  std::optional<Problem> InAllLanguages(std::string const& pattern) {
    int const count = std::max(LanguageCount(table_, name_), 1);
    for (int language = 0; language < count; ++language) {
      auto const number = static_cast<short>(language);
      auto problem = Find(pattern, number, [&](int pieces) {
        // A text without a piece for the language shows its markers there.
        return language < std::max(pieces, 1);
      });
      if (problem) return problem;
    }
    return std::nullopt;
  }

  std::optional<Problem> In(short language, std::string const& pattern) {
    return Find(pattern, language, [](int) { return true; });
  }

 private:
  template <typename Wanted>
  std::optional<Problem> Find(std::string const& pattern, short language,
                              Wanted const& wanted) {
    DBbase::SetSprache(language);
    std::vector<long> rows;
    if (auto problem = FindByPattern(table_, name_, pattern, &rows)) {
      return problem;
    }
    table_.SelectColumn(name_);
    for (long const row : rows) {
      table_.SelectZeile(row);
      int const pieces = LanguageCount(Text(kAsStored).view());
      if (!wanted(pieces)) continue;
      bool const is_same = pieces == 0 || language == kAsStored;
      hits_.push_back({row, column_,
                       is_same ? std::nullopt : std::optional(language),
                       Text(language).toUtf8()});
    }
    return std::nullopt;
  }

  zWString Text(short language) {
    DBbase::SetSprache(language);
    zWString text;
    static_cast<void>(table_.GetWert(text));
    return text;
  }

  DBTabelle& table_;
  char const* name_;
  std::size_t column_;
  std::vector<TextHit>& hits_;
};

}  // namespace

std::optional<Problem> FindTexts(DBTabelle& table, std::string const& pattern,
                                 LanguageChoice const& language,
                                 std::vector<TextHit>* hits) {
  auto const fields = FieldsOf(*table.GetDirEntry(false)->GetDefinition());
  auto const before = static_cast<std::ptrdiff_t>(hits->size());
  for (std::size_t column = 0; column < fields.size(); ++column) {
    if (fields[column]->type != DBTypeString) continue;
    SoleColumn const sole(table, *fields[column]);
    ColumnSearch search(table, fields[column]->name, column, hits);
    auto problem = language.IsAll() ? search.InAllLanguages(pattern)
                                    : search.In(language.Number(), pattern);
    if (problem) return problem;
  }
  std::sort(hits->begin() + before, hits->end(),
            [](TextHit const& a, TextHit const& b) {
              return std::tie(a.row, a.column, a.language) <
                     std::tie(b.row, b.column, b.language);
            });
  return std::nullopt;
}

}  // namespace tabwerk::tool
