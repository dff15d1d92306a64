#include "tests/support/judged_database.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

#include "DBbase.h"
#include "tests/support/random_files.h"
#include "tests/support/random_values.h"

namespace tabwerk::test {
namespace {

using std::to_string;
using Strings = std::vector<std::string>;

constexpr char16_t kName[] = u"STOCK";
constexpr char kIndex[] = "STOCK.idx";

Strings AnyFiles(Random& random) {
  static std::array<Strings, 6> const kFiles{
      Strings{"MAIN.db", "USER.UDB"}, Strings{"MAIN.db", "USER.UDB"},
      // The user's rows lie in the last of three files, new ones in the second.
      Strings{"MAIN.db", "EXTRA.db", "USER.UDB"},
      // Without an index file.
      Strings{"MAIN.db"}, Strings{"USER.UDB"}, Strings{"MAIN.db", "USER.udb"}};
  return AnyOf(random, kFiles);
}

DBbase& Library() { return *DBbase::GetDBBaseInstance(); }

std::vector<unsigned char> BytesOf(std::string const& text) {
  return {text.begin(), text.end()};
}

std::string Joined(Strings const& names) {
  std::string text;
  for (auto const& name : names) text += name + " ";
  return text;
}

std::string Text(PlainDatabase const& database) {
  auto text = to_string(static_cast<int>(database.header));
  for (auto const& table : database.tables) {
    text += "\n" + table.name + " " + table.definition +
            RowsOf(database, table.name);
  }
  return text;
}

std::string Text(std::optional<PlainIndex> const& index) {
  if (!index) return "none";
  auto text = ShownNumbers(index->time_stamps);
  for (auto const& table : index->tables) text += "\n" + Describe(table);
  return text;
}

void SetLanguage() {
  DBbase::SetSprache(0);
  model::SetLanguage(0);
}

}  // namespace

JudgedDatabase::JudgedDatabase(Random& random, JudgedFolder& folder,
                               FILE* stream)
    : random_(random),
      folder_(folder),
      stream_(stream),
      model_(AnyFiles(random)) {
  SetLanguage();
  zSplashMessage::GetSplashMessage()->SetCallback(
      [](void* count, zWString const* text) {
        if (text != nullptr) ++*static_cast<int*>(count);
      },
      &progress_count_);
}

JudgedDatabase::~JudgedDatabase() {
  DBbase::Init({}, {});
  zSplashMessage::GetSplashMessage()->SetCallback(nullptr, nullptr);
  SetLanguage();
}

void JudgedDatabase::PutFile(std::string const& name, model::FileImage image) {
  folder_.Write(name, AsText(EncodeDatabase(model::ToPlain(image))));
  // What was written has a store of its own for every text.
  model_.disk[name] = std::move(image);
  model_.CompactOnDisk(name);
  agreed_.erase(name);
}

bool JudgedDatabase::Begin() {
  for (auto const& name : model_.files()) {
    PutFile(name, AnyFile(random_, name == model_.files().front()));
  }
  return Start();
}

// --- Comparing --------------------------------------------------------------

bool JudgedDatabase::Agree(Outcome const& outcome) {
  if (outcome.expected == outcome.got) return true;
  difference_ = outcome.what + "\nexpected " + outcome.expected +
                "\ngot      " + outcome.got + "\nafter\n" + Tail(log_);
  return false;
}

bool JudgedDatabase::FileAgrees(std::string const& name,
                                model::FileImage const& image) {
  auto const bytes = folder_.Read(name);
  if (agreed_.count(name) != 0 && agreed_[name] == bytes) return true;
  auto const found = DecodeDatabase(BytesOf(bytes));
  if (!found) return Agree({name, "a database file", "damaged"});
  // Nothing but the texts of the rows lies in the string blocks.
  auto const size = EncodeDatabase(*found).size();
  if (!Agree({name, Text(model::ToPlain(image)), Text(*found)}) ||
      !Agree({name + " size", to_string(size), to_string(bytes.size())})) {
    return false;
  }
  agreed_[name] = bytes;
  return true;
}

bool JudgedDatabase::DiskAgrees() {
  Strings expected;
  for (auto const& [name, image] : model_.disk) {
    if (!FileAgrees(name, image)) return false;
    expected.push_back(name);
  }
  if (model_.index) expected.emplace_back(kIndex);
  std::sort(expected.begin(), expected.end());
  auto const index =
      DecodeIndex(BytesOf(folder_.Read(kIndex)), model_.files().size());
  return Agree({"files", Joined(expected), Joined(folder_.Names())}) &&
         Agree({"index file", Text(model_.index), Text(index)}) &&
         Agree({"progress texts", to_string(model_.progress_count),
                to_string(progress_count_)});
}

bool JudgedDatabase::TablesAgree() {
  return std::all_of(judges_.begin(), judges_.end(),
                     [this](auto& judge) { return Agree(judge.FullState()); });
}

// Fetches all tables anew, as a host does behind every opening.
bool JudgedDatabase::FetchTables() {
  judges_.clear();
  Strings names;
  for (auto* entry = Library().GetDirectory()->GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    names.emplace_back(entry->GetName());
  }
  auto const expected = model_.TableNames();
  if (!Agree({"tables", Joined(expected), Joined(names)})) return false;
  for (auto const& name : expected) {
    DBTabelle* table = nullptr;
    int const opened = Library().OpenTabelle(name.c_str(), table);
    if (!Agree({"OpenTabelle " + name, "1", to_string(opened)})) return false;
    judges_.emplace_back(*table, *model_.OpenTable(name), random_, stream_);
  }
  return true;
}

bool JudgedDatabase::AfterOpening() {
  return FetchTables() && DiskAgrees() && TablesAgree();
}

// --- Opening and closing ----------------------------------------------------

void JudgedDatabase::Configure() const {
  std::vector<zWString> paths;
  for (auto const& name : model_.files()) paths.push_back(folder_.Path(name));
  DBbase::Init({kName}, {paths});
}

// As a program that starts anew.
bool JudgedDatabase::Start() {
  bool const for_write = !random_.OneIn(4);
  Log(std::string("Init, Open ") + (for_write ? "for writing" : "to read"));
  judges_.clear();
  Configure();
  int const opened = Library().Open(kName, for_write, false);
  model_.Open(for_write);
  return Agree({"Open", "1", to_string(opened)}) && AfterOpening();
}

bool JudgedDatabase::OpenAgain() {
  bool const for_write = random_.OneIn(2);
  bool const known = !random_.OneIn(3);
  Log(std::string("Open ") + (known ? "again" : "of an unknown name"));
  judges_.clear();
  zWString const name(known ? u"stock.db" : u"NONE");
  int const opened = Library().Open(name, for_write, false);
  known ? model_.OpenUnlessOpen(for_write) : model_.Open(for_write);
  return Agree({"Open", "1", to_string(opened)}) && AfterOpening();
}

bool JudgedDatabase::ReOpen() {
  bool const for_write = random_.OneIn(2);
  Log(std::string("ReOpen ") + (for_write ? "for writing" : "to read"));
  judges_.clear();
  bool const opened = DBbase::ReOpen(for_write) != nullptr;
  model_.Open(for_write);
  return Agree({"ReOpen", "1", to_string(opened)}) && AfterOpening();
}

// Afterwards the database is gone from the catalogue until it is read anew.
bool JudgedDatabase::Close() {
  bool const known = !random_.OneIn(4);
  Log(std::string("Close ") + (known ? "" : "of an unknown name"));
  if (!known) {
    int const closed = Library().Close(u"NONE");
    return Agree({"Close", "0", to_string(closed)}) && TablesAgree();
  }
  judges_.clear();
  zWString const name(random_.OneIn(2) ? u"stock.db" : u"");
  int const closed = Library().Close(name);
  bool const written = Library().Write(kName, true, zWString());
  DBTabelle* table = nullptr;
  int const fetched = Library().OpenTabelle(AnyTable(random_), table);
  auto const answers = to_string(closed) + " " +
                       to_string(Library().FilesCount()) + " " +
                       to_string(written) + " " + to_string(fetched);
  return Agree({"Close, FilesCount, Write, OpenTabelle", "1 0 0 0", answers}) &&
         DiskAgrees() && ReOpen();
}

bool JudgedDatabase::AskCatalogue() {
  Log("SelectDB, NotRegistered, FilesCount, FileIsOpen");
  auto& library = Library();
  auto const answers = to_string(library.SelectDB(u"NONE")) +
                       to_string(library.SelectDB(u"Stock.x")) +
                       to_string(library.NotRegistered(kName)) +
                       to_string(library.FilesCount()) +
                       to_string(library.GetDirectory()->FileIsOpen(0, 0)) +
                       to_string(library.GetDirectory()->FileIsOpen(1, 0));
  auto const expected =
      "0101" + to_string(model_.IsOpen(false)) + to_string(model_.IsOpen(true));
  return Agree({"answers", expected, answers}) && FetchTables();
}

// --- Writing ----------------------------------------------------------------

bool JudgedDatabase::Write() {
  int const kind = random_.Between(0, 5);
  bool const user = kind >= 2;
  bool const other = kind == 1;
  auto const file = model_.FileToWrite(user);
  zWString const name(kind == 0 ? u"" : kName);
  std::string const target = other  ? "COPY.db"
                             : file ? model_.files()[*file]
                                    : "";
  Log("Write " + target);
  judges_.clear();
  bool const written =
      Library().Write(name, user, other ? folder_.Path(target) : zWString());
  if (!Agree({"Write", file ? "1" : "0", to_string(written)})) return false;
  if (!file) return FetchTables();
  auto const image = DecodeDatabase(BytesOf(folder_.Read(target)));
  auto const stamp = image ? image->time_stamp : 0;
  auto const old = model_.disk.find(target);
  auto const before = old == model_.disk.end() ? 0 : old->second.time_stamp;
  if (!Agree({"later stamp", "1", to_string(stamp > before)})) return false;
  model_.Write(*file, target, stamp);
  agreed_.erase(target);
  return AfterOpening();
}

bool JudgedDatabase::WriteFails() {
  Log("Write of an unknown database");
  bool const written = Library().Write(u"NONE", true, zWString());
  return Agree({"Write", "0", to_string(written)}) && DiskAgrees() &&
         FetchTables();
}

bool JudgedDatabase::WriteIndex() {
  Log("WriteIndexToFile");
  int const expected = model_.WriteIndexToFile();
  return Agree({"WriteIndexToFile", to_string(expected),
                to_string(Library().WriteIndexToFile(nullptr))}) &&
         DiskAgrees() && TablesAgree();
}

bool JudgedDatabase::NewObject() {
  auto const* const name = AnyTable(random_);
  Log(std::string("NeueTabelle ") + name);
  auto* const expected = model_.NewTable(name);
  DBTabelle* table = nullptr;
  bool const made = Library().NeueTabelle(name, table);
  if (expected != nullptr && made) {
    judges_.emplace_back(*table, *expected, random_, stream_);
  }
  return Agree(
      {"NeueTabelle", to_string(expected != nullptr), to_string(made)});
}

// --- What other programs do -------------------------------------------------

// The vendor ships a new first file, or some program another one.
bool JudgedDatabase::NewFile() {
  auto const last = static_cast<int>(model_.files().size()) - 1;
  auto const number = random_.OneIn(3) ? random_.Between(0, last) : 0;
  auto const& name = model_.files()[static_cast<std::size_t>(number)];
  Log("a new " + name);
  judges_.clear();
  DBbase::Init({}, {});
  auto image = model_.disk[name];
  ChangeFile(random_, &image);
  PutFile(name, std::move(image));
  return Start();
}

bool JudgedDatabase::LoseIndex() {
  judges_.clear();
  DBbase::Init({}, {});
  auto bytes = folder_.Read(kIndex);
  if (bytes.empty() || random_.OneIn(2)) {
    Log("the index is gone");
    folder_.Remove(kIndex);
  } else {
    Log("the index is damaged");
    random_.OneIn(2) ? bytes.pop_back() : bytes.push_back('I');
    folder_.Write(kIndex, bytes);
  }
  model_.index.reset();
  return Start();
}

// The user's order and status of all rows changed: they stand in the index.
bool JudgedDatabase::ChangeIndex() {
  if (!model_.index) return true;
  Log("another order in the index");
  judges_.clear();
  DBbase::Init({}, {});
  for (auto& table : model_.index->tables) {
    std::reverse(table.folge.begin(), table.folge.end());
    for (auto& status : table.status) {
      if (random_.OneIn(5)) status = random_.Between(0, 3);
    }
  }
  folder_.Write(kIndex, AsText(EncodeIndex(*model_.index)));
  return Start();
}

// --- Choosing ---------------------------------------------------------------

bool JudgedDatabase::DatabaseOperation() {
  // One that happens more often stands here more than once.
  static constexpr std::array kOperations{
      &JudgedDatabase::Write,       &JudgedDatabase::Write,
      &JudgedDatabase::Write,       &JudgedDatabase::NewFile,
      &JudgedDatabase::NewFile,     &JudgedDatabase::Start,
      &JudgedDatabase::OpenAgain,   &JudgedDatabase::LoseIndex,
      &JudgedDatabase::ChangeIndex, &JudgedDatabase::NewObject,
      &JudgedDatabase::WriteFails,  &JudgedDatabase::WriteIndex,
      &JudgedDatabase::ReOpen,      &JudgedDatabase::Close,
      &JudgedDatabase::AskCatalogue};
  return (this->*AnyOf(random_, kOperations))();
}

bool JudgedDatabase::TableOperation() {
  auto judge = judges_.begin();
  std::advance(judge, random_.Between(0, static_cast<int>(judges_.size()) - 1));
  auto const outcome = judge->Operate();
  Log(outcome.what + " -> " + outcome.expected);
  return Agree(outcome) && Agree(judge->VisibleState());
}

}  // namespace tabwerk::test
