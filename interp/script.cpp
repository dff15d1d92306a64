// The entry to script runs.
#include <memory>
#include <string>
#include <utility>

#include "DBInterpreter.h"
#include "DBbase.h"
#include "base/manager_access.h"
#include "interp/script_reader.h"
#include "interp/script_run.h"
#include "platform/guarded.h"

using tabwerk::Configuration;
using tabwerk::Guarded;
using tabwerk::ManagerAccess;
using tabwerk::ScriptReader;
using tabwerk::ScriptRun;

namespace {

constexpr int kFailed = 0;
constexpr int kWritten = 1;
constexpr int kWrittenOtherVersion = 2;

// What a written script reports.  Kept: only scripts of this name report that
// their version is not the expected one.
int WrittenResult(zWString const& script_name, zWString const& read_version,
                  zWString const& expected_version) {
  bool const same = read_version.toLatin1() == expected_version.toLatin1();
  return !same && script_name == zWString(u"D000") ? kWrittenOtherVersion
                                                   : kWritten;
}

// The file name of a path, without folder and extension.  Separators are ASCII
// in UTF-8 as in every 8-bit encoding, and so is the one name that counts.
zWString BaseName(std::string const& path) {
  return zSplitPath(zWString::fromUtf8(path)).GetFileName();
}

}  // namespace

int DBInterpreter::ReadScript(char const* path, zWString expectedVersion) {
  if (path == nullptr) return kFailed;
  return Guarded(kFailed, [&] {
    // A copy: the path may lie in what the run deletes.
    std::string const script_path(path);
    DBbase* const manager = DBbase::GetDBBaseInstance();
    if (manager == nullptr) return kFailed;
    // Not by GetInit, which does not tell when there is no memory for it.
    Configuration const before{ManagerAccess::Names(*manager),
                               ManagerAccess::Files(*manager)};
    std::unique_ptr<ScriptReader> script =
        ScriptReader::Open(script_path.c_str());
    if (script == nullptr) return kFailed;
    static_cast<void>(manager->Close(zWString()));
    table_ = nullptr;

    ScriptRun run(*this);
    bool const complete = Guarded(false, [&] { return run.Execute(*script); });
    script.reset();
    if (!complete) {
      run.Abandon();
      return kFailed;
    }
    int const result = WrittenResult(BaseName(script_path), run.ReadVersion(),
                                     expectedVersion);
    return run.Write(before) ? result : kFailed;
  });
}
