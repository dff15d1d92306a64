#include "cli/script_scan.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "DBDirectory.h"
#include "cli/files.h"
#include "cli/script_context.h"
#include "cli/script_definition.h"
#include "cli/script_files.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

// The limits and separators of the script reader.
constexpr std::size_t kMaxDataPathBytes = 259;
constexpr std::string_view kKeywordSeparators = " \t\n;";
constexpr std::string_view kKeywordSeparatorsBehindEmptyLine = " \n";
constexpr std::string_view kDatabaseSeparators = " \n;";
constexpr std::string_view kTableSeparators = " \n";
constexpr std::string_view kWordSeparators = " \t\n";

class Scanner {
 public:
  Scanner(std::string const& script, std::string const& content)
      : script_(script), context_(script, content) {}

  ScriptScan Run();

 private:
  bool NextStatement(std::string_view* keyword, std::string_view* rest);
  void CheckHidden(std::string_view line, std::string_view keyword);
  void CheckLastLine(std::string_view keyword);
  void CheckEnd();

  void Statement(std::string_view rest);
  void CheckUnknown();
  void NewDatabase(std::string_view rest);
  void CheckDatabaseName(std::string_view name);
  void CheckForgotten();
  void NewTable(std::string_view rest);
  void CheckTableName(std::string_view name);
  void TableData(std::string_view rest);
  bool CheckDataPath(std::string_view path);
  void CheckTableWord(std::string_view word);

  ScriptLines const& Lines() const { return context_.lines(); }
  ScriptScan& Scan() { return context_.scan(); }

  std::string const& script_;
  ScriptContext context_;
  std::string_view keyword_;  // of the current statement
  // The current line is yet to be taken for a statement.
  bool is_line_unused_ = false;
  bool has_database_ = false;
  bool has_table_ = false;  // of the current database
  std::set<std::string, std::less<>> names_;
};

ScriptScan Scanner::Run() {
  std::string_view rest;
  while (!Lines().AtEnd() && NextStatement(&keyword_, &rest)) {
    Statement(rest);
  }
  CheckEnd();
  Scan().text = Lines().Text();
  return std::move(Scan());
}

// False at the end of the script, also in a last line that is not carried out.
bool Scanner::NextStatement(std::string_view* keyword, std::string_view* rest) {
  *rest = std::exchange(is_line_unused_, false) ? Lines().Current()
                                                : context_.Next();
  *keyword = NextWord(rest, kKeywordSeparators);
  while (keyword->empty() && !Lines().AtEnd()) {
    *rest = context_.Next();
    std::string_view const line = *rest;
    *keyword = NextWord(rest, kKeywordSeparatorsBehindEmptyLine);
    CheckHidden(line, *keyword);
  }
  if (!Lines().AtEnd()) return true;
  CheckLastLine(*keyword);
  return false;
}

void Scanner::CheckHidden(std::string_view line, std::string_view keyword) {
  std::string_view const word = NextWord(&line, kKeywordSeparators);
  if (!IsKeyword(word) || IsKeyword(keyword)) return;
  context_.Warn(TW(233), Lines().At(word),
                "the statement is not carried out: behind an empty line only "
                "blanks may stand around its keyword",
                "put blanks in place of the tab or \";\", or take the empty "
                "line out");
}

void Scanner::CheckLastLine(std::string_view keyword) {
  if (!IsKeyword(keyword)) return;
  context_.Warn(TW(216), Lines().At(),
                "the last line is not carried out, because no line feed ends "
                "it",
                "end the line");
}

void Scanner::CheckEnd() {
  if (Lines().HasHiddenRest()) {
    context_.Warn(TW(236), Lines().AtTextEnd(),
                  "the script ends at the Ctrl-Z here; what follows is not "
                  "read",
                  "take the character out");
  }
  if (!has_database_) {
    context_.Error(TW(215), script_, "there is no statement NEWDATABASE",
                   "begin it with \"NEWDATABASE name file\"");
  } else if (!has_table_ && !Scan().databases.empty()) {
    context_.Warn(TW(240), Scan().databases.back().where,
                  "the database has no tables, so it cannot be opened",
                  "define them with NEWTABLE");
  }
}

