#include "cli/script_scan.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>

#include "DBDirectory.h"
#include "cli/files.h"
#include "cli/text.h"
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
    current_ = line.substr(0, line.find('\0'));
    return current_;
  }
  std::string_view Current() const { return current_; }
  // Offset behind a part of the text.
  std::size_t EndOf(std::string_view part) const {
    return static_cast<std::size_t>(part.data() - text_.data()) + part.size();
  }
  std::string const& Text() const { return text_; }
  bool AtEnd() const { return at_end_; }
  std::size_t Number() const { return number_; }

 private:
  std::string text_;
  std::string_view current_;
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

// A script is 8-bit text, and most are UTF-8 to those who write them.
std::string TextToUtf8(std::string_view bytes) {
  std::string const text = zWString::fromUtf8(bytes).toUtf8();
  return text == bytes ? text : zWString::fromLatin1(bytes).toUtf8();
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
  // word is a part of the current line; what is meant in it.  Without one,
  // it is the end of the line.
  Place At(std::string_view word = {}) const;
  bool Fail(Code code, Place where, std::string what, std::string advice) {
    scan_.failure =
        Problem{code, std::move(where), std::move(what), std::move(advice)};
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
  std::string_view keyword_;  // of the current statement
  bool has_database_ = false;
  std::set<std::string, std::less<>> tables_;
};

Place Scanner::At(std::string_view word) const {
  std::string_view line = lines_.Current();
  line = line.substr(0, line.find_last_not_of(" \t\n") + 1);
  std::size_t const before =
      word.empty() ? line.size()
                   : static_cast<std::size_t>(word.data() - line.data());
  Place place(script_, lines_.Number(),
              CharacterCount(TextToUtf8(line.substr(0, before))) + 1);
  place.source = TextToUtf8(line);
  place.length = std::max<std::size_t>(1, CharacterCount(TextToUtf8(word)));
  return place;
}

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
    scan_.failure =
        Problem{TW(215), script_, "there is no statement NEWDATABASE",
                "begin it with \"NEWDATABASE name file\""};
  }
  scan_.text = lines_.Text();
  return scan_;
}

void Scanner::NoteUnexecuted(std::string_view keyword) {
  if (!IsKeyword(keyword)) return;
  scan_.remarks.push_back(
      {TW(216), At(),
       "the last line is not carried out, because no line feed ends it",
       "end the line"});
}

bool Scanner::Statement(std::string_view keyword, std::string_view rest) {
  keyword_ = keyword;
  if (keyword == "NEWDATABASE") return NewDatabase(rest);
  if (keyword == "NEWTABLE") return NewTable(rest);
  if (keyword == "TABLEDATA") return TableData(rest);
  return true;
}

bool Scanner::NewDatabase(std::string_view rest) {
  std::string const name(NextWord(&rest, kDatabaseSeparators));
  std::string_view const word = NextWord(&rest, kDatabaseSeparators);
  std::string const file(word);
  if (file.empty()) {
    return Fail(TW(201), At(), "NEWDATABASE needs a name and a file",
                "write \"NEWDATABASE name file\"");
  }
  scan_.databases.push_back(
      {NameToUtf8(name.c_str()), NameToUtf8(file.c_str()), lines_.EndOf(word)});
  has_database_ = true;
  tables_.clear();
  return true;
}

bool Scanner::NewTable(std::string_view rest) {
  std::string_view const table_word = NextWord(&rest, kTableSeparators);
  std::string const table(table_word);
  if (!has_database_) {
    return Fail(TW(202), At(keyword_), "NEWTABLE stands before NEWDATABASE",
                "begin the script with \"NEWDATABASE name file\"");
  }
  if (table.empty()) {
    return Fail(TW(203), At(), "NEWTABLE needs a name",
                "write \"NEWTABLE name\"");
  }
  if (table.size() >= DBDirEntry::kNameSize) {
    return Fail(TW(204), At(table_word), "the name of the table is too long",
                "use no more than 63 characters");
  }
  if (!tables_.insert(table).second) {
    return Fail(TW(205), At(table_word),
                "there is already a table " + NameToUtf8(table.c_str()),
                "give this one another name");
  }
  return Definition(table);
}

bool Scanner::Definition(std::string const& table) {
  Place const begin = At(keyword_);
  std::size_t length = 0;
  for (;;) {
    std::string_view line = lines_.Next();
    std::string_view const name = NextWord(&line, kWordSeparators);
    if (name == "ENDDEF") return true;
    std::string_view const type = NextWord(&line, kWordSeparators);
    if (type.empty() && lines_.AtEnd()) {
      return Fail(TW(206), begin,
                  "the definition of table " + NameToUtf8(table.c_str()) +
                      " does not end",
                  "put a line \"ENDDEF\" behind its columns");
    }
    if (type.empty()) {
      constexpr char kAdvice[] =
          "write \"name type\", or end the definition with \"ENDDEF\"";
      if (name.empty()) {
        return Fail(TW(208), At(), "an empty line inside a definition",
                    kAdvice);
      }
      return Fail(TW(207), At(), "a column needs a name and a type", kAdvice);
    }
    length += name.size() + type.size() + 3;
    if (length > kMaxDefinitionBytes) {
      return Fail(TW(209), At(name), "the definition is too long",
                  "use fewer columns, or shorter names");
    }
  }
}

bool Scanner::TableData(std::string_view rest) {
  NextWord(&rest, kWordSeparators);
  std::string_view const path_word = NextWord(&rest, kWordSeparators);
  std::string const path(path_word);
  if (path.empty()) {
    return Fail(TW(210), At(), "TABLEDATA needs a table and a file",
                "write \"TABLEDATA table file\"");
  }
  if (path.size() > kMaxDataPathBytes) {
    return Fail(TW(211), At(path_word), "the path of the data file is too long",
                "use no more than 259 bytes");
  }
  if (tables_.empty()) {
    return Fail(TW(212), At(keyword_), "TABLEDATA stands before NEWTABLE",
                "define the table first; the data go into the last one");
  }
  std::error_code error;
  if (!std::filesystem::exists(ToPath(path), error)) {
    return Fail(TW(213), At(path_word),
                "there is no data file \"" + path + "\"",
                "paths are relative to the current folder; see the option -C");
  }
  if (!std::filesystem::is_regular_file(ToPath(path), error)) {
    return Fail(TW(214), At(path_word),
                "the data file \"" + path + "\" is no file",
                "name a file of table data");
  }
  return true;
}

}  // namespace

std::string ScriptScan::DatabaseFile() const {
  return databases.empty() ? "" : databases.back().file;
}

std::string ScriptScan::WithEnding(std::string const& ending) const {
  std::string script = text;
  for (auto it = databases.rbegin(); it != databases.rend(); ++it) {
    script.insert(it->file_end, ending);
  }
  return script;
}

ScriptScan ScanScript(std::string const& script, std::string const& content) {
  return Scanner(script, content).Run();
}

}  // namespace tabwerk::tool
