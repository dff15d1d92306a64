// A program that makes the files of a database anew is killed before each call
// to the system and to the kernel.
//
// What it has reached is empty, the rest is as before: there is no content that
// could be kept.  The next one makes them all.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/fault_platform.h"
#include "tests/support/sweep.h"
#include "tests/sweeps/traced_child.h"

namespace tabwerk::test {
namespace {

CHILD_FUNCTION(CreateUntilKilled) {
  FaultGuard faults;
  faults.KillAt(std::stoll(args[1]));
  return CarryOut(args[0], Writing::kCreation) ? 0 : 2;
}

class SweepKillCreation : public WriteStory {
 protected:
  SweepKillCreation() {
    MakeFile("MAIN.db", {PlainHeader::kCurrent,
                         1000,
                         {{"A", kArticles, {"1|1|0|Anna", "2|2|0|Bert"}}}});
    MakeFile(
        "USER.UDB",
        {PlainHeader::kCurrent, 2000, {{"A", kArticles, {"20000|3|0|Dora"}}}});
    EXPECT_TRUE(CarryOut(Folder(), Writing::kOpening));  // makes the index
    DBbase::Init({}, {});
    start_ = TakeImage();
    EXPECT_TRUE(CarryOut(Folder(), Writing::kCreation));
    DBbase::Init({}, {});
    index_of_none_ = Bytes("STOCK.idx");
    EXPECT_EQ(" empty empty", Contents());
    PutImage(start_);
  }

  // "before", "empty" or "torn", of the first and of the user file.
  std::string Contents() const {
    std::string contents;
    for (auto const* name : {"MAIN.db", "USER.UDB"}) {
      auto const bytes = Bytes(name);
      contents += bytes.empty()              ? " empty"
                  : bytes == start_.at(name) ? " before"
                                             : " torn";
    }
    return contents;
  }

  void JudgeKilled() {
    EXPECT_EQ("", UndocumentedLeftovers());
    auto const contents = Contents();
    // The index is written last.
    auto const index = Bytes("STOCK.idx");
    EXPECT_TRUE(index == start_.at("STOCK.idx") ||
                (index == index_of_none_ && contents == " empty empty"))
        << contents;
    EXPECT_TRUE(contents == " before before" || contents == " empty before" ||
                contents == " empty empty")
        << contents;
    ++seen_[contents];
    EXPECT_TRUE(CarryOut(Folder(), Writing::kCreation));
    DBbase::Init({}, {});
    EXPECT_EQ(" empty empty", Contents());
  }

  void Report(std::string const& name, std::size_t points) const {
    std::string figures = "points " + std::to_string(points);
    for (auto const& [contents, count] : seen_) {
      figures += "," + contents + ": " + std::to_string(count);
    }
    if (WholeSweep()) {
      EXPECT_EQ(3U, seen_.size()) << figures;
    }
    ReportSweep(name + ", Creation", figures);
  }

 private:
  std::map<std::string, int> seen_;
  std::vector<unsigned char> index_of_none_;
};

TEST_F(SweepKillCreation, BeforeASeamCallLeavesFilesAsBeforeOrEmpty) {
  std::size_t points = 0;
  {
    FaultGuard faults;
    ASSERT_TRUE(CarryOut(Folder(), Writing::kCreation));
    points = static_cast<std::size_t>(faults.Count(kFileCalls));
  }
  Sweep const sweep(points, 8);
  for (auto i = sweep.first(); i < points; i += sweep.step()) {
    SCOPED_TRACE("call " + std::to_string(i + 1));
    PutImage(start_);
    ChildProcess child("CreateUntilKilled", {Folder(), std::to_string(i + 1)});
    ASSERT_EQ(kKilledExitCode, child.Wait());
    JudgeKilled();
    ASSERT_FALSE(HasFailure());
  }
  Report("kill before seam call", points);
}

TEST_F(SweepKillCreation, BeforeAKernelCallLeavesFilesAsBeforeOrEmpty) {
  auto const reason = WhyNoStrace();
  if (!reason.empty()) GTEST_SKIP() << reason;
  auto const points = ListKernelCalls("", Folder(), Writing::kCreation);
  Sweep const sweep(points.size(), 5);
  for (auto i = sweep.first(); i < points.size(); i += sweep.step()) {
    SCOPED_TRACE(points[i].line);
    PutImage(start_);
    ASSERT_TRUE(IsKilledBefore(points[i], Folder(), Writing::kCreation));
    JudgeKilled();
    ASSERT_FALSE(HasFailure());
  }
  Report("kill before system call", points.size());
}

}  // namespace
}  // namespace tabwerk::test
