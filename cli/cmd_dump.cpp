// tabwerk dump: the rows of one file of a table as they are stored.
#include <CLI/CLI.hpp>
#include <string>

#include "DBTabelle.h"
#include "cli/commands.h"
#include "cli/console.h"
#include "cli/files.h"
#include "cli/session.h"

namespace tabwerk::tool {
namespace {

class DumpCommand : public Command {
 public:
  void Declare(CLI::App& app) override {
    AddDatabaseOptions(app, &files_);
    app.add_option("-t,--table", table_, "The table")->required();
    app.add_option("--separator", separator_,
                   "What stands between two values; \";\" otherwise");
    app.add_flag("--user", user_, "The rows of USERFILE, not those of FILE");
    app.footer(
        "Texts stand between double quotes as they are stored, with all\n"
        "languages.  No file is changed.");
  }

  ExitCode Run() override {
    if (user_ && files_.user.empty()) {
      return Report({ExitCode::kUsage, "", "--user needs a USERFILE",
                     "name the user file behind FILE"});
    }
    if (auto const problem = OpenToLook(files_)) return Report(*problem);
    DBTabelle* table = nullptr;
    if (auto const problem = FindTable(files_, table_, &table)) {
      return Report(*problem);
    }
    std::wstring separator = zWString::fromUtf8(separator_).toStdWString();
    if (console::OutTakesUtf8()) {
      return Answer(table->Dump(stdout, separator.data(), user_));
    }
    return DumpThroughFile(*table, separator.data());
  }

 private:
  // The result of a dump is the number of rows and 1.
  ExitCode Answer(int result) const {
    if (result > 0) return ExitCode::kDone;
    return Report({ExitCode::kFile, user_ ? files_.user : files_.main,
                   "there is not enough memory for the dump",
                   "close other programs and try again"});
  }

  // For a console that does not show bytes of UTF-8.
  ExitCode DumpThroughFile(DBTabelle& table, wchar_t* separator) const {
    TemporaryFolder const folder;
    if (folder.path().empty()) return Report(TemporaryFolder::WhyMissing());
    auto const path = folder.path() / "dump.txt";
    std::FILE* const stream = console::OpenStream(path, "wb");
    if (stream == nullptr) return Report(TemporaryFolder::WhyMissing());
    int const result = table.Dump(stream, separator, user_);
    bool const whole = std::fclose(stream) == 0;
    std::string text;
    if (!whole || !ReadWhole(path, &text)) {
      return Report(TemporaryFolder::WhyMissing());
    }
    console::Out(text);
    return Answer(result);
  }

  DatabaseFiles files_;
  std::string table_;
  std::string separator_ = ";";
  bool user_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeDumpCommand() {
  return std::make_unique<DumpCommand>();
}

}  // namespace tabwerk::tool
