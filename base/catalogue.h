// Ownership of the directories that a manager and its copies share.
#ifndef TABWERK_BASE_CATALOGUE_H
#define TABWERK_BASE_CATALOGUE_H

#include <memory>
#include <vector>

#include "DBDirectory.h"

namespace tabwerk {

// Owns the directories of a manager.  The managers that share it hold plain
// pointers into it and ask Owns before they use one: another of them may have
// closed the database meanwhile.
class Catalogue {
 public:
  Catalogue() = default;
  Catalogue(Catalogue const&) = delete;
  Catalogue& operator=(Catalogue const&) = delete;
  ~Catalogue() { Clear(); }

  // Makes a new directory; throws std::bad_alloc.
  DBDirectory* Add();
  bool Owns(DBDirectory const* directory) const noexcept;
  void Delete(DBDirectory* directory) noexcept;
  // Deletes all directories, front to back of the chain: the newest first.
  void Clear() noexcept;

 private:
  std::vector<std::unique_ptr<DBDirectory>> directories_;
};

}  // namespace tabwerk

#endif  // TABWERK_BASE_CATALOGUE_H
