// Share modes, in one process and between two.
#include <gtest/gtest.h>

#include <thread>

#include "platform/platform.h"
#include "tests/support/child_process.h"
#include "tests/support/fault_platform.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

using platform::Error;
using platform::Mode;
using platform::Share;

struct Opening {
  char const* name;
  Mode mode;
  Share share;
};

// The three ways in which a database file is opened.
constexpr Opening kCreation{"create", Mode::kCreateUpdate, Share::kDenyAll};
constexpr Opening kUpdating{"update", Mode::kUpdate, Share::kDenyWriters};
constexpr Opening kReading{"read", Mode::kRead, Share::kDenyNone};
constexpr Opening kOpenings[] = {kCreation, kUpdating, kReading};

// "ok", "held" or "other error".  The stream is closed again.
std::string Answer(zWString const& path, Opening const& opening) {
  Error error = Error::kNone;
  FILE* const stream =
      platform::OpenFile(path, opening.mode, opening.share, &error);
  if (stream == nullptr) {
    return error == Error::kHeld ? "held" : "other error";
  }
  EXPECT_TRUE(platform::Close(stream));
  return "ok";
}

// The answers to creation, update and read, one behind the other.
std::string Answers(zWString const& path) {
  std::string answers;
  for (Opening const& opening : kOpenings) {
    answers += (answers.empty() ? "" : " ") + Answer(path, opening);
  }
  return answers;
}

// A stream that is closed at the end of the block.
class Holder {
 public:
  Holder(zWString const& path, Opening const& opening) {
    Error error = Error::kNone;
    stream_ = platform::OpenFile(path, opening.mode, opening.share, &error);
    EXPECT_EQ(Error::kNone, error);
  }
  ~Holder() { Release(); }
  Holder(Holder const&) = delete;
  Holder& operator=(Holder const&) = delete;

  void Release() {
    if (stream_ != nullptr) {
      EXPECT_TRUE(platform::Close(stream_));
      stream_ = nullptr;
    }
  }

 private:
  FILE* stream_;
};

CHILD_FUNCTION(HoldFile) {
  for (Opening const& opening : kOpenings) {
    if (args[1] == opening.name) {
      Error error = Error::kNone;
      FILE* const stream = platform::OpenFile(
          zWString::fromUtf8(args[0]), opening.mode, opening.share, &error);
      TellParent(stream != nullptr ? "holds" : "fails");
      AwaitParent();
      return stream != nullptr && platform::Close(stream) ? 0 : 1;
    }
  }
  return 2;
}

class ShareMode : public testing::Test {
 protected:
  ~ShareMode() override { EXPECT_EQ(0, OpenStreams()); }

  std::string AnswersBesideChild(Opening const& held) {
    ChildProcess child("HoldFile", {path_.toUtf8(), held.name});
    EXPECT_EQ("holds", child.ReadLine());
    std::string const answers = Answers(path_);
    EXPECT_EQ(0, child.Wait());
    return answers;
  }

  TempFolder folder_;
  zWString path_ = folder_.Make("A.UDB", "content");
};

TEST_F(ShareMode, CreationExcludesEverybody) {
  Holder const holder(path_, kCreation);
  EXPECT_EQ("held held held", Answers(path_));
}

TEST_F(ShareMode, UpdateAdmitsReadersOnly) {
  Holder const holder(path_, kUpdating);
  EXPECT_EQ("held held ok", Answers(path_));
}

TEST_F(ShareMode, ReadingExcludesCreationOnly) {
  Holder const holder(path_, kReading);
  EXPECT_EQ("held ok ok", Answers(path_));
}

TEST_F(ShareMode, CreationExcludesOtherProcesses) {
  EXPECT_EQ("held held held", AnswersBesideChild(kCreation));
  EXPECT_EQ("ok ok ok", Answers(path_));
}

