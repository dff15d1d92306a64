#include "cli/export_tables.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <string_view>
#include <utility>

#include "DBDirectory.h"
#include "DBTabelle.h"
#include "DBbase.h"
#include "cli/database_file.h"
#include "cli/files.h"
#include "cli/import_rows.h"
#include "cli/progress.h"
#include "cli/script_lines.h"
#include "cli/session.h"
#include "cli/table_data_text.h"
#include "cli/table_list.h"
#include "cli/text.h"
#include "cli/translated_text.h"
#include "schema/container.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

constexpr short kCurrentVersion = 2025;

bool IsAsciiWord(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char it) {
    auto const byte = static_cast<unsigned char>(it);
    return byte < 0x80 && (std::isalnum(byte) != 0 || it == '_' || it == '-');
  });
}

std::string Lower(std::string text) {
  for (char& it : text) {
    if (it >= 'A' && it <= 'Z') it = static_cast<char>(it - 'A' + 'a');
  }
  return text;
}

// A word of a script: what ends it cannot stand in it.
bool IsScriptWord(std::string_view name, std::string_view separators) {
  return !name.empty() && name.find_first_of(separators) == name.npos &&
         name.find('\x1A') == name.npos && !name.ends_with('\r');
}

// One table on its way into the script and a data file.
class TableExport {
 public:
  TableExport(std::string const& path, DBTabelle& table,
              ExportRefusals* refusals)
      : path_(path),
        table_(table),
        entry_(*table.GetDirEntry(false)),
        refusals_(*refusals) {}

  // The lines of the script that define it.
  std::string Definition();
  // The rows as table data; false when one was refused.
  bool Rows(std::vector<std::u16string>* lines);

 private:
  std::string Name() const { return NameToUtf8(entry_.GetName()); }
  void Refuse(Code code, std::string const& what, std::string const& advice) {
    refusals_.Add({code, path_, "table " + Name() + what, advice});
  }
  bool ColumnsTakeRows();
  std::vector<DataValue> Values(DataObjection* objection);
  DataValue Value(DBFeld const& field, bool* sound);
  void RefuseRow(long row, DataObjection const& objection);

  std::string const& path_;
  DBTabelle& table_;
  DBDirEntry& entry_;
  ExportRefusals& refusals_;
};

std::string TableExport::Definition() {
  std::string const name = entry_.GetName();
  constexpr char kNameAdvice[] =
      "names in a script are words; give it another name";
  if (!IsScriptWord(name, " \n")) {
    Refuse(TW(151), ": its name is no word", kNameAdvice);
  }
  std::string lines = "NEWTABLE " + name + "\n";
  std::string text;
  DBDefinition const& definition = *entry_.GetDefinition();
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    std::string const column = field->name;
    if (!IsScriptWord(column, " \t\n") || column == kEndOfDefinition) {
      Refuse(TW(151),
             ", column \"" + Escape(NameToUtf8(field->name)) +
                 "\": its name is no word of a definition",
             kNameAdvice);
    }
    lines += column + " " + TypeName(field->type) + "\n";
    text += (text.empty() ? "" : ", ") + std::string(TypeName(field->type)) +
            " " + column;
  }
  std::string stored;
  std::string read_back;
  bool const same =
      text.size() + 1 < format::kMaxDefinition &&
      tabwerk::StoredText(definition, &stored) &&
      tabwerk::StoredText(DBDefinition((text + "\n").c_str()), &read_back) &&
      stored == read_back;
  if (!same) {
    Refuse(TW(151), ": its definition would not read back", kNameAdvice);
  }
  return lines + std::string(kEndOfDefinition) + "\n";
}

// Values go into the first column of a name, and none into one without a type.
bool TableExport::ColumnsTakeRows() {
  std::set<std::string> names;
  bool sound = true;
  for (DBFeld const* field = entry_.GetDefinition()->GetDefinition();
       field != nullptr; field = field->next) {
    std::string const column = ", column " + NameToUtf8(field->name);
    if (field->type == DBTypeUnknown) {
      Refuse(TW(153), column + ": it has no type, so that no row gets past it",
             "give the column a type, or remove it");
      sound = false;
    }
    if (!names.insert(field->name).second) {
      Refuse(TW(153), column + ": another column has its name",
             "values go into the first one; rename the second");
      sound = false;
    }
  }
  return sound;
}

