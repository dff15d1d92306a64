// A database and its files judged by the plain model on random operations.
//
// TABWERK_SEED and TABWERK_OPERATIONS as for the tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "DBbase.h"
#include "platform/platform.h"
#include "tests/support/database_fixture.h"
#include "tests/support/judge.h"
#include "tests/support/plain_manager.h"
#include "tests/support/plain_model.h"
#include "tests/support/random_values.h"
#include "tests/support/table_judge.h"
#include "tests/support/table_state.h"
#include "tests/support/temp_folder.h"

namespace {

namespace model = tabwerk::test::model;
namespace platform = tabwerk::platform;
using model::FileImage;
using std::to_string;
using tabwerk::test::AnyOf;
using tabwerk::test::EncodeDatabase;
using tabwerk::test::Outcome;
using tabwerk::test::PlainHeader;
using tabwerk::test::PlainIndex;
using tabwerk::test::Random;
using tabwerk::test::ReadDatabase;
using tabwerk::test::ReadFileBytes;
using tabwerk::test::TableJudge;
using tabwerk::test::W;
using tabwerk::test::WriteFileBytes;

constexpr int kOperations = 5000;
constexpr int kOperationsPerSequence = 250;
constexpr int kOperationsPerFullState = 50;

using Strings = std::vector<std::string>;

std::array<Strings, 6> const kFiles{
    Strings{"MAIN.db", "USER.UDB"}, Strings{"MAIN.db", "USER.UDB"},
    // The user's rows lie in the last of three files, new ones in the second.
    Strings{"MAIN.db", "EXTRA.db", "USER.UDB"},
    // Without an index file.
    Strings{"MAIN.db"}, Strings{"USER.UDB"}, Strings{"MAIN.db", "USER.udb"}};

constexpr std::array kTables{
    std::pair{
        "ARTIKEL",
        "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n"},
    std::pair{"GRUPPE",
              "integer ID,integer FOLGE,integer STATUS,string NAME,"
              "string BEZ_DIN\n"},
    std::pair{"LISTE", "string NAME,integer FOLGE,integer ID\n"},
    std::pair{"REST", "string A,real B\n"},
    std::pair{"WERTE", "integer ID,real FOLGE,integer STATUS,integer N\n"}};

class ModelDatabase : public tabwerk::test::DatabaseTest {
 protected:
  ModelDatabase() {
    model::SetLanguage(0);
    auto error = platform::Error::kNone;
    stream_ = platform::OpenFile(scratch_.Path("section"),
                                 platform::Mode::kCreateUpdate,
                                 platform::Share::kDenyNone, &error);
    zSplashMessage::GetSplashMessage()->SetCallback(
        [](void* count, zWString const* text) {
          if (text != nullptr) ++*static_cast<int*>(count);
        },
        &progress_count_);
  }
  ~ModelDatabase() override {
    model::SetLanguage(0);
    (void)platform::Close(stream_);
  }

  // --- Making files ---------------------------------------------------------

  // A row of a file.
  static void AddFileRow(Random& random, FileImage::Table* table) {
    auto const definition = model::ParseDefinition(table->definition);
    auto const values = AnyFileRow(random, definition, 15);
    // Lone surrogates come into files through the library only.
    auto const whole = zWString::fromUtf8(zWString(values).toUtf8());
    model::AppendRow(definition, std::u16string(whole.view()), &table->part);
  }

  static FileImage AnyFile(Random& random, bool is_first) {
    FileImage image;
    auto const headers = std::array{
        PlainHeader::kCurrent, PlainHeader::kCurrent, PlainHeader::kCurrent,
        PlainHeader::k2018,    PlainHeader::k2016,    PlainHeader::kNone};
    image.header = AnyOf(random, headers);
    image.time_stamp = random.Between(1, 5000);
    for (auto const& [name, definition] : kTables) {
      if (random.OneIn(is_first ? 3 : 6)) continue;
      image.tables.push_back({name, definition, {}});
      for (int i = random.Between(0, 8); i > 0; --i) {
        AddFileRow(random, &image.tables.back());
      }
    }
    if (image.tables.empty())
      image.tables.push_back({"REST", kTables[3].second, {}});
    if (random.OneIn(3)) {
      std::reverse(image.tables.begin(), image.tables.end());
    }
    return image;
  }