TEST_F(ShareMode, UpdateAdmitsReadersOfOtherProcessesOnly) {
  EXPECT_EQ("held held ok", AnswersBesideChild(kUpdating));
  EXPECT_EQ("ok ok ok", Answers(path_));
}

TEST_F(ShareMode, ReadingExcludesCreationOfOtherProcessesOnly) {
  EXPECT_EQ("held ok ok", AnswersBesideChild(kReading));
  EXPECT_EQ("ok ok ok", Answers(path_));
}

TEST_F(ShareMode, KilledHolderFreesTheFileAtOnce) {
  for (Opening const& held : kOpenings) {
    SCOPED_TRACE(held.name);
    ChildProcess child("HoldFile", {path_.toUtf8(), held.name});
    EXPECT_EQ("holds", child.ReadLine());
    EXPECT_EQ("held", Answer(path_, kCreation));
    child.Kill();
    EXPECT_EQ("ok ok ok", Answers(path_));
  }
}

TEST_F(ShareMode, ClosingFreesTheFile) {
  Holder holder(path_, kCreation);
  holder.Release();
  EXPECT_EQ("ok ok ok", Answers(path_));
}

TEST_F(ShareMode, RefusedCreationKeepsTheContent) {
  Holder holder(path_, kReading);
  EXPECT_EQ("held", Answer(path_, kCreation));
  EXPECT_EQ("held", Answer(path_, {"", Mode::kCreate, Share::kDenyAll}));
  EXPECT_EQ("content", folder_.Content("A.UDB"));
}

// What an opening wants (1 reading, 2 writing) and what it denies.
unsigned Wants(Mode mode) {
  return mode == Mode::kRead ? 1 : mode == Mode::kCreate ? 2 : 3;
}

unsigned Denies(Share share) {
  return share == Share::kDenyAll ? 3 : share == Share::kDenyWriters ? 2 : 0;
}

TEST_F(ShareMode, EveryPairAnswersAsWantedAndDenied) {
  constexpr Mode kModes[] = {Mode::kRead, Mode::kUpdate, Mode::kCreate};
  constexpr Share kShares[] = {Share::kDenyAll, Share::kDenyWriters,
                               Share::kDenyNone};
  for (int pair = 0; pair < 81; ++pair) {
    Opening const first{"", kModes[pair % 3], kShares[pair / 3 % 3]};
    Opening const second{"", kModes[pair / 9 % 3], kShares[pair / 27]};
    bool const contradicts = (Wants(first.mode) & Denies(second.share)) != 0 ||
                             (Wants(second.mode) & Denies(first.share)) != 0;
    Holder const holder(path_, first);
    EXPECT_EQ(contradicts ? "held" : "ok", Answer(path_, second)) << pair;
  }
}

// Opens in a loop of two threads at once; how often exactly one got the file.
int RoundsWithOneWinner(zWString const& path, Opening const& opening,
                        int rounds) {
  int good = 0;
  for (int round = 0; round < rounds; ++round) {
    FILE* streams[2] = {nullptr, nullptr};
    auto const open = [&](int index) {
      Error error = Error::kNone;
      // Past the counting seam, which is no place for threads.
      streams[index] =
          platform::os::OpenFile(path, opening.mode, opening.share, &error);
    };
    std::thread other(open, 1);
    open(0);
    other.join();
    good += (streams[0] != nullptr) != (streams[1] != nullptr) ? 1 : 0;
    for (FILE* const stream : streams) {
      if (stream != nullptr) {
        EXPECT_TRUE(platform::os::Close(stream));
      }
    }
  }
  return good;
}

TEST_F(ShareMode, OneOfTwoContendersGetsTheFile) {
  EXPECT_EQ(100, RoundsWithOneWinner(path_, kUpdating, 100));
  EXPECT_EQ(50, RoundsWithOneWinner(path_, kCreation, 50));
  EXPECT_EQ(50,
            RoundsWithOneWinner(path_, {"", Mode::kRead, Share::kDenyAll}, 50));
}

}  // namespace
}  // namespace tabwerk::test
