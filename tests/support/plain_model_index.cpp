// The indices of the plain table and their sections.
#include <algorithm>
#include <cstring>

#include "tests/support/plain_model.h"

namespace tabwerk::test::model {
namespace {

void PutNumber(Bytes* bytes, std::int64_t number) {
  auto const bits = static_cast<std::uint32_t>(number);
  for (unsigned shift = 0; shift < 32; shift += 8) {
    bytes->push_back(static_cast<unsigned char>(bits >> shift & 0xFFU));
  }
}

Bytes Section(std::string const& tag, std::size_t count,
              Numbers const& numbers) {
  Bytes bytes(tag.begin(), tag.end());
  PutNumber(&bytes, static_cast<std::int64_t>(count));
  for (auto const number : numbers) PutNumber(&bytes, number);
  return bytes;
}

std::int32_t NextNumber(Bytes const& bytes, std::size_t* at) {
  std::int32_t number = 0;
  if (*at + 4 <= bytes.size()) std::memcpy(&number, bytes.data() + *at, 4);
  *at += 4;
  return number;
}

bool TakeTag(Bytes const& bytes, std::size_t* at, std::string const& tag) {
  bool const same =
      *at + tag.size() <= bytes.size() &&
      std::memcmp(bytes.data() + *at, tag.data(), tag.size()) == 0;
  *at += tag.size();
  return same;
}

}  // namespace

std::int64_t Table::MaxFolge() const {
  auto const last = static_cast<std::int64_t>(folge_index.size()) - 1;
  return last < 1 ? 0 : last;
}

std::int64_t Table::RowById(std::int64_t id) {
  auto const key = static_cast<std::int32_t>(id);
  if (id_index.empty() || key != id) return -1;
  return id_index[key];
}

std::int64_t Table::RowByFolge(std::int64_t folge) const {
  if (folge < 0 || folge >= static_cast<std::int64_t>(folge_index.size())) {
    return -1;
  }
  return folge_index[static_cast<std::size_t>(folge)];
}

// --- Building and writing ---------------------------------------------------

void Table::ReadColumn(std::string const& column, std::int64_t* value) {
  if (SelectColumn(column) == 1) GetInteger(value);
}

void Table::WriteColumn(std::string const& column, std::int64_t value) {
  if (SelectColumn(column) == 1) {
    SetInteger(value);
  } else {
    Follow(0, static_cast<std::int32_t>(value));
  }
}

void Table::MakeIndexId() {
  id_index.clear();
  SelectColumn("ID");
  std::int64_t id = 0;
  for (std::int64_t row = 0; row < RowCount(); ++row) {
    SelectRow(row);
    ReadColumn("ID", &id);
    id_index[static_cast<std::int32_t>(id)] = static_cast<std::int32_t>(row);
  }
}

void Table::MakeIndexFolge() {
  folge_index.assign(static_cast<std::size_t>(RowCount()) + 1, -1);
  SelectColumn("FOLGE");
  std::int64_t folge = 0;
  for (std::int64_t row = 0; row < RowCount(); ++row) {
    SelectRow(row);
    ReadColumn("FOLGE", &folge);
    if (folge < 0 || folge > RowCount()) continue;
    folge_index[static_cast<std::size_t>(folge)] =
        static_cast<std::int32_t>(row);
  }
}

void Table::MakeIndexStatus() {
  status_index.assign(static_cast<std::size_t>(RowCount()), 0);
  SelectColumn("STATUS");
  std::int64_t status = 0;
  for (std::int64_t row = 0; row < RowCount(); ++row) {
    SelectRow(row);
    ReadColumn("STATUS", &status);
    status_index[static_cast<std::size_t>(row)] =
        static_cast<std::int32_t>(status);
  }
}

Bytes Table::WriteIndexId() const {
  Numbers numbers;
  for (auto const& [id, row] : id_index) {
    numbers.push_back(id);
    numbers.push_back(row);
  }
  return Section("ID", id_index.size(), numbers);
}

Bytes Table::WriteIndexFolge() const {
  return Section("FOLGE", folge_index.size(), folge_index);
}

Bytes Table::WriteIndexStatus() const {
  return Section("STATUS", status_index.size(), status_index);
}

// --- Reading ----------------------------------------------------------------

void Table::ReadIndexId(Bytes const& bytes, std::size_t* at) {
  if (!TakeTag(bytes, at, "ID")) return;
  id_index.clear();
  auto const count = NextNumber(bytes, at);
  for (std::int32_t i = 0; i < count; ++i) {
    auto const id = NextNumber(bytes, at);
    id_index[id] = NextNumber(bytes, at);
  }
}

void Table::ReadIndexFolge(Bytes const& bytes, std::size_t* at, bool update) {
  if (!TakeTag(bytes, at, "FOLGE")) return;
  auto const count = std::max(0, NextNumber(bytes, at));
  folge_index.assign(static_cast<std::size_t>(count), -1);
  SelectColumn("FOLGE");
  for (std::int32_t i = 0; i < count; ++i) {
    auto const row = NextNumber(bytes, at);
    if (!update) {
      folge_index[static_cast<std::size_t>(i)] = row;
    } else if (SelectRow(row) == 1) {
      WriteColumn("FOLGE", i);
    }
  }
}

void Table::ReadIndexStatus(Bytes const& bytes, std::size_t* at, bool update) {
  if (!TakeTag(bytes, at, "STATUS")) return;
  auto const count = std::max(0, NextNumber(bytes, at));
  status_index.assign(static_cast<std::size_t>(count), 0);
  SelectColumn("STATUS");
  for (std::int32_t i = 0; i < count; ++i) {
    auto const status = NextNumber(bytes, at);
    SelectRow(i);
    if (update) {
      WriteColumn("STATUS", status);
    } else {
      status_index[static_cast<std::size_t>(i)] = status;
    }
  }
}

// --- Renumbering ------------------------------------------------------------

Numbers Table::RecordedOrder() const {
  std::map<std::size_t, std::int32_t> id_at;
  for (auto const& [id, row] : id_index) {
    for (std::size_t p = 1; p < folge_index.size(); ++p) {
      if (folge_index[p] != row) continue;
      id_at[p] = id;
      break;
    }
  }
  Numbers order(id_at.empty() ? 1 : id_at.rbegin()->first + 1, 0);
  for (auto const& [position, id] : id_at) order[position] = id;
  return order;
}

Numbers Table::FieldOrder() {
  Numbers order(static_cast<std::size_t>(RowCount()) + 1, 0);
  std::int64_t id = 0;
  std::int64_t folge = 0;
  for (std::int64_t row = 0; row < RowCount(); ++row) {
    SelectRow(row);
    ReadColumn("ID", &id);
    ReadColumn("FOLGE", &folge);
    if (folge < 0 || folge > RowCount()) continue;
    order[static_cast<std::size_t>(folge)] = static_cast<std::int32_t>(id);
  }
  return order;
}

void Table::RepairStatus() {
  auto const recorded = status_index;
  std::int64_t id = 0;
  std::int64_t status = 0;
  for (std::int64_t row = 0; row < RowCount(); ++row) {
    SelectRow(row);
    ReadColumn("ID", &id);
    auto const known = id_index.find(static_cast<std::int32_t>(id));
    if (known == id_index.end() || known->second < 0) continue;
    auto const k = static_cast<std::size_t>(known->second);
    if (k >= recorded.size()) continue;
    ReadColumn("STATUS", &status);
    if (status == 0) {
      WriteColumn("STATUS", recorded[k]);
    } else if (status != 1 && status != 2) {
      WriteColumn("STATUS", 1);
    }
  }
}

void Table::ResortIndexId() {
  auto order = RecordedOrder();
  auto const field_order = FieldOrder();
  RepairStatus();
  std::ptrdiff_t last = 0;
  for (std::size_t i = 1; i < field_order.size(); ++i) {
    auto const found = std::find(order.begin(), order.end(), field_order[i]);
    if (found != order.end()) {
      last = found - order.begin();
    } else {
      order.insert(order.begin() + last + 1, field_order[i]);
      ++last;
    }
  }
  MakeIndexId();
  MakeIndexStatus();
  SelectColumn("FOLGE");
  for (std::int64_t row = 0; row < RowCount(); ++row) {
    SelectRow(row);
    WriteColumn("FOLGE", 0);
  }
  std::int64_t status = 0;
  std::int64_t next = 1;
  for (std::size_t j = 1; j < order.size(); ++j) {
    SelectInteger("ID", order[j]);
    ReadColumn("STATUS", &status);
    SelectColumn("FOLGE");
    if (status == 0) WriteColumn("FOLGE", next++);
  }
  MakeIndexFolge();
}

}  // namespace tabwerk::test::model
