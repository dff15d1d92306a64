// A database and its files in the library and in the plain model, for random
// operations.
#ifndef TABWERK_TESTS_SUPPORT_JUDGED_DATABASE_H
#define TABWERK_TESTS_SUPPORT_JUDGED_DATABASE_H

#include <cstdio>
#include <list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/judge.h"
#include "tests/support/plain_manager.h"
#include "tests/support/random_table.h"
#include "tests/support/table_judge.h"
#include "ztypes.h"

namespace tabwerk::test {

// Where the files of the database lie; empty at first.
class JudgedFolder {
 public:
  virtual ~JudgedFolder() = default;
  virtual zWString Path(std::string const& name) const = 0;
  // All files, sorted.
  virtual std::vector<std::string> Names() const = 0;
  // Empty for a file that is not there.
  virtual std::string Read(std::string const& name) const = 0;
  virtual void Write(std::string const& name, std::string_view bytes) = 0;
  virtual void Remove(std::string const& name) = 0;
};

// The database STOCK of one to three files.  Every operation is done by both
// and returns false as soon as they differ in an answer, in what is stored or
// in what lies on the disk; Difference tells in what.
class JudgedDatabase {
 public:
  // stream is open for reading and writing and holds nothing of value.
  // Borrows all that it is given.
  JudgedDatabase(Random& random, JudgedFolder& folder, FILE* stream);
  JudgedDatabase(JudgedDatabase const&) = delete;
  JudgedDatabase& operator=(JudgedDatabase const&) = delete;
  // Closes the database.
  ~JudgedDatabase();

  // Makes the files and opens them.
  bool Begin();
  // One call on the database as a whole, or what other programs do to its
  // files.
  bool DatabaseOperation();
  // One call on one of its tables.
  bool TableOperation();
  // All rows, texts, indices and selections.
  bool TablesAgree();
  // The files, the index among them.
  bool DiskAgrees();

  // What was done last and what the two say about it.
  std::string const& Difference() const { return difference_; }

 private:
  bool Agree(Outcome const& outcome);
  void Log(std::string const& what) { log_.push_back(what); }
  void PutFile(std::string const& name, model::FileImage image);
  void Configure() const;
  bool FileAgrees(std::string const& name, model::FileImage const& image);
  bool FetchTables();
  bool AfterOpening();

  bool Start();
  bool OpenAgain();
  bool ReOpen();
  bool Close();
  bool Write();
  bool WriteFails();
  bool WriteIndex();
  bool NewObject();
  bool AskCatalogue();
  bool NewFile();
  bool LoseIndex();
  bool ChangeIndex();

  Random& random_;
  JudgedFolder& folder_;
  FILE* stream_;
  model::Manager model_;
  // Bytes of the files that agree with the model's as these are now.
  std::map<std::string, std::string> agreed_;
  int progress_count_ = 0;
  std::list<TableJudge> judges_;
  std::vector<std::string> log_;
  std::string difference_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_JUDGED_DATABASE_H
