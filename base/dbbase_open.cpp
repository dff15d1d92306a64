// Opening and closing databases, and handing out their tables.
#include <memory>
#include <vector>

#include "DBbase.h"
#include "base/catalogue.h"
#include "base/manager_access.h"
#include "base/opened_tables.h"
#include "platform/guarded.h"
#include "schema/directory_access.h"
#include "schema/format.h"
#include "table/table_access.h"

using tabwerk::DirectoryAccess;
using tabwerk::Guarded;
using tabwerk::ManagerAccess;
using tabwerk::OpenedTables;
using tabwerk::TableAccess;

namespace {

// A user file by its extension, in any case: it is opened for writing.
// DBDirectory::GetUserFile finds the upper-case form only.
bool HasUserExtension(zWString const& path) {
  auto const extension =
      zWString::fromLatin1(tabwerk::format::kUserFileExtension);
  if (path.length() < extension.length()) return false;
  auto const tail = path.view().substr(path.length() - extension.length());
  return zWString(tail).ToUpper() == extension;
}

// The files are opened in order until one fails.
bool OpenAllFiles(DBDirectory& directory, bool for_write, bool create,
                  bool* made) {
  for (std::size_t i = 0; i < directory.GetNumberFiles(); ++i) {
    auto const& name = DirectoryAccess::Files(directory)[i].name;
    bool const write = for_write && (create || HasUserExtension(name));
    bool const opened =
        made != nullptr
            ? DirectoryAccess::OpenForReplacement(directory, i, made)
            : directory.OpenDBdatei(i, write, create);
    if (!opened) return false;
  }
  return true;
}

void LoadAllTables(DBDirectory& directory) {
  for (auto* entry = directory.GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    DirectoryAccess::SetCurrentTable(directory, entry);
    DBTabelle* table = nullptr;
    // Not examined: the other tables of the database stay usable.
    (void)ManagerAccess::LoadTable(directory, *entry, table);
  }
}

}  // namespace

int DBbase::Open(zWString const& name, bool forWrite, bool create) {
  return Guarded(0, [&] {
    if (ManagerAccess::First(*this) == nullptr) {
      first_ = current_ = catalogue_->Add();
    }
    // Not by FindFile, to which a name without memory is one that is not there.
    auto* const found = ManagerAccess::Find(*this, name);
    if (found != nullptr) {
      current_ = found;
      if (found->FileIsOpen(forWrite, create)) return 1;
    }
    // A name that the catalogue lacks opens the current database.
    auto* directory = ManagerAccess::Current(*this);
    if (directory == nullptr) return 0;
    if (OpenDatabaseFile(forWrite, create, directory) == 0) return 0;
    // Not examined: a database is open whatever becomes of its index file.
    (void)Guarded(0, [&] { return MakeIndexFile(directory); });
    // Not before: while a file is open nobody replaces it, so the index that
    // was read belongs to the rows that were read.
    if (!create && !forWrite) directory->CloseDBdatei();
    return 1;
  });
}

int DBbase::OpenDatei(zWString const& path, bool forWrite, bool create) {
  return Guarded(0, [&] {
    return Open(zSplitPath(path).GetFileName(), forWrite, create);
  });
}

int DBbase::OpenDatabaseFile(bool forWrite, bool create,
                             DBDirectory*& directory) {
  if (directory != ManagerAccess::Current(*this)) return 0;
  return ManagerAccess::OpenFiles(*this, forWrite, create, nullptr);
}

int DBbase::Close(zWString const& name) {
  if (ManagerAccess::Current(*this) == nullptr) return 0;
  if (!name.isEmpty() && !FindFile(name)) return 0;
  auto* const closing = ManagerAccess::Current(*this);
  closing->CloseDBdatei();
  auto* const next = closing->Getnextdbdir();
  if (closing == ManagerAccess::First(*this)) {
    first_ = current_ = next;
  } else {
    auto* before = ManagerAccess::First(*this);
    while (before != nullptr && before->Getnextdbdir() != closing) {
      before = before->Getnextdbdir();
    }
    if (before == nullptr) return 0;
    before->Setnextdbdir(next);
    current_ = before;
  }
  catalogue_->Delete(closing);
  return 1;
}

