#include "desktop/panels/drawing_tree.h"

#include <QContextMenuEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStringList>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>
#include <optional>
#include <unordered_set>
#include <utility>

#include "civil/drawing_files.h"
#include "desktop/common/icons.h"
#include "desktop/common/qt_text.h"

namespace lvx::desktop {

struct DrawingTreeModel::Node {
  Node* parent = nullptr;
  int row = 0;
  civil::Handle handle = 0;
  QString text;
  QString count;  ///< in brackets behind the text
  const char* icon = nullptr;
  QString tip;
  TreeRow::Kind kind = TreeRow::Kind::Object;
  /// Of a file, and of an object the one that it came from.
  std::optional<civil::FileNumber> file;
  bool leadsOn = false;  ///< what the filter found stands below
  /// Makes the children when they are looked at; empty: there are none.
  std::function<void(Node&)> makeChildren;
  /// Tells all that is drawn in the plan of the row and of those below it; empty: nothing ever is.
  std::function<std::vector<civil::Handle>()> drawn;
  /// What was found out about them, and at which change.
  view::Shown shown = view::Shown::All;
  unsigned shownAt = 0;
  bool made = false;
  std::vector<std::unique_ptr<Node>> children;

  Node& add(civil::Handle childHandle, QString childText, const char* childIcon) {
    auto child = std::make_unique<Node>();
    child->parent = this;
    child->row = static_cast<int>(children.size());
    child->handle = childHandle;
    child->text = std::move(childText);
    child->icon = childIcon;
    return *children.emplace_back(std::move(child));
  }
  [[nodiscard]] bool isHeading() const { return kind != TreeRow::Kind::Object && kind != TreeRow::Kind::File; }
};

namespace {

/// "12,345" would be a decimal comma to half of the readers, so a narrow space parts the thousands.
QString grouped(std::size_t count) {
  QString text = QString::number(count);
  for (qsizetype at = text.size() - 3; at > 0; at -= 3) text.insert(at, QChar(0x202F));
  return text;
}

template <class Objects>
QString countOf(const Objects& objects) {
  return grouped(objects.size());
}

// What is drawn of objects, and of those that stand below them in the tree.

using Handles = std::vector<civil::Handle>;

void addDrawn(Handles& into, const civil::SampleLineGroup& group) {
  for (const civil::SampleLine& line : group.lines) into.push_back(line.handle);
}

void addDrawn(Handles& into, const civil::AlignmentObject& alignment) {
  into.push_back(alignment.handle);
  for (const civil::SampleLineGroup& group : alignment.sampleLineGroups) addDrawn(into, group);
}

void addDrawn(Handles& into, const civil::Site& site) {
  for (const auto& alignment : site.alignments)
    if (alignment) addDrawn(into, *alignment);
}

template <class Object>
auto drawnOf(const Object& object) {
  return [&object] {
    Handles handles;
    if constexpr (requires { addDrawn(handles, object); })
      addDrawn(handles, object);
    else
      handles.push_back(object.handle);
    return handles;
  };
}

/// Of all objects of a list.
template <class Objects>
auto drawnOfAll(const Objects& objects) {
  return [&objects] {
    Handles handles;
    for (const auto& object : objects) {
      if constexpr (requires { addDrawn(handles, object); })
        addDrawn(handles, object);
      else
        handles.push_back(object.handle);
    }
    return handles;
  };
}

auto drawnOf(const civil::PointGroup& group, const civil::Drawing& drawing) {
  return [&group, &drawing] {
    const std::unordered_set<std::int32_t> members(group.numbers.begin(), group.numbers.end());
    Handles handles;
    for (const civil::Point& point : drawing.points)
      if (members.contains(point.number)) handles.push_back(point.handle);
    return handles;
  };
}

QString nameOf(const std::string& name) { return name.empty() ? DrawingTreeModel::tr("(without a name)") : toQt(name); }

}  // namespace

DrawingTreeModel::DrawingTreeModel(QObject* parent) : QAbstractItemModel(parent), root_(std::make_unique<Node>()) {
  root_->made = true;
}

DrawingTreeModel::~DrawingTreeModel() = default;

void DrawingTreeModel::setDrawing(const civil::Drawing* drawing) {
  beginResetModel();
  drawing_ = drawing;
  setVisibility({});
  rebuild();
  endResetModel();
}

void DrawingTreeModel::refresh() {
  beginResetModel();
  rebuild();
  endResetModel();
}

QString DrawingTreeModel::placeOf(const QModelIndex& index) {
  QString place;
  for (QModelIndex row = index; row.isValid(); row = row.parent()) {
    const auto* const node = static_cast<const Node*>(row.internalPointer());
    place.prepend(QLatin1Char('/') + (node->handle == 0 ? node->text : QString::number(node->handle)));
  }
  return place;
}

QString DrawingTreeModel::namedPlaceOf(const QModelIndex& index) {
  QString place;
  for (QModelIndex row = index; row.isValid(); row = row.parent())
    place.prepend(QLatin1Char('/') + static_cast<const Node*>(row.internalPointer())->text);
  return place;
}

void DrawingTreeModel::setFilter(const QString& text) {
  if (filter_ == text) return;
  beginResetModel();
  filter_ = text;
  rebuild();
  endResetModel();
}

/// The rows of a drawing's parts. Each makes its children when they are looked at.
struct DrawingTreeModel::Rows {
  template <class Object>
  static Node& addObject(Node& into, const Object& object, const char* icon) {
    Node& row = into.add(object.handle, nameOf(object.name), icon);
    row.file = object.file;
    return row;
  }

