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
  kPart,       // may have done a part: Operation::without_memory
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

// The state of a world that has been changed in some way.
using StateOf = std::function<std::string()>;

// Whatever the operation has left without memory, tried again it does all of
// it, unless again_after_a_part says what else is left then.
struct Operation {
  // Beginnings of lines of cmake/exports.txt, one for each line.
  std::vector<std::string_view> exports;
  Promise promise;
  std::function<std::unique_ptr<Trial>()> make;
  std::vector<StateOf> without_memory = {};
  std::vector<StateOf> again_after_a_part = {};
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
std::vector<StateOf> StatesAfter(std::vector<void (*)(World&)> const& changes) {
  std::vector<StateOf> states;
  for (auto* const change : changes) {
    states.push_back([change] {
      World world;
      change(world);
      return world.State();
    });
  }
  return states;
}

// The last two: what may have been done of it without memory, and by the second
// attempt after that.
template <typename World>
Operation In(Promise promise, std::vector<std::string_view> exports,
             bool (*run)(World&),
             std::vector<void (*)(World&)> const& without_memory = {},
             std::vector<void (*)(World&)> const& again_after_a_part = {}) {
  return {std::move(exports), promise,
          [run] { return std::make_unique<TrialIn<World>>(run); },
          StatesAfter<World>(without_memory),
          StatesAfter<World>(again_after_a_part)};
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
