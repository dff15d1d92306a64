// Exhausted memory while index sections are applied and rows are renumbered.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "table/section_source.h"
#include "table/table_access.h"
#include "tests/support/container_bytes.h"
#include "tests/support/new_guard.h"
#include "tests/support/table_builder.h"

namespace {

using tabwerk::MemorySource;
using tabwerk::RowUpdate;
using tabwerk::SectionSource;
using tabwerk::TableAccess;
using tabwerk::test::Indices;
using tabwerk::test::NewGuard;
using tabwerk::test::Rows;
using tabwerk::test::Section;
using tabwerk::test::TestTable;

constexpr char kRows[] = "[5|3|0][900000|2|7][7|1|0]";

class IndexMemory : public testing::Test {
 protected:
  IndexMemory() : t_("integer ID,integer FOLGE,integer STATUS\n") {
    t_.AddRows(0, {"5|3|0", "900000|2|7", "7|1|0"});
    t_.table.MakeIndexID();
    t_.table.MakeIndexFolge();
    t_.table.MakeIndexStatus();
  }

  using Read = std::function<bool(SectionSource&)>;

  // Reads with operator new failing from the n-th call on, for every n: false
  // and the old rows as long as one fails, else true.
  void Sweep(std::string const& section, Read const& read) {
    for (int n = 1;; ++n) {
      MemorySource source(std::as_bytes(std::span(section)));
      NewGuard guard(n);
      bool const done = read(source);
      bool const fired = guard.Disarm();
      ASSERT_EQ(!fired, done) << n;
      if (!fired) break;
      ASSERT_EQ(kRows, Rows(*t_.entry)) << n;
      ++failures_;
    }
    EXPECT_LE(1, failures_);
  }

  TestTable t_;
  int failures_ = 0;
};

TEST_F(IndexMemory, IdsThatCouldNotBeReadAreReported) {
  Sweep(Section("ID", {2, 5, 0, 7, 2}), [&](SectionSource& source) {
    return TableAccess::ReadIds(t_.table, source);
  });
  EXPECT_EQ("5>0 7>2", tabwerk::test::IdIndexOf(t_.table));
}

TEST_F(IndexMemory, FolgeThatCouldNotBeReadIsReported) {
  for (RowUpdate const update : {RowUpdate::kIndexOnly, RowUpdate::kRowsToo}) {
    Sweep(Section("FOLGE", {12, -1, 0, 1, 2, -1, -1, -1, -1, -1, -1, -1, -1}),
          [&](SectionSource& source) {
            return TableAccess::ReadFolge(t_.table, source, update);
          });
  }
  EXPECT_EQ("[5|1|0][900000|2|7][7|3|0]", Rows(*t_.entry));
}

TEST_F(IndexMemory, StatusThatCouldNotBeReadIsReported) {
  for (RowUpdate const update : {RowUpdate::kIndexOnly, RowUpdate::kRowsToo}) {
    Sweep(Section("STATUS", {3, 1, 2, 1}), [&](SectionSource& source) {
      // Values that the index has room for take no memory.
      TableAccess::Status(t_.table) = std::vector<std::int32_t>();
      return TableAccess::ReadStatus(t_.table, source, update);
    });
  }
  EXPECT_EQ("[5|3|1][900000|2|2][7|1|1]", Rows(*t_.entry));
}

TEST_F(IndexMemory, WrongTagIsNoLackOfMemory) {
  std::string const wrong("XXXXXXXXXXXXXXXXX");
  std::string const before = Indices(t_.table);
  MemorySource source(std::as_bytes(std::span(wrong)));
  EXPECT_TRUE(TableAccess::ReadIds(t_.table, source));
  EXPECT_TRUE(TableAccess::ReadFolge(t_.table, source, RowUpdate::kRowsToo));
  EXPECT_TRUE(TableAccess::ReadStatus(t_.table, source, RowUpdate::kIndexOnly));
  EXPECT_EQ(before, Indices(t_.table));
}

TEST_F(IndexMemory, SectionThatEndsEarlyIsNoLackOfMemory) {
  std::string const cut = Section("ID", {2, 5, 0});
  MemorySource source(std::as_bytes(std::span(cut)));
  EXPECT_TRUE(TableAccess::ReadIds(t_.table, source));
}

TEST_F(IndexMemory, FailedResortChangesNeitherRowsNorIndices) {
  std::string const before = Indices(t_.table);
  for (int n = 1;; ++n) {
    NewGuard guard(n);
    bool const done = TableAccess::Resort(t_.table);
    bool const fired = guard.Disarm();
    ASSERT_EQ(!fired, done) << n;
    if (!fired) break;
    ASSERT_EQ(kRows, Rows(*t_.entry)) << n;
    ASSERT_EQ(before, Indices(t_.table)) << n;
    ++failures_;
  }
  EXPECT_LE(4, failures_);
  EXPECT_EQ("[5|2|0][900000|0|1][7|1|0]", Rows(*t_.entry));
  EXPECT_EQ("ID 5>0 7>2 900000>1 FOLGE 1 2 0 -1 STATUS 0 1 0",
            Indices(t_.table));
}

}  // namespace
