#include "tests/support/plain_manager.h"

#include <algorithm>
#include <cstring>

#include "tests/support/decimal.h"

namespace tabwerk::test::model {
namespace {

template <typename T>
T Load(Bytes const& record, Field const& field) {
  T value;
  std::memcpy(&value, record.data() + field.offset, sizeof value);
  return value;
}

bool IsHigh(char32_t code) { return code >= 0xD800 && code < 0xDC00; }
bool IsLow(char32_t code) { return code >= 0xDC00 && code < 0xE000; }

// UTF-8, a lone surrogate as three bytes.
std::string Utf8(std::u16string const& units) {
  std::string text;
  auto const put = [&](char32_t byte) { text += static_cast<char>(byte); };
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t code = units[i];
    if (IsHigh(code) && i + 1 < units.size() && IsLow(units[i + 1])) {
      code = 0x10000 + ((code - 0xD800) << 10U) + (units[++i] - 0xDC00U);
    }
    if (code < 0x80) {
      put(code);
      continue;
    }
    if (code < 0x800) {
      put(0xC0 | code >> 6U);
    } else {
      if (code < 0x10000) {
        put(0xE0 | code >> 12U);
      } else {
        put(0xF0 | code >> 18U);
        put(0x80 | (code >> 12U & 0x3FU));
      }
      put(0x80 | (code >> 6U & 0x3FU));
    }
    put(0x80 | (code & 0x3FU));
  }
  return text;
}

std::string RowText(Definition const& definition, Part const& part,
                    Bytes const& record) {
  std::string text;
  for (auto const& field : definition.fields) {
    if (&field != &definition.fields.front()) text += '|';
    if (field.type == Type::kReal) text += Decimal(Load<double>(record, field));
    if (field.type == Type::kInteger) {
      text += Decimal(Load<std::int32_t>(record, field));
    }
    if (field.type == Type::kString) {
      auto const index = Load<std::int32_t>(record, field);
      text += Utf8(TextAt(part.store, index).value_or(u"?"));
    }
  }
  return text;
}

// The rows with a store that holds every value's own text and nothing else.
Part Compacted(Definition const& definition, Part const& part) {
  Part compact;
  for (auto record : part.rows) {
    for (auto const& field : definition.fields) {
      if (field.type != Type::kString) continue;
      auto const text = TextAt(part.store, Load<std::int32_t>(record, field));
      auto const index = static_cast<std::int32_t>(compact.store.size());
      std::memcpy(record.data() + field.offset, &index, sizeof index);
      compact.store += text.value_or(u"");
      compact.store += u'\0';
    }
    compact.rows.push_back(record);
  }
  return compact;
}

// The reals as their texts read: of all that are not a number only one.
void ReadRealsBack(Definition const& definition, Bytes* record) {
  for (auto const& field : definition.fields) {
    if (field.type != Type::kReal) continue;
    auto const text = Decimal(Load<double>(*record, field));
    double const value = ToReal(std::u16string(text.begin(), text.end()));
    std::memcpy(record->data() + field.offset, &value, sizeof value);
  }
}

bool EndsWith(std::string const& text, std::string const& tail) {
  return text.size() >= tail.size() &&
         text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

void BuildIndices(Table& table) {
  table.MakeIndexId();
  table.MakeIndexFolge();
  table.MakeIndexStatus();
}

// The three sections of one table, as a table reads them.
struct Sections {
  explicit Sections(PlainIndex::Table const& index) {
    Entry empty{"", {}, {}};
    Table table(&empty);
    // The last one of each ID counts.
    for (auto const& [number, row] : index.ids) table.id_index[number] = row;
    table.folge_index = index.folge;
    table.status_index = index.status;
    id = table.WriteIndexId();
    folge = table.WriteIndexFolge();
    status = table.WriteIndexStatus();
  }
  Bytes id, folge, status;
};

void ReadSections(PlainIndex::Table const& index, bool update, Table& table) {
  Sections const sections(index);
  std::size_t at = 0;
  table.ReadIndexId(sections.id, &at);
  at = 0;
  table.ReadIndexFolge(sections.folge, &at, update);
  at = 0;
  table.ReadIndexStatus(sections.status, &at, update);
}

}  // namespace

PlainDatabase ToPlain(FileImage const& image) {
  PlainDatabase database{image.header, image.time_stamp, {}};
  for (auto const& table : image.tables) {
    auto const definition = ParseDefinition(table.definition);
    PlainTable plain{table.name, table.definition, {}};
    for (auto const& record : table.part.rows) {
      plain.rows.push_back(RowText(definition, table.part, record));
    }
    database.tables.push_back(plain);
  }
  return database;
}

void Manager::CompactOnDisk(std::string const& file) {
  for (auto& table : disk.at(file).tables) {
    auto const definition = ParseDefinition(table.definition);
    table.part = Compacted(definition, table.part);
    for (auto& record : table.part.rows) ReadRealsBack(definition, &record);
  }
}

// --- Opening ----------------------------------------------------------------

int Manager::UserFile() const {
  for (std::size_t i = 0; i < files_.size(); ++i) {
    if (EndsWith(files_[i], ".UDB")) return static_cast<int>(i);
  }
  return -1;
}

std::optional<std::size_t> Manager::FileToWrite(bool user) const {
  if (!user) return 0;
  if (UserFile() < 0) return std::nullopt;
  return static_cast<std::size_t>(UserFile());
}

void Manager::Open(bool for_write) {
  ReadFiles();
  MakeIndexFile();
  open_for_write_ = for_write;
}

bool Manager::IsOpen(bool for_write) const {
  bool is_open = !tables_.empty();
  for (auto const& file : files_) {
    bool const is_user = EndsWith(file, ".UDB") || EndsWith(file, ".udb");
    if (is_user && for_write && !open_for_write_) is_open = false;
  }
  return is_open;
}

void Manager::OpenUnlessOpen(bool for_write) {
  if (!IsOpen(for_write)) Open(for_write);
}

// The first file says which tables there are, the last one first; part k of
// each comes from file k.
void Manager::ReadFiles() {
  tables_.clear();
  auto const& first = disk.at(files_.front()).tables;
  for (auto table = first.rbegin(); table != first.rend(); ++table) {
    auto opened = std::make_unique<OpenedTable>();
    opened->definition = table->definition;
    opened->entry.name = table->name;
    opened->entry.definition = ParseDefinition(table->definition);
    tables_.push_back(std::move(opened));
  }
  for (std::size_t k = 0; k < files_.size(); ++k) {
    for (auto const& table : disk.at(files_[k]).tables) {
      auto* const opened = Find(table.name);
      if (opened == nullptr) continue;
      opened->entry.parts.resize(k);
      opened->entry.parts.push_back(table.part);
    }
  }
  for (auto& opened : tables_) {
    for (auto const& part : opened->entry.parts) {
      opened->rows_in_file.push_back(part.rows.size());
    }
    opened->objects.emplace_back(&opened->entry);
    opened->objects.back().SelectRow(0);
  }
}

Manager::OpenedTable* Manager::Find(std::string const& name) {
  for (auto& opened : tables_) {
    if (opened->entry.name == name) return opened.get();
  }
  return nullptr;
}

std::vector<std::string> Manager::TableNames() const {
  std::vector<std::string> names;
  for (auto const& opened : tables_) names.push_back(opened->entry.name);
  return names;
}

Table* Manager::OpenTable(std::string const& name) {
  auto* const opened = Find(name);
  if (opened == nullptr) return nullptr;
  opened->objects.back().SelectRow(0);
  return &opened->objects.back();
}

Table* Manager::NewTable(std::string const& name) {
  auto* const opened = Find(name);
  if (opened == nullptr) return nullptr;
  return &opened->objects.emplace_back(&opened->entry);
}

// --- The index file ---------------------------------------------------------

std::vector<std::int64_t> Manager::TimeStamps() const {
  std::vector<std::int64_t> stamps;
  for (auto const& file : files_) {
    auto const& image = disk.at(file);
    bool const has_stamp = image.header == PlainHeader::kCurrent;
    stamps.push_back(has_stamp ? image.time_stamp : 0);
  }
  return stamps;
}

bool Manager::IndexFits(bool same_stamps) const {
  if (!index || index->tables.size() != tables_.size()) return false;
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    auto const& section = index->tables[i];
    auto const rows = section.status.size();
    bool fits = section.folge.size() == rows + 1 && section.ids.size() <= rows;
    for (auto const& [id, row] : section.ids) {
      fits = fits && row >= 0 && static_cast<std::size_t>(row) < rows;
    }
    for (auto const row : section.folge) {
      fits = fits && row >= -1 && row < static_cast<std::int64_t>(rows);
    }
    auto const row_count = tables_[i]->objects.back().RowCount();
    if (same_stamps) fits = fits && static_cast<std::size_t>(row_count) == rows;
    if (!fits) return false;
  }
  return true;
}