  /// A heading over `objects`, which `makeChildren` lists; it can't be opened where there are none.
  template <class Objects>
  static Node& addHeading(Node& into, const QString& text, const char* icon, const Objects& objects,
                          std::function<void(Node&)> makeChildren) {
    Node& heading = into.add(0, text, icon);
    heading.kind = TreeRow::Kind::OtherHeading;
    heading.count = countOf(objects);
    if (!objects.empty()) heading.makeChildren = std::move(makeChildren);
    return heading;
  }

  static void addProfiles(Node& into, const civil::AlignmentObject& alignment) {
    if (alignment.profiles.empty()) return;
    addHeading(into, DrawingTreeModel::tr("Profiles"), "profile", alignment.profiles, [&alignment](Node& heading) {
      for (const civil::ProfileObject& profile : alignment.profiles) {
        Node& row = addObject(heading, profile, "profile");
        row.tip = profile.profile.isGround() ? DrawingTreeModel::tr("Ground") : DrawingTreeModel::tr("Design");
      }
    });
  }

  static void addLine(Node& into, const civil::SampleLineGroup& group, const civil::SampleLine& line) {
    Node& row = into.add(line.handle, nameOf(line.name), "sample_line");
    row.file = group.file;
    row.drawn = drawnOf(line);
  }

  static void addSampleLineGroups(Node& into, const civil::AlignmentObject& alignment) {
    if (alignment.sampleLineGroups.empty()) return;
    const auto& groups = alignment.sampleLineGroups;
    addHeading(into, DrawingTreeModel::tr("Sample line groups"), "sample_line_group", groups, [&groups](Node& heading) {
      for (const civil::SampleLineGroup& group : groups) {
        Node& row = addObject(heading, group, "sample_line_group");
        row.count = countOf(group.lines);
        row.tip = toQt(group.description);
        if (group.lines.empty()) continue;
        row.drawn = drawnOf(group);
        row.makeChildren = [&group](Node& self) {
          for (const civil::SampleLine& line : group.lines) addLine(self, group, line);
        };
      }
    }).drawn = drawnOfAll(groups);
  }

  static void addAlignments(Node& into, const civil::Site& site) {
    for (const auto& alignment : site.alignments) {
      Node& row = addObject(into, *alignment, "alignment");
      row.tip = toQt(alignment->description);
      row.drawn = drawnOf(*alignment);
      if (alignment->profiles.empty() && alignment->sampleLineGroups.empty()) continue;
      row.makeChildren = [&object = *alignment](Node& self) {
        addProfiles(self, object);
        addSampleLineGroups(self, object);
      };
    }
  }

