// Rows whose values have the names of their columns.
#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "DBDirectory.h"
#include "cli/field_value.h"
#include "cli/files.h"
#include "cli/import_source.h"
#include "cli/progress.h"
#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

class NamedSource : public ImportSource {
 public:
  NamedSource(std::string name, NamedForm form, char separator)
      : name_(std::move(name)), form_(form), separator_(separator) {}

  std::optional<Problem> Read(std::string bytes) override {
    std::string text;
    if (auto problem = DecodeText(name_, std::move(bytes), &text)) {
      return problem;
    }
    return ReadNamedRows(form_, name_, text, separator_, &rows_);
  }
  std::optional<Problem> Sort(DBTabelle& table) override;

  long AcceptedCount() const override {
    return static_cast<long>(rows_.rows.size() - rejected_.size());
  }
  long RejectedCount() const override {
    return static_cast<long>(rejected_.size());
  }
  char const* RejectedNoun() const override { return "row"; }
  std::string RejectedBytes() const override {
    return NamedText(form_, rows_.head, rejected_);
  }
  std::optional<Problem> Append(DBTabelle& table, bool* complete) override;

 private:
  std::optional<Problem> BindColumns(DBDefinition const& definition);
  void WarnOfMissing(DBDefinition const& definition) const;
  std::optional<NamedObjection> Objection(NamedRow const& row) const;
  Place At(TextPlace const& place) const {
    return {name_, place.line, place.character};
  }

  std::string name_;
  NamedForm form_;
  char separator_;
  NamedRows rows_;
  std::vector<DBFeld const*> fields_;  // by column of rows_
  std::vector<std::string> rejected_;  // as they stood
};

std::optional<Problem> NamedSource::Sort(DBTabelle& table) {
  DBDefinition const& definition = *table.GetDirEntry(true)->GetDefinition();
  if (auto problem = BindColumns(definition)) return problem;
  WarnOfMissing(definition);
  for (NamedRow& row : rows_.rows) {
    if (!row.objection) row.objection = Objection(row);
    if (!row.objection) continue;
    rejected_.push_back(row.source);
    Warn({row.objection->code, At(row.objection->place), row.objection->what,
          "the row is rejected"});
  }
  return std::nullopt;
}

std::optional<Problem> NamedSource::BindColumns(
    DBDefinition const& definition) {
  std::set<std::string> names;
  for (NamedColumn const& column : rows_.columns) {
    DBFeld const* field = definition.GetDefinition();
    while (field != nullptr && NameToUtf8(field->name) != column.name) {
      field = field->next;
    }
    if (field == nullptr) {
      return Problem{TW(635), At(column.place),
                     "the table has no column \"" + Escape(column.name) + "\"",
                     "nothing was changed; \"tabwerk info\" lists the columns"};
    }
    if (!names.insert(column.name).second) {
      return Problem{TW(635), At(column.place),
                     "column " + column.name + " is there twice",
                     "nothing was changed; leave one of them out"};
    }
    fields_.push_back(field);
  }
  return std::nullopt;
}

void NamedSource::WarnOfMissing(DBDefinition const& definition) const {
  if (rows_.rows.empty()) return;
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    bool const is_there =
        std::find(fields_.begin(), fields_.end(), field) != fields_.end();
    if (is_there || IsAssigned(field->name)) continue;
    bool const is_text = field->type == DBTypeString;
    Warn({TW(636), Place(name_, 1),
          "there is no column " + NameToUtf8(field->name),
          is_text ? "its texts are empty" : "its values are 0"});
  }
}

std::optional<NamedObjection> NamedSource::Objection(
    NamedRow const& row) const {
  std::set<std::size_t> columns;
  for (NamedCell const& cell : row.cells) {
    DBFeld const& field = *fields_[cell.column];
    if (!columns.insert(cell.column).second) {
      return NamedObjection{
          TW(635), cell.place,
          "column " + NameToUtf8(field.name) + " is there twice"};
    }
    if (IsAssigned(field.name)) continue;
    auto objection =
        ValueObjection(field, zWString::fromUtf8(cell.text).view());
    if (objection) {
      return NamedObjection{objection->code, cell.place,
                            std::move(objection->what)};
    }
  }
  return std::nullopt;
}

std::optional<Problem> NamedSource::Append(DBTabelle& table, bool* complete) {
  *complete = true;
  Progress progress("importing " + name_, AcceptedCount(), "rows");
  long long done = 0;
  for (NamedRow const& row : rows_.rows) {
    if (row.objection) continue;
    std::map<std::string, std::wstring> values;
    for (NamedCell const& cell : row.cells) {
      values[fields_[cell.column]->name] =
          zWString::fromUtf8(cell.text).toStdWString();
    }
    if (!table.SetZeileWerte(values, DBTabelle::ActionAppend)) {
      *complete = false;
      break;
    }
    progress.Advance(++done);
  }
  return std::nullopt;
}

}  // namespace

std::unique_ptr<ImportSource> MakeNamedSource(std::string const& name,
                                              NamedForm form, char separator) {
  return std::make_unique<NamedSource>(name, form, separator);
}

}  // namespace tabwerk::tool
