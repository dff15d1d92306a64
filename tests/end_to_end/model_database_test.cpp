// A database and its files judged by the plain model on random operations.
//
// TABWERK_SEED and TABWERK_OPERATIONS as for the tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "platform/platform.h"
#include "tests/support/database_fixture.h"
#include "tests/support/judged_database.h"
#include "tests/support/random_run.h"
#include "tests/support/temp_folder.h"

namespace {

namespace platform = tabwerk::platform;
using tabwerk::test::JudgedDatabase;
using tabwerk::test::Random;
using tabwerk::test::TempFolder;

constexpr int kOperations = 5000;
constexpr int kOperationsPerSequence = 250;
constexpr int kOperationsPerFullState = 50;

class Folder : public tabwerk::test::JudgedFolder {
 public:
  zWString Path(std::string const& name) const override {
    return files_.Path(name);
  }
  std::vector<std::string> Names() const override { return files_.Names(); }
  std::string Read(std::string const& name) const override {
    return files_.ReadBytes(name);
  }
  void Write(std::string const& name, std::string_view bytes) override {
    files_.WriteBytes(name, bytes);
  }
  void Remove(std::string const& name) override {
    std::filesystem::remove(files_.folder() / name);
  }

 private:
  TempFolder files_;
};

class ModelDatabase : public tabwerk::test::DatabaseTest {
 protected:
  ModelDatabase() {
    auto error = platform::Error::kNone;
    stream_ = platform::OpenFile(scratch_.Path("section"),
                                 platform::Mode::kCreateUpdate,
                                 platform::Share::kDenyNone, &error);
  }
  ~ModelDatabase() override { (void)platform::Close(stream_); }

  static bool Run(Random& random, JudgedDatabase* database, int operations) {
    if (!database->Begin()) return false;
    for (int i = 1; i <= operations; ++i) {
      bool const agreed = random.OneIn(25) ? database->DatabaseOperation()
                                           : database->TableOperation();
      if (!agreed) return false;
      if (i % kOperationsPerFullState == 0 && !database->TablesAgree()) {
        return false;
      }
    }
    return database->TablesAgree() && database->DiskAgrees();
  }

  bool RunSequence(std::uint32_t seed, int operations) {
    Random random(seed);
    Folder folder;
    JudgedDatabase database(random, folder, stream_);
    bool const agreed = Run(random, &database, operations);
    EXPECT_TRUE(agreed) << "TABWERK_SEED=" << seed << " "
                        << database.Difference();
    return agreed;
  }

  TempFolder scratch_;
  FILE* stream_ = nullptr;
};

TEST_F(ModelDatabase, AgreesWithTheLibraryOnRandomOperations) {
  ASSERT_NE(nullptr, stream_);
  auto seed = tabwerk::test::FirstSeed();
  int left = tabwerk::test::OperationCount(kOperations);
  for (; left > 0; left -= kOperationsPerSequence, ++seed) {
    if (!RunSequence(seed, std::min(left, kOperationsPerSequence))) return;
  }
}

}  // namespace
