#include "bench/support/host.h"

#include "bench/support/check.h"
#include "bench/support/folder.h"

namespace tabwerk::bench {
namespace {

DBTabelle* shared_table = nullptr;
long shared_rows = 0;

}  // namespace

DBTabelle* OpenTable(std::filesystem::path const& folder, Access access) {
  shared_table = nullptr;
  DBbase::Init({u"STOCK"},
               {{zWString::fromUtf8((folder / "MAIN.db").string()),
                 zWString::fromUtf8((folder / "USER.UDB").string())}});
  auto* const manager = DBbase::GetDBBaseInstance();
  DBTabelle* table = nullptr;
  Require(manager->Open(u"STOCK", access == Access::kWrite, false) == 1 &&
              manager->OpenTabelle("ARTIKEL", table) == 1,
          "the database does not open");
  return table;
}

void CloseAll() {
  shared_table = nullptr;
  DBbase::Init({}, {});
}

DBTabelle* ReadTable(long rows) {
  auto const& folder = Database(rows);
  if (shared_table == nullptr || shared_rows != rows) {
    shared_table = OpenTable(folder, Access::kRead);
    shared_rows = rows;
    Require(shared_table->GetAnzahlZeilen() == rows, "rows are missing");
  }
  return shared_table;
}

}  // namespace tabwerk::bench