  static void addSites(Node& into, const civil::Drawing& drawing) {
    addHeading(into, DrawingTreeModel::tr("Sites"), "site", drawing.sites, [&drawing](Node& heading) {
      for (const civil::Site& site : drawing.sites) {
        Node& row = addObject(heading, site, "site");
        row.count = countOf(site.alignments);
        row.tip = toQt(site.description);
        if (site.alignments.empty()) continue;
        row.drawn = drawnOf(site);
        row.makeChildren = [&site](Node& self) { addAlignments(self, site); };
      }
    }).drawn = drawnOfAll(drawing.sites);
    const civil::Site& siteless = drawing.siteless;
    if (!siteless.alignments.empty())
      addHeading(into, DrawingTreeModel::tr("Alignments without a site"), "alignment", siteless.alignments,
                 [&siteless](Node& heading) { addAlignments(heading, siteless); })
          .drawn = drawnOf(siteless);
  }

  static void addSurfaces(Node& into, const civil::Drawing& drawing) {
    addHeading(into, DrawingTreeModel::tr("Surfaces"), "surface", drawing.surfaces, [&drawing](Node& heading) {
      for (const civil::SurfaceObject& surface : drawing.surfaces) {
        Node& row = addObject(heading, surface, "surface");
        const civil::TinSurface::Counts counts = surface.surface.counts();
        row.count = DrawingTreeModel::tr("%1 triangles").arg(grouped(counts.triangles));
        row.tip = DrawingTreeModel::tr("%1 points, %2 triangles, elevations %3 to %4")
                      .arg(grouped(counts.points), grouped(counts.triangles),
                           QString::number(surface.surface.minElevation(), 'f', 3),
                           QString::number(surface.surface.maxElevation(), 'f', 3));
        row.drawn = drawnOf(surface);
      }
    }).drawn = drawnOfAll(drawing.surfaces);
  }

  static void addPointGroups(Node& into, const civil::Drawing& drawing) {
    Node& groups = addHeading(into, DrawingTreeModel::tr("Point groups"), "point_group", drawing.pointGroups,
                              [&drawing](Node& heading) {
                                for (const civil::PointGroup& group : drawing.pointGroups) {
                                  Node& row = addObject(heading, group, "point_group");
                                  row.count = countOf(group.numbers);
                                  row.tip = toQt(group.description);
                                  if (!group.numbers.empty()) row.drawn = drawnOf(group, drawing);
                                }
                              });
    groups.kind = TreeRow::Kind::PointGroupsHeading;
    groups.drawn = drawnOfAll(drawing.points);
    groups.tip = DrawingTreeModel::tr("%1 points in the drawing").arg(countOf(drawing.points));
  }

  static void addBaselines(Node& into, const civil::Corridor& corridor) {
    for (const civil::Baseline& baseline : corridor.baselines) {
      // A baseline is no object of the drawing; it is found by its alignment.
      Node& row =
          into.add(baseline.alignment == nullptr ? 0 : baseline.alignment->handle, nameOf(baseline.name), "alignment");
      row.count = DrawingTreeModel::tr("%n region(s)", nullptr, static_cast<int>(baseline.regions.size()));
    }
  }

  static void addFile(Node& into, civil::FileNumber number, const std::string& path, const QString& unit,
                      double lengthFactor, bool areAxesSwapped, const QString& drawingUnit) {
    const QString name = toQt(path);
    Node& row = into.add(0, QFileInfo(name).fileName(), "file");
    row.kind = TreeRow::Kind::File;
    row.file = number;
    QStringList marks{unit};
    QStringList tip{name, DrawingTreeModel::tr("Unit: %1").arg(unit)};
    if (lengthFactor != 1.0) {
      marks << DrawingTreeModel::tr("converted");
      constexpr int kDigits = 12;
      tip << DrawingTreeModel::tr("Converted to %1: its lengths times %2")
                 .arg(drawingUnit, QString::number(lengthFactor, 'g', kDigits));
    }
    if (areAxesSwapped) {
      marks << DrawingTreeModel::tr("swapped");
      tip << DrawingTreeModel::tr("Northing and easting are swapped");
    }
    row.count = marks.join(QStringLiteral(", "));
    row.tip = tip.join(QLatin1Char('\n'));
  }