  // Rows come, go and change places; now and then a table comes or goes.
  static void ChangeFile(Random& random, FileImage* image) {
    for (auto& table : image->tables) {
      auto& rows = table.part.rows;
      if (!rows.empty() && random.OneIn(2)) rows.erase(rows.begin());
      if (random.OneIn(2)) std::reverse(rows.begin(), rows.end());
      for (int i = random.Between(0, 3); i > 0; --i) {
        AddFileRow(random, &table);
      }
    }
    if (random.OneIn(8) && image->tables.size() > 1) {
      image->tables.pop_back();
    } else if (random.OneIn(8)) {
      std::reverse(image->tables.begin(), image->tables.end());
    }
    image->time_stamp += random.OneIn(6) ? 0 : 1;
  }

  void PutFile(std::string const& name, FileImage image) {
    auto const plain = model::ToPlain(image);
    WriteFileBytes(Path(name), EncodeDatabase(plain));
    // What was written has a store of its own for every text.
    model_->disk[name] = std::move(image);
    model_->CompactOnDisk(name);
  }

  // --- Comparing ------------------------------------------------------------

  bool Agree(Outcome const& outcome) {
    if (outcome.expected == outcome.got) return true;
    ADD_FAILURE() << outcome.what << "\nexpected " << outcome.expected
                  << "\ngot      " << outcome.got << "\nafter\n"
                  << tabwerk::test::Tail(log_);
    return false;
  }

  static std::string Text(tabwerk::test::PlainDatabase const& database) {
    std::string text = to_string(static_cast<int>(database.header));
    for (auto const& table : database.tables) {
      text += "\n" + table.name + " " + table.definition +
              RowsOf(database, table.name);
    }
    return text;
  }

  static std::string Text(PlainIndex const& index) {
    auto text = tabwerk::test::ShownNumbers(index.time_stamps);
    for (auto const& table : index.tables) text += "\n" + Describe(table);
    return text;
  }

  // The files, the index and the directory's tables.
  bool DiskAgrees() {
    for (auto const& [name, image] : model_->disk) {
      auto const bytes = ReadFileBytes(Path(name));
      auto const found = tabwerk::test::DecodeDatabase(bytes);
      if (!found) return Agree({name, "a database file", "damaged"});
      // Nothing but the texts of the rows lies in the string blocks.
      auto const size = EncodeDatabase(*found).size();
      if (!Agree({name, Text(model::ToPlain(image)), Text(*found)}) ||
          !Agree({name + " size", to_string(size), to_string(bytes.size())})) {
        return false;
      }
    }
    auto const index =
        FileExists("STOCK.idx")
            ? tabwerk::test::DecodeIndex(ReadFileBytes(Path("STOCK.idx")),
                                         model_->files().size())
            : std::nullopt;
    return Agree({"index file", model_->index ? Text(*model_->index) : "none",
                  index ? Text(*index) : "none"}) &&
           Agree({"progress texts", to_string(model_->progress_count),
                  to_string(progress_count_)});
  }

  bool TablesAgree() {
    for (auto& judge : judges_) {
      if (!Agree(judge.FullState())) return false;
    }
    return true;
  }

  // Fetches all tables anew after the database was opened.
  bool FetchTables(Random& random) {
    judges_.clear();
    auto& directory = *Manager()->GetDirectory();
    Strings names;
    for (auto* entry = directory.GetEntries(); entry != nullptr;
         entry = entry->GetNext()) {
      names.emplace_back(entry->GetName());
    }
    auto const expected = model_->TableNames();
    auto const joined = [](Strings const& list) {
      std::string text;
      for (auto const& name : list) text += name + " ";
      return text;
    };
    if (!Agree({"tables", joined(expected), joined(names)})) return false;
    for (auto const& name : expected) {
      DBTabelle* table = nullptr;
      int const opened = Manager()->OpenTabelle(name.c_str(), table);
      if (!Agree({"OpenTabelle " + name, "1", to_string(opened)})) return false;
      judges_.emplace_back(*table, *model_->OpenTable(name), random, stream_);
    }
    return true;
  }

