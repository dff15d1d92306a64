// Text files for the tests of the interpreter, written byte by byte.
#ifndef TABWERK_TESTS_INTERP_TEXT_FOLDER_H
#define TABWERK_TESTS_INTERP_TEXT_FOLDER_H

#include <string>
#include <string_view>

#include "tests/support/temp_folder.h"

namespace tabwerk::test {

// The units as bytes, low byte first.
inline std::string Utf16Bytes(std::u16string_view text) {
  std::string bytes;
  for (char16_t const unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

// A folder of its own; paths and bytes are std::string.
class TextFolder {
 public:
  std::string Path(std::string const& name) const {
    return folder_.PathUtf8(name);
  }
  // Each writes a file and returns its path.
  std::string Bytes(std::string const& name, std::string_view bytes) const {
    folder_.WriteBytes(name, bytes);
    return Path(name);
  }
  // Behind a byte-order mark.
  std::string Marked(std::string const& name, std::u16string_view text) const {
    return Bytes(name, "\xFF\xFE" + Utf16Bytes(text));
  }
  std::string Unmarked(std::string const& name,
                       std::u16string_view text) const {
    return Bytes(name, Utf16Bytes(text));
  }

 private:
  TempFolder folder_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_INTERP_TEXT_FOLDER_H
