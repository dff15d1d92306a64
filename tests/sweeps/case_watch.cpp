#include "tests/sweeps/case_watch.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "tests/support/processor_time.h"

#ifdef TABWERK_SANITIZED
#include <sanitizer/common_interface_defs.h>
#endif

namespace tabwerk::test {
namespace {

constexpr int kHangSeconds = 120;
constexpr double kWaiting = 10;

// The running case, for whoever finds the program ending.
std::array<char, 200> running{};
std::atomic<std::int64_t> started{0};
std::atomic<bool> watching{false};
pthread_t watcher;

void TellCase() {
  std::fprintf(stderr, "\nin the case: %s\n", running.data());
  std::fflush(stderr);
}

void OnSignal(int signal) {
  TellCase();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void* WatchForHangs(void*) {
  std::int64_t seen = -1;
  int looks = 0;
  while (watching) {
    usleep(100'000);
    auto const now = started.load();
    looks = now == seen ? looks + 1 : 0;
    seen = now;
    if (looks < kHangSeconds * 10) continue;
    TellCase();
    std::_Exit(3);
  }
  return nullptr;
}

std::string Short(double number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f", number);
  return text.data();
}

}  // namespace

double CaseSeconds() {
#ifdef TABWERK_SANITIZED
  return 10;
#else
  // Set by scripts that run tests under valgrind.
  return std::getenv("TABWERK_SLOW") == nullptr ? 1 : 60;
#endif
}

int ShortCases(int cases) { return CaseSeconds() > 1 ? cases / 6 : cases; }

CaseWatch::CaseWatch() {
  for (int const signal : {SIGSEGV, SIGABRT, SIGFPE, SIGILL}) {
    std::signal(signal, OnSignal);
  }
#ifdef TABWERK_SANITIZED
  __sanitizer_set_death_callback(TellCase);
#endif
  watching = true;
  if (pthread_create(&watcher, nullptr, WatchForHangs, nullptr) != 0) {
    std::abort();
  }
}

CaseWatch::~CaseWatch() {
  watching = false;
  pthread_join(watcher, nullptr);
  for (int const signal : {SIGSEGV, SIGABRT, SIGFPE, SIGILL}) {
    std::signal(signal, SIG_DFL);
  }
#ifdef TABWERK_SANITIZED
  __sanitizer_set_death_callback(nullptr);
#endif
}

void CaseWatch::Run(std::string const& name,
                    std::function<void()> const& work) {
  std::snprintf(running.data(), running.size(), "%s", name.c_str());
  ++started;
  ++cases_;
  auto const begin = std::chrono::steady_clock::now();
  ProcessorTime const time;
  work();
  double const used = time.Seconds();
  double const taken =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - begin)
          .count();
  EXPECT_LE(used, CaseSeconds()) << "seconds of processor: " << name;
  EXPECT_LE(taken, CaseSeconds() * kWaiting) << "seconds: " << name;
  total_ += taken;
  if (used <= slowest_) return;
  slowest_ = used;
  slowest_name_ = name;
}

std::string CaseWatch::Figures() const {
  return std::to_string(cases_) + " cases in " + Short(total_) +
         " s, slowest " + Short(1000 * slowest_) + " ms of processor (" +
         slowest_name_ + ")";
}

}  // namespace tabwerk::test
