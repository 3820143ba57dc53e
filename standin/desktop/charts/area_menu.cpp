#include "desktop/charts/area_menu.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>
#include <QToolButton>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

namespace {

/// Grid and lines stay to be seen through them.
constexpr double kCutFillStrength = 0.55;
constexpr double kShapeStrength = 0.85;

bool isDrawn(const view::Lines& lines) {
  return std::any_of(lines.begin(), lines.end(), [](const view::Line& line) { return line.size() > 1; });
}

}  // namespace

AreaMenu::AreaMenu(bool hasShapes, QObject* parent)
    : QObject(parent), button_(new QToolButton), menu_(new QMenu(button_)), hasShapes_(hasShapes) {
  button_->setObjectName(QStringLiteral("areas"));
  button_->setText(tr("Areas"));
  button_->setToolTip(tr("Which areas are shaded: cut and fill, parts by their codes"));
  button_->setAutoRaise(true);
  button_->setPopupMode(QToolButton::InstantPopup);
  menu_->setObjectName(QStringLiteral("areaMenu"));
  button_->setMenu(menu_);
  connect(menu_, &QMenu::aboutToShow, this, &AreaMenu::fillMenu);
}

void AreaMenu::offer(std::vector<Line> lines) {
  lines_ = std::move(lines);
  choosePair();
}

void AreaMenu::choosePair() {
  designName_.clear();
  groundName_.clear();
  designEdge_.clear();
  groundEdge_.clear();
  between_ = {};
  const auto named = [this](const QString& name) -> const Line* {
    if (name.isEmpty()) return nullptr;
    for (const Line& line : lines_)
      if (line.name == name) return &line;
    return nullptr;
  };
  const auto first = [this](bool isDesign, const Line* besides) -> const Line* {
    for (const Line& line : lines_)
      if (line.isDesign == isDesign && line.isShown && &line != besides && isDrawn(line.lines)) return &line;
    return nullptr;
  };
  // A choice that isn't here now waits until it is there again.
  const Line* const ground = ground_.isEmpty() ? first(false, named(design_)) : named(ground_);
  const Line* design = design_.isEmpty() ? first(true, ground) : named(design_);
  if (design == nullptr && design_.isEmpty() && hasShapes_) design = first(false, ground);
  if (design == nullptr || ground == nullptr || design == ground) return;
  designName_ = design->name;
  groundName_ = ground->name;
  if (!wantsCutFill_) return;
  designEdge_ = view::upperEdge(design->lines);
  groundEdge_ = view::upperEdge(ground->lines);
  between_ = view::cutFillBetween(designEdge_, groundEdge_);
}

std::vector<ChartFill> AreaMenu::fills(const QString& unit, bool tellsAreas) const {
  std::vector<ChartFill> fills;
  if (!wantsCutFill_ || between_.isEmpty()) return fills;
  for (const bool isFill : {false, true}) {
    ChartFill fill;
    fill.key = isFill ? QStringLiteral("fill") : QStringLiteral("cut");
    fill.name = isFill ? tr("Fill") : tr("Cut");
    if (tellsAreas)
      fill.name +=
          QStringLiteral(" %1 %2\u00b2").arg(toQt(text::fixedText(isFill ? between_.fill : between_.cut, 2)), unit);
    fill.tip =
        isFill ? tr("%1 above %2").arg(designName_, groundName_) : tr("%1 below %2").arg(designName_, groundName_);
    fill.look = view::cutFillLook(isFill);
    fill.strength = kCutFillStrength;
    for (const view::CutFillArea& area : between_.areas)
      if (area.isFill == isFill) fill.areas.push_back(area.outline);
    fills.push_back(std::move(fill));
  }
  return fills;
}

QString AreaMenu::textAt(double x) const {
  if (!wantsCutFill_) return {};
  const auto design = view::elevationAt(designEdge_, x);
  const auto ground = view::elevationAt(groundEdge_, x);
  if (!design || !ground) return {};
  const double height = *design - *ground;
  return (height < 0.0 ? tr("Cut %1") : tr("Fill %1")).arg(toQt(text::fixedText(std::abs(height))));
}

void AreaMenu::fillMenu() {
  menu_->clear();
  const auto addSwitch = [this](const char* name, const QString& text, bool& wanted) {
    QAction* const action = menu_->addAction(text);
    action->setObjectName(QLatin1String(name));
    action->setCheckable(true);
    action->setChecked(wanted);
    connect(action, &QAction::triggered, this, [this, &wanted](bool isOn) {
      wanted = isOn;
      choosePair();
      Q_EMIT changed();
    });
  };
  addSwitch("cutFill", tr("&Cut and fill"), wantsCutFill_);
  if (hasShapes_) addSwitch("shapes", tr("&Parts by their codes"), wantsShapes_);
  const auto addChoice = [this](const QString& title, QString& chosen, const QString& present) {
    QMenu* const menu = menu_->addMenu(title);
    auto* const group = new QActionGroup(menu);
    const auto add = [&](const QString& text, const QString& name) {
      QAction* const action = menu->addAction(QString(text).replace(QLatin1Char('&'), QStringLiteral("&&")));
      action->setCheckable(true);
      action->setChecked(chosen == name);
      group->addAction(action);
      connect(action, &QAction::triggered, this, [this, &chosen, name] {
        chosen = name;
        choosePair();
        Q_EMIT changed();
      });
    };
    add(chosen.isEmpty() && !present.isEmpty() ? tr("Automatic: %1").arg(present) : tr("Automatic"), {});
    for (const Line& line : lines_) add(line.name, line.name);
  };
  menu_->addSeparator();
  addChoice(tr("&Design"), design_, designName_);
  addChoice(tr("&Ground"), ground_, groundName_);
}

std::vector<ChartFill> codeFills(const std::vector<view::SectionCorridor>& corridors) {
  std::vector<ChartFill> fills;
  for (view::CodeFill& part : view::fillsOf(corridors)) {
    ChartFill fill;
    fill.key = QStringLiteral("code:") + toQt(part.code);
    fill.name = part.code.empty() ? QCoreApplication::translate("lvx::desktop::AreaMenu", "Parts without a code")
                                  : toQt(part.code);
    fill.look = part.look;
    fill.areas = std::move(part.areas);
    fill.bands = std::move(part.bands);
    fill.strength = kShapeStrength;
    fills.push_back(std::move(fill));
  }
  return fills;
}

}  // namespace lvx::desktop
