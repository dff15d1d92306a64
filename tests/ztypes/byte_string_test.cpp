// zString and the progress sink.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "ztypes.h"

namespace tabwerk::test {
namespace {

TEST(ByteString, HoldsBytes) {
  zString const text("ab\xFF");
  EXPECT_EQ(3u, text.length());
  EXPECT_STREQ("ab\xFF", text.c_str());
  EXPECT_EQ("ab\xFF", text.view());
  EXPECT_FALSE(text.isEmpty());
  EXPECT_TRUE(zString().isEmpty());
  EXPECT_TRUE(zString(static_cast<char const*>(nullptr)).isEmpty());
}

TEST(ByteString, TakesBytesOfAGivenNumber) {
  EXPECT_EQ(std::string_view("a\0b", 3),
            zString(std::string_view("a\0b", 3)).view());
}

TEST(ByteString, ComparesBytesUnsigned) {
  EXPECT_EQ(0, zString("a").compare("a"));
  EXPECT_GT(0, zString("a").compare("\xFF"));
  EXPECT_LT(0, zString("aa").compare("a"));
  EXPECT_TRUE(zString("a") == zString("a"));
  EXPECT_TRUE(zString("a") != zString("A"));
}

TEST(ByteString, CopiesAreIndependent) {
  zString first("one");
  zString const second = first;
  first = zString("two");
  EXPECT_EQ("one", second.view());
  zString third(std::move(first));
  EXPECT_EQ("two", third.view());
  third = second;
  EXPECT_EQ("one", third.view());
  EXPECT_EQ("one", second.view());
}

// Notes what the sink shows: the text, or "(clear)".
void Note(void* context, zWString const* text) {
  *static_cast<std::string*>(context) +=
      text == nullptr ? "(clear)" : text->toUtf8();
}

TEST(SplashMessage, TellsTheCallback) {
  std::string noted;
  zSplashMessage* const sink = zSplashMessage::GetSplashMessage();
  EXPECT_EQ(sink, zSplashMessage::GetSplashMessage());
  sink->SetCallback(Note, &noted);
  sink->Show(zWString(u"work"));
  sink->Clear();
  sink->SetCallback(nullptr, nullptr);
  EXPECT_EQ("work(clear)", noted);
}

TEST(SplashMessage, WithoutCallbackDropsTheText) {
  std::string noted;
  zSplashMessage* const sink = zSplashMessage::GetSplashMessage();
  sink->SetCallback(Note, &noted);
  sink->SetCallback(nullptr, nullptr);
  sink->Show(zWString(u"work"));
  sink->Clear();
  EXPECT_EQ("", noted);
}

}  // namespace
}  // namespace tabwerk::test
