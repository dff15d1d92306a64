// Exported operations whose memory runs out, as tables: what each one is
// called, what its header promises, and how it is run.
#ifndef TABWERK_TESTS_SWEEPS_MEMORY_OPERATIONS_H
#define TABWERK_TESTS_SWEEPS_MEMORY_OPERATIONS_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tabwerk::test {

// What an operation does without memory, where it is not done all the same.
enum class Promise {
  kNeedsNone,  // never asks for any
  kThrows,     // std::bad_alloc, and nothing is changed
  kFails,      // its failure result, and nothing is changed
  kSilent,     // has no failure result; nothing is changed
  kEmpties,    // leaves what the header says: Operation::without_memory
  kPart,       // may have done a part; tried again it does the rest
};

// An object and what it works with, made anew for every run.
class Trial {
 public:
  Trial() = default;
  Trial(Trial const&) = delete;
  Trial& operator=(Trial const&) = delete;
  virtual ~Trial() = default;

  // The operation; false for its failure result.  It asks for no memory of its
  // own.
  virtual bool Run() = 0;
  // Everything that the operation may change.
  virtual std::string State() = 0;
};

struct Operation {
  // Beginnings of lines of cmake/exports.txt, one for each line.
  std::vector<std::string_view> exports;
  Promise promise;
  std::function<std::unique_ptr<Trial>()> make;
  std::string without_memory = "";
};

// A trial of a world: a default-constructible class with State().
template <typename World>
class TrialIn : public Trial {
 public:
  explicit TrialIn(bool (*run)(World&)) : run_(run) {}
  bool Run() override { return run_(world_); }
  std::string State() override { return world_.State(); }

 private:
  World world_;
  bool (*run_)(World&);
};

template <typename World>
Operation In(Promise promise, std::vector<std::string_view> exports,
             bool (*run)(World&), std::string without_memory = "") {
  return {std::move(exports), promise,
          [run] { return std::make_unique<TrialIn<World>>(run); },
          std::move(without_memory)};
}

// Lets every allocation of every operation fail, blocks and operator new, once
// and for good, and judges by what the operation promises; looks each time for
// what was not given back.
void SweepOperations(std::vector<Operation> const& operations);

// The tables.
std::vector<Operation> TextOperations();
std::vector<Operation> DefinitionOperations();
std::vector<Operation> DirectoryOperations();
std::vector<Operation> TableOperations();
std::vector<Operation> ManagerOperations();
std::vector<Operation> InterpreterOperations();

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_MEMORY_OPERATIONS_H
