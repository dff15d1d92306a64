// How far an interpreter says that it has come.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <string_view>
#include <thread>

#include "DBInterpreter.h"
#include "tests/interp/text_folder.h"
#include "tests/support/table_builder.h"

using tabwerk::test::TestTable;
using tabwerk::test::TextFolder;
using tabwerk::test::Utf16Bytes;

namespace {

class ReadBytes : public testing::Test {
 protected:
  // Of the reader, before and after it has read a file of these bytes.
  void Read(TestTable& target, std::string_view bytes, bool delimited) {
    reader.SetTabelle(&target.table);
    std::string const path = folder.Bytes("data.txt", bytes);
    ASSERT_EQ(1, reader.OpenDatei(path.c_str(), "rb"));
    zWString version;
    static_cast<void>(reader.ReadDatei(version, delimited, L";"));
    reader.CloseDatei();
  }

  TextFolder folder;
  DBInterpreter reader;
};

TEST_F(ReadBytes, CountsTheBytesOfTableDataBehindTheirMark) {
  EXPECT_EQ(0, reader.GetReadBytes());
  TestTable target("integer ID\n");
  Read(target, "\xFF\xFE" + Utf16Bytes(u"1\n22\r\n\n3"), false);
  EXPECT_EQ(2 * 8, reader.GetReadBytes());
  Read(target, "\xFF\xFE" + Utf16Bytes(u"4\n"), false);
  EXPECT_EQ(2 * 10, reader.GetReadBytes());
}

TEST_F(ReadBytes, CountsTheBytesOfDelimitedRows) {
  TestTable target("integer ID\n", 2);
  Read(target, Utf16Bytes(u"1\n22\n"), true);
  EXPECT_EQ(2 * 5, reader.GetReadBytes());
}

TEST_F(ReadBytes, CountsWhatStandsBehindANul) {
  TestTable target("integer ID\n");
  Read(target, "\xFF\xFE" + Utf16Bytes({u"1\0xy\n2\n", 7}), false);
  EXPECT_EQ(2 * 7, reader.GetReadBytes());
}

TEST_F(ReadBytes, EndAtTheLineThatIsNotStored) {
  TestTable target("integer ID,other BAD\n");
  Read(target, "\xFF\xFE" + Utf16Bytes(u"1\n2\n3,4\n5\n"), false);
  EXPECT_EQ(2, reader.GetError());
  EXPECT_EQ(2 * 4, reader.GetReadBytes());
}

TEST_F(ReadBytes, AreNotCopied) {
  TestTable target("integer ID\n");
  Read(target, "\xFF\xFE" + Utf16Bytes(u"1\n"), false);
  DBInterpreter copy(reader);
  EXPECT_EQ(0, copy.GetReadBytes());
  copy = reader;
  EXPECT_EQ(0, copy.GetReadBytes());
}

TEST_F(ReadBytes, AnotherThreadSeesThemGrow) {
  TestTable target("integer ID\n");
  std::u16string text;
  for (int i = 0; i < 20000; ++i) text += u"12345\n";
  std::atomic<bool> ended = false;
  bool grows = true;
  std::thread watcher([&] {
    long long last = 0;
    while (!ended) {
      long long const now = reader.GetReadBytes();
      grows = grows && now >= last;
      last = now;
    }
  });
  Read(target, "\xFF\xFE" + Utf16Bytes(text), false);
  ended = true;
  watcher.join();
  EXPECT_TRUE(grows);
  EXPECT_EQ(static_cast<long long>(2 * text.size()), reader.GetReadBytes());
}

}  // namespace