bool TableExport::Rows(std::vector<std::u16string>* lines) {
  long const count = table_.GetAnzahlZeilen();
  if (count > 0 && !ColumnsTakeRows()) return false;
  Progress progress("exporting " + Name(), count, "rows");
  DataLineWriter writer;
  bool sound = true;
  for (long row = 0; row < count; ++row) {
    table_.SelectZeile(row);
    DataObjection objection{};
    auto const values = Values(&objection);
    auto line = values.empty() ? std::nullopt : writer.Line(values, &objection);
    if (line) {
      lines->push_back(std::move(*line));
    } else {
      RefuseRow(row, objection);
      sound = false;
    }
    progress.Advance(row + 1);
  }
  return sound;
}

// The values of the current row; none when one cannot be written.
std::vector<DataValue> TableExport::Values(DataObjection* objection) {
  std::vector<DataValue> values;
  for (DBFeld const* field = entry_.GetDefinition()->GetDefinition();
       field != nullptr; field = field->next) {
    bool sound = table_.SelectColumn(field->name) == 1;
    values.push_back(Value(*field, &sound));
    if (sound) continue;
    bool const is_text = field->type == DBTypeString;
    *objection = {
        is_text ? TW(614) : TW(613), values.size() - 1,
        is_text ? "its text lies outside the file's texts"
                : "it holds a not-a-number that no text stands for",
        is_text ? "restore the file from a backup" : "store a number instead"};
    return {};
  }
  return values;
}

DataValue TableExport::Value(DBFeld const& field, bool* sound) {
  if (field.type == DBTypeString) {
    zWString text;
    *sound = *sound && table_.GetWert(text) == 1;
    return {true, std::u16string(text.view())};
  }
  if (field.type == DBTypeReal) {
    double value = 0;
    *sound = *sound && table_.GetWert(value) == 1;
    auto text = RealText(value);
    *sound = *sound && text.has_value();
    return {false, text.value_or(u"")};
  }
  long value = 0;
  *sound = *sound && table_.GetWert(value) == 1;
  std::string const digits = std::to_string(value);
  return {false, std::u16string(digits.begin(), digits.end())};
}

void TableExport::RefuseRow(long row, DataObjection const& objection) {
  std::string place = ", row " + std::to_string(row);
  long id = 0;
  if (table_.SelectColumn("ID") == 1 && table_.GetWert(id) == 1) {
    place += " (ID " + std::to_string(id) + ")";
  }
  std::size_t column = 0;
  for (DBFeld const* field = entry_.GetDefinition()->GetDefinition();
       field != nullptr; field = field->next) {
    if (column++ == objection.column) {
      place += ", column " + NameToUtf8(field->name);
    }
  }
  Refuse(objection.code, place + ": " + objection.what, objection.advice);
}

std::string DataBytes(std::vector<std::u16string> const& lines,
                      std::size_t count) {
  std::u16string text;
  for (std::size_t i = 0; i < count; ++i) text.append(lines[i]).append(u"\n");
  return EncodeUnits(text, true);
}

// Puts the files of a database together.
class DatabaseExport {
 public:
  DatabaseExport(std::string const& path, std::string base,
                 ExportedDatabase* exported, ExportRefusals* refusals)
      : path_(path),
        base_(std::move(base)),
        exported_(*exported),
        refusals_(*refusals) {}

  std::optional<Problem> Run(DatabaseFile const& file);

 private:
  std::optional<Problem> AddTable(TableSummary const& summary);
  std::string DataFile(std::string const& table);
  std::string DataStatement(std::string const& table,
                            std::vector<std::u16string> const& lines);

  std::string const& path_;
  std::string base_;
  std::string script_;
  std::set<std::string> names_;  // of tables
  std::set<std::string> file_names_;
  ExportedDatabase& exported_;
  ExportRefusals& refusals_;
};