  static void addFiles(Node& into, const civil::Drawing& drawing) {
    if (drawing.path.empty()) return;
    Node& files = into.add(0, DrawingTreeModel::tr("Files"), "file");
    files.kind = TreeRow::Kind::FilesHeading;
    files.count = grouped(drawing.addedFiles.size() + 1);
    files.makeChildren = [&drawing](Node& heading) {
      const auto inWords = [](const std::string& unit) {
        return unit.empty() ? DrawingTreeModel::tr("no unit") : toQt(unit);
      };
      const QString unit = inWords(drawing.linearUnit);
      addFile(heading, 0, drawing.path, unit, 1.0, drawing.axesSwapped, unit);
      civil::FileNumber number = 0;
      for (const civil::AddedFile& file : drawing.addedFiles)
        addFile(heading, ++number, file.path, inWords(file.linearUnit), file.lengthFactor, file.axesSwapped, unit);
    };
  }

  static void addCorridors(Node& into, const civil::Drawing& drawing) {
    addHeading(into, DrawingTreeModel::tr("Corridors"), "corridor", drawing.corridors, [&drawing](Node& heading) {
      for (const civil::Corridor& corridor : drawing.corridors) {
        Node& row = addObject(heading, corridor, "corridor");
        row.count = countOf(corridor.baselines);
        row.tip = toQt(corridor.description);
        if (!corridor.baselines.empty()) row.makeChildren = [&corridor](Node& self) { addBaselines(self, corridor); };
      }
    });
  }
};

void DrawingTreeModel::rebuild() {
  root_ = std::make_unique<Node>();
  root_->made = true;
  found_ = 0;
  if (drawing_ == nullptr) return;
  Rows::addSites(*root_, *drawing_);
  Rows::addSurfaces(*root_, *drawing_);
  Rows::addPointGroups(*root_, *drawing_);
  Rows::addCorridors(*root_, *drawing_);
  Rows::addFiles(*root_, *drawing_);
  if (!filter_.isEmpty()) keepMatches(*root_, filter_);
}

bool DrawingTreeModel::keepMatches(Node& node, const QString& text) {
  expand(node);
  std::erase_if(node.children, [&](std::unique_ptr<Node>& child) {
    const bool matches = !child->isHeading() && child->text.contains(text, Qt::CaseInsensitive);
    if (matches) ++found_;
    child->leadsOn = keepMatches(*child, text);
    if (child->leadsOn) return false;
    // An object that is all that was found in its branch can still be opened.
    if (matches) {
      child->children.clear();
      child->made = false;
    }
    return !matches;
  });
  for (std::size_t row = 0; row < node.children.size(); ++row) node.children[row]->row = static_cast<int>(row);
  return !node.children.empty();
}

void DrawingTreeModel::expand(Node& node) const {
  if (std::exchange(node.made, true)) return;
  if (node.makeChildren) node.makeChildren(node);
}

DrawingTreeModel::Node* DrawingTreeModel::nodeOf(const QModelIndex& index) const {
  return index.isValid() ? static_cast<Node*>(index.internalPointer()) : root_.get();
}

QModelIndex DrawingTreeModel::index(int row, int column, const QModelIndex& parent) const {
  Node* const node = nodeOf(parent);
  expand(*node);
  if (column != 0 || row < 0 || row >= static_cast<int>(node->children.size())) return {};
  return createIndex(row, column, node->children[static_cast<std::size_t>(row)].get());
}

QModelIndex DrawingTreeModel::parent(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  Node* const parent = nodeOf(index)->parent;
  return parent == nullptr || parent == root_.get() ? QModelIndex() : createIndex(parent->row, 0, parent);
}

int DrawingTreeModel::rowCount(const QModelIndex& parent) const {
  Node* const node = nodeOf(parent);
  expand(*node);
  return static_cast<int>(node->children.size());
}

int DrawingTreeModel::columnCount(const QModelIndex& /*parent*/) const { return 1; }

bool DrawingTreeModel::hasChildren(const QModelIndex& parent) const {
  const Node* const node = nodeOf(parent);
  return node->made ? !node->children.empty() : static_cast<bool>(node->makeChildren);
}

QVariant DrawingTreeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Node* const node = nodeOf(index);
  switch (role) {
    case Qt::DisplayRole:
      return node->count.isEmpty() ? node->text : QStringLiteral("%1 (%2)").arg(node->text, node->count);
    case Qt::DecorationRole:
      return icon(QString::fromLatin1(node->icon));
    case Qt::ToolTipRole: {
      const QString tip = toolTip(*node);
      return tip.isEmpty() ? QVariant() : QVariant(tip);
    }
    case HandleRole:
      return QVariant::fromValue<quint64>(node->handle);
    case LeadsOnRole:
      return node->leadsOn;
    case Qt::CheckStateRole:
      if (!node->drawn) return {};
      switch (shownOf(*node)) {
        case view::Shown::None:
          return Qt::Unchecked;
        case view::Shown::Some:
          return Qt::PartiallyChecked;
        case view::Shown::All:
          return Qt::Checked;
      }
      return {};
    default:
      return {};
  }
}

