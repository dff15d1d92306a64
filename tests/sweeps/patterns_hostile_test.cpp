// HostilePatterns and texts made to hang a matcher, to overflow its stack or to
// take its memory: an answer, or std::regex_error, in bounded time.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "schema/bytes.h"
#include "tests/support/memory_meter.h"
#include "tests/support/small_stack.h"
#include "tests/support/standard_regex.h"
#include "tests/support/sweep.h"
#include "tests/support/table_builder.h"
#include "tests/sweeps/case_watch.h"
#include "tests/sweeps/pattern_source.h"

namespace tabwerk::test {
namespace {

struct Named {
  std::string name;
  std::u16string units;
};

std::u16string Times(int count, std::u16string_view text) {
  std::u16string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

// --- HostilePatterns
// -----------------------------------------------------------------

// A few units that are different for every number.
std::u16string Different(int number) {
  return {static_cast<char16_t>(0x4E00 + number % 5000),
          static_cast<char16_t>(0x6800 + number / 5000)};
}

std::vector<Named> NestedPatterns() {
  return {
      {"nested stars", u"(a*)*b"},
      {"three nested stars", u"((a*)*)*b"},
      {"ten nested stars", Times(10, u"(") + u"a" + Times(10, u"*)*") + u"b"},
      {"nested stars in a row", Times(20, u"(a*)*") + u"b"},
      {"the same alternatives", u"(a|aa)+$"},
      {"equal alternatives", u"(a|a|a|a|a)*b"},
      {"alternatives of stars", u"(a*|b*|(a|b)*)*c"},
      {"six thousand choices", u"(a?){6000}"},
      {"choices, then units", u"(a?){3000}a{3000}"},
      {"stars of dots", Times(50, u".*") + u"b"},
      {"star of dots", u"(.*.*.*=.*)*b"},
      {"long alternation", Times(15'000, u"a|b|") + u"c"},
      {"open groups", Times(20'000, u"(")},
      {"closed groups", Times(10'000, u"(") + Times(10'000, u")")},
      {"groups of the allowed depth", Times(199, u"(") + Times(199, u")*")},
      {"look-aheads in each other",
       Times(150, u"(?=a*") + Times(150, u")") + u"a*"},
      {"look-aheads in a row", Times(5'000, u"(?=a*b)") + u"a*"},
      {"refusing look-aheads in a row", Times(5'000, u"(?!a*b)") + u"a*"},
      {"look-aheads in a star", u"((?=.*a)(?!.*b).)*"},
      {"look-ahead in every choice", Times(500, u"((?=a*$)a|a)") + u"a*b"},
      {"word boundaries", Times(20'000, u"\\b") + u".*"},
      {"no word boundaries", u"(\\B.|\\b.)*b"},
      {"back-reference", u"(a*)\\1"},
      {"back-references", Times(100, u"(a*)") + u"\\1\\2\\3\\99"},
      {"reference in its own group", u"(a\\1)*"},
  };
}

std::vector<Named> LongPatterns() {
  std::u16string units(65'536, u'a');
  return {
      {"units", units},
      {"units with stars", Times(32'768, u"a*")},
      {"units with choices", Times(32'768, u"a?")},
      {"one too many", units + u"a"},
      {"a million units", std::u16string(1'000'000, u'a')},
      {"dots", std::u16string(65'536, u'.')},
      {"stars", u"a" + Times(65'000, u"*")},
      {"counts", u"a" + Times(20'000, u"{1}")},
      {"counted counts", u"((a{1000}){1000}){1000}"},
      {"counted nothing", u"(((){9999}){9999}){9999}"},
      {"largest count", u"a{2147483647}"},
      {"large range", u"(a{0,300}){0,300}b"},
      {"counts in the judged length",
       Times(9, u"(") + u"a" + Times(9, u"{3})")},
      {"doubled in the judged length",
       Times(16, u"(") + u"a" + Times(16, u"{2})")},
      {"counted in the judged length", u"([^a-c]{0,30000}b){3}"},
      {"count with many digits", u"a{" + std::u16string(60'000, u'9') + u"}"},
      {"escapes", Times(32'768, u"\\.")},
      {"open bracket", u"[" + units.substr(1)},
      {"open brace", u"a{" + std::u16string(400, u'1')},
      {"lone surrogates", Times(20'000, u"\xD800\xDC00\xDC00")},
      {"surrogates in a bracket", u"[\xD800-\xDFFF]*"},
      {"NUL units", std::u16string(60'000, u'\0')},
  };
}

// Brackets that take long to judge a unit, or many of them.
std::vector<Named> BracketPatterns() {
  std::u16string ranges;
  std::u16string different;
  std::u16string negated;
  for (int i = 0; i < 20'000; ++i) {
    auto const unit = static_cast<char16_t>(0x4E00 + i);
    ranges += std::u16string{unit, u'-', unit};
  }
  for (int i = 0; i < 4'096; ++i) {
    different += u"|[" + Different(i) + u"]";
    negated += u"[^" + Different(i) + u"]*";
  }
  return {
      {"a bracket of units",
       u"[" + Different(1) + Times(30'000, u"xy") + u"]*"},
      {"a bracket of ranges", u"[" + ranges + u"]*"},
      {"a bracket of classes", u"[" + Times(30'000, u"\\d") + u"]*"},
      {"a bracket of other classes", u"[" + Times(30'000, u"\\D") + u"]*"},
      {"a bracket without words", u"[^" + Times(30'000, u"\\W\\D") + u"]*"},
      {"a bracket of named classes", u"[" + Times(6'000, u"[:upper:]") + u"]*"},
      {"a bracket of equal units", u"[" + Times(12'000, u"[=a=]") + u"]*"},
      {"a bracket of collating units", u"[" + Times(12'000, u"[.a.]") + u"]*"},
      {"one of many brackets", u"(" + different.substr(1) + u")*"},
      {"none of many brackets", u"(" + negated + u")*"},
      {"many equal brackets", Times(9'000, u"[^a-z]*") + u"b"},
      {"more brackets than are allowed", different + different},
  };
}

std::vector<Named> HostilePatterns() {
  auto patterns = NestedPatterns();
  for (auto const& more : {LongPatterns(), BracketPatterns()}) {
    patterns.insert(patterns.end(), more.begin(), more.end());
  }
  return patterns;
}

// --- HostileTexts
// --------------------------------------------------------------------

std::vector<Named> HostileTexts() {
  std::u16string all;
  for (int unit = 1; unit < 0x10000; ++unit) {
    all += static_cast<char16_t>(unit);
  }
  auto rare = all.substr(0x4E00 - 1, 8'095);
  return {{"8,095 a", std::u16string(8'095, u'a')},
          {"100,000 a", std::u16string(100'000, u'a')},
          {"8,095 units of two kinds", Times(4'000, u"ab")},
          {"100,000 units of two kinds", Times(50'000, u"ab")},
          {"8,095 different units", rare},
          {"all units", all},
          {"100,000 surrogates", Times(50'000, u"\xDC00\xD800")},
          {"100,000 other units", std::u16string(100'000, u'\x4E00')}};
}

// --- The sweep
// ----------------------------------------------------------------

// A table whose only row has that text.
class OneText {
 public:
  explicit OneText(std::u16string const& text) : made_("string NAME\n") {
    made_.AddRow(0, "");
    auto& part = made_.Part(0);
    auto const place = static_cast<std::int32_t>(part.strings->count());
    StoreValue(part.rows.data(), part.strings->Append(text) ? place : -1);
  }

  // "found", "not found" or "error".
  std::string Find(std::u16string const& pattern) {
    try {
      return made_.table.FindRows("NAME", zWString(pattern), false).empty()
                 ? "not found"
                 : "found";
    } catch (std::regex_error const&) {
      return "error";
    }
  }

 private:
  TestTable made_;
};

class SweepPatternsHostile : public testing::Test {
 protected:
  void Search(Named const& text, Named const& pattern) {
    watch_.Run(pattern.name + " on " + text.name, [&] {
      OneText table(text.units);
      std::string answer;
      MemoryMeter const meter;
      OnSmallStack([&] { answer = table.Find(pattern.units); });
      ++(answer == "error" ? errors_ : answers_);
      peak_ = std::max(peak_, meter.Peak());
      EXPECT_LE(meter.Peak(), kMostMemory) << pattern.name << text.name;
    });
  }

  void Report(std::string const& name) const {
    ReportSweep("patterns, " + name,
                watch_.Figures() + ", peak " + std::to_string(peak_ >> 20) +
                    " MiB, answers " + std::to_string(answers_) + ", errors " +
                    std::to_string(errors_));
  }

  static constexpr std::int64_t kMostMemory = std::int64_t{100} << 20;

  CaseWatch watch_;
  std::int64_t answers_ = 0;
  std::int64_t errors_ = 0;
  std::int64_t peak_ = 0;
};

TEST_F(SweepPatternsHostile, AnswerInTimeOnASmallStack) {
  auto const patterns = HostilePatterns();
  auto const texts = HostileTexts();
  Sweep const sweep(patterns.size() * texts.size(),
                    static_cast<std::size_t>(ShortCases(80)));
  for (auto i = sweep.first(); i < patterns.size() * texts.size();
       i += sweep.step()) {
    Search(texts[i % texts.size()], patterns[i / texts.size()]);
  }
  EXPECT_GT(answers_, 0);
  EXPECT_GT(errors_, 0);
  Report("hostile");
}

bool Compiles(std::u16string const& pattern) {
  try {
    StandardRegex const compiled(pattern);
    return true;
  } catch (std::regex_error const&) {
    return false;
  }
}

// Many random patterns in a row, in groups that repeat.
std::u16string LongPattern(int seed) {
  PatternSource source(static_cast<std::uint32_t>(seed));
  std::u16string pattern;
  while (pattern.size() < 30 * static_cast<unsigned>(1 + seed % 50)) {
    auto const part = source.Pattern();
    if (Compiles(part)) pattern += u"(" + part + u"|.)*";
  }
  return pattern;
}

TEST_F(SweepPatternsHostile, OfAnyKindAnswerInTimeOnASmallStack) {
  auto const texts = HostileTexts();
  int const count = WholeSweep() ? 500 : ShortCases(20);
  for (int seed = 1; seed <= count; ++seed) {
    auto const pattern = LongPattern(seed);
    auto const& text = texts[static_cast<unsigned>(seed) % texts.size()];
    Search(text, {"seed " + std::to_string(seed), pattern});
  }
  Report("random on long texts");
}

}  // namespace
}  // namespace tabwerk::test
