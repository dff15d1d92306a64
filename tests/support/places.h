// Where tests find the project's files and programs, as paths of the system
// that they run on: Wine shows the host's files as drive Z.
#ifndef TABWERK_TESTS_SUPPORT_PLACES_H
#define TABWERK_TESTS_SUPPORT_PLACES_H

#include <string>

namespace tabwerk::test {

// A file or folder of the project: "docs/format.md".
std::string ProjectPath(std::string const& name);

// The command line tool.
std::string ToolPath();

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_PLACES_H