std::optional<Problem> DatabaseExport::Run(DatabaseFile const& file) {
  std::string const name = ToUtf8(ToPath(path_).filename());
  std::string const stem = ToUtf8(ToPath(path_).stem());
  std::string const extension = ToUtf8(ToPath(path_).extension());
  bool const is_plain =
      IsAsciiWord(stem) &&
      (extension.empty() || IsAsciiWord(std::string_view(extension).substr(1)));
  exported_.database_file = is_plain            ? name
                            : IsUserFile(path_) ? "DATABASE.UDB"
                                                : "database.db";
  std::string const database = DatabaseFiles{path_, "", ""}.DatabaseName();
  script_ = "NEWDATABASE " + (is_plain ? database : "DATABASE") + " " +
            exported_.database_file + "\n";
  exported_.files.push_back({base_ + ".script", ""});
  for (TableSummary const& table : file.tables) {
    if (!names_.insert(table.name).second) {
      refusals_.Add({TW(151), path_,
                     "table " + table.name + ": another table has its name",
                     "a script makes a table of a name once; rename one"});
      continue;
    }
    if (auto problem = AddTable(table)) return problem;
    exported_.row_count += table.row_count;
    ++exported_.table_count;
  }
  exported_.files.front().content = script_;
  return std::nullopt;
}

std::optional<Problem> DatabaseExport::AddTable(TableSummary const& summary) {
  DBTabelle* table = nullptr;
  if (auto problem = FindTable({path_, "", ""}, summary.name, &table)) {
    return problem;
  }
  TableExport table_export(path_, *table, &refusals_);
  script_ += "\n" + table_export.Definition();
  std::vector<std::u16string> lines;
  if (!table_export.Rows(&lines) || lines.empty()) return std::nullopt;
  script_ += DataStatement(table->GetDirEntry(false)->GetName(), lines);
  return std::nullopt;
}

// The data goes into the table above it, whatever the word that follows; but
// the word VERSION has it read twice.
std::string DatabaseExport::DataStatement(
    std::string const& table, std::vector<std::u16string> const& lines) {
  std::string const file = DataFile(table);
  std::size_t count = lines.size();
  std::string word = IsAsciiWord(table) ? table : "ROWS";
  if (word == kVersionTable) {
    auto const middle = static_cast<std::ptrdiff_t>(count / 2);
    bool const is_twice =
        count % 2 == 0 && std::equal(lines.begin(), lines.begin() + middle,
                                     lines.begin() + middle, lines.end());
    if (is_twice) {
      count /= 2;
    } else {
      word = "ROWS";
    }
  }
  exported_.files.push_back({file, DataBytes(lines, count)});
  return "TABLEDATA " + word + " " + file + "\n";
}

// A name that every system takes, and that no other file has.
std::string DatabaseExport::DataFile(std::string const& table) {
  std::string name = base_ + "." + Lower(table) + ".dat";
  bool taken = !IsAsciiWord(table) || !file_names_.insert(name).second;
  for (std::size_t i = exported_.files.size(); taken; ++i) {
    name = base_ + ".table" + std::to_string(i) + ".dat";
    taken = !file_names_.insert(name).second;
  }
  return name;
}

}  // namespace

void ExportRefusals::Add(Problem problem) {
  if (first.size() < kMaxExportRefusals) first.push_back(std::move(problem));
  ++count;
}

std::optional<Problem> ExportTables(std::string const& path,
                                    std::string const& base,
                                    ExportedDatabase* exported,
                                    ExportRefusals* refusals) {
  DatabaseFile file;
  if (auto problem = ReadDatabaseFile(path, &file)) return problem;
  if (auto problem = OpenToLook({path, "", ""})) return problem;
  if (file.version != kCurrentVersion ||
      file.header_bytes != static_cast<std::int64_t>(format::kHeaderSize)) {
    refusals->Add({TW(152), path,
                   "the file has the form of " + std::to_string(file.version) +
                       ", and \"tabwerk build\" makes another one",
                   "bring it into the current form first, with \"tabwerk "
                   "convert\""});
    return std::nullopt;
  }
  DBbase::SetSprache(kAsStored);
  auto problem = DatabaseExport(path, base, exported, refusals).Run(file);
  DBbase::SetSprache(0);
  return problem;
}

}  // namespace tabwerk::tool
