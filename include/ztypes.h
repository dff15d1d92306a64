// The string classes, the path splitter and the progress sink that the
// interface of the library uses.
//
// Texts of a database are sequences of 16-bit units (UTF-16 code units) on
// every system.  Nothing here checks that surrogates come in pairs: a lone
// surrogate is a unit like any other and passes through unchanged.
#ifndef TABWERK_ZTYPES_H
#define TABWERK_ZTYPES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tabwerk_export.h"

namespace tabwerk {
struct StringAccess;
}  // namespace tabwerk

// A text of 16-bit units.  A value class: copies are independent.
//
// Exhausted memory is reported by std::bad_alloc, as the standard string does.
class TABWERK_API zWString {
 public:
  zWString();
  // A null pointer gives the empty text.  Where wchar_t has 32 bits, a value
  // above U+FFFF becomes a surrogate pair, one above U+10FFFF U+FFFD, and a
  // value from U+D800 to U+DFFF the unit of the same number.
  zWString(wchar_t const* text);       // NOLINT: texts convert implicitly
  zWString(std::wstring const& text);  // NOLINT
  // Units as they are.  A null pointer gives the empty text.
  zWString(char16_t const* text);      // NOLINT
  zWString(std::u16string_view text);  // NOLINT
  zWString(std::u16string text);       // NOLINT
  // The shortest decimal text that reads back as the same number ("1.5",
  // "0.1", "1e+300"; "nan", "inf" and "-inf").  Only format 0 is defined;
  // every other value of format is treated as 0.
  zWString(double value, int format);

  zWString(zWString const& other);
  zWString(zWString&& other) noexcept;
  zWString& operator=(zWString const& other);
  zWString& operator=(zWString&& other) noexcept;
  ~zWString();

  // Every byte becomes the unit of the same number.  The pointer form stops
  // at the first NUL; a null pointer gives the empty text.
  static zWString fromLatin1(char const* text);
  static zWString fromLatin1(std::string_view text);
  // Bytes that are not UTF-8 become U+FFFD, one for each maximal ill-formed
  // run.  A null pointer gives the empty text.
  static zWString fromUtf8(char const* text);
  static zWString fromUtf8(std::string_view text);

  // The units, followed by a NUL unit; valid until this object is changed or
  // destroyed.
  char16_t const* utf16() const noexcept;
  std::u16string_view view() const noexcept;

  // Where wchar_t has 32 bits, a surrogate pair becomes one value and a lone
  // surrogate the value of the same number.
  std::wstring toStdWString() const;
  // Lone surrogates become U+FFFD.
  std::string toUtf8() const;
  // Units above 0xFF become "?".
  std::string toLatin1() const;

  // Splits the text at every separator.  With keepEmpty, n separators give
  // n + 1 pieces, empty ones included (the empty text gives one empty piece);
  // without it, empty pieces are left out.
  std::vector<zWString> ToStringList(char16_t separator, bool keepEmpty) const;

  // Upper case by the simple (one unit to one unit) mappings of Unicode for
  // Latin, Greek and Cyrillic letters, whatever the locale of the program.  A
  // letter without such a mapping stays (U+00DF); U+00FF becomes U+0178.
  zWString ToUpper() const;

  // Number of 16-bit units.
  std::size_t length() const noexcept;
  bool isEmpty() const noexcept;

  // Unit by unit; less than 0, 0 or more than 0.
  int compare(zWString const& other) const noexcept;

  zWString& operator+=(zWString const& other);

 private:
  friend struct tabwerk::StringAccess;

  std::u16string text_;
};

TABWERK_API zWString operator+(zWString const& left, zWString const& right);
TABWERK_API bool operator==(zWString const& left,
                            zWString const& right) noexcept;
TABWERK_API bool operator!=(zWString const& left,
                            zWString const& right) noexcept;
TABWERK_API bool operator<(zWString const& left,
                           zWString const& right) noexcept;

// A text of bytes.  A value class like zWString.
class TABWERK_API zString {
 public:
  zString();
  // A null pointer gives the empty text.
  zString(char const* text);       // NOLINT: texts convert implicitly
  zString(std::string_view text);  // NOLINT
  zString(zString const& other);
  zString(zString&& other) noexcept;
  zString& operator=(zString const& other);
  zString& operator=(zString&& other) noexcept;
  ~zString();

  // The bytes, followed by a NUL; valid until this object is changed or
  // destroyed.
  char const* c_str() const noexcept;
  std::string_view view() const noexcept;
  // Number of bytes.
  std::size_t length() const noexcept;
  bool isEmpty() const noexcept;
  // Byte by byte; less than 0, 0 or more than 0.
  int compare(zString const& other) const noexcept;

 private:
  std::string text_;
};

TABWERK_API bool operator==(zString const& left, zString const& right) noexcept;
TABWERK_API bool operator!=(zString const& left, zString const& right) noexcept;

// Splits a path into drive, directory, file name and extension.
//
// The four parts joined give the path again.  The directory ends with its
// last separator; the extension begins at the last "." of the last component
// and includes it.  Separators are "/" and, on Windows, also "\"; a drive
// ("D:") exists on Windows only.
class TABWERK_API zSplitPath {
 public:
  explicit zSplitPath(zWString const& path);
  zSplitPath(zSplitPath const& other);
  zSplitPath& operator=(zSplitPath const& other);
  ~zSplitPath();

  zWString const& GetDrive() const noexcept;
  zWString const& GetDirectory() const noexcept;
  zWString const& GetFileName() const noexcept;
  zWString const& GetExtension() const noexcept;

 private:
  zWString drive_;
  zWString directory_;
  zWString file_name_;
  zWString extension_;
};

// The process-wide progress sink: the library shows a text while it does
// long work and clears it afterwards.  Without a callback the texts are
// dropped.  Like the rest of the library it is used by one thread at a time.
class TABWERK_API zSplashMessage {
 public:
  // Called with the text to show, or with null when the text is to be
  // cleared.  The text is borrowed for the call.  The callback must not call
  // back into the library and must not throw.
  using Callback = void (*)(void* context, zWString const* text);

  // The one sink; it lives as long as the process.
  static zSplashMessage* GetSplashMessage();

  // Replaces the callback; null removes it.  context is handed to every call.
  void SetCallback(Callback callback, void* context) noexcept;
  void Show(zWString const& text);
  void Clear();

  zSplashMessage(zSplashMessage const&) = delete;
  zSplashMessage& operator=(zSplashMessage const&) = delete;

 private:
  zSplashMessage() = default;
  ~zSplashMessage() = default;

  Callback callback_ = nullptr;
  void* context_ = nullptr;
};

#endif  // TABWERK_ZTYPES_H
