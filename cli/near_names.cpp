#include "cli/near_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace tabwerk::tool {
namespace {

constexpr std::size_t kAlike = 2;

char Lower(char letter) {
  bool const is_upper = letter >= 'A' && letter <= 'Z';
  return is_upper ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// Letters to be changed, left out or put in to make one word of the other.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t i = 0; i < row.size(); ++i) row[i] = i;
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      bool const is_same = Lower(a[i]) == Lower(b[j]);
      std::size_t const changed = diagonal + (is_same ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

std::string Advice(char const* what, std::string const& name,
                   std::vector<std::string> const& others) {
  std::string const nearest = NearestName(name, others);
  return (nearest.empty() ? "" : "did you mean " + nearest + "? ") +
         fmt::format("the {} are {}", what, fmt::join(others, ", "));
}

}  // namespace

std::string NearestName(std::string const& word,
                        std::vector<std::string> const& names) {
  auto const nearest =
      std::min_element(names.begin(), names.end(),
                       [&](std::string const& a, std::string const& b) {
                         return Distance(word, a) < Distance(word, b);
                       });
  if (nearest == names.end()) return "";
  // Of a short name nothing would be left.
  std::size_t const distance = Distance(word, *nearest);
  return distance <= kAlike && distance < nearest->size() ? *nearest : "";
}

Problem NoSuchTable(Place where, std::string const& name,
                    std::vector<std::string> const& others) {
  return {TW(106), std::move(where), "there is no table " + name,
          Advice("tables", name, others)};
}

Problem NoSuchColumn(Place where, std::string const& name,
                     std::vector<std::string> const& others) {
  return {TW(107), std::move(where), "there is no column " + name,
          Advice("columns", name, others)};
}

}  // namespace tabwerk::tool
