#include "DBbase.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "base/catalogue.h"
#include "base/manager_access.h"
#include "base/translation.h"
#include "platform/guarded.h"
#include "schema/directory_access.h"

using tabwerk::Catalogue;
using tabwerk::Guarded;
using tabwerk::ManagerAccess;

DBbase* DBbase::_instance = nullptr;
short DBbase::sprache = 0;

DBbase* DBbase::GetDBBaseInstance() {
  return Guarded<DBbase*>(nullptr, [] {
    if (_instance == nullptr) _instance = new DBbase();
    return _instance;
  });
}

DBbase::DBbase() : catalogue_(std::make_shared<Catalogue>()) {}

DBbase::DBbase(DBDirectory* directory) : DBbase() {
  current_ = borrowed_ = directory;
}

DBbase::DBbase(DBbase const& other) = default;

DBbase& DBbase::operator=(DBbase const& other) {
  // All copies that may fail come first.
  DBbase copy(other);
  current_ = copy.current_;
  first_ = copy.first_;
  borrowed_ = copy.borrowed_;
  names_ = std::move(copy.names_);
  files_ = std::move(copy.files_);
  catalogue_ = std::move(copy.catalogue_);
  return *this;
}

DBbase::~DBbase() = default;

bool DBbase::Init(std::vector<zWString> const& names,
                  std::vector<std::vector<zWString>> const& files) {
  return Guarded(false, [&] {
    // Built before the old instance goes: the arguments may live inside it.
    ManagerAccess::Install(ManagerAccess::Make(names, files));
    return true;
  });
}

void DBbase::AddFiles(std::vector<zWString> const& names,
                      std::vector<std::vector<zWString>> const& files,
                      DBbase* target) {
  if (target == nullptr) return;
  (void)Guarded(false, [&] {
    ManagerAccess::AddDatabases(names, files, *target);
    return true;
  });  // void by contract: without memory the remaining ones are not added
}

void DBbase::GetInit(std::vector<zWString>& names,
                     std::vector<std::vector<zWString>>& files) const {
  (void)Guarded(false, [&] {
    auto names_copy = names_;
    auto files_copy = files_;
    names = std::move(names_copy);
    files = std::move(files_copy);
    return true;
  });  // void by contract: without memory the arguments stay as they are
}

bool DBbase::SelectDB(zWString const& name) { return FindFile(name); }

bool DBbase::FindFile(zWString const& name) {
  return Guarded(false, [&] {
    auto* const found = ManagerAccess::Find(*this, name);
    if (found != nullptr) current_ = found;
    return found != nullptr;
  });
}

int DBbase::FindLastFile() {
  current_ = ManagerAccess::First(*this);
  while (current_ != nullptr && current_->Getnextdbdir() != nullptr) {
    current_ = current_->Getnextdbdir();
  }
  return 1;
}

int DBbase::FilesCount() const {
  std::uint16_t count = 0;
  for (auto* directory = ManagerAccess::First(*this); directory != nullptr;
       directory = directory->Getnextdbdir()) {
    ++count;
  }
  return count;
}

bool DBbase::NotRegistered(zWString const& name) const {
  return std::find(names_.begin(), names_.end(), name) == names_.end();
}

DBDirectory* DBbase::GetDirectory() { return ManagerAccess::Current(*this); }

void DBbase::SetSprache(short language) { sprache = language; }

void DBbase::DBTranslate(zWString& text) {
  if (!tabwerk::HasTranslation(text.view())) return;
  (void)Guarded(false, [&] {
    std::u16string translated(text.view());
    tabwerk::TranslateText(translated);
    text = zWString(std::move(translated));
    return true;
  });  // void by contract: without memory the text stays as it is
}

namespace tabwerk {

short CurrentLanguage() noexcept { return ManagerAccess::Language(); }

std::unique_ptr<DBbase> ManagerAccess::Make(
    std::vector<zWString> const& names,
    std::vector<std::vector<zWString>> const& files) {
  std::unique_ptr<DBbase> fresh(new DBbase());
  AddDatabases(names, files, *fresh);
  fresh->current_ = fresh->first_;
  fresh->names_ = names;
  fresh->files_ = files;
  return fresh;
}

void ManagerAccess::Install(std::unique_ptr<DBbase> fresh) noexcept {
  std::unique_ptr<DBbase> const old(
      std::exchange(DBbase::_instance, fresh.release()));
  // Copies of the old instance must not keep its files open.
  if (old != nullptr) old->catalogue_->Clear();
}

void ManagerAccess::AddDatabases(
    std::vector<zWString> const& names,
    std::vector<std::vector<zWString>> const& files, DBbase& target) {
  for (std::size_t i = 0; i < files.size(); ++i) {
    auto const name = i < names.size() ? names[i] : zWString();
    // Compared with the stored configuration only, which Init fills after this:
    // one name given twice makes two databases.
    if (!target.NotRegistered(name)) continue;
    auto* const first = First(target);
    auto* const directory = target.catalogue_->Add();
    directory->Initialize(name, files[i]);
    if (directory->GetNumberFiles() != files[i].size()) throw std::bad_alloc();
    directory->Setnextdbdir(first);
    target.first_ = directory;
  }
}

DBDirectory* ManagerAccess::Find(DBbase const& manager, zWString const& name) {
  // Only the key is cut and upper-cased, not the stored names: a database that
  // was configured as "Stock" or "A.B" is never found.
  auto const stem = name.view().substr(0, name.view().find(u'.'));
  auto const key = zWString(stem).ToUpper();
  auto* directory = First(manager);
  while (directory != nullptr && DirectoryAccess::Name(*directory) != key) {
    directory = directory->Getnextdbdir();
  }
  return directory;
}

DBDirectory* ManagerAccess::Current(DBbase const& manager) {
  auto* const current = manager.current_;
  bool const usable = manager.catalogue_->Owns(current) ||
                      (current != nullptr && current == manager.borrowed_);
  return usable ? current : nullptr;
}

DBDirectory* ManagerAccess::First(DBbase const& manager) {
  return manager.catalogue_->Owns(manager.first_) ? manager.first_ : nullptr;
}

}  // namespace tabwerk
