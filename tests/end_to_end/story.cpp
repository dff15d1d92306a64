#include "tests/end_to_end/story.h"

#include "base/manager_access.h"

namespace tabwerk::test {

StoryTest::StoryTest() {
  zSplashMessage::GetSplashMessage()->SetCallback(Note, this);
}

void StoryTest::Note(void* context, zWString const* text) {
  auto& messages = static_cast<StoryTest*>(context)->messages_;
  messages += text == nullptr ? "[clear]" : "[" + text->toUtf8() + "]";
}

void StoryTest::Ship(std::int64_t time_stamp, Shipped const& shipped,
                     PlainHeader header) const {
  MakeFile("MAIN.db", {header,
                       time_stamp,
                       {{"ARTIKEL", kArticles, shipped.articles},
                        {"FARBE", kArticles, shipped.colours}}});
}

void StoryTest::MakeEmptyUserFile() const {
  WriteFileBytes(Path("USER.UDB"), {});
}

void StoryTest::Install() const {
  Ship(1000, {{"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl"},
              {"1|1|0|red", "2|2|0|blue"}});
  MakeEmptyUserFile();
  Start();
  ASSERT_TRUE(Save());
}

void StoryTest::Start() const { OpenStock(); }

void StoryTest::End() { DBbase::Init({}, {}); }

bool StoryTest::Save() { return Manager()->Write(W("STOCK"), true, W("")); }

void StoryTest::SaveAndRestart() const {
  ASSERT_TRUE(Save());
  End();
  Start();
}

int StoryTest::IndexResult() {
  return ManagerAccess::MakeIndexFile(*Manager(), Manager()->GetDirectory());
}

bool StoryTest::Put(DBTabelle::Action action, RowValues values,
                    char const* table) {
  auto* const opened = Table(table);
  return opened != nullptr && opened->SetZeileWerte(values, action);
}

bool StoryTest::Append(std::wstring const& name) {
  return Put(DBTabelle::ActionAppend, {{"NAME", name}});
}

bool StoryTest::SetById(long id, char const* column, long value,
                        char const* table) {
  auto* const opened = Table(table);
  return opened != nullptr && opened->SelectColumn(column) == 1 &&
         opened->SelectZeile("ID", id) == 1 && opened->SetWert(value) == 1;
}

std::string StoryTest::InOrder(char const* name) {
  auto* const table = Table(name);
  if (table == nullptr) return "no table";
  table->SelectColumn("NAME");
  std::string names;
  for (long place = 1; place <= table->MaxFolge(); ++place) {
    auto const row = table->GetRowByFolge(place);
    zWString text;
    if (row >= 0 && table->SelectZeile(row) == 1) table->GetWert(text);
    names += (names.empty() ? "" : " ") + (row < 0 ? "-" : text.toUtf8());
  }
  // Places behind the last row in use are room, not gaps.
  while (names.ends_with(" -")) names.resize(names.size() - 2);
  return names;
}

std::string StoryTest::OnDisk(char const* file, char const* table) const {
  return RowsOf(ReadDatabase(Path(file)), table);
}

std::string StoryTest::IndexOnDisk(std::size_t table) const {
  auto const index = DecodeIndex(Bytes("STOCK.idx"), 2);
  return index && table < index->tables.size() ? Describe(index->tables[table])
                                               : "-";
}

}  // namespace tabwerk::test
