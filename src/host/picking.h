#pragma once

#include <functional>

#include "framework/text.h"
#include "host/model.h"

namespace lvx::host {

class Host;

// Class tags of what can be picked.
inline constexpr const wchar_t* kClassAlignment = L"QMT_ALIGNMENT";
inline constexpr const wchar_t* kClassSurface = L"QMT_TIN_SURFACE";
inline constexpr const wchar_t* kClassProfile = L"QMT_PROFILE";
inline constexpr const wchar_t* kClassPoint = L"QMT_COGO_POINT";

/// Locks a document for the length of a pick and unlocks it on every way out. Without a document it does nothing.
class DocumentLock {
 public:
  explicit DocumentLock(Host& host);
  DocumentLock(const DocumentLock&) = delete;
  DocumentLock& operator=(const DocumentLock&) = delete;
  ~DocumentLock();
  /// False where there is no current document: then nothing can be picked.
  [[nodiscard]] explicit operator bool() const { return document_ != nullptr; }

 private:
  Host& host_;
  class VnApDocument* document_ = nullptr;
};

/// What one kind of pick says and takes.
struct EntityPick {
  const wchar_t* wantedClass = nullptr;
  CString prompt;
  /// Shown in a box with the stop icon when something else was picked.
  CString wrongClassText;
};

/// Lets the user pick one object of a class in the drawing while no dialog is open. Anything that can't be identified
/// or opened goes round again without a word; an object of another class after its error box. Escape or nothing ends it
/// with nothing changed. `picked` gets the handle text of an object of the right class, once; what it finds is its own
/// affair.
void pickEntity(Host& host, const EntityPick& pick, const std::function<void(const CString& handle)>& picked);

}  // namespace lvx::host
