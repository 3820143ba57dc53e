#include "desktop/charts/section_view.h"

#include <QComboBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QShortcut>
#include <QSignalBlocker>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

using civil::Vec2;

namespace {

constexpr Qt::PenStyle kStyles[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine};

/// Corridors are thick, ground is thin; the next of a kind has another pattern.
ChartPen corridorPen(std::size_t index) {
  constexpr int kColours[] = {1, 2, 7};
  return {kColours[index % std::size(kColours)], kStyles[index % std::size(kStyles)], 2.6};
}

ChartPen groundPen(std::size_t index) {
  constexpr int kColours[] = {0, 3, 4, 5, 6};
  return {kColours[index % std::size(kColours)], kStyles[index % std::size(kStyles)], 1.3};
}

QString joined(const std::vector<std::string>& codes) {
  QStringList list;
  for (const std::string& code : codes) list.append(toQt(code));
  list.removeDuplicates();
  return list.join(QStringLiteral(", "));
}

}  // namespace

SectionView::SectionView(QWidget* parent) : ChartView(parent) {
  setObjectName(QStringLiteral("sectionView"));
  const auto button = [this](const char* name, Qt::ArrowType arrow, const QString& tip) {
    auto* made = new QToolButton;
    made->setObjectName(QLatin1String(name));
    made->setArrowType(arrow);
    made->setAutoRaise(true);
    made->setToolTip(tip);
    made->setAccessibleName(tip);
    return made;
  };
  previous_ = button("previous", Qt::LeftArrow, tr("Previous sample line (Page up)"));
  next_ = button("next", Qt::RightArrow, tr("Next sample line (Page down)"));
  lines_ = new QComboBox;
  lines_->setObjectName(QStringLiteral("sampleLines"));
  lines_->setToolTip(tr("Sample lines of the group"));
  lines_->setAccessibleName(lines_->toolTip());
  lines_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  lines_->setMaxVisibleItems(24);
  controls()->addWidget(previous_);
  controls()->addWidget(lines_);
  controls()->addWidget(next_);
  controls()->addSpacing(8);
  connect(previous_, &QToolButton::clicked, this, [this] { go(-1); });
  connect(next_, &QToolButton::clicked, this, [this] { go(1); });
  connect(lines_, &QComboBox::activated, this, [this](int index) {
    const auto present = std::find_if(neighbours_.begin(), neighbours_.end(),
                                      [this](const auto& entry) { return entry.handle == sampleLine(); });
    go(index - static_cast<int>(present - neighbours_.begin()));
  });
  const auto shortcut = [this](Qt::Key key, int steps) {
    auto* made = new QShortcut(QKeySequence(key), this);
    made->setContext(Qt::WidgetWithChildrenShortcut);
    connect(made, &QShortcut::activated, this, [this, steps] { go(steps); });
  };
  shortcut(Qt::Key_PageUp, -1);
  shortcut(Qt::Key_PageDown, 1);
  clear();
}

void SectionView::clear() {
  drawing_ = nullptr;
  model_.reset();
  neighbours_.clear();
  fillNeighbours();
  Chart chart;
  chart.emptyText = tr("Select a sample line to see its cross section.");
  setChart(std::move(chart));
}

