#pragma once

#include <QObject>
#include <QString>
#include <vector>

#include "desktop/charts/chart.h"
#include "view/cut_fill.h"

class QMenu;
class QToolButton;

namespace lvx::desktop {

/// The areas of a chart: whether cut and fill are shaded, between which two lines, and whether parts are filled by their
/// codes. A button with a menu; each view puts it where it has room.
///
///     areas.offer({{tr("Corridor"), true, true, top}, {"Existing ground", false, true, ground}});
///     setFills(areas.fills(unit, true));
class AreaMenu final : public QObject {
  Q_OBJECT

 public:
  /// A line that areas may lie at.
  struct Line {
    QString name;
    bool isDesign = false;
    bool isShown = true;
    view::Lines lines;
  };

  /// `hasShapes`: parts of corridors are among the chart's areas.
  AreaMenu(bool hasShapes, QObject* parent);

  /// Belongs to whoever puts it into a layout.
  [[nodiscard]] QToolButton* button() const { return button_; }

  /// Takes the lines that there are now. The chosen two stay chosen, by their names; without a choice it is the first
  /// design that shows, or else the second ground, against the first ground that does. O(points).
  void offer(std::vector<Line> lines);
  /// Cut and fill, with their sizes in square units where both axes are lengths of one scale. Empty where they aren't
  /// wanted and where nothing lies between the two.
  [[nodiscard]] std::vector<ChartFill> fills(const QString& unit, bool tellsAreas) const;
  [[nodiscard]] bool wantsShapes() const { return wantsShapes_; }
  [[nodiscard]] const view::CutFill& between() const { return between_; }
  /// "Cut 1.234" or "Fill 0.500" at a place; empty where the two aren't both or cut and fill aren't wanted. O(points).
  [[nodiscard]] QString textAt(double x) const;

 Q_SIGNALS:
  /// The user wants others.
  void changed();

 private:
  void fillMenu();
  void choosePair();

  QToolButton* button_;
  QMenu* menu_;
  bool hasShapes_;
  bool wantsShapes_ = true;
  bool wantsCutFill_ = true;
  QString design_;  ///< empty: without a choice
  QString ground_;
  std::vector<Line> lines_;
  QString designName_;
  QString groundName_;
  view::Lines designEdge_;
  view::Lines groundEdge_;
  view::CutFill between_;
};

/// The fills of a section's corridors by code, as the legend names them.
[[nodiscard]] std::vector<ChartFill> codeFills(const std::vector<view::SectionCorridor>& corridors);

}  // namespace lvx::desktop
