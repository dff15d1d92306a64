#include "cli/file_content.h"

#include "cli/table_list.h"
#include "schema/bytes.h"
#include "schema/directory_access.h"
#include "schema/layout.h"
#include "ztypes.h"

namespace tabwerk::tool {

FileContent::FileContent(std::string const& path) {
  directory_.Initialize(zWString(), {zWString::fromUtf8(path)});
  if (!directory_.OpenDBdatei(0, false, false)) return;
  for (DBDirEntry* entry : TablesInFileOrder(directory_)) {
    DBTabelle table;
    table.SetDirEntry(entry);
    DirectoryAccess::SetCurrentTable(directory_, entry);
    bool const loaded =
        table.ReadTabelle(0, &directory_) && table.ReadStrings(0, &directory_);
    tables_.push_back({entry, DirectoryAccess::Part(*entry, 0), loaded});
  }
  directory_.CloseDBdatei();
}

void ForEachPlace(TableContent const& table,
                  std::function<bool(std::int32_t, std::int32_t,
                                     DBFeld const&)> const& call) {
  DBDefinition const& definition = *table.entry->GetDefinition();
  auto const record = static_cast<std::int32_t>(definition.GetMemorySize());
  std::vector<DBFeld const*> fields;
  for (DBFeld const* field : FieldsOf(definition)) {
    if (field->type == DBTypeString &&
        LiesInRecord(field->type, field->offset, record)) {
      fields.push_back(field);
    }
  }
  if (!table.loaded || fields.empty()) return;
  for (std::int32_t row = 0; row < table.part->Rows(); ++row) {
    std::byte const* const bytes = table.part->Row(row, record);
    if (bytes == nullptr) return;
    for (DBFeld const* field : fields) {
      auto const place = LoadValue<std::int32_t>(bytes + field->offset);
      if (!call(place, row, *field)) return;
    }
  }
}

void ForEachText(TableContent const& table,
                 std::function<void(StoredText const&)> const& call) {
  if (!table.loaded) return;
  DBStringMemory const& strings = *table.part->strings;
  std::vector<bool> begins(strings.count());
  ForEachPlace(table, [&](std::int32_t place, std::int32_t, DBFeld const&) {
    auto const index = static_cast<std::size_t>(place);
    if (place >= 0 && index < begins.size()) begins[index] = true;
    return true;
  });
  for (std::size_t i = 0; i < begins.size(); ++i) {
    if (!begins[i]) continue;
    auto const text = strings.Text(static_cast<std::int32_t>(i));
    if (!text) continue;
    call({static_cast<std::int32_t>(i), *text});
    i += text->size();
  }
}

}  // namespace tabwerk::tool
