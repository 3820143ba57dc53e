#pragma once

#include <memory>

namespace lvx::standin_platform {

/// Puts the "C" locale in force for this thread and a scope: around libraries whose numbers or words would otherwise follow
/// the user's locale. Where the system can't give one, nothing changes.
class CLocaleScope {
 public:
  CLocaleScope();
  CLocaleScope(const CLocaleScope&) = delete;
  CLocaleScope& operator=(const CLocaleScope&) = delete;
  ~CLocaleScope();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
