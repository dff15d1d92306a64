// A second, plain implementation of what the manager does with the files of
// one database: opening, the index file, writing.
//
// The disk is modelled, too, so that what the library leaves there can be
// compared with what ought to be there.
#ifndef TABWERK_TESTS_SUPPORT_PLAIN_MANAGER_H
#define TABWERK_TESTS_SUPPORT_PLAIN_MANAGER_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/plain_database.h"
#include "tests/support/plain_model.h"

namespace tabwerk::test::model {

// A database file.
struct FileImage {
  struct Table {
    std::string name;
    std::string definition;
    Part part;
  };
  PlainHeader header = PlainHeader::kCurrent;
  std::int64_t time_stamp = 1000;
  std::vector<Table> tables;  // in file order
};

// The same with rows as texts, for the reader and writer of files.
PlainDatabase ToPlain(FileImage const& image);

class Manager {
 public:
  // Name of every file, in order.
  explicit Manager(std::vector<std::string> files) : files_(std::move(files)) {}

  // What lies on the disk.  An index that cannot be read is none.
  std::map<std::string, FileImage> disk;
  std::optional<PlainIndex> index;
  // How often a progress text was shown.
  int progress_count = 0;

  // Gives a file that was put on the disk the blocks that its writer makes:
  // every string with a text of its own, reals as their texts read.
  void CompactOnDisk(std::string const& file);

  std::vector<std::string> const& files() const { return files_; }
  // Position of the user file, or -1.
  int UserFile() const;
  bool HasIndexFile() const { return UserFile() > 0; }
  // Name of the file that Write of that kind replaces; nothing without one.
  std::optional<std::size_t> FileToWrite(bool user) const;

  // Reads all files and brings the index up to date.
  void Open(bool for_write);
  // What DBDirectory::FileIsOpen says.
  bool IsOpen(bool for_write) const;
  // As Open for a database that may be open already.
  void OpenUnlessOpen(bool for_write);
  // Names of the tables in the order of the directory.
  std::vector<std::string> TableNames() const;
  // The table on row 0; null when there is none.
  Table* OpenTable(std::string const& name);
  // A new object over the rows of a table; null when there is none.
  Table* NewTable(std::string const& name);
  // 2, or 0 without an index file.
  int WriteIndexToFile();
  // Writes file number file as target with that time stamp and opens anew.
  void Write(std::size_t file, std::string const& target,
             std::int64_t time_stamp);

 private:
  // A table of the directory and all objects that were made for it.
  struct OpenedTable {
    Entry entry;
    std::string definition;
    std::vector<std::size_t> rows_in_file;
    std::deque<Table> objects;
  };

  void ReadFiles();
  void MakeIndexFile();
  bool IndexFits(bool same_stamps) const;
  std::vector<std::int64_t> TimeStamps() const;
  PlainIndex BuildIndex(std::vector<std::int64_t> const& time_stamps) const;
  OpenedTable* Find(std::string const& name);
  bool RowCountsAreThoseOfTheFiles() const;

  std::vector<std::string> files_;
  std::vector<std::unique_ptr<OpenedTable>> tables_;  // directory order
  bool open_for_write_ = false;
};

}  // namespace tabwerk::test::model

#endif  // TABWERK_TESTS_SUPPORT_PLAIN_MANAGER_H
