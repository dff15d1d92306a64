#include "bench/support/program.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string_view>
#include <vector>

#include "bench/support/check.h"
#include "bench/support/folder.h"

namespace tabwerk::bench {
namespace {

std::map<std::string, ChildWork>& ChildWorks() {
  static std::map<std::string, ChildWork> works;
  return works;
}

// The value of an argument "--name=value"; empty without it.
std::string ValueOf(int argc, char** argv, std::string_view name) {
  std::string value;
  for (int i = 1; i < argc; ++i) {
    std::string_view const argument = argv[i];
    if (argument.starts_with(name)) value = argument.substr(name.size());
  }
  return value;
}

std::vector<long> Numbers(std::string const& list) {
  std::vector<long> numbers;
  for (char const* rest = list.c_str(); *rest != '\0';) {
    char* end = nullptr;
    numbers.push_back(std::strtol(rest, &end, 10));
    Require(end != rest && numbers.back() > 0, "--rows wants numbers");
    rest = *end == ',' ? end + 1 : end;
  }
  return numbers;
}

// Keeps what Google Benchmark knows.
std::vector<char*> WithoutOwn(int argc, char** argv) {
  std::vector<char*> kept;
  for (int i = 0; i < argc; ++i) {
    if (!std::string_view(argv[i]).starts_with("--rows=")) {
      kept.push_back(argv[i]);
    }
  }
  return kept;
}

int RunAsChild(std::string const& name, long rows, std::string const& folder) {
  UseFolder(folder);
  Register(rows);
  auto const work = ChildWorks().find(name);
  Require(work != ChildWorks().end(), "no such work for a child");
  std::printf("%.9g\n", work->second(rows));
  return 0;
}

int RunProgram(int argc, char** argv) {
  auto const child = ValueOf(argc, argv, "--child=");
  auto list = ValueOf(argc, argv, "--rows=");
  if (list.empty()) list = "10000,100000,1000000";
  auto const row_counts = Numbers(list);
  if (!child.empty()) {
    return RunAsChild(child, row_counts.front(),
                      ValueOf(argc, argv, "--folder="));
  }
  for (long const rows : row_counts) Register(rows);
  auto arguments = WithoutOwn(argc, argv);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  benchmark::RunSpecifiedBenchmarks();
  DeleteFolder();
  return 0;
}

}  // namespace

void Add(char const* work, char const* contender, long rows, long items,
         Clock clock, std::function<void(benchmark::State&)> body) {
  auto const name =
      std::string(work) + "/" + contender + "/" + std::to_string(rows);
  auto* const registered = benchmark::RegisterBenchmark(
      name.c_str(), [items, body](benchmark::State& state) {
        body(state);
        state.SetItemsProcessed(state.iterations() * items);
      });
  registered->Unit(benchmark::kMillisecond);
  if (clock == Clock::kWall) registered->UseRealTime();
}

void AddChild(std::string const& name, ChildWork work) {
  ChildWorks()[name] = std::move(work);
}

double RunChild(std::string const& name, long rows) {
  auto const command =
      "exec '" + std::filesystem::read_symlink("/proc/self/exe").string() +
      "' --child=" + name + " --rows=" + std::to_string(rows) + " --folder='" +
      Folder().string() + "'";
  FILE* const output = popen(command.c_str(), "r");
  Require(output != nullptr, "a child does not start");
  double result = 0;
  bool const told = std::fscanf(output, "%lf", &result) == 1;
  Require(pclose(output) == 0 && told, "a child failed");
  return result;
}

}  // namespace tabwerk::bench

int main(int argc, char** argv) {
  return tabwerk::bench::RunProgram(argc, argv);
}
