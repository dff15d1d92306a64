// Any bytes as a database file: it is refused, or every value of every table
// can be read.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tabwerk.h"

namespace {

void ReadAll(DBTabelle& table) {
  auto* const definition = table.GetDirEntry(false)->GetDefinition();
  for (auto* field = definition->GetDefinition(); field != nullptr;
       field = field->next) {
    if (table.SelectColumn(field->name) == 0) std::abort();
    for (long row = 0; table.SelectZeile(row) == 1; ++row) {
      long integer = 0;
      double real = 0;
      zWString text;
      (void)(table.GetWert(integer) + table.GetWert(real) +
             table.GetWert(text));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  static auto const path =
      (std::filesystem::temp_directory_path() / "tabwerk_fuzz.db").string();
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<char const*>(data),
             static_cast<std::streamsize>(size));
  DBbase::Init({u"FUZZ"}, {{zWString::fromUtf8(path)}});
  auto* const manager = DBbase::GetDBBaseInstance();
  if (manager->Open(u"FUZZ", false, false) == 1) {
    auto* entry = manager->GetDirectory()->GetEntries();
    for (; entry != nullptr; entry = entry->GetNext()) {
      DBTabelle* table = nullptr;
      if (manager->OpenTabelle(entry->GetName(), table) == 1) ReadAll(*table);
    }
  }
  DBbase::Init({}, {});
  return 0;
}