  bool AfterOpening(Random& random) {
    return FetchTables(random) && DiskAgrees() && TablesAgree();
  }

  // --- Operations on the database -------------------------------------------

  void Log(std::string const& what) { log_.push_back(what); }

  // As a program that starts anew.
  bool Start(Random& random) {
    bool const for_write = !random.OneIn(4);
    Log(std::string("Init, Open ") + (for_write ? "for writing" : "to read"));
    judges_.clear();
    Configure("STOCK", model_->files());
    auto const opened = Manager()->Open(W("STOCK"), for_write, false);
    model_->Open(for_write);
    return Agree({"Open", "1", to_string(opened)}) && AfterOpening(random);
  }

  bool OpenAgain(Random& random) {
    bool const for_write = random.OneIn(2);
    bool const known = !random.OneIn(3);
    Log(std::string("Open ") + (known ? "again" : "of an unknown name"));
    judges_.clear();
    auto const opened =
        Manager()->Open(W(known ? "stock.db" : "NONE"), for_write, false);
    known ? model_->OpenUnlessOpen(for_write) : model_->Open(for_write);
    return Agree({"Open", "1", to_string(opened)}) && AfterOpening(random);
  }

  bool Write(Random& random) {
    int const kind = random.Between(0, 5);
    bool const user = kind >= 2;
    bool const other = kind == 1;
    auto const file = model_->FileToWrite(user);
    auto const name = kind == 0 ? "" : "STOCK";
    std::string const target = other  ? "COPY.db"
                               : file ? model_->files()[*file]
                                      : "";
    Log("Write " + target);
    judges_.clear();
    bool const written =
        Manager()->Write(W(name), user, other ? W(Path(target)) : W(""));
    if (!Agree({"Write", file ? "1" : "0", to_string(written)})) return false;
    if (!file) return FetchTables(random);
    auto const stamp = ReadDatabase(Path(target)).time_stamp;
    auto const old = model_->disk.find(target);
    auto const before = old == model_->disk.end() ? 0 : old->second.time_stamp;
    if (!Agree({"later stamp", "1", to_string(stamp > before)})) return false;
    model_->Write(*file, target, stamp);
    return AfterOpening(random);
  }

  bool WriteFails(Random& random) {
    Log("Write of an unknown database");
    bool const written = Manager()->Write(W("NONE"), true, W(""));
    return Agree({"Write", "0", to_string(written)}) && DiskAgrees() &&
           FetchTables(random);
  }

  bool WriteIndex() {
    Log("WriteIndexToFile");
    int const expected = model_->WriteIndexToFile();
    return Agree({"WriteIndexToFile", to_string(expected),
                  to_string(Manager()->WriteIndexToFile(nullptr))}) &&
           DiskAgrees() && TablesAgree();
  }

  bool NewObject(Random& random) {
    auto const name = AnyOf(random, kTables).first;
    Log(std::string("NeueTabelle ") + name);
    auto* const expected = model_->NewTable(name);
    DBTabelle* table = nullptr;
    bool const made = Manager()->NeueTabelle(name, table);
    if (expected != nullptr && made) {
      judges_.emplace_back(*table, *expected, random, stream_);
    }
    return Agree(
        {"NeueTabelle", to_string(expected != nullptr), to_string(made)});
  }

  // The vendor ships a new first file, or some program another one.
  bool NewFile(Random& random) {
    auto const last = static_cast<int>(model_->files().size()) - 1;
    auto const number = random.OneIn(3) ? random.Between(0, last) : 0;
    auto const& name = model_->files()[static_cast<std::size_t>(number)];
    Log("a new " + name);
    judges_.clear();
    DBbase::Init({}, {});
    auto image = model_->disk[name];
    ChangeFile(random, &image);
    PutFile(name, std::move(image));
    return Start(random);
  }

