// The progress sink.
#include "ztypes.h"

zSplashMessage* zSplashMessage::GetSplashMessage() {
  static zSplashMessage sink;
  return &sink;
}

void zSplashMessage::SetCallback(Callback callback, void* context) noexcept {
  callback_ = callback;
  context_ = context;
}

void zSplashMessage::Show(zWString const& text) {
  if (callback_ != nullptr) {
    callback_(context_, &text);
  }
}

void zSplashMessage::Clear() {
  if (callback_ != nullptr) {
    callback_(context_, nullptr);
  }
}
