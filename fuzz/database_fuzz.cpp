// Any bytes as a database file: it is refused and left alone, or every value of
// every table can be read, and what is written from them reads the same.
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "DBbase.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/repair.h"

namespace {

using tabwerk::fuzz::AsText;
using tabwerk::fuzz::ContentOfDatabase;
using tabwerk::fuzz::OpenDatabase;
using tabwerk::fuzz::PrivateFolder;
using tabwerk::fuzz::Require;
using tabwerk::fuzz::RequireEqual;

// No text of it can be too long to be written, which ends the process.
constexpr std::size_t kMostWritten = 16'000;

bool WriteCopy() {
  auto const path = PrivateFolder::Get().Path("COPY.db");
  return DBbase::GetDBBaseInstance()->Write(u"FUZZ", false,
                                            zWString::fromUtf8(path));
}

void RequireSameInCopy(std::map<std::string, std::string> const& expected) {
  Require(OpenDatabase(u"FUZZ", {"COPY.db"}, false),
          "what was written can be opened");
  auto const got = ContentOfDatabase();
  Require(got.size() == expected.size(), "all tables were written");
  for (auto const& [name, content] : expected) {
    auto const table = got.find(name);
    Require(table != got.end(), "every table was written");
    RequireEqual(content, table->second, "what was written reads the same");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  auto const& folder = PrivateFolder::Get();
  auto const bytes = AsText({data, size});
  folder.Write("FUZZ.db", bytes);
  if (OpenDatabase(u"FUZZ", {"FUZZ.db"}, false)) {
    auto const content = ContentOfDatabase();
    Require(content == ContentOfDatabase(), "a table reads the same again");
    if (size <= kMostWritten && WriteCopy()) RequireSameInCopy(content);
  }
  tabwerk::fuzz::CloseLibrary();
  auto files = folder.Files();
  Require(files["FUZZ.db"] == bytes, "the file stays as it is");
  folder.Clear();
  return 0;
}

#ifdef TABWERK_FUZZ
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data,
                                               std::size_t size,
                                               std::size_t max_size,
                                               unsigned seed) {
  return tabwerk::fuzz::MutateAndRepair(data, size, max_size, seed,
                                        tabwerk::fuzz::RepairDatabase);
}
#endif
