// A test with a folder of its own, databases in it and the manager.
#ifndef TABWERK_TESTS_SUPPORT_DATABASE_FIXTURE_H
#define TABWERK_TESTS_SUPPORT_DATABASE_FIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DBbase.h"
#include "tests/support/plain_database.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {

zWString W(std::string const& utf8);

// Every test gets an empty folder.  Afterwards the manager is empty, the
// language 0, no stream is open and the folder is gone.
class DatabaseTest : public testing::Test {
 protected:
  DatabaseTest();
  ~DatabaseTest() override;

  // Path of a file in the test's folder.
  std::string Path(std::string const& name) const;
  bool FileExists(std::string const& name) const;
  // Names of all files in the folder, sorted: "MAIN.db STOCK.idx".
  std::string Files() const;
  std::vector<unsigned char> Bytes(std::string const& name) const;

  void MakeFile(std::string const& name, PlainDatabase const& database) const;
  // One table ARTIKEL (ID, FOLGE, STATUS, NAME) with these rows.
  void MakeArticles(std::string const& name, std::int64_t time_stamp,
                    std::vector<std::string> const& rows) const;

  // Makes the manager know one database of these files.
  void Configure(std::string const& name,
                 std::vector<std::string> const& files) const;
  // The manager's database STOCK of MAIN.db and USER.UDB, opened for writing.
  void OpenStock(bool for_write = true) const;

  static DBbase* Manager() { return DBbase::GetDBBaseInstance(); }
  // The table, or null.
  static DBTabelle* Table(char const* name);
  // Values of a column by row: "[Anna][Bert]", numbers and texts.
  static std::string Column(DBTabelle* table, char const* column);
  // "[1|1|0|Anna]…" of all columns of the manager's table.
  static std::string Rows(char const* table);
  // Appends a user row and sets its columns ID, FOLGE, STATUS and NAME.
  static void AddArticle(DBTabelle* table, long id, long folge,
                         std::string const& name);
  static bool SetNumber(DBTabelle* table, long row, char const* column,
                        long value);
  static bool SetText(DBTabelle* table, long row, char const* column,
                      std::string const& text);

  static constexpr char kArticles[] =
      "integer ID,integer FOLGE,integer STATUS,string NAME\n";

 private:
  TempFolder folder_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_DATABASE_FIXTURE_H
