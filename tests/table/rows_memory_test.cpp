// Exhausted memory while rows are added and texts are stored.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <new>
#include <string>

#include "tests/support/fault_platform.h"
#include "tests/support/new_guard.h"
#include "tests/support/table_builder.h"

namespace {

using tabwerk::test::FaultGuard;
using tabwerk::test::Indices;
using tabwerk::test::kMemoryCalls;
using tabwerk::test::Lasting;
using tabwerk::test::NewGuard;
using tabwerk::test::Rows;
using tabwerk::test::Selected;
using tabwerk::test::Store;
using tabwerk::test::TestTable;

// Everything that a failed operation must leave alone.
std::string Untouched(TestTable& t) {
  return Rows(*t.entry) + " " + Store(t.Part(0)) + " " + Indices(t.table) +
         " " + Selected(t.table) + " " + std::to_string(t.Part(0).rows.size()) +
         " " + std::to_string(t.Part(0).row_block_size) + " " +
         std::to_string(t.Part(0).revision);
}

class TabelleMemory : public testing::TestWithParam<Lasting> {
 protected:
  // Runs work on a fresh table with the N-th memory call failing, for every N
  // that it makes: it fails and leaves everything as it was, and works when no
  // call fails.  Returns what the rows are then.
  static std::string Sweep(std::function<bool(DBTabelle&)> const& work) {
    for (int n = 1;; ++n) {
      TestTable t("integer ID,string NAME,string TEXT\n");
      t.AddRows(0, {"1|Anna|x"});
      t.table.SelectColumn("NAME");
      t.table.SelectZeile(0L);
      std::string const before = Untouched(t);
      FaultGuard faults;
      faults.FailAt(n, GetParam(), kMemoryCalls);
      bool const done = work(t.table);
      if (!faults.Fired()) {
        EXPECT_TRUE(done);
        failures_ = n - 1;
        return Rows(*t.entry);
      }
      // A block that cannot have a reserve gets by without.
      if (done && GetParam() == Lasting::kOnce) continue;
      EXPECT_FALSE(done) << n;
      EXPECT_EQ(before, Untouched(t)) << n;
    }
  }

  static inline int failures_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Rows, TabelleMemory,
                         testing::Values(Lasting::kOnce, Lasting::kForGood),
                         [](auto const& lasting) {
                           return lasting.param == Lasting::kOnce ? "Once"
                                                                  : "ForGood";
                         });

TEST_P(TabelleMemory, FailedNewRowChangesNothing) {
  EXPECT_EQ("[1|Anna|x][0||]",
            Sweep([](DBTabelle& table) { return table.NeueZeile(false); }));
  // The row block and the string store.
  EXPECT_LE(2, failures_);
}

TEST_P(TabelleMemory, FailedLongerTextChangesNothing) {
  EXPECT_EQ("[1|Annabella|x]", Sweep([](DBTabelle& table) {
              return table.SetWert(L"Annabella") == 1;
            }));
  EXPECT_LE(1, failures_);
}

TEST_P(TabelleMemory, ShorterTextNeedsNoBlock) {
  EXPECT_EQ("[1|Ann|x]",
            Sweep([](DBTabelle& table) { return table.SetWert(u"Ann") == 1; }));
  EXPECT_EQ(0, failures_);
}

TEST_P(TabelleMemory, FailedNewBlockLeavesTheOldOne) {
  // Every index of the new block is 0 and names the first text.
  EXPECT_EQ("[0|Anna|Anna]", Sweep([](DBTabelle& table) {
              return table.SetMemory(24, 0) != nullptr;
            }));
  EXPECT_LE(1, failures_);
}

// As Sweep, with operator new failing from the N-th call on.
void SweepNew(TestTable& t, std::function<bool()> const& work) {
  std::string const before = Untouched(t);
  for (int n = 1;; ++n) {
    NewGuard guard(n);
    bool const done = work();
    bool const fired = guard.Disarm();
    EXPECT_EQ(!fired, done) << n;
    if (!fired) return;
    EXPECT_EQ(before, Untouched(t)) << n;
  }
}

class TabelleExhausted : public testing::Test {
 protected:
  TabelleExhausted() : t_("integer ID,string NAME\n") {
    t_.AddRows(0, {"1|Anna"});
    t_.table.MakeIndexID();
  }

  void Stand(char const* column) {
    ASSERT_EQ(1, t_.table.SelectColumn(column));
    ASSERT_EQ(1, t_.table.SelectZeile(0L));
  }

  TestTable t_;
};

TEST_F(TabelleExhausted, NewRowChangesNothing) {
  SweepNew(t_, [&] { return t_.table.NeueZeile(false); });
  EXPECT_EQ("[1|Anna][0|]", Rows(*t_.entry));
}

TEST_F(TabelleExhausted, IdChangesNeitherRowNorIndex) {
  Stand("ID");
  SweepNew(t_, [&] { return t_.table.SetWert(77L) == 1; });
  EXPECT_EQ("ID 77>0 FOLGE  STATUS ", Indices(t_.table));
}

TEST_F(TabelleExhausted, TextsChangeNothing) {
  Stand("NAME");
  SweepNew(t_, [&] {
    return t_.table.SetWert(L"a text that is longer than before") == 1;
  });
  SweepNew(t_, [&] {
    return t_.table.SetWert("one that is even longer than the one before") == 1;
  });
  EXPECT_EQ("[1|one that is even longer than the one before]", Rows(*t_.entry));
}

TEST_F(TabelleExhausted, ReadingATextLeavesTheArgument) {
  Stand("NAME");
  for (char16_t const* const text :
       {u"a text without a section", u"#TS(one piece\u00ACanother piece)TS~"}) {
    ASSERT_EQ(1, t_.table.SetWert(text));
    zWString value(u"old");
    SweepNew(t_, [&] {
      bool const read = t_.table.GetWert(value) == 1;
      return read || value.view() != u"old";
    });
    EXPECT_NE(u"old", value.view());
  }
}

TEST_F(TabelleExhausted, BindingAddsNoPartAtAll) {
  DBTabelle other;
  SweepNew(t_, [&] {
    other.SetDirEntry(t_.entry);
    return other.GetDirEntry(false) != nullptr;
  });
  EXPECT_EQ(1, other.GetAnzahlZeilen());
}

TEST_F(TabelleExhausted, FailedAssignmentLeavesTheTarget) {
  t_.table.NeueZeile(false);
  DBTabelle target;
  SweepNew(t_, [&] {
    try {
      target = t_.table;
    } catch (std::bad_alloc const&) {
      return target.GetDirEntry(false) != nullptr;
    }
    return true;
  });
  EXPECT_EQ(Indices(t_.table), Indices(target));
}

}  // namespace