Qt::ItemFlags DrawingTreeModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractItemModel::flags(index);
  return index.isValid() && nodeOf(index)->drawn ? flags | Qt::ItemIsUserCheckable : flags;
}

bool DrawingTreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::CheckStateRole || !nodeOf(index)->drawn) return false;
  Q_EMIT visibilityWanted(nodeOf(index)->drawn(), value.toInt() != Qt::Unchecked);
  return true;
}

// A box is looked at whenever its row is drawn, and a group may have a million points.
view::Shown DrawingTreeModel::shownOf(const Node& node) const {
  if (!visibility_.hidesAny()) return view::Shown::All;
  Node& known = const_cast<Node&>(node);
  if (known.shownAt != visibilityChange_) {
    known.shown = view::shownOf(visibility_, node.drawn());
    known.shownAt = visibilityChange_;
  }
  return known.shown;
}

void DrawingTreeModel::setVisibility(const view::Visibility& visibility) {
  visibility_ = visibility;
  ++visibilityChange_;
}

QString DrawingTreeModel::toolTip(const Node& node) const {
  // Where a drawing is one file its objects come from nowhere else.
  if (node.kind != TreeRow::Kind::Object || !node.file || drawing_->addedFiles.empty()) return node.tip;
  QString origin;
  if (*node.file == civil::kNoFile)
    origin = tr("Made here, not saved yet");
  else
    origin = tr("From %1").arg(QFileInfo(toQt(civil::pathOf(*drawing_, *node.file))).fileName());
  return node.tip.isEmpty() ? origin : node.tip + QLatin1Char('\n') + origin;
}

TreeRow DrawingTreeModel::rowOf(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  const Node& node = *nodeOf(index);
  TreeRow row;
  row.kind = node.kind;
  row.handle = node.handle;
  if (node.kind == TreeRow::Kind::File) row.file = *node.file;
  return row;
}

bool DrawingTreeModel::isMatch(const QModelIndex& index) const {
  const Node& node = *nodeOf(index);
  return !node.isHeading() && !filter_.isEmpty() && node.text.contains(filter_, Qt::CaseInsensitive);
}

QModelIndex DrawingTreeModel::indexOf(civil::Handle handle) const {
  if (handle == 0) return {};
  const std::function<const Node*(Node&)> search = [&](Node& node) -> const Node* {
    expand(node);
    for (const auto& child : node.children)
      if (child->handle == handle) return child.get();
    for (const auto& child : node.children)
      if (const Node* found = search(*child)) return found;
    return nullptr;
  };
  const Node* const found = search(*root_);
  return found == nullptr ? QModelIndex() : createIndex(found->row, 0, found);
}

// ---------------------------------------------------------------- the widget

