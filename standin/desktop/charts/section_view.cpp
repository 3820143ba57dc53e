#include "desktop/charts/section_view.h"

#include <QComboBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "civil/sample_line_rules.h"
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

/// As people write it: 1+540, 1540, 1540,5.
std::optional<double> typedStation(const QString& typed) {
  const std::array rule{
      civil::SampleLineRule{"stations", toUtf8(QString(typed).trimmed().replace(QLatin1Char(','), QLatin1Char('.')))}};
  try {
    const std::vector<double> stations = civil::sampleLineRules(rule).stations;
    if (stations.size() == 1) return stations.front();
  } catch (const civil::SampleLineError&) {
    return std::nullopt;
  }
  return std::nullopt;
}

QString joined(const std::vector<std::string>& codes) {
  QStringList list;
  for (const std::string& code : codes) list.append(toQt(code));
  list.removeDuplicates();
  return list.join(QStringLiteral(", "));
}

}  // namespace

SectionView::SectionView(QWidget* parent) : ChartView(parent), areas_(true, nullptr) {
  setObjectName(QStringLiteral("sectionView"));
  buildControls();
  buildStationRow();
  const auto shortcut = [this](Qt::Key key, int steps) {
    auto* made = new QShortcut(QKeySequence(key), this);
    made->setContext(Qt::WidgetWithChildrenShortcut);
    connect(made, &QShortcut::activated, this, [this, steps] { go(steps); });
  };
  shortcut(Qt::Key_PageUp, -1);
  shortcut(Qt::Key_PageDown, 1);
  connect(&areas_, &AreaMenu::changed, this, [this] { areasChanged(); });
  clear();
}

void SectionView::buildControls() {
  const auto button = [this](const char* name, Qt::ArrowType arrow, const QString& tip) {
    auto* made = new QToolButton;
    made->setObjectName(QLatin1String(name));
    made->setArrowType(arrow);
    made->setAutoRaise(true);
    made->setToolTip(tip);
    made->setAccessibleName(tip);
    return made;
  };
  previous_ = button("previous", Qt::LeftArrow, tr("Previous section (Page up)"));
  next_ = button("next", Qt::RightArrow, tr("Next section (Page down)"));
  lines_ = new QComboBox;
  lines_->setObjectName(QStringLiteral("sampleLines"));
  lines_->setToolTip(tr("Sections of the alignment: sample lines of the group, and corridors"));
  lines_->setAccessibleName(tr("Sections of the alignment"));
  // A long name would take the title's room.
  lines_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  constexpr int kLetters = 12;
  lines_->setMinimumContentsLength(kLetters);
  lines_->setMaxVisibleItems(24);
  controls()->addWidget(previous_);
  controls()->addWidget(lines_);
  controls()->addWidget(next_);
  controls()->addSpacing(8);
  connect(previous_, &QToolButton::clicked, this, [this] { go(-1); });
  connect(next_, &QToolButton::clicked, this, [this] { go(1); });
  connect(lines_, &QComboBox::activated, this, [this](int index) { goTo(static_cast<std::size_t>(index)); });
}

void SectionView::buildStationRow() {
  auto* const row = new QHBoxLayout;
  row->setContentsMargins(6, 0, 6, 0);
  slider_ = new QSlider(Qt::Horizontal);
  slider_->setObjectName(QStringLiteral("stationSlider"));
  slider_->setToolTip(tr("Through all sections of the alignment"));
  slider_->setAccessibleName(slider_->toolTip());
  slider_->setMinimumWidth(60);
  station_ = new QLineEdit;
  station_->setObjectName(QStringLiteral("station"));
  station_->setToolTip(tr("Station: Enter goes to the nearest section"));
  station_->setAccessibleName(tr("Station"));
  station_->setFixedWidth(station_->fontMetrics().horizontalAdvance(QStringLiteral("888+888.888")) + 16);
  follow_ = new QToolButton;
  follow_->setObjectName(QStringLiteral("follow"));
  follow_->setText(tr("Follow"));
  follow_->setCheckable(true);
  follow_->setAutoRaise(true);
  follow_->setToolTip(tr("Show the section nearest to the mouse in plan and profile"));
  row->addWidget(slider_, 1);
  row->addWidget(station_);
  row->addWidget(follow_);
  row->addWidget(areas_.button());
  addRow(row);
  connect(slider_, &QSlider::valueChanged, this, [this](int value) { goTo(static_cast<std::size_t>(value)); });
  connect(station_, &QLineEdit::returnPressed, this, &SectionView::goToTyped);
}

void SectionView::clear() {
  drawing_ = nullptr;
  model_.reset();
  group_ = 0;
  followStops({});
  Chart chart;
  chart.emptyText = tr("Select a sample line to see its cross section.");
  setChart(std::move(chart));
}

