// Finding the rows whose name matches a regular expression.
//
//   pattern_prefix  Ab.*
//   pattern_digits  .*[0-9]{3}
//   pattern_choice  (Pump|Valve) .*x
//
// The limit is a scan written by hand for each of them.
#include <map>
#include <regex>

#include "bench/support/check.h"
#include "bench/support/host.h"
#include "bench/support/plain_rows.h"
#include "bench/support/program.h"
#include "bench/support/rows.h"

namespace tabwerk::bench {
namespace {

// A text in the first language, up to where it ends.
struct Ends {
  char16_t const* begin;
  char16_t const* end;

  explicit Ends(char16_t const* text) : begin(text) {
    bool const translated = *text == u'#';
    if (translated) begin += 4;
    char16_t const stop = translated ? u'\u00AC' : u'\0';
    for (end = begin; *end != stop;) ++end;
  }
};

bool StartsWith(char16_t const* text, std::u16string_view start) {
  return std::u16string_view(text, 1).front() == start.front() &&
         std::char_traits<char16_t>::compare(text, start.data(),
                                             start.size()) == 0;
}

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// '.' matches everything but line ends, which no name has.
bool MatchesPrefix(char16_t const* text) {
  if (*text == u'#') text += 4;
  return text[0] == u'A' && text[1] == u'b';
}

bool MatchesDigits(char16_t const* text) {
  Ends const ends(text);
  return ends.end - ends.begin >= 3 && IsDigit(ends.end[-1]) &&
         IsDigit(ends.end[-2]) && IsDigit(ends.end[-3]);
}

bool MatchesChoice(char16_t const* text) {
  auto const* const begin = *text == u'#' ? text + 4 : text;
  std::ptrdiff_t size = 0;
  if (StartsWith(begin, u"Pump ")) size = 5;
  if (StartsWith(begin, u"Valve ")) size = 6;
  if (size == 0) return false;
  Ends const ends(text);
  return ends.end - ends.begin > size && ends.end[-1] == u'x';
}

struct Work {
  char const* name;
  char16_t const* pattern;
  wchar_t const* wide_pattern;
  bool (*matches)(char16_t const*);
};

constexpr Work kWorks[] = {
    {"pattern_prefix", u"Ab.*", L"Ab.*", MatchesPrefix},
    {"pattern_digits", u".*[0-9]{3}", L".*[0-9]{3}", MatchesDigits},
    {"pattern_choice", u"(Pump|Valve) .*x", L"(Pump|Valve) .*x",
     MatchesChoice}};

// Numbers of the rows that the standard library's expression matches.
std::vector<long> Judge(Work const& work, long rows) {
  std::wregex const expression(work.wide_pattern);
  std::vector<long> found;
  for (auto const& row : Rows(rows)) {
    auto const name = row.Name();
    if (std::regex_match(std::wstring(name.begin(), name.end()), expression)) {
      found.push_back(row.id - 1);
    }
  }
  return found;
}

std::vector<long> const& Expected(Work const& work, long rows) {
  static std::map<std::pair<char const*, long>, std::vector<long>> known;
  auto const [found, fresh] = known.try_emplace({work.name, rows});
  if (fresh) found->second = Judge(work, rows);
  return found->second;
}

void FindTabwerk(benchmark::State& state, Work const& work, long rows) {
  auto* const table = ReadTable(rows);
  auto const& expected = Expected(work, rows);
  for (auto _ : state) {
    Require(table->FindRows("NAME", work.pattern, false) == expected,
            "other rows match");
  }
}

void FindLimit(benchmark::State& state, Work const& work, long rows) {
  auto const& table = ReadPlainTable(rows);
  auto const expected = Expected(work, rows).size();
  for (auto _ : state) {
    auto const found = table.CountText(PlainTable::Column::kName, work.matches);
    Require(static_cast<std::size_t>(found) == expected,
            "limit: another number of rows matches");
  }
}

void FindWregex(benchmark::State& state, Work const& work, long rows) {
  auto const& expected = Expected(work, rows);
  for (auto _ : state) {
    Require(Judge(work, rows) == expected, "the judge is not sure");
  }
}

}  // namespace

void Register(long rows) {
  for (auto const& work : kWorks) {
    auto const add = [&work, rows](char const* contender, auto body) {
      Add(work.name, contender, rows, rows, Clock::kProcessor,
          [=, &work](benchmark::State& state) { body(state, work, rows); });
    };
    add("tabwerk", FindTabwerk);
    add("limit", FindLimit);
    add("wregex", FindWregex);
  }
}

}  // namespace tabwerk::bench