namespace {

/// A box before a row is a button of its own: clicking it neither chooses the row nor answers a question.
class TreeWithBoxes : public QTreeView {
 protected:
  void mousePressEvent(QMouseEvent* event) override {
    const QModelIndex index = boxAt(*event);
    isOnBox_ = index.isValid();
    if (!isOnBox_) return QTreeView::mousePressEvent(event);
    const bool isShown = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    model()->setData(index, isShown ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
  }
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!isOnBox_ || event->buttons() == Qt::NoButton) QTreeView::mouseMoveEvent(event);
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (!std::exchange(isOnBox_, false)) QTreeView::mouseReleaseEvent(event);
  }
  void mouseDoubleClickEvent(QMouseEvent* event) override {
    if (boxAt(*event).isValid())
      mousePressEvent(event);
    else
      QTreeView::mouseDoubleClickEvent(event);
  }

 private:
  /// The row whose box lies there; invalid for none.
  [[nodiscard]] QModelIndex boxAt(const QMouseEvent& event) const {
    const QPoint place = event.position().toPoint();
    const QModelIndex index = indexAt(place);
    if (event.button() != Qt::LeftButton || !index.isValid() || !index.data(Qt::CheckStateRole).isValid()) return {};
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = visualRect(index);
    option.features |= QStyleOptionViewItem::HasCheckIndicator;
    return style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this).contains(place)
               ? index
               : QModelIndex();
  }

  bool isOnBox_ = false;
};

}  // namespace

DrawingTree::DrawingTree(QWidget* parent)
    : QWidget(parent),
      find_(new QLineEdit),
      view_(new TreeWithBoxes),
      model_(new DrawingTreeModel(this)),
      found_(new QLabel) {
  setObjectName(QStringLiteral("drawingTree"));
  find_->setObjectName(QStringLiteral("treeFind"));
  find_->setPlaceholderText(tr("Find by name, points by number"));
  find_->setAccessibleName(find_->placeholderText());
  found_->setObjectName(QStringLiteral("treeFound"));
  found_->setTextFormat(Qt::PlainText);
  found_->setContentsMargins(6, 0, 6, 0);
  found_->hide();
  view_->setAccessibleName(tr("Objects of the drawing"));
  find_->setClearButtonEnabled(true);
  find_->addAction(icon(QStringLiteral("find")), QLineEdit::LeadingPosition);
  find_->installEventFilter(this);
  view_->setObjectName(QStringLiteral("treeView"));
  view_->setModel(model_);
  view_->setHeaderHidden(true);
  view_->setUniformRowHeights(true);
  view_->setFrameShape(QFrame::NoFrame);
  view_->setExpandsOnDoubleClick(false);  // a double click zooms; the arrow and the keys open
  view_->installEventFilter(this);
  view_->viewport()->installEventFilter(this);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  constexpr int kGap = 4;
  layout->setSpacing(kGap);
  layout->addWidget(find_);
  layout->addWidget(found_);
  layout->addWidget(view_, 1);

  connect(model_, &DrawingTreeModel::visibilityWanted, this, &DrawingTree::visibilityWanted);
  connect(find_, &QLineEdit::textChanged, this, &DrawingTree::filter);
  connect(find_, &QLineEdit::returnPressed, this, &DrawingTree::jump);
  connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
    if (!revealing_) Q_EMIT selected(current.data(DrawingTreeModel::HandleRole).toULongLong());
  });
  connect(view_, &QTreeView::clicked, this,
          [this](const QModelIndex& index) { Q_EMIT clicked(index.data(DrawingTreeModel::HandleRole).toULongLong()); });
  connect(view_, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
    const quint64 handle = index.data(DrawingTreeModel::HandleRole).toULongLong();
    if (handle == 0)
      view_->setExpanded(index, !view_->isExpanded(index));
    else
      Q_EMIT activated(handle);
  });
}

void DrawingTree::setDrawing(const civil::Drawing* drawing) {
  const bool blocked = find_->blockSignals(true);
  find_->clear();
  find_->blockSignals(blocked);
  found_->hide();
  before_.reset();
  drawing_ = drawing;
  revealing_ = true;
  model_->setFilter({});
  model_->setDrawing(drawing);
  revealing_ = false;
  if (drawing == nullptr) return;
  // What is looked for first: the roads with their profiles and lines.
  constexpr int kFewRows = 30;
  for (int row = 0; row < model_->rowCount(); ++row) {
    const QModelIndex heading = model_->index(row, 0);
    if (model_->hasChildren(heading) && model_->rowCount(heading) <= kFewRows) view_->expand(heading);
  }
  const QModelIndex sites = model_->index(0, 0);
  if (model_->rowCount(sites) == 1) view_->expand(model_->index(0, 0, sites));
}