void Scanner::Statement(std::string_view rest) {
  if (keyword_ == "NEWDATABASE") {
    NewDatabase(rest);
  } else if (keyword_ == "NEWTABLE") {
    NewTable(rest);
  } else if (keyword_ == "TABLEDATA") {
    TableData(rest);
  } else {
    CheckUnknown();
  }
}

void Scanner::CheckUnknown() {
  if (keyword_ == "ENDDEF") {
    context_.Note(TW(234), Lines().At(keyword_),
                  "ENDDEF stands outside a definition and is not read",
                  "take it out, or see whether a definition ends too early");
    return;
  }
  std::string_view const similar = SimilarKeyword(keyword_);
  if (similar.empty()) return;
  context_.Note(TW(234), Lines().At(keyword_),
                "the line is not read: " + Quoted(keyword_) +
                    " is no keyword, but looks like " + std::string(similar),
                "write " + std::string(similar) + " if that is meant");
}

void Scanner::NewDatabase(std::string_view rest) {
  std::string_view const name = NextWord(&rest, kDatabaseSeparators);
  std::string_view const file = NextWord(&rest, kDatabaseSeparators);
  CheckForgotten();
  has_database_ = true;
  has_table_ = false;
  names_.clear();
  if (file.empty()) {
    context_.Error(TW(201), Lines().At(), "NEWDATABASE needs a name and a file",
                   "write \"NEWDATABASE name file\"");
    return;
  }
  CheckDatabaseName(name);
  context_.CheckCharacters(file);
  context_.CheckEncoding(file);
  context_.CheckRest(rest);
  std::string const path = NameToUtf8(std::string(file).c_str());
  if (auto problem = WhyNotReplaced(path)) {
    context_.Error(problem->code, Lines().At(file), path + ": " + problem->what,
                   problem->advice);
  }
  Scan().databases.push_back({NameToUtf8(std::string(name).c_str()), path,
                              Lines().EndOf(file), Lines().At(file)});
}

void Scanner::CheckForgotten() {
  if (!has_database_ || Scan().databases.empty()) return;
  context_.Warn(TW(223), Lines().At(keyword_),
                "the database " + Scan().databases.back().file +
                    " before this one is forgotten and not written",
                "make one script for each database");
}

void Scanner::CheckDatabaseName(std::string_view name) {
  context_.CheckCharacters(name);
  context_.CheckEncoding(name);
  std::string_view const stem = name.substr(0, name.find('.'));
  if (stem.empty()) {
    context_.Error(TW(222), Lines().At(name),
                   "the name of the database is empty before its \".\", which "
                   "keeps it from being written",
                   "use a plain word");
    return;
  }
  zWString const wide = zWString::fromLatin1(stem);
  zWString const known = wide.ToUpper();
  if (stem.size() < name.size()) {
    context_.Warn(TW(221), Lines().At(name),
                  "the database is called " + known.toUtf8() +
                      ": its name ends before the \".\"",
                  "write the name without it");
  } else if (known != wide) {
    context_.Warn(
        TW(220), Lines().At(name),
        "the database is called " + known.toUtf8() + ", in capital letters",
        "write " + known.toUtf8());
  }
}

