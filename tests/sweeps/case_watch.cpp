#include "tests/sweeps/case_watch.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__)
#define TABWERK_TEST_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TABWERK_TEST_SANITIZED
#endif
#endif

#ifdef TABWERK_TEST_SANITIZED
#include <sanitizer/common_interface_defs.h>
#endif

namespace tabwerk::test {
namespace {

constexpr int kHangSeconds = 120;
constexpr int kAttempts = 3;

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
#ifdef TABWERK_TEST_SANITIZED
  return 10;
#else
  // Set by scripts that run tests under valgrind.
  return std::getenv("TABWERK_SLOW") == nullptr ? 1 : 60;
#endif
}

CaseWatch::CaseWatch() {
  for (int const signal : {SIGSEGV, SIGABRT, SIGFPE, SIGILL}) {
    std::signal(signal, OnSignal);
  }
#ifdef TABWERK_TEST_SANITIZED
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
#ifdef TABWERK_TEST_SANITIZED
  __sanitizer_set_death_callback(nullptr);
#endif
}

double CaseWatch::Timed(std::function<void()> const& work) {
  using Clock = std::chrono::steady_clock;
  ++started;
  auto const begin = Clock::now();
  work();
  std::chrono::duration<double> const taken = Clock::now() - begin;
  total_ += taken.count();
  return taken.count();
}

void CaseWatch::Run(std::string const& name,
                    std::function<void()> const& work) {
  std::snprintf(running.data(), running.size(), "%s", name.c_str());
  ++cases_;
  double least = Timed(work);
  for (int i = 1; i < kAttempts && least > CaseSeconds(); ++i) {
    least = std::min(least, Timed(work));
  }
  EXPECT_LE(least, CaseSeconds()) << "seconds: " << name;
  if (least <= slowest_) return;
  slowest_ = least;
  slowest_name_ = name;
}

std::string CaseWatch::Figures() const {
  return std::to_string(cases_) + " cases in " + Short(total_) +
         " s, slowest " + Short(1000 * slowest_) + " ms (" + slowest_name_ +
         ")";
}

}  // namespace tabwerk::test
