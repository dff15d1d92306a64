#include "tests/cli/expected.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

#include "tests/cli/expressions.h"
#include "tests/support/places.h"

namespace tabwerk::test {
namespace {

std::vector<std::string> LinesOf(std::string const& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string ReadText(std::string const& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "(there is no such file)\n";
  std::string text(std::istreambuf_iterator<char>(file), {});
  // A checkout may have turned the line ends.
  std::erase(text, '\r');
  return text;
}

}  // namespace

std::string Expected(std::string const& name, std::string const& found) {
  return ExpectedFile("tests/cli/expected/" + name + ".txt", found);
}

std::string ExpectedFile(std::string const& path, std::string const& found) {
  std::string const whole_path = ProjectPath(path);
  std::string const text = ReadText(whole_path);
  if (text == found || std::getenv("TABWERK_WRITE_EXPECTED") == nullptr) {
    return text;
  }
  std::ofstream(whole_path, std::ios::binary | std::ios::trunc) << found;
  ADD_FAILURE() << path << " is written anew:\n" << LineDifference(text, found);
  return found;
}

std::string LineDifference(std::string const& before,
                           std::string const& after) {
  std::vector<std::string> const old_lines = LinesOf(before);
  std::vector<std::string> const new_lines = LinesOf(after);
  auto const [old_begin, new_begin] = std::mismatch(
      old_lines.begin(), old_lines.end(), new_lines.begin(), new_lines.end());
  auto const [old_end, new_end] =
      std::mismatch(old_lines.rbegin(), std::make_reverse_iterator(old_begin),
                    new_lines.rbegin(), std::make_reverse_iterator(new_begin));
  std::string text;
  for (auto it = old_begin; it != old_end.base(); ++it)
    text += "-" + *it + "\n";
  for (auto it = new_begin; it != new_end.base(); ++it)
    text += "+" + *it + "\n";
  return text;
}

std::string WithoutTimes(std::string const& text) {
  return Replaced(text, R"(\d\d\d\d-\d\d-\d\d \d\d:\d\d:\d\d)",
                  "YYYY-MM-DD hh:mm:ss");
}

std::string WithoutStamp(std::string bytes) {
  for (std::size_t i = 11; i < 19 && i < bytes.size(); ++i) bytes[i] = '\0';
  return bytes;
}

}  // namespace tabwerk::test
