#include "standin_platform/c_locale_scope.h"

#include <clocale>
#include <string>

#include <locale.h>

namespace lvx::standin_platform {

struct CLocaleScope::State {
  int formerMode = 0;
  std::string former;
};

CLocaleScope::CLocaleScope() {
  auto state = std::make_unique<State>();
  state->formerMode = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
  if (state->formerMode == -1) return;
  const char* const former = std::setlocale(LC_ALL, nullptr);
  state->former = former == nullptr ? "C" : former;
  std::setlocale(LC_ALL, "C");
  state_ = std::move(state);
}

CLocaleScope::~CLocaleScope() {
  if (!state_) return;
  std::setlocale(LC_ALL, state_->former.c_str());
  _configthreadlocale(state_->formerMode);
}

}  // namespace lvx::standin_platform
