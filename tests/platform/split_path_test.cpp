// The path splitter.
#include <gtest/gtest.h>

#include <new>
#include <string>

#include "tests/support/new_guard.h"
#include "ztypes.h"

namespace tabwerk::test {
namespace {

#ifdef _WIN32
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

// "drive|directory|file name|extension"
std::string Split(char const* path) {
  zSplitPath const split(zWString::fromUtf8(path));
  return (split.GetDrive() + u"|" + split.GetDirectory() + u"|" +
          split.GetFileName() + u"|" + split.GetExtension())
      .toUtf8();
}

TEST(SplitPath, SplitsAtTheLastSeparatorAndTheLastDot) {
  EXPECT_EQ("|/home/anna/|MAIN|.UDB", Split("/home/anna/MAIN.UDB"));
  EXPECT_EQ("|data/|MAIN.2024|.UDB", Split("data/MAIN.2024.UDB"));
  EXPECT_EQ("||MAIN|.UDB", Split("MAIN.UDB"));
  EXPECT_EQ("||MAIN|", Split("MAIN"));
}

TEST(SplitPath, DotsOfFoldersDoNotCount) {
  EXPECT_EQ("|a.b/|MAIN|", Split("a.b/MAIN"));
  EXPECT_EQ("|../|MAIN|.udb", Split("../MAIN.udb"));
}

TEST(SplitPath, PartsMayBeEmpty) {
  EXPECT_EQ("|||", Split(""));
  EXPECT_EQ("|a/||", Split("a/"));
  EXPECT_EQ("|/||", Split("/"));
  EXPECT_EQ("|a/||.UDB", Split("a/.UDB"));
  EXPECT_EQ("||MAIN|.", Split("MAIN."));
}

TEST(SplitPath, BackslashAndDriveAreWindowsOnly) {
  EXPECT_EQ(kIsWindows ? "D:|\\data\\|MAIN|.UDB" : "||D:\\data\\MAIN|.UDB",
            Split("D:\\data\\MAIN.UDB"));
  EXPECT_EQ(kIsWindows ? "D:|a/b\\|MAIN|" : "|D:a/|b\\MAIN|",
            Split("D:a/b\\MAIN"));
  EXPECT_EQ(kIsWindows ? "D:|||" : "||D:|", Split("D:"));
  EXPECT_EQ(
      kIsWindows ? "|\\\\host\\share\\|A|.UDB" : "||\\\\host\\share\\A|.UDB",
      Split("\\\\host\\share\\A.UDB"));
}

TEST(SplitPath, PartsJoinedGiveThePath) {
  for (char const* path : {"D:\\a.b/c\\MAIN.x.UDB", "a/../b.c/", "//x", "..",
                           "a:b:c.d", ".", "D:.", "\\/"}) {
    zSplitPath const split(zWString::fromUtf8(path));
    EXPECT_EQ(path, (split.GetDrive() + split.GetDirectory() +
                     split.GetFileName() + split.GetExtension())
                        .toUtf8());
  }
}

TEST(SplitPath, CopiesAreIndependent) {
  zSplitPath first(zWString(u"a/b.c"));
  zSplitPath const second(first);
  first = zSplitPath(zWString(u"d"));
  EXPECT_EQ(zWString(u"b"), second.GetFileName());
  EXPECT_EQ(zWString(u"d"), first.GetFileName());
}

// It had the folder of one path and the name of the other.
TEST(SplitPath, WithoutMemoryAnAssignmentChangesNoPart) {
  zSplitPath const source(
      zWString(u"/a folder of a long name/a file of a long name.db"));
  bool fired = true;
  for (int n = 1; fired; ++n) {
    zSplitPath target(zWString(u"x/y"));
    bool assigned = true;
    {
      NewGuard guard(n);
      try {
        target = source;
      } catch (std::bad_alloc const&) {
        assigned = false;
      }
      fired = guard.Disarm();
    }
    EXPECT_NE(fired, assigned);
    EXPECT_EQ(assigned ? source.GetDirectory() : zWString(u"x/"),
              target.GetDirectory());
    EXPECT_EQ(assigned ? source.GetFileName() : zWString(u"y"),
              target.GetFileName());
  }
}

}  // namespace
}  // namespace tabwerk::test
