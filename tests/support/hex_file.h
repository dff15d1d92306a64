// Golden files: bytes written by hand as commented hex.
#ifndef TABWERK_TESTS_SUPPORT_HEX_FILE_H
#define TABWERK_TESTS_SUPPORT_HEX_FILE_H

#include <string>
#include <string_view>

namespace tabwerk::test {

// The bytes of tests/data/NAME.hex: pairs of hex digits separated by white
// space; "#" begins a comment that ends with its line.  A file that cannot be
// read, is empty or holds anything else fails the test and gives no bytes.
std::string HexFile(std::string const& name);

// The same for a text in memory; *sound tells whether it holds only that.
std::string BytesOfHex(std::string_view text, bool* sound);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_HEX_FILE_H