void Scanner::NewTable(std::string_view rest) {
  std::string_view const name = NextWord(&rest, kTableSeparators);
  if (!has_database_) {
    context_.Error(TW(202), Lines().At(keyword_),
                   "NEWTABLE stands before NEWDATABASE",
                   "begin the script with \"NEWDATABASE name file\"");
    has_database_ = true;  // once is enough
  }
  CheckTableName(name);
  if (!name.empty()) context_.CheckRest(rest);
  has_table_ = true;
  ScriptTable table;
  table.name = name;
  Place const where = Lines().At(name.empty() ? keyword_ : name);
  is_line_unused_ = !DefinitionScan(context_, keyword_).Run(&table);
  if (table.is_sound && table.definition.GetMemorySize() == 0) {
    context_.Warn(TW(241), where,
                  "the table has no column that can hold a value, so it takes "
                  "no rows",
                  "give it a column of type integer, real or string");
  }
  Scan().tables.push_back(std::move(table));
}

void Scanner::CheckTableName(std::string_view name) {
  if (name.empty()) {
    context_.Error(TW(203), Lines().At(), "NEWTABLE needs a name",
                   "write \"NEWTABLE name\"");
    return;
  }
  context_.CheckCharacters(name);
  context_.CheckEncoding(name);
  if (name.size() >= DBDirEntry::kNameSize) {
    context_.Error(TW(204), Lines().At(name),
                   "the name of the table is too long",
                   "use no more than 63 characters");
  } else if (!names_.insert(std::string(name)).second) {
    context_.Error(TW(205), Lines().At(name),
                   "there is already a table " + ScriptToUtf8(name),
                   "give this one another name");
  }
}

void Scanner::TableData(std::string_view rest) {
  std::string_view const word = NextWord(&rest, kWordSeparators);
  std::string_view const path = NextWord(&rest, kWordSeparators);
  if (path.empty()) {
    context_.Error(TW(210), Lines().At(), "TABLEDATA needs a table and a file",
                   "write \"TABLEDATA table file\"");
    return;
  }
  if (!has_table_) {
    context_.Error(TW(212), Lines().At(keyword_),
                   "TABLEDATA stands before NEWTABLE",
                   "define the table first; the data go into the last one");
  } else {
    CheckTableWord(word);
  }
  context_.CheckRest(rest);
  if (!CheckDataPath(path) || !has_table_) return;
  Scan().data.push_back(
      {Scan().tables.size() - 1, std::string(path), Scan().findings.size()});
}

// True when it can be read.
bool Scanner::CheckDataPath(std::string_view path) {
  context_.CheckCharacters(path);
  if (path.size() > kMaxDataPathBytes) {
    context_.Error(TW(211), Lines().At(path),
                   "the path of the data file is too long",
                   "use no more than 259 bytes");
    return false;
  }
  if (!IsUtf8(path)) {
    context_.Warn(TW(239), Lines().At(path),
                  "the path is not UTF-8, so it is not the same file on every "
                  "system",
                  "use ASCII letters only, or write it in UTF-8");
  }
  auto const problem = WhyNotReadable(std::string(path));
  if (!problem) return true;
  context_.Error(problem->code, Lines().At(path), problem->what,
                 problem->advice);
  return false;
}

void Scanner::CheckTableWord(std::string_view word) {
  std::string const& table = Scan().tables.back().name;
  if (word != table) {
    context_.Warn(TW(224), Lines().At(word),
                  "the data go into the table " + ScriptToUtf8(table) +
                      ", which was defined last, not into " +
                      ScriptToUtf8(word),
                  "put the statement behind the definition of its table");
  }
  if (word == kVersionTable) {
    context_.Warn(TW(225), Lines().At(word),
                  "the word VERSION lets the file be read twice, so every row "
                  "of it is in the table " +
                      ScriptToUtf8(table) + " twice",
                  "leave it so if the version is compared; else give table and "
                  "word another name");
  }
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

Problem const* ScriptScan::Failure() const {
  auto const error = std::find_if(findings.begin(), findings.end(),
                                  [](ScriptFinding const& finding) {
                                    return finding.severity == Severity::kError;
                                  });
  return error != findings.end() ? &error->problem : nullptr;
}

ScriptScan ScanScript(std::string const& script, std::string const& content) {
  return Scanner(script, content).Run();
}

}  // namespace tabwerk::tool
