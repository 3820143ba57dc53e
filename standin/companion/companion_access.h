#pragma once

#include "civil/drawing.h"
#include "host/model.h"

namespace lvx::companion {

/// What the companion library asks of the process it is loaded into: the two references of the object model, and the
/// drawing behind them for what the model has no operation for.
class CompanionAccess {
 public:
  CompanionAccess() = default;
  CompanionAccess(const CompanionAccess&) = delete;
  CompanionAccess& operator=(const CompanionAccess&) = delete;
  virtual ~CompanionAccess() = default;

  /// False where no drawing is open; then neither reference is touched.
  [[nodiscard]] virtual bool connect(host::Ref<host::QmtDocument>& document,
                                     host::Ref<host::QmtDatabase>& database) = 0;
  /// Gives up what `connect` gave.
  virtual void disconnect() = 0;
  /// The open drawing between connect and disconnect, else null.
  [[nodiscard]] virtual const civil::Drawing* drawing() = 0;
  /// The alignment behind a model object; null for an empty reference or an object of another kind.
  [[nodiscard]] virtual const civil::AlignmentObject* alignmentBehind(const host::QmtAlignment* alignment) = 0;
};

/// Puts `access` behind lvxCompanionAccess() and gives the one that stood there before; null takes it away.
CompanionAccess* setCompanionAccess(CompanionAccess* access) noexcept;

}  // namespace lvx::companion

/// Exported by the stand-in's processes for the companion library; null while no host stands.
extern "C" lvx::companion::CompanionAccess* lvxCompanionAccess();
