// A program that is started and ended, its shipped file and its user file.
#ifndef TABWERK_TESTS_END_TO_END_STORY_H
#define TABWERK_TESTS_END_TO_END_STORY_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/support/database_fixture.h"

namespace tabwerk::test {

using RowValues = std::map<std::string, std::wstring>;

// The rows of the shipped file's two tables.
struct Shipped {
  std::vector<std::string> articles;
  std::vector<std::string> colours;
};

// The database STOCK of MAIN.db, which the vendor ships, and USER.UDB.  Two
// tables, ARTIKEL and FARBE, have the columns ID, FOLGE, STATUS and NAME.
class StoryTest : public DatabaseTest {
 protected:
  StoryTest();

  // The file that the vendor ships: "1|1|0|Anna" and so on.
  void Ship(std::int64_t time_stamp, Shipped const& shipped,
            PlainHeader header = PlainHeader::kCurrent) const;
  // A user file of no bytes: the first save makes it a user file.
  void MakeEmptyUserFile() const;
  // Articles 1 Anna, 2 Bert, 3 Carl and colours 1 red, 2 blue; an empty user
  // file that was saved once.
  void Install() const;

  // Opens both files for writing, as a program that was started anew.
  void Start() const;
  // The program ends; nothing of the library is left in memory.
  static void End();
  static bool Save();
  // Save, end and start.
  void SaveAndRestart() const;
  // What the upkeep of the index answers when the files are opened again: -1
  // read, 1 written, 2 in memory only.
  static int IndexResult();

  static bool Put(DBTabelle::Action action, RowValues values,
                  char const* table = "ARTIKEL");
  static bool Append(std::wstring const& name);
  // Sets a number in the row of that ID.
  static bool SetById(long id, char const* column, long value,
                      char const* table = "ARTIKEL");

  // The names at the places 1, 2, 3 …; "-" for a place without a row.
  static std::string InOrder(char const* table = "ARTIKEL");
  // The rows of a table as the file on the disk has them.
  std::string OnDisk(char const* file, char const* table = "ARTIKEL") const;
  // Index sections of a table on the disk, in the order of the tables in
  // memory; "-" without an index.
  std::string IndexOnDisk(std::size_t table) const;

  std::string messages_;  // "[text][clear]"

 private:
  static void Note(void* context, zWString const* text);
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_END_TO_END_STORY_H
