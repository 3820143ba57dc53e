#include "standin_platform/c_locale_scope.h"

#include <locale.h>

namespace lvx::standin_platform {

struct CLocaleScope::State {
  locale_t made;
  locale_t former;
};

CLocaleScope::CLocaleScope() {
  auto state = std::make_unique<State>();
  state->made = newlocale(LC_ALL_MASK, "C", nullptr);
  if (state->made == nullptr) return;
  state->former = uselocale(state->made);
  state_ = std::move(state);
}

CLocaleScope::~CLocaleScope() {
  if (!state_) return;
  uselocale(state_->former);
  freelocale(state_->made);
}

}  // namespace lvx::standin_platform
