// Directories and their entries without memory.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DBDirectory.h"
#include "platform/platform.h"
#include "schema/directory_access.h"
#include "tests/support/database_fixture.h"
#include "tests/support/plain_database.h"
#include "tests/support/private_temp.h"
#include "tests/sweeps/memory_operations.h"

namespace tabwerk::test {
namespace {

constexpr char kIdAndName[] = "integer ID,string NAME_OF_THE_ROW\n";

// Two files in a folder, the second one of other rows.
class Files {
 public:
  Files() {
    Make("MAIN.db", {"1|Anna", "2|Bert"});
    Make("USER.UDB", {"20000|Carl"});
  }
  zWString Path(char const* name) const { return folder_.Path(name); }
  std::string Bytes(char const* name) const { return folder_.ReadBytes(name); }

 private:
  void Make(char const* name, std::vector<std::string> const& rows) const {
    WriteFileBytes(
        folder_.PathUtf8(name),
        EncodeDatabase({PlainHeader::kCurrent,
                        1000,
                        {{"A", kIdAndName, rows}, {"B", kIdAndName, {}}}}));
  }
  TempFolder folder_;
};

std::string Describe(DBDirectory const& directory) {
  std::string text = directory.GetName().toUtf8() + " " +
                     std::to_string(directory.FileIsOpen(false, false));
  for (std::size_t i = 0; i < directory.GetNumberFiles(); ++i) {
    zSplitPath const path(directory.GetFileiName(i));
    text += " " + path.GetFileName().toUtf8() +
            (directory.GetFileOpen(i) != 0 ? " open" : "") +
            (directory.GetFile(i) != nullptr ? " stream" : "");
  }
  for (auto* entry = directory.GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    text += std::string(" ") + entry->GetName() + ":";
    for (auto const& part : DirectoryAccess::Parts(*entry)) {
      text += std::to_string(part->row_count) + "@" +
              std::to_string(part->row_block_offset) + ",";
    }
  }
  return text;
}

// A directory of both files, the first one read, and one of a single table.
struct Directories {
  Directories() {
    directory.Initialize(W("A DATABASE OF A LONG NAME"), names);
    EXPECT_TRUE(directory.OpenDBdatei(0, false, false));
    directory.SelectTabelle("A");
    EXPECT_EQ(
        1, other.AddEntry(new DBDefinition(kIdAndName), "A",
                          W("elsewhere, at a long path"), true, 3, 0, 0, 0, 0));
  }
  ~Directories() {
    if (stream != nullptr) (void)platform::Close(stream);
  }
  void OpenStream(char const* file, platform::Mode mode) {
    auto error = platform::Error::kNone;
    stream = platform::OpenFile(files.Path(file), mode,
                                platform::Share::kDenyNone, &error);
    EXPECT_NE(nullptr, stream);
  }
  std::string State() const {
    return Describe(directory) + "\n" + Describe(other) + "\n" +
           (copy ? Describe(*copy) : "") + files.Bytes("USER.UDB") + "\n" +
           zSplitPath(text).GetFileName().toUtf8() +
           std::to_string(stamps.size()) + (entry != nullptr ? "entry" : "");
  }

