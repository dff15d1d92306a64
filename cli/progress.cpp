#include "cli/progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "cli/console.h"
#include "cli/settings.h"
#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {

namespace {

// "45 s", "2 min 05 s", "3 h 20 min".
std::string Duration(long long seconds) {
  if (seconds < 60) return fmt::format("{} s", seconds);
  if (seconds < 3600) {
    return fmt::format("{} min {:02} s", seconds / 60, seconds % 60);
  }
  return fmt::format("{} h {:02} min", seconds / 3600, seconds / 60 % 60);
}

}  // namespace

std::string ProgressLine(std::string const& text, long long done,
                         long long total, char const* units,
                         std::chrono::milliseconds elapsed, std::size_t width) {
  constexpr long long kBarWidth = 20;
  auto const seconds = static_cast<double>(elapsed.count()) / 1000;
  std::string line = text;
  if (total <= 0) {
    line += " ... " + Duration(elapsed.count() / 1000);
  } else {
    done = std::clamp(done, 0LL, total);
    auto const part = static_cast<double>(done) / static_cast<double>(total);
    auto const filled = static_cast<long long>(part * kBarWidth);
    line += fmt::format("  [{:#<{}}{:{}}] {:3} %", "", filled, "",
                        kBarWidth - filled, static_cast<int>(part * 100));
    if (done == total) {
      line += "  " + Duration(elapsed.count() / 1000);
    } else if (done > 0 && seconds > 0) {
      auto const rate = static_cast<double>(done) / seconds;
      auto const left = static_cast<double>(total - done) / rate;
      line += fmt::format("  {} {}/s, {} left",
                          Grouped(static_cast<long long>(rate)), units,
                          Duration(std::llround(left)));
    }
  }
  // A line that fills the last column would go on in the next one.
  return CutToWidth(line, width > 1 ? width - 1 : 1);
}

// The library works in one call on the main thread, so the line is drawn by
// another one, which touches nothing of the library.
struct Progress::State {
  std::mutex mutex;
  std::condition_variable ended;
  bool has_ended = false;
  std::string text;
  long long total = 0;
  char const* units = "";
  std::atomic<long long> done = 0;
  std::function<long long()> follow;
  std::thread thread;

  void Draw() {
    using std::chrono::milliseconds;
    constexpr milliseconds kBeforeFirst{500};
    constexpr milliseconds kBetween{250};
    auto const start = std::chrono::steady_clock::now();
    std::unique_lock lock(mutex);
    std::size_t drawn = 0;  // columns
    while (!ended.wait_for(lock, drawn > 0 ? kBetween : kBeforeFirst,
                           [this] { return has_ended; })) {
      auto const elapsed = std::chrono::duration_cast<milliseconds>(
          std::chrono::steady_clock::now() - start);
      auto const width =
          static_cast<std::size_t>(std::max(console::ErrWidth(), 1));
      std::string const line =
          ProgressLine(OneBlankEach(text), follow ? follow() : done.load(),
                       total, units, elapsed, width);
      Clear(drawn);
      console::Err(line);
      drawn = DisplayWidth(line);
    }
    Clear(drawn);
  }

  // Not every console knows the control sequence for this.
  static void Clear(std::size_t columns) {
    if (columns > 0) console::Err("\r" + std::string(columns, ' ') + "\r");
  }

  static void Show(void* context, zWString const* shown) {
    auto* const state = static_cast<State*>(context);
    if (shown == nullptr) return;
    std::lock_guard const lock(state->mutex);
    state->text = shown->toUtf8();
  }
};

Progress::Progress(std::string const& text, long long total,
                   char const* units) {
  if (CurrentSettings().quiet || !console::ErrIsTerminal()) return;
  state_ = std::make_unique<State>();
  state_->text = text;
  state_->total = total;
  state_->units = units;
  state_->thread = std::thread([state = state_.get()] { state->Draw(); });
  zSplashMessage::GetSplashMessage()->SetCallback(&State::Show, state_.get());
}

Progress::~Progress() {
  if (state_ == nullptr) return;
  zSplashMessage::GetSplashMessage()->SetCallback(nullptr, nullptr);
  {
    std::lock_guard const lock(state_->mutex);
    state_->has_ended = true;
  }
  state_->ended.notify_one();
  state_->thread.join();
}

void Progress::Advance(long long done) {
  if (state_ != nullptr) {
    state_->done.store(done, std::memory_order_relaxed);
  }
}

void Progress::Follow(std::function<long long()> done) {
  if (state_ == nullptr) return;
  std::lock_guard const lock(state_->mutex);
  state_->follow = std::move(done);
}

}  // namespace tabwerk::tool
