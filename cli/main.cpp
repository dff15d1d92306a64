// tabwerk: makes databases, looks into them and fills user files.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "cli/run_tool.h"
#include "ztypes.h"

int main(int argc, char** argv) {
  return tabwerk::tool::RunTool(
      std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
}

// Where Windows starts: its arguments are UTF-16.
extern "C" int wmain(int argc, wchar_t** argv);
extern "C" int wmain(int argc, wchar_t** argv) {
  std::vector<std::string> arguments;
  for (int i = 1; i < argc; ++i) {
    arguments.push_back(zWString(argv[i]).toUtf8());
  }
  return tabwerk::tool::RunTool(std::move(arguments));
}