bool SectionView::follows() const { return follow_->isChecked(); }

void SectionView::show(const civil::Drawing& drawing, civil::Handle sampleLine, bool keepsPlace) {
  auto model = view::sectionOf(drawing, sampleLine);
  if (model)
    take(drawing, std::move(*model), view::groupOf(drawing, sampleLine), keepsPlace);
  else
    clear();
}

void SectionView::showNearest(const civil::Drawing& drawing, civil::Handle alignment, double station) {
  const bool isSame = model_ && drawing_ == &drawing && model_->alignment == alignment;
  const civil::Handle group = isSame ? group_ : view::firstGroupOf(drawing, alignment);
  std::vector<view::SectionStop> made;
  if (!isSame) made = view::sectionStops(drawing, alignment, group);
  const std::vector<view::SectionStop>& stops = isSame ? stops_ : made;
  const auto nearest = view::nearestStop(stops, station);
  if (!nearest) {
    clear();
    return;
  }
  const view::SectionStop stop = stops[*nearest];
  if (isSame && present() == nearest) {
    Q_EMIT sectionShown();
    return;
  }
  auto model = stop.sampleLine != 0 ? view::sectionOf(drawing, stop.sampleLine)
                                    : view::sectionAcross(drawing, alignment, stop.station,
                                                          view::reachAt(drawing, alignment, group, stop.station));
  if (model)
    take(drawing, std::move(*model), group, false);
  else
    clear();
  if (model_) Q_EMIT sectionShown();
}

void SectionView::showAgain(const civil::Drawing& drawing, bool keepsPlace) {
  if (!model_) return;
  if (model_->sampleLine != 0) {
    show(drawing, model_->sampleLine, keepsPlace);
    return;
  }
  const civil::Handle alignment = model_->alignment;
  const double station = model_->station;
  const auto stops = view::sectionStops(drawing, alignment, group_);
  const auto nearest = view::nearestStop(stops, station);
  auto model =
      nearest && std::abs(stops[*nearest].station - station) <= civil::kSameStation
          ? view::sectionAcross(drawing, alignment, station, view::reachAt(drawing, alignment, group_, station))
          : std::nullopt;
  if (model)
    take(drawing, std::move(*model), group_, keepsPlace);
  else
    clear();
}

void SectionView::take(const civil::Drawing& drawing, view::SectionModel model, civil::Handle group, bool keepsPlace) {
  const bool isNeighbour = model_ && drawing_ == &drawing && model_->alignment == model.alignment &&
                           (model_->station != model.station || model_->sampleLine != model.sampleLine) &&
                           group == group_;
  const std::optional<double> levelBefore = isNeighbour ? model_->levelAtAxis() : std::nullopt;
  drawing_ = &drawing;
  model_ = std::move(model);
  group_ = group;
  followStops(view::sectionStops(drawing, model_->alignment, group));
  setChart(chartOf(drawing), keepsPlace || isNeighbour);
  const std::optional<double> level = model_->levelAtAxis();
  if (levelBefore && level) shift({0.0, *level - *levelBefore});
}

Chart SectionView::chartOf(const civil::Drawing& drawing) const {
  const QString unit = unitText(drawing.linearUnit);
  Chart chart;
  const QString name = toQt(model_->name);
  const QString station = toQt(text::stationText(model_->station));
  const bool hasLine = model_->sampleLine != 0;
  chart.title = tr("Cross section at %1, %2").arg(station, toQt(model_->alignmentName));
  chart.subtitle = hasLine ? tr("Sample line %1, %2").arg(name, toQt(model_->groupName)) : tr("Section of a corridor");
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
  chart.emptyText = chart.series.empty() ? tr("The drawing has no surface, and no corridor has a section here.")
                    : hasLine
                        ? tr("Sample line %1 lies off every surface that is shown, and no corridor that is shown has a "
                             "section at %2.")
                              .arg(name, station)
                        : tr("Nothing that is shown has a section at %1.").arg(station);
  return chart;
}

std::vector<ChartFill> SectionView::areas() {
  areas_.button()->setEnabled(model_.has_value());
  if (!model_) {
    areas_.offer({});
    return {};
  }
  // What is ticked off isn't filled, and no side of cut and fill.
  std::vector<view::SectionCorridor> shown;
  AreaMenu::Line built{tr("Corridors"), true, true, {}};
  std::vector<AreaMenu::Line> lines;
  for (std::size_t i = 0; i < chart().series.size(); ++i) {
    const ChartSeries& series = chart().series[i];
    if (i >= model_->corridors.size()) {
      lines.push_back({series.name, false, series.isShown, series.lines});
      continue;
    }
    if (!series.isShown) continue;
    shown.push_back(model_->corridors[i]);
    built.lines.insert(built.lines.end(), series.lines.begin(), series.lines.end());
  }
  lines.insert(lines.begin(), std::move(built));
  areas_.offer(std::move(lines));
  std::vector<ChartFill> fills = areas_.fills(chart().unit, true);
  if (!areas_.wantsShapes()) return fills;
  for (ChartFill& fill : codeFills(shown)) fills.push_back(std::move(fill));
  return fills;
}

