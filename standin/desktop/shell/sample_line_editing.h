#pragma once

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <map>
#include <optional>

#include "civil/sample_line_rules.h"
#include "desktop/shell/sample_lines_dialog.h"
#include "desktop/shell/window_panels.h"

class QMenu;

namespace lvx::desktop {

class Edits;
class Selection;
class Session;

/// Sample lines made and changed by the user: groups by a dialog, single lines by their handles in the plan and by menus.
/// Each of these is one step of Edits.
class SampleLineEditing : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it.
  SampleLineEditing(QWidget& window, const WindowPanels& panels, const Session& session, Edits& edits,
                    Selection& selection);
  ~SampleLineEditing() override;

  /// Asks for a new group of an alignment; 0: of that which the user looks at.
  void askNew(civil::Handle alignment = 0);
  /// Asks for other rules of the chosen group, or that of the chosen line; where the rules aren't known, for another name
  /// and other widths.
  void askEdit();
  /// Asks for a station at which the chosen group, or that of the chosen line, gets a line more.
  void askAdd();
  /// Takes the chosen group or line away.
  void remove();
  /// Whether the chosen object is a group of sample lines or a line of one.
  [[nodiscard]] bool hasChosen() const;

  /// What can be done with an object; `place` is where in the plan the menu is asked for. A sample line or a group is
  /// chosen by it.
  void addEntries(QMenu& menu, civil::Handle handle, std::optional<QPointF> place);
  /// The drawing goes: dialogs close.
  void forget();

 private:
  /// A group with its alignment; pointers into the drawing.
  struct Chosen {
    const civil::AlignmentObject* alignment = nullptr;
    const civil::SampleLineGroup* group = nullptr;
    const civil::SampleLine* line = nullptr;
  };
  [[nodiscard]] std::optional<Chosen> chosen() const;
  [[nodiscard]] std::optional<Chosen> find(civil::Handle handle) const;
  void open(SampleLinesDialog* dialog);
  void take(const SampleLinesDialog& dialog);
  void askNameAndWidths(const Chosen& at);
  void add(civil::Handle group, double station);
  void showHandles();
  void pull(int index, QPointF place);
  void drop(int index, QPointF place);

  QWidget& window_;
  WindowPanels at_;
  const Session& session_;
  Edits& edits_;
  Selection& selection_;
  QPointer<SampleLinesDialog> dialog_;
  /// By which groups were made, while the drawing is open. A group that was changed by rules and back again keeps the
  /// last ones.
  std::map<civil::Handle, civil::SampleLineRules> rules_;
};

}  // namespace lvx::desktop
