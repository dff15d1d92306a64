#include "cli/progress.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "cli/console.h"
#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {

// The library works in one call on the main thread, so the line is drawn by
// another one, which touches nothing of the library.
struct Progress::State {
  std::mutex mutex;
  std::condition_variable ended;
  bool has_ended = false;
  std::string text;
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
      auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(
          std::chrono::steady_clock::now() - start);
      std::string const line =
          text + " ... " + std::to_string(seconds.count()) + " s";
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

Progress::Progress(std::string const& text) {
  if (!console::ErrIsTerminal()) return;
  state_ = std::make_unique<State>();
  state_->text = text;
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

}  // namespace tabwerk::tool
