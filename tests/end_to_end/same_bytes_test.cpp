// The same input gives the same bytes on every system: what is written here is
// compared with sums that do not depend on the system that the test runs on.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "DBInterpreter.h"
#include "tests/support/database_fixture.h"
#include "tests/support/places.h"

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

// FNV-1a, 64 bits.
std::string SumOf(std::vector<unsigned char> const& bytes) {
  std::uint64_t sum = 0xCBF29CE484222325U;
  for (auto const byte : bytes) sum = (sum ^ byte) * 0x100000001B3U;
  char text[17];
  std::snprintf(text, sizeof text, "%016llx",
                static_cast<unsigned long long>(sum));
  return std::to_string(bytes.size()) + " " + text;
}

class SameBytes : public DatabaseTest {
 protected:
  SameBytes() : before_(fs::current_path()) {
    fs::path const source = ProjectPath("examples/reference");
    for (auto const* name : {"geo.script", "user.script", "territory.dat",
                             "currency.dat", "language.dat", "version.dat"}) {
      fs::copy_file(source / name, Path(name));
    }
    fs::current_path(Path("."));
    for (auto const* script : {"geo.script", "user.script"}) {
      EXPECT_EQ(1, DBInterpreter().ReadScript(script, zWString())) << script;
    }
  }
  ~SameBytes() override { fs::current_path(before_); }

  std::string DatabaseSum(std::string const& name) const {
    auto bytes = Bytes(name);
    for (std::size_t i = 11; i < 19 && i < bytes.size(); ++i) bytes[i] = 0;
    return SumOf(bytes);
  }
  void OpenGeo() const {
    Configure("GEO", {"geo.db", "GEO.UDB"});
    ASSERT_EQ(1, Manager()->Open(W("GEO"), true, false));
  }

 private:
  fs::path before_;
};

TEST_F(SameBytes, OfDatabasesFromTheirScripts) {
  EXPECT_EQ("227337 a82b96be4f011ec1", DatabaseSum("geo.db"));
  EXPECT_EQ("435 a6045ebe2ffc3804", DatabaseSum("GEO.UDB"));
}

TEST_F(SameBytes, OfTheIndex) {
  OpenGeo();
  auto index = Bytes("GEO.idx");
  ASSERT_LT(16U, index.size());
  std::fill(index.begin(), index.begin() + 16, static_cast<unsigned char>(0));
  EXPECT_EQ("17628 abbc102e3396a3e4", SumOf(index));
}

TEST_F(SameBytes, OfADump) {
  OpenGeo();
  FILE* const stream = std::fopen(Path("dump.txt").c_str(), "wb");
  ASSERT_NE(nullptr, stream);
  wchar_t separator[] = L";";
  for (auto const* name : {"TERRITORY", "CURRENCY", "LANGUAGE"}) {
    auto* const table = Table(name);
    EXPECT_EQ(table->GetAnzahlZeilen() + 1,
              table->Dump(stream, separator, false));
  }
  std::fclose(stream);
  EXPECT_EQ("163272 7fe0b53027f3e313", SumOf(Bytes("dump.txt")));
}

}  // namespace
}  // namespace tabwerk::test
