#include "cli/script_scan.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>

#include "DBDirectory.h"
#include "cli/files.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

// The limits and separators of the script reader.
constexpr std::size_t kMaxLineBytes = 4095;
constexpr std::size_t kMaxDataPathBytes = 259;
constexpr std::size_t kMaxDefinitionBytes = 16383;
constexpr std::string_view kKeywordSeparators = " \t\n;";
constexpr std::string_view kKeywordSeparatorsBehindEmptyLine = " \n";
constexpr std::string_view kDatabaseSeparators = " \n;";
constexpr std::string_view kTableSeparators = " \n";
constexpr std::string_view kWordSeparators = " \t\n";

// Lines with their numbers; a line over the limit comes in pieces.
class Lines {
 public:
  explicit Lines(std::string const& content) {
    for (std::size_t i = 0; i < content.size(); ++i) {
      if (content[i] == '\x1A') break;  // Ctrl-Z ends the text
      bool const before_line_feed = content[i] == '\r' &&
                                    i + 1 < content.size() &&
                                    content[i + 1] == '\n';
      if (!before_line_feed) text_ += content[i];
    }
  }

  std::string_view Next() {
    number_ += begins_line_ ? 1 : 0;
    std::string_view const rest = std::string_view(text_).substr(at_);
    std::size_t const line_feed = rest.substr(0, kMaxLineBytes).find('\n');
    bool const whole = line_feed != rest.npos;
    std::size_t const length =
        whole ? line_feed + 1 : std::min(rest.size(), kMaxLineBytes);
    at_ += length;
    begins_line_ = whole;
    at_end_ = !whole && length < kMaxLineBytes;
    std::string_view const line = rest.substr(0, length);
    return line.substr(0, line.find('\0'));
  }
  bool AtEnd() const { return at_end_; }
  std::size_t Number() const { return number_; }

 private:
  std::string text_;
  std::size_t at_ = 0;
  std::size_t number_ = 0;
  bool begins_line_ = true;
  bool at_end_ = false;
};

std::string_view NextWord(std::string_view* line, std::string_view separators) {
  line->remove_prefix(
      std::min(line->find_first_not_of(separators), line->size()));
  std::size_t const length =
      std::min(line->find_first_of(separators), line->size());
  std::string_view const word = line->substr(0, length);
  line->remove_prefix(std::min(length + 1, line->size()));
  return word;
}

bool IsKeyword(std::string_view word) {
  return word == "NEWDATABASE" || word == "NEWTABLE" || word == "TABLEDATA";
}

class Scanner {
 public:
  Scanner(std::string const& script, std::string const& content)
      : script_(script), lines_(content) {}

  ScriptScan Run();

 private:
  Problem At(std::size_t line, std::string what, std::string advice,
             ExitCode code = ExitCode::kFindings) const {
    return {code, script_ + ":" + std::to_string(line), std::move(what),
            std::move(advice)};
  }
  bool Fail(std::string what, std::string advice,
            ExitCode code = ExitCode::kFindings) {
    scan_.failure =
        At(lines_.Number(), std::move(what), std::move(advice), code);
    return false;
  }

  // Each is false at a statement that fails.
  bool Statement(std::string_view keyword, std::string_view rest);
  bool NewDatabase(std::string_view rest);
  bool NewTable(std::string_view rest);
  bool Definition(std::string const& table);
  bool TableData(std::string_view rest);
  void NoteUnexecuted(std::string_view keyword);

  std::string const& script_;
  Lines lines_;
  ScriptScan scan_;
  bool has_database_ = false;
  std::set<std::string, std::less<>> tables_;
};

ScriptScan Scanner::Run() {
  bool sound = true;
  while (sound && !lines_.AtEnd()) {
    std::string_view line = lines_.Next();
    std::string_view keyword = NextWord(&line, kKeywordSeparators);
    while (keyword.empty() && !lines_.AtEnd()) {
      line = lines_.Next();
      keyword = NextWord(&line, kKeywordSeparatorsBehindEmptyLine);
    }
    if (lines_.AtEnd()) {
      NoteUnexecuted(keyword);
      break;
    }
    sound = Statement(keyword, line);
  }
  if (sound && !has_database_) {
    scan_.failure = Problem{ExitCode::kFindings, script_,
                            "there is no statement NEWDATABASE",
                            "begin it with \"NEWDATABASE name file\""};
  }
  return scan_;
}

