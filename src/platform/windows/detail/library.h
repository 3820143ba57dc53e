#pragma once

// clang-format off
#include <windows.h>
// clang-format on

namespace lvx::native::detail {

/// A library that is loaded where it is there, by its name, and let go at the end.
class Library {
 public:
  explicit Library(const wchar_t* name) : module_(LoadLibraryW(name)) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    if (module_ != nullptr) FreeLibrary(module_);
  }

  explicit operator bool() const { return module_ != nullptr; }
  /// The function of that name or number; null where there is none or no library.
  template <class Function>
  [[nodiscard]] Function find(const char* name) const {
    if (module_ == nullptr) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  }

 private:
  HMODULE module_;
};

}  // namespace lvx::native::detail