  Files files;
  std::vector<zWString> const names{files.Path("MAIN.db"),
                                    files.Path("USER.UDB")};
  zWString const name =
      W("ANOTHER DATABASE OF A NAME " + std::string(300, 'N'));
  DBDirectory directory;
  DBDirectory other;
  std::optional<DBDirectory> copy;
  FILE* stream = nullptr;
  zWString text;
  std::vector<long long> stamps;
  std::unique_ptr<DBDirEntry> entry;
};

// With the second file open as a stream.
struct WithStream : Directories {
  WithStream() { OpenStream("USER.UDB", platform::Mode::kRead); }
};

// With a new definition to add.
struct WithDefinition : Directories {
  DBDefinition* definition = new DBDefinition(kIdAndName);
};

using D = Directories;

std::vector<Operation> DirectoryWithoutNeed() {
  return {
      In<D>(Promise::kNeedsNone,
            {"DBDirEntry::~DBDirEntry()", "DBDirEntry::GetName() const",
             "DBDirEntry::GetDefinition() const", "DBDirEntry::GetNext() const",
             "DBDirEntry::GetPrevious() const",
             "DBDirEntry::GetNumberOfParts() const",
             "DBDirEntry::GetPartRows(unsigned long) const",
             "DBDirEntry::GetPartLoaded(unsigned long) const"},
            [](D& d) {
              auto* const first = d.directory.GetEntries();
              return first->GetName()[0] == 'B' &&
                     first->GetDefinition() != nullptr &&
                     first->GetNext()->GetPrevious() == first &&
                     first->GetNumberOfParts() == 1 &&
                     first->GetPartRows(0) == 0 && !first->GetPartLoaded(0);
            }),
      In<D>(Promise::kNeedsNone,
            {"DBDirectory::DBDirectory()", "DBDirectory::~DBDirectory()",
             "DBDirectory::AdjustOffset(long, unsigned long)",
             "DBDirectory::CloseDBdatei()",
             "DBDirectory::FileIsOpen(bool, bool) const",
             "DBDirectory::FindTable(char const*, DBDirEntry*) const",
             "DBDirectory::GetAktuelleTabelle() const",
             "DBDirectory::GetAnzahlZeilen() const",
             "DBDirectory::GetCharFactor() const",
             "DBDirectory::GetDefinition() const",
             "DBDirectory::GetEntries() const",
             "DBDirectory::GetFile(unsigned long) const",
             "DBDirectory::GetFileOpen(unsigned long) const",
             "DBDirectory::GetNumberFiles() const",
             "DBDirectory::GetNumberOfFiles() const",
             "DBDirectory::GetUserFile() const",
             "DBDirectory::Getnextdbdir() const", "DBDirectory::ResetEntries()",
             "DBDirectory::Setnextdbdir(DBDirectory*)"},
            [](D& d) {
              DBDirectory const empty;
              auto& own = d.directory;
              bool const found =
                  own.FindTable("A", own.GetEntries()) != nullptr &&
                  own.GetAktuelleTabelle() != nullptr &&
                  own.GetDefinition() != nullptr &&
                  own.GetAnzahlZeilen() == 2 && own.GetCharFactor() == 1 &&
                  own.GetFile(0) != nullptr && own.GetFileOpen(0) == 1 &&
                  own.GetNumberFiles() == own.GetNumberOfFiles() &&
                  own.GetUserFile() == 1 && !own.FileIsOpen(true, false) &&
                  own.Setnextdbdir(nullptr) == 1 &&
                  own.Getnextdbdir() == nullptr && own.AdjustOffset(1, 0) == 1;
              own.ResetEntries();
              return found && own.CloseDBdatei() && !empty.FileIsOpen(0, 0);
            }),
      In<D>(Promise::kNeedsNone,
            {"DBDirectory::GetOffsetStrings(unsigned long) const",
             "DBDirectory::GetOffsetTabelle(unsigned long) const",
             "DBDirectory::GetSizeStrings(unsigned long) const",
             "DBDirectory::SelectTabelle(char const*)",
             "DBDirectory::SetFileOpen(unsigned long, bool)",
             "DBDirectory::SetOffsetStrings(long, unsigned long)",
             "DBDirectory::SetOffsetTabelle(long, unsigned long)"},
            [](D& d) {
              auto& own = d.directory;
              own.SetFileOpen(1, true);
              bool const selected = own.SelectTabelle("A");
              own.SetOffsetTabelle(7, 0);
              own.SetOffsetStrings(8, 0);
              return selected && own.GetOffsetTabelle(0) == 7 &&
                     own.GetOffsetStrings(0) == 8 && own.GetSizeStrings(0) > 0;
            }),
      In<WithStream>(
          Promise::kNeedsNone,
          {"DBDirectory::ReadFileVersion(FILE*, short&, long long&)"},
          [](WithStream& d) {
            short version = 0;
            long long stamp = 0;
            return DBDirectory::ReadFileVersion(d.stream, version, stamp) &&
                   stamp == 1000;
          }),
  };
}

std::vector<Operation> MakingFiles() {
  return {
      In<D>(Promise::kThrows, {"DBDirEntry::DBDirEntry()"},
            [](D& d) {
              d.entry = std::make_unique<DBDirEntry>();
              return true;
            }),
      In<D>(Promise::kPart, {"DBDirectory::DBDirectory(DBDirectory const&)"},
            [](D& d) {
              d.copy.emplace(d.directory);
              return d.copy->GetNumberFiles() == 2;
            },
            {[](D& d) { d.copy.emplace(); }}),
      In<D>(Promise::kSilent, {"DBDirectory::operator=(DBDirectory const&)"},
            [](D& d) {
              d.other = d.directory;
              return true;
            }),
      In<D>(Promise::kSilent, {"DBDirectory::Initialize("},
            [](D& d) {
              d.other.Initialize(d.name, d.names);
              return true;
            }),
      In<D>(Promise::kSilent,
            {"DBDirectory::SetFileName(unsigned long, zWString const&)"},
            [](D& d) {
              d.directory.SetFileName(1, d.name);
              return true;
            }),
      In<D>(Promise::kSilent, {"DBDirectory::GetName() const"},
            [](D& d) {
              d.text = d.directory.GetName();
              return true;
            }),
      In<D>(Promise::kSilent,
            {"DBDirectory::GetFileiName(unsigned long) const"},
            [](D& d) {
              d.text = d.directory.GetFileiName(0);
              return true;
            }),
      In<D>(Promise::kSilent, {"DBDirectory::GetTimeStamps() const"},
            [](D& d) {
              d.stamps = d.directory.GetTimeStamps();
              return true;
            }),
      In<WithStream>(Promise::kSilent,
                     {"DBDirectory::SetFile(unsigned long, FILE*)"},
                     [](WithStream& d) {
                       d.directory.SetFile(1, d.stream);
                       // Without memory it is still the caller's.
                       if (d.directory.GetFile(1) != nullptr) {
                         d.stream = nullptr;
                       }
                       return true;
                     }),
  };
}

std::vector<Operation> Tables() {
  return {
      In<WithDefinition>(Promise::kPart, {"DBDirectory::AddEntry("},
                         [](WithDefinition& d) {
                           // The directory takes the definition, whatever the
                           // result.
                           auto* const taken =
                               std::exchange(d.definition, nullptr);
                           return d.other.AddEntry(taken, "ANOTHER", d.name,
                                                   false, 0, 0, 0, 0, 0) == 1;
                         }),
      In<D>(Promise::kFails, {"DBDirectory::Merge(DBDirEntry*, DBDirEntry*)"},
            [](D& d) {
              return d.directory.Merge(d.directory.GetEntries(),
                                       d.other.GetEntries());
            }),
      In<D>(Promise::kPart, {"DBDirectory::OpenDBdatei("},
            [](D& d) { return d.directory.OpenDBdatei(1, true, false); },
            // The stream is open, its tables are not read.
            {[](D& d) {
              d.OpenStream("USER.UDB", platform::Mode::kRead);
              d.directory.SetFile(1, std::exchange(d.stream, nullptr));
            }}),
      In<WithStream>(
          Promise::kFails, {"DBDirectory::ReadFromFile(FILE*, int)"},
          [](WithStream& d) { return d.directory.ReadFromFile(d.stream, 1); }),
  };
}

// Writes the first file's directory to a file of its own.
struct WritingDirectory : Directories {
  WritingDirectory() {
    OpenStream("written.db", platform::Mode::kCreateUpdate);
  }
};

}  // namespace

std::vector<Operation> DirectoryOperations() {
  auto all = DirectoryWithoutNeed();
  for (auto const& more : {MakingFiles(), Tables()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  all.push_back(In<WritingDirectory>(
      Promise::kFails, {"DBDirectory::WriteToFile(FILE*, unsigned long)"},
      [](WritingDirectory& d) {
        return d.directory.WriteToFile(d.stream, 0) == 1;
      }));
  return all;
}

class SweepMemoryDirectories : protected PrivateTemp, public testing::Test {};

TEST_F(SweepMemoryDirectories, EveryAllocation) {
  SweepOperations(DirectoryOperations());
}

}  // namespace tabwerk::test
