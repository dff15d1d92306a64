#include "tests/schema/observers.h"

#include "schema/directory_access.h"

namespace tabwerk::test {
namespace {

void AppendWord(std::string* list, std::string const& word) {
  *list += (list->empty() ? "" : " ") + word;
}

}  // namespace

std::string Layout(DBDefinition const& definition) {
  std::string text;
  DBFeld const* before = nullptr;
  for (DBFeld const* it = definition.GetDefinition(); it != nullptr;
       it = it->next) {
    AppendWord(&text, std::string(it->name) + ":" + std::to_string(it->type) +
                          "@" + std::to_string(it->offset) +
                          (it->previous == before ? "" : "!"));
    before = it;
  }
  AppendWord(&text, "size " + std::to_string(definition.GetMemorySize()));
  return text;
}

std::string LayoutOf(char const* text) { return Layout(DBDefinition(text)); }

std::string TextOf(DBDefinition const& definition) {
  std::string buffer(20000, '#');
  if (definition.GenerateString(buffer.data(), 19000) != 1) return "?";
  return buffer.c_str();
}

std::string Tables(DBDirectory const& directory) {
  std::string text;
  for (DBDirEntry const* it = directory.GetEntries(); it != nullptr;
       it = it->GetNext()) {
    AppendWord(&text,
               it->GetName() + (":" + std::to_string(it->GetNumberOfParts())));
  }
  return text;
}

std::string Numbers(DBDirectory const& directory, char const* table,
                    std::size_t part) {
  DBDirEntry* entry = directory.FindTable(table, directory.GetEntries());
  TablePart const* it =
      entry == nullptr ? nullptr : DirectoryAccess::Part(*entry, part);
  if (it == nullptr) return "-";
  return "rows " + std::to_string(it->row_count) + " in " +
         std::to_string(it->row_block_size) + "@" +
         std::to_string(it->row_block_offset) + " texts " +
         std::to_string(it->string_block_size) + "@" +
         std::to_string(it->string_block_offset) +
         (it->damaged ? " damaged" : "");
}

std::string PartRows(DBDirectory const& directory, char const* table) {
  DBDirEntry const* entry = directory.FindTable(table, directory.GetEntries());
  std::string text;
  for (std::size_t i = 0; entry != nullptr && i < entry->GetNumberOfParts();
       ++i) {
    AppendWord(&text, std::to_string(entry->GetPartRows(i)));
  }
  return text;
}

void Initialize(DBDirectory* directory, TempFolder const& folder,
                std::vector<std::string> const& files) {
  std::vector<zWString> paths;
  for (std::string const& file : files) paths.push_back(folder.Path(file));
  directory->Initialize(zWString(u"TEST"), paths);
}

}  // namespace tabwerk::test