void SectionView::show(const civil::Drawing& drawing, civil::Handle sampleLine, bool keepsPlace) {
  auto model = view::sectionOf(drawing, sampleLine);
  if (!model) {
    clear();
    return;
  }
  const bool isNeighbour = model_ && drawing_ == &drawing && model_->sampleLine != sampleLine &&
                           std::any_of(neighbours_.begin(), neighbours_.end(),
                                       [&](const auto& entry) { return entry.handle == sampleLine; });
  const std::optional<double> levelBefore = isNeighbour ? model_->levelAtAxis() : std::nullopt;
  drawing_ = &drawing;
  model_ = std::move(model);
  neighbours_ = view::sampleLinesBeside(drawing, sampleLine);
  fillNeighbours();

  const QString unit = unitText(drawing.linearUnit);
  Chart chart;
  const QString name = toQt(model_->name);
  const QString station = toQt(text::stationText(model_->station));
  chart.title = tr("Cross section at %1, %2").arg(station, toQt(model_->alignmentName));
  chart.subtitle = tr("Sample line %1, %2").arg(name, toQt(model_->groupName));
  chart.fileName = QFileInfo(toQt(drawing.path)).fileName();
  chart.measure = ChartMeasure::Offset;
  chart.unit = unit;
  // Slopes of a cross section are looked at; much enlarged they mislead.
  chart.usualEnlargement = 5.0;
  chart.mostEnlargement = 5.0;
  chart.unitMillimetres = unitMillimetres(drawing.linearUnit);
  chart.xTitle = tr("Offset [%1]").arg(unit);
  chart.yTitle = tr("Elevation [%1]").arg(unit);
  chart.reach = {model_->leastOffset, 0.0, model_->greatestOffset, 0.0};
  for (std::size_t i = 0; i < model_->corridors.size(); ++i) {
    const view::SectionCorridor& corridor = model_->corridors[i];
    ChartSeries series;
    series.handle = corridor.corridor;
    series.name = toQt(corridor.name);
    if (!corridor.baseline.empty() && corridor.baseline != corridor.name)
      series.name += QStringLiteral(" (") + toQt(corridor.baseline) + QStringLiteral(")");
    series.pen = corridorPen(i);
    series.lines = corridor.lines();
    series.hasDots = true;
    chart.series.push_back(std::move(series));
  }
  for (std::size_t i = 0; i < model_->grounds.size(); ++i) {
    const view::SectionGround& ground = model_->grounds[i];
    ChartSeries series;
    series.handle = ground.surface;
    series.name = toQt(ground.name);
    series.pen = groundPen(i);
    series.lines = ground.lines;
    series.hasDots = true;
    chart.series.push_back(std::move(series));
  }
  chart.emptyText = chart.series.empty()
                        ? tr("The drawing has no surface, and no corridor has a section here.")
                        : tr("Sample line %1 lies off every surface that is shown, and no corridor that is shown has a "
                             "section at %2.")
                              .arg(name, station);
  setChart(std::move(chart), keepsPlace || isNeighbour);
  const std::optional<double> level = model_->levelAtAxis();
  if (levelBefore && level) shift({0.0, *level - *levelBefore});
}

void SectionView::fillNeighbours() {
  const QSignalBlocker quiet(lines_);
  lines_->clear();
  int present = -1;
  for (const view::SampleLineEntry& entry : neighbours_) {
    if (entry.handle == sampleLine()) present = lines_->count();
    lines_->addItem(toQt(text::stationText(entry.station)) + QStringLiteral("  ") + toQt(entry.name));
  }
  lines_->setCurrentIndex(present);
  lines_->setEnabled(lines_->count() > 0);
  previous_->setEnabled(present > 0);
  next_->setEnabled(present >= 0 && present + 1 < lines_->count());
}

void SectionView::go(int steps) {
  if (!model_ || steps == 0) return;
  const auto present = std::find_if(neighbours_.begin(), neighbours_.end(),
                                    [this](const auto& entry) { return entry.handle == sampleLine(); });
  const auto index = static_cast<int>(present - neighbours_.begin()) + steps;
  if (present == neighbours_.end() || index < 0 || index >= static_cast<int>(neighbours_.size())) return;
  const civil::Handle wanted = neighbours_[static_cast<std::size_t>(index)].handle;
  show(*drawing_, wanted);
  Q_EMIT sampleLineChanged(wanted);
}

bool SectionView::isShown(view::SectionVertex::Owner owner, std::size_t index) const {
  const std::size_t at = owner == view::SectionVertex::Owner::Corridor ? index : model_->corridors.size() + index;
  return at < chart().series.size() && chart().series[at].isShown;
}

QString SectionView::readout(Vec2 place) const {
  QStringList parts;
  parts.append(tr("Offset %1").arg(toQt(text::fixedText(place.x))));
  parts.append(tr("Elevation %1").arg(toQt(text::fixedText(place.y))));
  for (const ChartSeries& series : chart().series) {
    if (!series.isShown) continue;
    if (const auto elevation = view::elevationAt(series.lines, place.x))
      parts.append(series.name + QStringLiteral(" ") + toQt(text::fixedText(*elevation)));
  }
  return parts.join(QStringLiteral("    "));
}

std::optional<ChartView::Snap> SectionView::snap(Vec2 place, Vec2 reach) const {
  if (!model_) return {};
  const auto near = model_->nearest(
      place, reach, [this](view::SectionVertex::Owner owner, std::size_t index) { return isShown(owner, index); });
  if (!near) return {};
  const bool isCorridor = near->owner == view::SectionVertex::Owner::Corridor;
  const std::size_t at = isCorridor ? near->index : model_->corridors.size() + near->index;
  QString text = chart().series[at].name;
  const QString codes = joined(near->codes);
  if (!codes.isEmpty()) text += QStringLiteral("\n") + codes;
  text += QStringLiteral("\n") + toQt(text::fixedText(near->place.x)) + QStringLiteral(" / ") +
          toQt(text::fixedText(near->place.y));
  return Snap{near->place, text};
}

QString SectionView::exportName() const {
  //: Name that a cross section's file is given first.
  const QString kind = tr("section");
  return model_ ? kind + QLatin1Char('-') + toQt(text::stationText(model_->station)) : kind;
}

}  // namespace lvx::desktop