DBbase* DBbase::ReOpen(bool forWrite) {
  return Guarded<DBbase*>(nullptr, [&]() -> DBbase* {
    auto* manager = GetDBBaseInstance();
    if (manager == nullptr) return nullptr;
    std::vector<zWString> const names = manager->names_;
    std::vector<std::vector<zWString>> const files = manager->files_;
    if (!Init(names, files)) return nullptr;
    manager = GetDBBaseInstance();
    for (auto const& name : names) {
      if (manager->Open(name, forWrite, false) == 0) return nullptr;
    }
    return manager;
  });
}

int DBbase::OpenTabelle(char const* name, DBTabelle*& table) {
  return Guarded(0, [&] {
    auto* const directory = ManagerAccess::Current(*this);
    if (ManagerAccess::First(*this) == nullptr || directory == nullptr ||
        !directory->FileIsOpen(false, false)) {
      return 0;
    }
    auto* const entry = directory->FindTable(name, directory->GetEntries());
    DirectoryAccess::SetCurrentTable(*directory, entry);
    if (entry == nullptr) return 0;
    return ManagerAccess::LoadTable(*directory, *entry, table);
  });
}

bool DBbase::NeueTabelle(char const* name, DBTabelle*& table) {
  return Guarded(false, [&] {
    auto* directory = ManagerAccess::First(*this);
    if (directory == nullptr) return false;
    while (directory->FindTable(name, directory->GetEntries()) == nullptr &&
           directory->Getnextdbdir() != nullptr) {
      directory = directory->Getnextdbdir();
    }
    current_ = directory;
    if (!directory->FileIsOpen(false, false)) return false;
    if (!directory->SelectTabelle(name)) return false;
    auto& entry = *directory->GetAktuelleTabelle();
    auto fresh = std::make_unique<DBTabelle>();
    fresh->SetDirEntry(&entry);
    if (TableAccess::SubTables(*fresh).size() != entry.GetNumberOfParts()) {
      return false;  // no memory
    }
    table = OpenedTables::Record(entry, std::move(fresh));
    table->SetOpen(true, 0);
    return true;
  });
}

namespace tabwerk {

int ManagerAccess::OpenForReplacement(DBbase& manager, zWString const& name,
                                      bool* made) {
  return Guarded(0, [&] {
    *made = false;
    if (!manager.FindFile(name)) return 0;
    return OpenFiles(manager, true, true, made);
  });
}

int ManagerAccess::OpenFiles(DBbase& manager, bool for_write, bool create,
                             bool* made) {
  auto* const directory = Current(manager);
  if (directory == nullptr) return 0;
  directory->CloseDBdatei();
  directory->ResetEntries();
  bool const opened = Guarded(false, [&] {
    if (!OpenAllFiles(*directory, for_write, create, made)) return false;
    if (!create) LoadAllTables(*directory);
    return true;
  });
  if (!opened) {
    // A database that does not open leaves the catalogue.
    (void)manager.Close(zWString());
    return 0;
  }
  return 1;
}

int ManagerAccess::LoadTable(DBDirectory& directory, DBDirEntry& entry,
                             DBTabelle*& table) {
  auto* const opened = OpenedTables::Current(entry);
  if (opened != nullptr && tabwerk::AllPartsLoaded(entry)) {
    table = opened;
    table->SelectZeile(0L);
    return 1;
  }
  auto fresh = std::make_unique<DBTabelle>();
  fresh->SetDirEntry(&entry);
  // An entry without parts has nothing to load and never counts as loaded; a
  // table without memory for its sub-tables has fewer than there are parts.
  auto& parts = DirectoryAccess::Parts(entry);
  bool ok =
      !parts.empty() && TableAccess::SubTables(*fresh).size() == parts.size();
  for (std::size_t i = 0; i < parts.size(); ++i) {
    ok = ok && fresh->ReadTabelle(i, &directory) &&
         fresh->ReadStrings(i, &directory);
    parts[i]->loaded = ok;
  }
  table = OpenedTables::Record(entry, std::move(fresh));
  if (!ok) return 0;
  table->SelectZeile(0L);
  return 1;
}

}  // namespace tabwerk
