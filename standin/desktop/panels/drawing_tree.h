#pragma once

#include <QAbstractItemModel>
#include <QSet>
#include <QString>
#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "civil/drawing.h"
#include "view/visibility.h"

class QContextMenuEvent;
class QLabel;
class QLineEdit;
class QMenu;
class QTreeView;

namespace lvx::desktop {

/// What a row of the tree stands for.
struct TreeRow {
  enum class Kind { Object, File, FilesHeading, PointGroupsHeading, OtherHeading };
  Kind kind = Kind::OtherHeading;
  /// Of an object; else 0.
  civil::Handle handle = 0;
  /// Of a file; else 0.
  civil::FileNumber file = 0;
};

/// The drawing's objects as a tree: sites, alignments with their profiles and sample line groups, the alignments without a
/// site, surfaces, point groups, corridors with their baselines, at last its files. Rows come into being when somebody looks at them, so a
/// group of 10,000 lines costs nothing until it is opened. Points into the drawing.
class DrawingTreeModel : public QAbstractItemModel {
  Q_OBJECT
 public:
  /// The object; whether something that the filter found stands below.
  enum Role { HandleRole = Qt::UserRole, LeadsOnRole };
  /// Whether the row's own name has what the filter looks for.
  [[nodiscard]] bool isMatch(const QModelIndex& index) const;
  /// What stays of a row when the drawing is edited: an object's handle, a heading's text, below those that it stands in.
  [[nodiscard]] static QString placeOf(const QModelIndex& index);
  /// The same by names, which stay where the drawing is read again and handles may be others.
  [[nodiscard]] static QString namedPlaceOf(const QModelIndex& index);

  [[nodiscard]] TreeRow rowOf(const QModelIndex& index) const;

  explicit DrawingTreeModel(QObject* parent = nullptr);
  ~DrawingTreeModel() override;

  /// Null: nothing.
  void setDrawing(const civil::Drawing* drawing);
  /// Leaves the objects whose name contains `text` in any case, with what they stand in; empty: all.
  void setFilter(const QString& text);
  /// The drawing's lists were edited.
  void refresh();
  /// Which objects are hidden in the plan: the boxes before the rows.
  void setVisibility(const view::Visibility& visibility);
  /// How many objects the filter leaves, up to what is shown.
  [[nodiscard]] std::size_t found() const { return found_; }
  /// The row of an object; invalid where it isn't in the tree.
  [[nodiscard]] QModelIndex indexOf(civil::Handle handle) const;

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 Q_SIGNALS:
  /// The user wants what stands in a row, and below it, to be shown in the plan or not.
  void visibilityWanted(const std::vector<lvx::civil::Handle>& handles, bool isShown);

 private:
  struct Node;
  struct Rows;
  [[nodiscard]] Node* nodeOf(const QModelIndex& index) const;
  void expand(Node& node) const;
  bool keepMatches(Node& node, const QString& text);
  void rebuild();
  [[nodiscard]] view::Shown shownOf(const Node& node) const;
  [[nodiscard]] QString toolTip(const Node& node) const;

  const civil::Drawing* drawing_ = nullptr;
  view::Visibility visibility_;
  /// Counts its changes, so that what was found out about a row holds until the next one.
  unsigned visibilityChange_ = 1;
  QString filter_;
  std::size_t found_ = 0;
  std::unique_ptr<Node> root_;
};

/// The tree with its find box, which finds objects by their names and points by their numbers and names as well.
class DrawingTree : public QWidget {
  Q_OBJECT
 public:
  explicit DrawingTree(QWidget* parent = nullptr);

  void setDrawing(const civil::Drawing* drawing);
  /// The drawing was edited: shows it anew, with the find text, what was open and what stood at the top. Its lists may
  /// have moved: nothing of what was shown before is looked at.
  void refresh();
  /// How the tree stands, for a drawing that is read again.
  struct State {
    QSet<QString> openRows;
    int top = 0;
    QString find;
  };
  [[nodiscard]] State state() const;
  void setState(const State& state);
  /// Shows where an object stands, without telling that it was selected.
  void reveal(civil::Handle handle);
  void focusFind();
  /// See DrawingTreeModel. Nothing is hidden in the next drawing.
  void setVisibility(const view::Visibility& visibility);

 Q_SIGNALS:
  /// A box before a row was clicked, or Space pressed.
  void visibilityWanted(const std::vector<lvx::civil::Handle>& handles, bool isShown);
  /// The user moved to a row, by mouse or keyboard; 0 for one that isn't an object.
  void selected(quint64 handle);
  /// The user clicked a row, selected already or not.
  void clicked(quint64 handle);
  /// Double click, or Enter.
  void activated(quint64 handle);
  /// Enter in the find box: what it found next, to be chosen and shown.
  void jumped(quint64 handle);
  /// The user asks for a row's menu: who has something to offer there adds it. Shown if anybody did. What an action does
  /// begins from the event loop if it waits for the user.
  void menuOpening(QMenu& menu, const lvx::desktop::TreeRow& row);

 protected:
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  void filter(const QString& text);
  void tellFound(const QString& text);
  /// The next row below the present one that the find text stands in, round the end; invalid where there is none.
  [[nodiscard]] QModelIndex nextFound() const;
  void jump();
  using PlaceOf = QString (*)(const QModelIndex&);
  [[nodiscard]] QSet<QString> openRows(PlaceOf placeOf) const;
  void openAgain(const QSet<QString>& rows, PlaceOf placeOf);
  /// False where nobody offers anything.
  bool openMenu(const QModelIndex& index, const QPoint& place);

  QLineEdit* find_;
  QTreeView* view_;
  DrawingTreeModel* model_;
  QLabel* found_;
  const civil::Drawing* drawing_ = nullptr;
  /// How the tree stood before something was looked for.
  std::optional<State> before_;
  bool hasShownPoint_ = false;
  bool revealing_ = false;
};

}  // namespace lvx::desktop
