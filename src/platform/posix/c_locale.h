#pragma once

#include <locale.h>

namespace lvx::platform {

/// Puts the "C" locale in force for this thread and a scope: around libraries whose numbers or words would otherwise follow
/// the user's locale. Where the system can't give one, nothing changes.
class CLocaleScope {
 public:
  CLocaleScope()
      : made_(newlocale(LC_ALL_MASK, "C", nullptr)), former_(made_ == nullptr ? nullptr : uselocale(made_)) {}
  CLocaleScope(const CLocaleScope&) = delete;
  CLocaleScope& operator=(const CLocaleScope&) = delete;
  ~CLocaleScope() {
    if (made_ == nullptr) return;
    uselocale(former_);
    freelocale(made_);
  }

 private:
  locale_t made_;
  locale_t former_;
};

}  // namespace lvx::platform
