#include "fuzz/named_parts.h"

#include <algorithm>
#include <string_view>

namespace tabwerk::fuzz {
namespace {

constexpr std::string_view kMarker = "\n--- ";
constexpr std::size_t kMostFiles = 8;
constexpr std::size_t kMostName = 24;

bool IsPlain(char character) {
  return (character >= 'a' && character <= 'z') ||
         (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == '_' ||
         character == '-' || character == '.';
}

// No name that leads to another folder: none begins with a dot.
std::string PlainName(std::string_view text) {
  std::string name;
  for (char const character : text.substr(0, kMostName)) {
    if (IsPlain(character)) name += character;
  }
  return name.empty() || name.front() == '.' ? "f" + name : name;
}

}  // namespace

NamedParts::NamedParts(std::string const& input) {
  auto place = input.find(kMarker);
  first = input.substr(0, place);
  while (place != input.npos && files.size() < kMostFiles) {
    auto const name = place + kMarker.size();
    auto const name_end = std::min(input.find('\n', name), input.size());
    auto const content = std::min(name_end + 1, input.size());
    // The line feed before a marker belongs to it; a file may be empty.
    place = input.find(kMarker, name_end);
    auto const end = std::max(std::min(place, input.size()), content);
    files[PlainName(std::string_view(input).substr(name, name_end - name))] =
        input.substr(content, end - content);
  }
}

}  // namespace tabwerk::fuzz
