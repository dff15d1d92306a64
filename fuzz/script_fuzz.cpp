// Any script with the files that it names: it fails and leaves all files as
// they are, or makes one database, which can be opened and read.
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "DBInterpreter.h"
#include "DBbase.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/named_parts.h"

namespace {

namespace fuzz = tabwerk::fuzz;
using fuzz::PrivateFolder;
using fuzz::Require;

using Files = std::map<std::string, std::string>;

// What a save that failed may leave.
bool IsTemporary(std::string const& name) {
  return name.starts_with(PrivateFolder::kTemporary);
}

Files WithoutTemporary(Files files) {
  std::erase_if(files,
                [](auto const& file) { return IsTemporary(file.first); });
  return files;
}

// The names of the files that are new or changed; requires that none is gone.
std::vector<std::string> Changed(Files const& before, Files const& after) {
  for (auto const& [name, content] : before) {
    Require(after.count(name) == 1, "a script removes no file");
  }
  std::vector<std::string> changed;
  for (auto const& [name, content] : after) {
    auto const old = before.find(name);
    if (old == before.end() || old->second != content) changed.push_back(name);
  }
  return changed;
}

void RequireDatabase(std::string const& file) {
  if (!fuzz::OpenDatabase(u"RESULT", {file.c_str()}, false)) {
    // A script without a table makes a file that does not open.
    Require(DBbase::GetDBBaseInstance()->GetDirectory() == nullptr,
            "a database that does not open is gone from the manager");
    return;
  }
  for (auto const& [name, content] : fuzz::ContentOfDatabase()) {
    Require(content != fuzz::kNotLoaded, "all tables of a script can be read");
  }
}

void RunScript() {
  auto const& folder = PrivateFolder::Get();
  auto const before = folder.Files();
  DBbase::Init({u"BEFORE"}, {{u"before.db"}});
  DBInterpreter interpreter;
  int const result = interpreter.ReadScript("D000", zWString(u"1"));
  Require(result >= 0 && result <= 2, "a script has one of three results");
  auto const after = folder.Files();
  if (result == 0) {
    Require(WithoutTemporary(after) == WithoutTemporary(before),
            "a script that fails changes no file");
    return;
  }
  std::vector<zWString> names;
  std::vector<std::vector<zWString>> files;
  DBbase::GetDBBaseInstance()->GetInit(names, files);
  Require(names == std::vector<zWString>{u"BEFORE"} && files.size() == 1 &&
              files[0] == std::vector<zWString>{u"before.db"},
          "a script restores the configuration");
  auto const changed = Changed(before, after);
  Require(changed.size() == 1, "a script makes one file");
  RequireDatabase(changed.front());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  // No text of it can be too long to be written, which ends the process.
  constexpr std::size_t kMostBytes = 16'000;
  if (size > kMostBytes) return 0;
  fuzz::NamedParts const parts(std::string(fuzz::AsText({data, size})));
  auto const& folder = PrivateFolder::Get();
  for (auto const& [name, content] : parts.files) folder.Write(name, content);
  folder.Write("D000", parts.first);
  {
    fuzz::InPrivateFolder const here;
    RunScript();
  }
  fuzz::CloseLibrary();
  folder.Clear();
  return 0;
}