QSet<QString> DrawingTree::openRows(PlaceOf placeOf) const {
  QSet<QString> rows;
  const std::function<void(const QModelIndex&)> look = [&](const QModelIndex& parent) {
    for (int row = 0; row < model_->rowCount(parent); ++row) {
      const QModelIndex index = model_->index(row, 0, parent);
      // What isn't open has rows that nobody made, and whoever makes them looks at the drawing.
      if (!model_->hasChildren(index) || !view_->isExpanded(index)) continue;
      rows.insert(placeOf(index));
      look(index);
    }
  };
  look({});
  return rows;
}

void DrawingTree::openAgain(const QSet<QString>& rows, PlaceOf placeOf) {
  const std::function<void(const QModelIndex&)> look = [&](const QModelIndex& parent) {
    for (int row = 0; row < model_->rowCount(parent); ++row) {
      const QModelIndex index = model_->index(row, 0, parent);
      if (!model_->hasChildren(index) || !rows.contains(placeOf(index))) continue;
      view_->expand(index);
      look(index);
    }
  };
  look({});
}

void DrawingTree::refresh() {
  revealing_ = true;
  const QSet<QString> rows = openRows(&DrawingTreeModel::placeOf);
  const int top = view_->verticalScrollBar()->value();
  model_->refresh();
  openAgain(rows, &DrawingTreeModel::placeOf);
  view_->verticalScrollBar()->setValue(top);
  revealing_ = false;
}

DrawingTree::State DrawingTree::state() const {
  return {openRows(&DrawingTreeModel::namedPlaceOf), view_->verticalScrollBar()->value(), find_->text()};
}

void DrawingTree::setState(const State& state) {
  find_->setText(state.find);
  revealing_ = true;
  if (state.find.isEmpty()) view_->collapseAll();
  openAgain(state.openRows, &DrawingTreeModel::namedPlaceOf);
  view_->verticalScrollBar()->setValue(state.top);
  revealing_ = false;
}

void DrawingTree::filter(const QString& text) {
  if (!text.trimmed().isEmpty() && !before_) before_ = state();
  revealing_ = true;
  model_->setFilter(text.trimmed());
  constexpr std::size_t kMostOpened = 2000;
  if (!text.trimmed().isEmpty() && model_->found() <= kMostOpened) {
    const std::function<void(const QModelIndex&)> open = [&](const QModelIndex& parent) {
      for (int row = 0; row < model_->rowCount(parent); ++row) {
        const QModelIndex index = model_->index(row, 0, parent);
        if (!index.data(DrawingTreeModel::LeadsOnRole).toBool()) continue;
        view_->expand(index);
        open(index);
      }
    };
    open({});
  }
  revealing_ = false;
  tellFound(text.trimmed());
  if (!text.trimmed().isEmpty() || !before_) return;
  State before = *std::exchange(before_, std::nullopt);
  before.find.clear();
  setState(before);
}

void DrawingTree::setVisibility(const view::Visibility& visibility) {
  model_->setVisibility(visibility);
  view_->viewport()->update();
}

namespace {

const civil::Point* pointCalled(const civil::Drawing* drawing, const QString& text) {
  if (drawing == nullptr || text.isEmpty()) return nullptr;
  bool isNumber = false;
  const int number = text.toInt(&isNumber);
  const std::string name = toUtf8(text);
  for (const civil::Point& point : drawing->points)
    if ((isNumber && point.number == number) || point.texts.name() == name) return &point;
  return nullptr;
}

}  // namespace

void DrawingTree::tellFound(const QString& text) {
  hasShownPoint_ = false;
  found_->setVisible(!text.isEmpty());
  if (text.isEmpty()) return;
  const bool isPoint = pointCalled(drawing_, text) != nullptr;
  if (model_->found() == 0 && !isPoint)
    found_->setText(tr("Nothing found"));
  else if (model_->found() == 0)
    found_->setText(tr("Point %1: Enter shows it").arg(text));
  else if (isPoint)
    found_->setText(
        tr("Point %1 and %n more: Enter goes to the next", nullptr, static_cast<int>(model_->found())).arg(text));
  else
    found_->setText(tr("%n found: Enter goes to the next", nullptr, static_cast<int>(model_->found())));
}