void Manager::MakeIndexFile() {
  if (!HasIndexFile()) return;
  bool const same = index && index->time_stamps == TimeStamps();
  if (!IndexFits(same)) {
    WriteIndexToFile();
    return;
  }
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    auto& table = tables_[i]->objects.back();
    ReadSections(index->tables[i], same, table);
    if (same) continue;
    ++progress_count;
    table.ResortIndexId();
  }
  if (!same) WriteIndexToFile();
}

int Manager::WriteIndexToFile() {
  if (!HasIndexFile()) return 0;
  for (auto& opened : tables_) BuildIndices(opened->objects.back());
  index = BuildIndex(TimeStamps());
  return 2;
}

PlainIndex Manager::BuildIndex(
    std::vector<std::int64_t> const& time_stamps) const {
  PlainIndex built{time_stamps, {}};
  for (auto const& opened : tables_) {
    auto table = opened->objects.back();
    BuildIndices(table);
    built.tables.push_back({{table.id_index.begin(), table.id_index.end()},
                            table.folge_index,
                            table.status_index});
  }
  return built;
}

// --- Writing ----------------------------------------------------------------

bool Manager::RowCountsAreThoseOfTheFiles() const {
  for (auto const& opened : tables_) {
    for (std::size_t k = 0; k < opened->rows_in_file.size(); ++k) {
      if (opened->entry.parts[k].rows.size() != opened->rows_in_file[k]) {
        return false;
      }
    }
  }
  return true;
}

void Manager::Write(std::size_t file, std::string const& target,
                    std::int64_t time_stamp) {
  FileImage image{PlainHeader::kCurrent, time_stamp, {}};
  for (auto const& opened : tables_) {
    auto const& entry = opened->entry;
    Part const part = file < entry.parts.size() ? entry.parts[file] : Part{};
    image.tables.push_back(
        {entry.name, opened->definition, Compacted(entry.definition, part)});
  }
  // An index that counts other rows than the files have would be of no use for
  // a copy under another name: the old one stays.
  bool const is_own_file = target == files_[file];
  if (HasIndexFile() && (is_own_file || RowCountsAreThoseOfTheFiles())) {
    index = BuildIndex(TimeStamps());
    if (target == files_.front()) {
      std::reverse(index->tables.begin(), index->tables.end());
    }
  }
  disk[target] = image;
  Open(true);
}

}  // namespace tabwerk::test::model
