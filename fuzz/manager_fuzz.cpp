// Any sequence of calls on a database of several tables and files: every
// answer, all that is stored and all that lies on the disk are those of the
// plain model.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "platform/platform.h"
#include "tests/support/judged_database.h"

namespace {

namespace fuzz = tabwerk::fuzz;
namespace platform = tabwerk::platform;
using fuzz::PrivateFolder;
using tabwerk::test::JudgedDatabase;
using tabwerk::test::Random;

constexpr int kMostCalls = 60;
constexpr int kCallsPerFullState = 20;
constexpr char kScratch[] = "section";

class Folder : public tabwerk::test::JudgedFolder {
 public:
  zWString Path(std::string const& name) const override {
    return zWString::fromUtf8(files_.Path(name));
  }
  std::vector<std::string> Names() const override {
    std::vector<std::string> names;
    for (auto const& [name, bytes] : files_.Files()) {
      if (name != kScratch) names.push_back(name);
    }
    return names;
  }
  std::string Read(std::string const& name) const override {
    return fuzz::ReadWhole(files_.path() / name);
  }
  void Write(std::string const& name, std::string_view bytes) override {
    files_.Write(name, bytes);
  }
  void Remove(std::string const& name) override { files_.Remove(name); }

 private:
  PrivateFolder const& files_ = PrivateFolder::Get();
};

bool RunCalls(Random& random, JudgedDatabase* database) {
  if (!database->Begin()) return false;
  for (int i = 1; i <= kMostCalls && !random.UsedUp(); ++i) {
    bool const agreed = random.OneIn(6) ? database->DatabaseOperation()
                                        : database->TableOperation();
    if (!agreed) return false;
    if (i % kCallsPerFullState == 0 && !database->TablesAgree()) return false;
  }
  return database->TablesAgree() && database->DiskAgrees();
}

}  // namespace

// The bytes make the choices: files, rows, calls and their arguments.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  Random random(std::span<std::uint8_t const>(data, size));
  Folder folder;
  auto error = platform::Error::kNone;
  FILE* const stream =
      platform::OpenFile(folder.Path(kScratch), platform::Mode::kCreateUpdate,
                         platform::Share::kDenyNone, &error);
  fuzz::Require(stream != nullptr, "the scratch file opens");
  {
    JudgedDatabase database(random, folder, stream);
    bool const agreed = RunCalls(random, &database);
    if (!agreed) std::fprintf(stderr, "%s", database.Difference().c_str());
    fuzz::Require(agreed, "the library does as the plain model does");
  }
  (void)platform::Close(stream);
  fuzz::CloseLibrary();
  PrivateFolder::Get().Clear();
  return 0;
}
