// Texts without memory.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tabwerk.h"
#include "tests/sweeps/memory_operations.h"

namespace tabwerk::test {
namespace {

// Longer than what string objects have room for themselves.
constexpr char kLatin1[] = "a text that is longer than a string object";
constexpr wchar_t kWide[] = L"a text that is longer than a string object";
constexpr char16_t k16Bit[] = u"a text that is longer than a string object";

struct Texts {
  std::string State() const {
    std::string text = target.toUtf8() + "|" + bytes.c_str() + "|" +
                       std::to_string(pieces.size()) + "|" + result + "|";
    for (wchar_t const unit : wide_result) text += static_cast<char>(unit);
    if (path) text += path->GetDirectory().toUtf8();
    return text + other_path.GetDrive().toUtf8() +
           other_path.GetDirectory().toUtf8() +
           other_path.GetFileName().toUtf8() +
           other_path.GetExtension().toUtf8();
  }

  zWString const source{k16Bit};
  zWString const path_text{
      u"/a folder of a long name/a file of a long name.db"};
  std::wstring const wide{kWide};
  zString const byte_source{kLatin1};
  zSplitPath const path_source{path_text};
  zWString target{u"before, and long enough to need memory as well"};
  zString bytes{"before"};
  std::vector<zWString> pieces;
  std::string result;
  std::wstring wide_result;
  std::optional<zSplitPath> path;
  zSplitPath other_path{zWString(u"x/y")};
};

Operation Throws(std::vector<std::string_view> exports, bool (*run)(Texts&)) {
  return In<Texts>(Promise::kThrows, std::move(exports), run);
}
Operation NeedsNone(std::vector<std::string_view> exports,
                    bool (*run)(Texts&)) {
  return In<Texts>(Promise::kNeedsNone, std::move(exports), run);
}

std::vector<Operation> MakingTexts() {
  return {
      NeedsNone({"zWString::zWString()", "zWString::zWString(zWString&&)",
                 "zWString::operator=(zWString&&)", "zWString::~zWString()"},
                [](Texts& t) {
                  zWString made;
                  t.target = zWString(std::move(made));
                  return true;
                }),
      Throws({"zWString::zWString(wchar_t const*)"},
             [](Texts& t) {
               t.target = zWString(kWide);
               return true;
             }),
      Throws({"zWString::zWString(std::__cxx11::basic_string<wchar_t"},
             [](Texts& t) {
               t.target = zWString(t.wide);
               return true;
             }),
      Throws({"zWString::zWString(char16_t const*)"},
             [](Texts& t) {
               t.target = zWString(k16Bit);
               return true;
             }),
      Throws({"zWString::zWString(std::basic_string_view<char16_t"},
             [](Texts& t) {
               t.target = zWString(t.source.view());
               return true;
             }),
      Throws({"zWString::zWString(std::__cxx11::basic_string<char16_t"},
             [](Texts& t) {
               t.target = zWString(std::u16string(k16Bit));
               return true;
             }),
      Throws({"zWString::zWString(double, int)"},
             [](Texts& t) {
               t.target = zWString(-1.2345678901234567e-300, 0);
               return true;
             }),
      Throws({"zWString::zWString(zWString const&)"},
             [](Texts& t) {
               zWString copy(t.source);
               t.target = std::move(copy);
               return true;
             }),
      Throws({"zWString::operator=(zWString const&)"},
             [](Texts& t) {
               t.target = t.path_text;
               return true;
             }),
      Throws({"zWString::operator+=(zWString const&)"},
             [](Texts& t) {
               t.target += t.source;
               return true;
             }),
      Throws({"operator+(zWString const&, zWString const&)"},
             [](Texts& t) {
               t.target = t.source + t.source;
               return true;
             }),
      Throws({"zWString::fromLatin1(char const*)"},
             [](Texts& t) {
               t.target = zWString::fromLatin1(kLatin1);
               return true;
             }),
      Throws({"zWString::fromLatin1(std::basic_string_view"},
             [](Texts& t) {
               t.target = zWString::fromLatin1(std::string_view(kLatin1));
               return true;
             }),
      Throws({"zWString::fromUtf8(char const*)"},
             [](Texts& t) {
               t.target = zWString::fromUtf8(kLatin1);
               return true;
             }),
      Throws({"zWString::fromUtf8(std::basic_string_view"},
             [](Texts& t) {
               t.target = zWString::fromUtf8(std::string_view(kLatin1));
               return true;
             }),
      Throws({"zWString::ToUpper() const"},
             [](Texts& t) {
               t.target = t.source.ToUpper();
               return true;
             }),
  };
}

std::vector<Operation> ReadingTexts() {
  return {
      NeedsNone({"zWString::utf16() const", "zWString::view() const",
                 "zWString::length() const", "zWString::isEmpty() const",
                 "zWString::compare(zWString const&) const",
                 "operator==(zWString const&, zWString const&)",
                 "operator!=(zWString const&, zWString const&)",
                 "operator<(zWString const&, zWString const&)"},
                [](Texts& t) {
                  return t.source.utf16() == t.source.view().data() &&
                         t.source.length() > 7 && !t.source.isEmpty() &&
                         t.source.compare(t.target) < 0 &&
                         t.source != t.target && !(t.source == t.target) &&
                         t.source < t.target;
                }),
      Throws({"zWString::toStdWString"},
             [](Texts& t) {
               t.wide_result = t.source.toStdWString();
               return true;
             }),
      Throws({"zWString::toUtf8"},
             [](Texts& t) {
               t.result = t.source.toUtf8();
               return true;
             }),
      Throws({"zWString::toLatin1"},
             [](Texts& t) {
               t.result = t.source.toLatin1();
               return true;
             }),
      Throws({"zWString::ToStringList(char16_t, bool) const"},
             [](Texts& t) {
               t.pieces = t.path_text.ToStringList(u'/', true);
               return true;
             }),
  };
}

std::vector<Operation> ByteTexts() {
  return {
      NeedsNone({"zString::zString()", "zString::zString(zString&&)",
                 "zString::operator=(zString&&)", "zString::~zString()",
                 "zString::c_str() const", "zString::view() const",
                 "zString::length() const", "zString::isEmpty() const",
                 "zString::compare(zString const&) const",
                 "operator==(zString const&, zString const&)",
                 "operator!=(zString const&, zString const&)"},
                [](Texts& t) {
                  zString made;
                  t.bytes = zString(std::move(made));
                  return t.bytes.isEmpty() && t.bytes.length() == 0 &&
                         t.bytes.c_str() == t.bytes.view().data() &&
                         t.bytes.compare(t.byte_source) < 0 &&
                         t.bytes != t.byte_source &&
                         !(t.bytes == t.byte_source);
                }),
      Throws({"zString::zString(char const*)"},
             [](Texts& t) {
               t.bytes = zString(kLatin1);
               return true;
             }),
      Throws({"zString::zString(std::basic_string_view"},
             [](Texts& t) {
               t.bytes = zString(std::string_view(kLatin1));
               return true;
             }),
      Throws({"zString::zString(zString const&)"},
             [](Texts& t) {
               zString copy(t.byte_source);
               t.bytes = std::move(copy);
               return true;
             }),
      Throws({"zString::operator=(zString const&)"},
             [](Texts& t) {
               t.bytes = t.byte_source;
               return true;
             }),
  };
}

std::vector<Operation> PathsAndMore() {
  return {
      Throws({"zSplitPath::zSplitPath(zWString const&)"},
             [](Texts& t) {
               t.path.emplace(t.path_text);
               return true;
             }),
      Throws({"zSplitPath::zSplitPath(zSplitPath const&)"},
             [](Texts& t) {
               t.path.emplace(t.path_source);
               return true;
             }),
      Throws({"zSplitPath::operator=(zSplitPath const&)"},
             [](Texts& t) {
               t.other_path = t.path_source;
               return true;
             }),
      NeedsNone({"zSplitPath::~zSplitPath()", "zSplitPath::GetDrive() const",
                 "zSplitPath::GetDirectory() const",
                 "zSplitPath::GetFileName() const",
                 "zSplitPath::GetExtension() const"},
                [](Texts& t) {
                  t.path.reset();
                  return t.path_source.GetDrive().isEmpty() &&
                         !t.path_source.GetDirectory().isEmpty() &&
                         !t.path_source.GetFileName().isEmpty() &&
                         !t.path_source.GetExtension().isEmpty();
                }),
      NeedsNone(
          {"zSplashMessage::GetSplashMessage()", "zSplashMessage::SetCallback(",
           "zSplashMessage::Show(zWString const&)", "zSplashMessage::Clear()"},
          [](Texts& t) {
            auto* const splash = zSplashMessage::GetSplashMessage();
            splash->SetCallback([](void*, zWString const*) {}, nullptr);
            splash->Show(t.source);
            splash->Clear();
            splash->SetCallback(nullptr, nullptr);
            return true;
          }),
  };
}

}  // namespace

std::vector<Operation> TextOperations() {
  auto all = MakingTexts();
  for (auto const& more : {ReadingTexts(), ByteTexts(), PathsAndMore()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

TEST(SweepMemoryTexts, EveryAllocation) { SweepOperations(TextOperations()); }

}  // namespace tabwerk::test
