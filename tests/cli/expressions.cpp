#include "tests/cli/expressions.h"

#include <map>
#include <regex>

namespace tabwerk::test {
namespace {

// Each is compiled once.
std::regex const& Compiled(std::string const& expression) {
  static std::map<std::string, std::regex> compiled;
  return compiled.try_emplace(expression, expression).first->second;
}

Groups GroupsOf(std::smatch const& match) {
  Groups groups;
  for (auto const& group : match) groups.push_back(group.str());
  return groups;
}

}  // namespace

Groups Matched(std::string const& text, std::string const& expression) {
  std::smatch match;
  if (!std::regex_match(text, match, Compiled(expression))) return {};
  return GroupsOf(match);
}

std::vector<Groups> AllMatches(std::string const& text,
                               std::string const& expression) {
  std::vector<Groups> all;
  std::sregex_iterator const end;
  for (std::sregex_iterator it(text.begin(), text.end(), Compiled(expression));
       it != end; ++it) {
    all.push_back(GroupsOf(*it));
  }
  return all;
}

std::string Replaced(std::string const& text, std::string const& expression,
                     std::string const& by) {
  return std::regex_replace(text, Compiled(expression), by);
}

}  // namespace tabwerk::test