QModelIndex DrawingTree::nextFound() const {
  QModelIndex first;
  bool isBehind = !view_->currentIndex().isValid();
  const std::function<QModelIndex(const QModelIndex&)> search = [&](const QModelIndex& parent) -> QModelIndex {
    for (int row = 0; row < model_->rowCount(parent); ++row) {
      const QModelIndex index = model_->index(row, 0, parent);
      const bool isHit = model_->isMatch(index);
      if (isHit && isBehind) return index;
      if (isHit && !first.isValid()) first = index;
      if (index == view_->currentIndex()) isBehind = true;
      if (!index.data(DrawingTreeModel::LeadsOnRole).toBool()) continue;
      if (const QModelIndex below = search(index); below.isValid()) return below;
    }
    return {};
  };
  const QModelIndex found = search({});
  return found.isValid() ? found : first;
}

void DrawingTree::jump() {
  const QString text = find_->text().trimmed();
  if (text.isEmpty()) return;
  // The point of just that number before whatever has the number in its name.
  if (const civil::Point* const point = pointCalled(drawing_, text);
      point != nullptr && (model_->found() == 0 || !std::exchange(hasShownPoint_, true))) {
    Q_EMIT jumped(point->handle);
    return;
  }
  const QModelIndex next = model_->found() == 0 ? QModelIndex() : nextFound();
  if (!next.isValid()) return;
  revealing_ = true;
  view_->setCurrentIndex(next);
  view_->scrollTo(next);
  revealing_ = false;
  Q_EMIT jumped(next.data(DrawingTreeModel::HandleRole).toULongLong());
}

void DrawingTree::reveal(civil::Handle handle) {
  revealing_ = true;
  const QModelIndex index = model_->indexOf(handle);
  if (index.isValid()) {
    view_->setCurrentIndex(index);
    view_->scrollTo(index);
  } else {
    view_->clearSelection();
    view_->setCurrentIndex({});
  }
  revealing_ = false;
}

void DrawingTree::focusFind() {
  find_->setFocus(Qt::ShortcutFocusReason);
  find_->selectAll();
}

bool DrawingTree::openMenu(const QModelIndex& index, const QPoint& place) {
  if (!index.isValid()) return false;
  auto* const menu = new QMenu(this);
  menu->setObjectName(QStringLiteral("treeMenu"));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->setToolTipsVisible(true);
  Q_EMIT menuOpening(*menu, model_->rowOf(index));
  if (menu->isEmpty()) {
    delete menu;
    return false;
  }
  menu->popup(view_->viewport()->mapToGlobal(place));
  return true;
}

bool DrawingTree::eventFilter(QObject* target, QEvent* event) {
  if (event->type() == QEvent::ContextMenu && target != find_) {
    // By the keyboard it is asked for where the keyboard is.
    const auto* const asked = static_cast<QContextMenuEvent*>(event);
    const bool isByMouse = asked->reason() == QContextMenuEvent::Mouse;
    const QModelIndex index = isByMouse ? view_->indexAt(asked->pos()) : view_->currentIndex();
    return openMenu(index, isByMouse ? asked->pos() : view_->visualRect(index).center());
  }
  if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(target, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (target == find_ && key == Qt::Key_Down) {
    view_->setFocus(Qt::TabFocusReason);
    if (!view_->currentIndex().isValid()) view_->setCurrentIndex(model_->index(0, 0));
    return true;
  }
  if (target == find_ && key == Qt::Key_Escape && !find_->text().isEmpty()) {
    find_->clear();
    return true;
  }
  if (target == view_ && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
    const quint64 handle = view_->currentIndex().data(DrawingTreeModel::HandleRole).toULongLong();
    if (handle != 0) Q_EMIT activated(handle);
    return true;
  }
  return QWidget::eventFilter(target, event);
}

}  // namespace lvx::desktop
