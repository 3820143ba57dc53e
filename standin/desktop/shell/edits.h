#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include "civil/reversible_change.h"
#include "runtime/edit_history.h"

class QWidget;

namespace lvx::desktop {

class LongWork;
class Session;

/// What the user changes in the open drawing, step by step, to be undone and redone (runtime::EditHistory over the
/// session's drawing). Views and the window's state follow by changed().
///
///     edits.make(tr("New profile “%1”").arg(name), civil::addingProfile(alignment, name, std::move(profile)));
///
/// The drawing's lists move by each step, so nobody keeps pointers into them; handles stay.
class Edits : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it.
  Edits(QWidget& window, Session& session, LongWork& work);
  ~Edits() override;

  /// A drawing is open, and nothing runs that a change would be in the way of.
  [[nodiscard]] bool isPossible() const;
  /// Beside commands and savings something else may be in the way, as another drawing that is read: what is changed
  /// meanwhile would go with the open one, unasked. `isThere` is asked before each change; empty: nothing is in the way.
  void setHindrance(std::function<bool()> isThere);
  /// Makes a change called `name` in menus, in the user's language. Gives what it is about, 0 where it can't be made: a box
  /// over the window said why. Check names and the like before: the detail that a box says here is English.
  civil::Handle make(const QString& name, civil::ReversibleChangePtr change);
  void undo();
  void redo();
  /// Empty where there is none.
  [[nodiscard]] QString undoName() const;
  [[nodiscard]] QString redoName() const;
  /// The drawing goes.
  void forget();

 Q_SIGNALS:
  /// The lists of the drawing are about to move: who looks at them in another thread stops before this returns.
  void aboutToChange();
  /// The drawing is another now, by a change of `about`, which may be gone.
  void changed(quint64 about);

 private:
  QWidget& window_;
  Session& session_;
  LongWork& work_;
  std::function<bool()> isHindered_;
  std::unique_ptr<runtime::EditHistory> history_;
};

}  // namespace lvx::desktop