void SectionView::showOffset(std::optional<double> offset) {
  if (!model_ || !offset || !(*offset >= model_->leastOffset && *offset <= model_->greatestOffset)) {
    setCursorLine({});
    return;
  }
  ChartCursor cursor;
  cursor.x = *offset;
  for (std::size_t i = 0; i < chart().series.size(); ++i) {
    const ChartSeries& series = chart().series[i];
    const auto elevation = series.isShown ? view::elevationAt(series.lines, *offset) : std::nullopt;
    if (elevation)
      cursor.values.push_back(
          {static_cast<int>(i), *elevation, series.name + QStringLiteral(" ") + toQt(text::fixedText(*elevation))});
  }
  if (const QString areas = areas_.textAt(*offset); !areas.isEmpty()) cursor.values.push_back({-1, 0.0, areas});
  setCursorLine(std::move(cursor));
}

// ---------------------------------------------------------------- browsing

std::optional<std::size_t> SectionView::present() const {
  if (!model_) return std::nullopt;
  for (std::size_t i = 0; i < stops_.size(); ++i)
    if (stops_[i].sampleLine == model_->sampleLine &&
        (model_->sampleLine != 0 || std::abs(stops_[i].station - model_->station) <= civil::kSameStation))
      return i;
  return std::nullopt;
}

void SectionView::followStops(std::vector<view::SectionStop> stops) {
  const bool isSame = std::equal(stops.begin(), stops.end(), stops_.begin(), stops_.end(),
                                 [](const view::SectionStop& a, const view::SectionStop& b) {
                                   return a.station == b.station && a.sampleLine == b.sampleLine && a.name == b.name;
                                 });
  if (!isSame) {
    stops_ = std::move(stops);
    const QSignalBlocker quietList(lines_);
    const QSignalBlocker quietSlider(slider_);
    lines_->clear();
    QStringList texts;
    for (const view::SectionStop& stop : stops_)
      texts << toQt(text::stationText(stop.station)) + QStringLiteral("  ") + toQt(stop.name);
    lines_->addItems(texts);
    slider_->setRange(0, std::max(static_cast<int>(stops_.size()) - 1, 0));
  }
  showPresent();
}

void SectionView::showPresent() {
  const std::optional<std::size_t> at = present();
  const int index = at ? static_cast<int>(*at) : -1;
  const QSignalBlocker quietList(lines_);
  const QSignalBlocker quietSlider(slider_);
  lines_->setCurrentIndex(index);
  slider_->setValue(std::max(index, 0));
  for (QWidget* const part : {static_cast<QWidget*>(lines_), static_cast<QWidget*>(slider_),
                              static_cast<QWidget*>(station_), static_cast<QWidget*>(follow_)})
    part->setEnabled(!stops_.empty());
  previous_->setEnabled(index > 0);
  next_->setEnabled(index >= 0 && index + 1 < static_cast<int>(stops_.size()));
  station_->setText(model_ ? toQt(text::stationText(model_->station)) : QString());
}

void SectionView::go(int steps) {
  const std::optional<std::size_t> at = present();
  if (!at || steps == 0) return;
  const int index = static_cast<int>(*at) + steps;
  if (index >= 0 && index < static_cast<int>(stops_.size())) goTo(static_cast<std::size_t>(index));
}

void SectionView::goTo(std::size_t stop) {
  if (!model_ || stop >= stops_.size() || present() == stop) return;
  const view::SectionStop wanted = stops_[stop];
  if (wanted.sampleLine != 0)
    show(*drawing_, wanted.sampleLine);
  else
    showNearest(*drawing_, model_->alignment, wanted.station);
  if (wanted.sampleLine != 0) Q_EMIT sampleLineChanged(wanted.sampleLine);
}

void SectionView::goToTyped() {
  const std::optional<double> station = typedStation(station_->text());
  const auto nearest = station ? view::nearestStop(stops_, *station) : std::nullopt;
  if (nearest) goTo(*nearest);
  if (model_ && station) station_->setText(toQt(text::stationText(model_->station)));
  station_->selectAll();
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
  if (const QString areas = areas_.textAt(place.x); !areas.isEmpty()) parts.append(areas);
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
