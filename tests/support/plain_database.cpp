#include "tests/support/plain_database.h"

#include <charconv>
#include <cstring>
#include <sstream>

#include "tests/support/decimal.h"

namespace tabwerk::test {
namespace {

using Bytes = std::vector<unsigned char>;

// --- Bytes -----------------------------------------------------------------

template <typename T>
void Put(Bytes* bytes, T value) {
  unsigned char raw[sizeof(T)];
  std::memcpy(raw, &value, sizeof(T));
  bytes->insert(bytes->end(), raw, raw + sizeof(T));
}

void PutText(Bytes* bytes, std::string const& text) {
  bytes->insert(bytes->end(), text.begin(), text.end());
}

struct Cursor {
  Bytes const& bytes;
  std::size_t at = 0;
  bool ok = true;

  template <typename T>
  T Get() {
    T value{};
    if (at + sizeof(T) > bytes.size()) {
      ok = false;
      return value;
    }
    std::memcpy(&value, bytes.data() + at, sizeof(T));
    at += sizeof(T);
    return value;
  }
  std::string Text(std::size_t size) {
    if (at + size > bytes.size()) {
      ok = false;
      return "";
    }
    std::string text(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                     bytes.begin() + static_cast<std::ptrdiff_t>(at + size));
    at += size;
    return text;
  }
  std::string TerminatedText() {
    std::string text;
    while (at < bytes.size() && bytes[at] != 0) {
      text += static_cast<char>(bytes[at++]);
    }
    if (at >= bytes.size()) ok = false;
    ++at;
    return text;
  }
};

// --- UTF-8 and 16-bit units (lone surrogates as three bytes) ----------------

std::u16string ToUnits(std::string const& text) {
  std::u16string units;
  for (std::size_t i = 0; i < text.size();) {
    auto const lead = static_cast<unsigned char>(text[i]);
    int const more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    std::uint32_t code =
        more == 0 ? lead
                  : lead & ((1U << static_cast<unsigned>(6 - more)) - 1U);
    for (int k = 1; k <= more && i + static_cast<std::size_t>(k) < text.size();
         ++k) {
      code =
          code << 6U |
          (static_cast<unsigned char>(text[i + static_cast<std::size_t>(k)]) &
           0x3FU);
    }
    i += static_cast<std::size_t>(more) + 1;
    if (code < 0x10000) {
      units += static_cast<char16_t>(code);
    } else {
      units += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10U));
      units += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FFU));
    }
  }
  return units;
}

void PutCode(std::string* text, std::uint32_t code) {
  auto put = [text](std::uint32_t byte) { *text += static_cast<char>(byte); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6U);
    put(0x80 | (code & 0x3FU));
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12U);
    put(0x80 | ((code >> 6U) & 0x3FU));
    put(0x80 | (code & 0x3FU));
  } else {
    put(0xF0 | code >> 18U);
    put(0x80 | ((code >> 12U) & 0x3FU));
    put(0x80 | ((code >> 6U) & 0x3FU));
    put(0x80 | (code & 0x3FU));
  }
}

std::string FromUnits(std::u16string const& units) {
  std::string text;
  for (std::size_t i = 0; i < units.size(); ++i) {
    std::uint32_t code = units[i];
    bool const pair = code >= 0xD800 && code < 0xDC00 && i + 1 < units.size() &&
                      units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000;
    if (pair)
      code = 0x10000 + ((code - 0xD800) << 10U) + (units[++i] - 0xDC00U);
    PutCode(&text, code);
  }
  return text;
}

// --- Definitions -----------------------------------------------------------

// One letter for every field: i, r, s.
std::string FieldTypes(std::string const& definition) {
  std::string types;
  std::istringstream words(definition);
  std::string word;
  while (std::getline(words, word, ',')) {
    auto const start = word.find_first_not_of(" \n");
    if (start != std::string::npos) types += word[start];
  }
  return types;
}

std::vector<std::string> Cells(std::string const& row, std::size_t count) {
  std::vector<std::string> cells;
  std::size_t from = 0;
  for (;;) {
    auto const bar = row.find('|', from);
    cells.push_back(row.substr(from, bar - from));
    if (bar == std::string::npos) break;
    from = bar + 1;
  }
  cells.resize(count);
  return cells;
}

// --- One table's blocks ----------------------------------------------------

