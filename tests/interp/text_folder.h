// Text files for the tests of the interpreter, written byte by byte.
#ifndef TABWERK_TESTS_INTERP_TEXT_FOLDER_H
#define TABWERK_TESTS_INTERP_TEXT_FOLDER_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

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

// A folder of its own that goes away with its files.
class TextFolder {
 public:
  TextFolder() {
    static int number = 0;
    auto const base = std::filesystem::temp_directory_path();
    do {
      folder_ = base / ("tabwerk_interp_" + std::to_string(++number));
    } while (!std::filesystem::create_directory(folder_));
  }
  ~TextFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TextFolder(TextFolder const&) = delete;
  TextFolder& operator=(TextFolder const&) = delete;

  std::string Path(std::string const& name) const {
    return (folder_ / name).string();
  }
  // Each writes a file and returns its path.
  std::string Bytes(std::string const& name, std::string_view bytes) const {
    std::ofstream file(Path(name), std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
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
  bool Has(std::string const& name) const {
    return std::filesystem::exists(folder_ / name);
  }
  std::string Content(std::string const& name) const {
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_INTERP_TEXT_FOLDER_H
