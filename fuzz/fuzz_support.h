// What the fuzz targets share: claims, a folder of their own, and the library
// closed again behind every input.
#ifndef TABWERK_FUZZ_FUZZ_SUPPORT_H
#define TABWERK_FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "DBTabelle.h"
#include "ztypes.h"

namespace tabwerk::fuzz {

// Ends the process, and tells the claim, when it does not hold.
void Require(bool holds, std::string_view claim);
// The same for two texts that have to be equal; tells both.
void RequireEqual(std::string_view expected, std::string_view got,
                  std::string_view claim);

// The bytes of an input as text, and the 16-bit units in it (little-endian; an
// odd last byte is left out).
std::string_view AsText(std::span<std::uint8_t const> bytes);
std::u16string AsUnits(std::span<std::uint8_t const> bytes);
// The bytes of a file; none when it cannot be read.
std::string ReadWhole(std::filesystem::path const& path);

// Two folders of this process alone, removed at its end: one for files and one
// for temporary files.  The seam of the fuzz targets lets the library reach
// nothing else.  File names are ASCII.
class PrivateFolder {
 public:
  static PrivateFolder& Get();
  PrivateFolder(PrivateFolder const&) = delete;
  PrivateFolder& operator=(PrivateFolder const&) = delete;

  std::string Path(std::string const& name) const;
  void Write(std::string const& name, std::string_view bytes) const;
  void Remove(std::string const& name) const;
  // Removes all files.
  void Clear() const;
  // Name and content of every file that is there; those for temporary use have
  // kTemporary in front.
  static constexpr std::string_view kTemporary = "temporary:";
  std::map<std::string, std::string> Files() const;
  // True for a path that lies in one of the two, once "." and ".." are carried
  // out.
  bool Holds(std::filesystem::path const& path) const;
  // A path beside the two folders.
  std::filesystem::path Aside(char const* name) const { return root_ / name; }
  // With a separator at its end.
  std::filesystem::path TemporaryFiles() const;
  std::filesystem::path const& path() const { return folder_; }

 private:
  PrivateFolder();
  ~PrivateFolder();

  std::filesystem::path root_;
  std::filesystem::path folder_;
  std::filesystem::path temporary_;
};

// Makes the private folder the working folder while it lives.
class InPrivateFolder {
 public:
  InPrivateFolder();
  ~InPrivateFolder();
  InPrivateFolder(InPrivateFolder const&) = delete;
  InPrivateFolder& operator=(InPrivateFolder const&) = delete;

 private:
  std::filesystem::path before_;
};

// Closes all databases; requires that no stream is left open.
void CloseLibrary();

// Streams that the library has opened and not yet closed.
int OpenStreams();

// Every value of every row of a table, as one text; requires that each can be
// read as its column's type and as no other.  A string that lies outside the
// store reads as empty.
enum class Columns : std::uint8_t {
  kAll,
  kNotOrder,  // all but FOLGE and STATUS, which every save may renumber
};
std::string ContentOf(DBTabelle& table, Columns columns = Columns::kAll);
// The same for all tables of the manager's current database, by name.  A table
// that cannot be loaded reads as "(not loaded)".  Tables of one name are left
// out: which of them the name means changes with every save.
std::map<std::string, std::string> ContentOfDatabase(
    Columns columns = Columns::kAll);
inline constexpr std::string_view kNotLoaded = "(not loaded)";

// Makes the files the database of that name and opens it.
bool OpenDatabase(char16_t const* name,
                  std::initializer_list<char const*> files, bool for_write);

}  // namespace tabwerk::fuzz

#endif  // TABWERK_FUZZ_FUZZ_SUPPORT_H