// Not by the C library: that of Windows does not read "nan".
double RealOf(std::string const& text) {
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

struct Blocks {
  Bytes texts;
  Bytes rows;
};

Blocks EncodeBlocks(PlainTable const& table) {
  Blocks blocks;
  auto const types = FieldTypes(table.definition);
  for (auto const& row : table.rows) {
    auto const cells = Cells(row, types.size());
    for (std::size_t i = 0; i < types.size(); ++i) {
      if (types[i] == 'i') {
        Put(&blocks.rows,
            static_cast<std::int32_t>(std::atoi(cells[i].c_str())));
      } else if (types[i] == 'r') {
        Put(&blocks.rows, RealOf(cells[i]));
      } else {
        Put(&blocks.rows, static_cast<std::int32_t>(blocks.texts.size() / 2));
        for (auto const unit : ToUnits(cells[i])) Put(&blocks.texts, unit);
        Put(&blocks.texts, char16_t{0});
      }
    }
  }
  return blocks;
}

std::string TextAt(Bytes const& bytes, std::size_t at, std::size_t end) {
  std::u16string units;
  for (; at + 2 <= end; at += 2) {
    char16_t unit;
    std::memcpy(&unit, bytes.data() + at, 2);
    if (unit == 0) return FromUnits(units);
    units += unit;
  }
  return "<unterminated>";
}

}  // namespace

std::string AsText(std::vector<unsigned char> const& bytes) {
  return {bytes.begin(), bytes.end()};
}

Bytes EncodeDatabase(PlainDatabase const& database) {
  Bytes bytes;
  switch (database.header) {
    case PlainHeader::kNone:
      break;
    case PlainHeader::k2016:
      PutText(&bytes, "ver2016");
      break;
    case PlainHeader::k2018:
      PutText(&bytes, "ver2018");
      break;
    case PlainHeader::kCurrent:
      PutText(&bytes, "ver2025time");
      Put(&bytes, database.time_stamp);
  }
  Bytes data;
  for (auto const& table : database.tables) {
    auto const blocks = EncodeBlocks(table);
    auto const texts_at = static_cast<std::int32_t>(data.size());
    data.insert(data.end(), blocks.texts.begin(), blocks.texts.end());
    auto const rows_at = static_cast<std::int32_t>(data.size());
    data.insert(data.end(), blocks.rows.begin(), blocks.rows.end());
    auto const text_size = blocks.texts.size();
    PutText(&bytes, "anf" + table.name);
    Put(&bytes, '\0');
    PutText(&bytes, table.definition);
    Put(&bytes, '\0');
    Put(&bytes, static_cast<std::int32_t>(table.rows.size()));
    Put(&bytes, std::int32_t{0});
    Put(&bytes, static_cast<std::int32_t>(blocks.rows.size()));
    Put(&bytes, rows_at);
    Put(&bytes, texts_at);
    Put(&bytes, static_cast<std::int32_t>(database.header == PlainHeader::kNone
                                              ? text_size
                                              : text_size / 2));
    PutText(&bytes, "end");
  }
  Put(&bytes, '\0');
  bytes.insert(bytes.end(), data.begin(), data.end());
  return bytes;
}

namespace {

struct DirectoryRecord {
  PlainTable table;
  std::int32_t row_count, row_size, rows_at, texts_at, text_size;
};

bool DecodeHeader(Cursor* cursor, PlainDatabase* database) {
  auto const& bytes = cursor->bytes;
  if (bytes.size() >= 3 && std::memcmp(bytes.data(), "anf", 3) == 0) {
    database->header = PlainHeader::kNone;
    return true;
  }
  if (cursor->Text(3) != "ver") return false;
  auto const version = cursor->Text(4);
  auto const ahead = cursor->at;
  if (cursor->Text(4) == "time") {
    database->header = PlainHeader::kCurrent;
    database->time_stamp = cursor->Get<std::int64_t>();
    return cursor->ok && version == "2025";
  }
  cursor->at = ahead;
  cursor->ok = true;
  database->header = version < "2017" ? PlainHeader::k2016 : PlainHeader::k2018;
  return true;
}

bool DecodeRecord(Cursor* cursor, DirectoryRecord* record) {
  if (cursor->Text(3) != "anf") return false;
  record->table.name = cursor->TerminatedText();
  record->table.definition = cursor->TerminatedText();
  record->row_count = cursor->Get<std::int32_t>();
  if (cursor->Get<std::int32_t>() != 0) return false;
  record->row_size = cursor->Get<std::int32_t>();
  record->rows_at = cursor->Get<std::int32_t>();
  record->texts_at = cursor->Get<std::int32_t>();
  record->text_size = cursor->Get<std::int32_t>();
  return cursor->Text(3) == "end" && cursor->ok;
}

bool DecodeRows(Bytes const& bytes, std::size_t data, std::size_t text_end,
                DirectoryRecord* record) {
  auto const types = FieldTypes(record->table.definition);
  Cursor cursor{bytes, data + static_cast<std::size_t>(record->rows_at)};
  auto const start = cursor.at;
  auto const texts = data + static_cast<std::size_t>(record->texts_at);
  for (std::int32_t r = 0; r < record->row_count; ++r) {
    std::string row;
    for (std::size_t i = 0; i < types.size(); ++i) {
      if (i > 0) row += '|';
      if (types[i] == 'r') {
        row += Decimal(cursor.Get<double>());
        continue;
      }
      auto const value = cursor.Get<std::int32_t>();
      if (types[i] == 'i') {
        row += std::to_string(value);
      } else {
        row += TextAt(bytes, texts + 2 * static_cast<std::size_t>(value),
                      text_end);
      }
    }
    record->table.rows.push_back(row);
  }
  return cursor.ok &&
         cursor.at - start == static_cast<std::size_t>(record->row_size);
}

}  // namespace