  bool LoseIndex(Random& random) {
    judges_.clear();
    DBbase::Init({}, {});
    auto bytes = ReadFileBytes(Path("STOCK.idx"));
    if (bytes.empty() || random.OneIn(2)) {
      Log("the index is gone");
      std::filesystem::remove(Path("STOCK.idx"));
    } else {
      Log("the index is damaged");
      random.OneIn(2) ? bytes.pop_back() : bytes.push_back('I');
      WriteFileBytes(Path("STOCK.idx"), bytes);
    }
    model_->index.reset();
    return Start(random);
  }

  // The user's order and status of all rows changed: they stand in the index.
  bool ChangeIndex(Random& random) {
    if (!model_->index) return true;
    Log("another order in the index");
    judges_.clear();
    DBbase::Init({}, {});
    for (auto& table : model_->index->tables) {
      std::reverse(table.folge.begin(), table.folge.end());
      for (auto& status : table.status) {
        if (random.OneIn(5)) status = random.Between(0, 3);
      }
    }
    WriteFileBytes(Path("STOCK.idx"), EncodeIndex(*model_->index));
    return Start(random);
  }

  bool DatabaseOperation(Random& random) {
    switch (random.Between(0, 11)) {
      case 0:
      case 1:
      case 2:
        return Write(random);
      case 3:
      case 4:
        return NewFile(random);
      case 5:
        return Start(random);
      case 6:
        return OpenAgain(random);
      case 7:
        return LoseIndex(random);
      case 8:
        return ChangeIndex(random);
      case 9:
        return NewObject(random);
      case 10:
        return WriteFails(random);
      default:
        return WriteIndex();
    }
  }

  bool TableOperation(Random& random) {
    auto judge = judges_.begin();
    std::advance(judge,
                 random.Between(0, static_cast<int>(judges_.size()) - 1));
    auto const outcome = judge->Operate();
    Log(outcome.what + " -> " + outcome.expected);
    return Agree(outcome) && Agree(judge->VisibleState());
  }

  // An empty folder with the files of a database, which is opened.
  bool Begin(Random& random) {
    DBbase::Init({}, {});
    DBbase::SetSprache(0);
    model::SetLanguage(0);
    for (auto const& file : std::filesystem::directory_iterator(Path("."))) {
      std::filesystem::remove(file.path());
    }
    log_.clear();
    progress_count_ = 0;
    model_ = std::make_unique<model::Manager>(AnyOf(random, kFiles));
    for (auto const& name : model_->files()) {
      PutFile(name, AnyFile(random, name == model_->files().front()));
    }
    return Start(random);
  }

  bool RunSequence(std::uint32_t seed, int operations) {
    Random random(seed);
    SCOPED_TRACE("TABWERK_SEED=" + to_string(seed));
    if (!Begin(random)) return false;
    for (int i = 1; i <= operations; ++i) {
      bool const agreed =
          random.OneIn(25) ? DatabaseOperation(random) : TableOperation(random);
      if (!agreed) return false;
      if (i % kOperationsPerFullState == 0 && !TablesAgree()) return false;
    }
    judges_.clear();
    return TablesAgree() && DiskAgrees();
  }

  tabwerk::test::TempFolder scratch_;
  FILE* stream_ = nullptr;
  int progress_count_ = 0;
  std::unique_ptr<model::Manager> model_;
  std::list<TableJudge> judges_;
  Strings log_;
};

TEST_F(ModelDatabase, AgreesWithTheLibraryOnRandomOperations) {
  ASSERT_NE(nullptr, stream_);
  auto seed = tabwerk::test::FirstSeed();
  int left = tabwerk::test::OperationCount(kOperations);
  for (; left > 0; left -= kOperationsPerSequence, ++seed) {
    if (!RunSequence(seed, std::min(left, kOperationsPerSequence))) return;
  }
}

}  // namespace