void Scanner::NoteUnexecuted(std::string_view keyword) {
  if (!IsKeyword(keyword)) return;
  scan_.remarks.push_back(
      At(lines_.Number(),
         "the last line is not carried out, because no line feed ends it",
         "end the line"));
}

bool Scanner::Statement(std::string_view keyword, std::string_view rest) {
  if (keyword == "NEWDATABASE") return NewDatabase(rest);
  if (keyword == "NEWTABLE") return NewTable(rest);
  if (keyword == "TABLEDATA") return TableData(rest);
  return true;
}

bool Scanner::NewDatabase(std::string_view rest) {
  NextWord(&rest, kDatabaseSeparators);
  std::string const file(NextWord(&rest, kDatabaseSeparators));
  if (file.empty()) {
    return Fail("NEWDATABASE needs a name and a file",
                "write \"NEWDATABASE name file\"");
  }
  scan_.database_file = NameToUtf8(file.c_str());
  has_database_ = true;
  tables_.clear();
  return true;
}

bool Scanner::NewTable(std::string_view rest) {
  std::string const table(NextWord(&rest, kTableSeparators));
  if (!has_database_) {
    return Fail("NEWTABLE stands before NEWDATABASE",
                "begin the script with \"NEWDATABASE name file\"");
  }
  if (table.empty()) {
    return Fail("NEWTABLE needs a name", "write \"NEWTABLE name\"");
  }
  if (table.size() >= DBDirEntry::kNameSize) {
    return Fail("the name of the table is too long",
                "use no more than 63 characters");
  }
  if (!tables_.insert(table).second) {
    return Fail("there is already a table " + NameToUtf8(table.c_str()),
                "give this one another name");
  }
  return Definition(table);
}

bool Scanner::Definition(std::string const& table) {
  std::size_t const begin = lines_.Number();
  std::size_t length = 0;
  for (;;) {
    std::string_view line = lines_.Next();
    std::string_view const name = NextWord(&line, kWordSeparators);
    if (name == "ENDDEF") return true;
    std::string_view const type = NextWord(&line, kWordSeparators);
    if (type.empty() && lines_.AtEnd()) {
      scan_.failure = At(begin,
                         "the definition of table " +
                             NameToUtf8(table.c_str()) + " does not end",
                         "put a line \"ENDDEF\" behind its columns");
      return false;
    }
    if (type.empty()) {
      return Fail(name.empty() ? "an empty line inside a definition"
                               : "a column needs a name and a type",
                  "write \"name type\", or end the definition with "
                  "\"ENDDEF\"");
    }
    length += name.size() + type.size() + 3;
    if (length > kMaxDefinitionBytes) {
      return Fail("the definition is too long",
                  "use fewer columns, or shorter names");
    }
  }
}

bool Scanner::TableData(std::string_view rest) {
  NextWord(&rest, kWordSeparators);
  std::string const path(NextWord(&rest, kWordSeparators));
  if (path.empty()) {
    return Fail("TABLEDATA needs a table and a file",
                "write \"TABLEDATA table file\"");
  }
  if (path.size() > kMaxDataPathBytes) {
    return Fail("the path of the data file is too long",
                "use no more than 259 bytes");
  }
  if (tables_.empty()) {
    return Fail("TABLEDATA stands before NEWTABLE",
                "define the table first; the data go into the last one");
  }
  std::error_code error;
  if (!std::filesystem::exists(ToPath(path), error)) {
    return Fail("there is no data file \"" + path + "\"",
                "paths are relative to the current folder; see the option -C",
                ExitCode::kFile);
  }
  if (!std::filesystem::is_regular_file(ToPath(path), error)) {
    return Fail("the data file \"" + path + "\" is no file",
                "name a file of table data", ExitCode::kFile);
  }
  return true;
}

}  // namespace

ScriptScan ScanScript(std::string const& script, std::string const& content) {
  return Scanner(script, content).Run();
}

}  // namespace tabwerk::tool