std::optional<PlainDatabase> DecodeDatabase(Bytes const& bytes) {
  PlainDatabase database;
  Cursor cursor{bytes};
  if (!DecodeHeader(&cursor, &database)) return std::nullopt;
  std::vector<DirectoryRecord> records;
  while (cursor.at < bytes.size() && bytes[cursor.at] != 0) {
    DirectoryRecord record{};
    if (!DecodeRecord(&cursor, &record)) return std::nullopt;
    records.push_back(record);
  }
  if (cursor.at >= bytes.size()) return std::nullopt;
  auto const data = cursor.at + 1;
  for (auto& record : records) {
    auto const unit =
        database.header == PlainHeader::kNone ? std::size_t{1} : std::size_t{2};
    auto const text_end = data + static_cast<std::size_t>(record.texts_at) +
                          unit * static_cast<std::size_t>(record.text_size);
    if (text_end > bytes.size()) return std::nullopt;
    if (!DecodeRows(bytes, data, text_end, &record)) return std::nullopt;
    database.tables.push_back(record.table);
  }
  return database;
}

std::string RowsOf(PlainDatabase const& database, std::string const& table) {
  for (auto const& candidate : database.tables) {
    if (candidate.name != table) continue;
    std::string rows;
    for (auto const& row : candidate.rows) rows += "[" + row + "]";
    return rows;
  }
  return "-";
}

Bytes EncodeIndex(PlainIndex const& index) {
  Bytes bytes;
  for (auto const stamp : index.time_stamps) Put(&bytes, stamp);
  for (auto const& table : index.tables) {
    PutText(&bytes, "ID");
    Put(&bytes, static_cast<std::int32_t>(table.ids.size()));
    for (auto const& [id, row] : table.ids) {
      Put(&bytes, id);
      Put(&bytes, row);
    }
    PutText(&bytes, "FOLGE");
    Put(&bytes, static_cast<std::int32_t>(table.folge.size()));
    for (auto const row : table.folge) Put(&bytes, row);
    PutText(&bytes, "STATUS");
    Put(&bytes, static_cast<std::int32_t>(table.status.size()));
    for (auto const status : table.status) Put(&bytes, status);
  }
  return bytes;
}

std::optional<PlainIndex> DecodeIndex(Bytes const& bytes,
                                      std::size_t file_count) {
  PlainIndex index;
  Cursor cursor{bytes};
  for (std::size_t i = 0; i < file_count; ++i) {
    index.time_stamps.push_back(cursor.Get<std::int64_t>());
  }
  while (cursor.ok && cursor.at < bytes.size()) {
    PlainIndex::Table table;
    if (cursor.Text(2) != "ID") return std::nullopt;
    auto count = cursor.Get<std::int32_t>();
    if (count < 0) return std::nullopt;
    for (std::int32_t i = 0; i < count && cursor.ok; ++i) {
      auto const id = cursor.Get<std::int32_t>();
      table.ids.emplace_back(id, cursor.Get<std::int32_t>());
    }
    if (cursor.Text(5) != "FOLGE") return std::nullopt;
    count = cursor.Get<std::int32_t>();
    if (count < 0) return std::nullopt;
    for (std::int32_t i = 0; i < count && cursor.ok; ++i) {
      table.folge.push_back(cursor.Get<std::int32_t>());
    }
    if (cursor.Text(6) != "STATUS") return std::nullopt;
    count = cursor.Get<std::int32_t>();
    if (count < 0) return std::nullopt;
    for (std::int32_t i = 0; i < count && cursor.ok; ++i) {
      table.status.push_back(cursor.Get<std::int32_t>());
    }
    index.tables.push_back(table);
  }
  if (!cursor.ok) return std::nullopt;
  return index;
}

std::string Describe(PlainIndex::Table const& table) {
  std::string text = "ID";
  for (auto const& [id, row] : table.ids) {
    text += " " + std::to_string(id) + ">" + std::to_string(row);
  }
  text += " FOLGE";
  for (auto const row : table.folge) text += " " + std::to_string(row);
  text += " STATUS";
  for (auto const status : table.status) text += " " + std::to_string(status);
  return text;
}

}  // namespace tabwerk::test
