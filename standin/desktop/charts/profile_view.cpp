#include "desktop/charts/profile_view.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QToolButton>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

using civil::Vec2;

namespace {

constexpr Qt::PenStyle kStyles[] = {Qt::SolidLine, Qt::DashLine, Qt::DashDotLine, Qt::DotLine};

ChartPen designPen(std::size_t index) {
  constexpr int kColours[] = {1, 2, 7};
  return {kColours[index % std::size(kColours)], kStyles[index % std::size(kStyles)], 2.6};
}

ChartPen groundPen(std::size_t index) {
  constexpr int kColours[] = {0, 3, 4, 5, 6};
  return {kColours[index % std::size(kColours)], kStyles[index % std::size(kStyles)], 1.3};
}

QString gradeText(double grade) {
  const QString percent = toQt(text::fixedText(grade * 100.0, 2));
  const bool isUp = grade > 0.0 && percent != QLatin1String("0.00");
  return (isUp ? QStringLiteral("+") : QString()) + percent + QStringLiteral(" %");
}

QString sizeText(double value) { return toQt(text::shortText(value)); }

}  // namespace

ProfileView::ProfileView(QWidget* parent) : ChartView(parent), areas_(false, nullptr) {
  setObjectName(QStringLiteral("profileView"));
  controls()->addWidget(areas_.button());
  controls()->addSpacing(8);
  connect(&areas_, &AreaMenu::changed, this, [this] { areasChanged(); });
  connect(this, &ChartView::mouseAt, this, [this](QPointF place) {
    if (model_ && place.x() >= model_->startStation && place.x() <= model_->endStation) Q_EMIT stationAt(place.x());
  });
  clear();
}

void ProfileView::clear() {
  model_.reset();
  Chart chart;
  chart.emptyText = tr("Select an alignment to see its profiles.");
  setChart(std::move(chart));
}

ChartSeries ProfileView::seriesOf(const view::ProfileLine& profile, const ChartPen& pen) {
  ChartSeries series;
  series.handle = profile.handle;
  series.name = toQt(profile.name);
  series.pen = pen;
  series.lines = profile.lines;
  for (const view::ProfileMark& point : profile.marks) {
    ChartMark mark;
    mark.place = point.place;
    mark.curveStart = point.curveStart;
    mark.curveEnd = point.curveEnd;
    mark.isTextAbove = point.isCrest();
    mark.text = {toQt(text::stationText(point.place.x)), toQt(text::fixedText(point.place.y))};
    if (point.lengthOut > 0.0)
      mark.text.append(tr("L=%1 + %2").arg(sizeText(point.length), sizeText(point.lengthOut)));
    else if (point.length > 0.0)
      mark.text.append(tr("L=%1").arg(sizeText(point.length)));
    if (point.radius > 0.0) mark.text.append(tr("R=%1").arg(sizeText(point.radius)));
    series.marks.push_back(std::move(mark));
  }
  for (const view::ProfileTangent& tangent : profile.tangents)
    series.notes.push_back({tangent.start, tangent.end, gradeText(tangent.grade)});
  return series;
}

void ProfileView::show(const civil::Drawing& drawing, civil::Handle alignment, bool keepsPlace) {
  auto model = view::profilesOf(drawing, alignment);
  if (!model) {
    clear();
    return;
  }
  model_ = std::move(model);

  const QString unit = unitText(drawing.linearUnit);
  Chart chart;
  chart.title = tr("Profile of %1").arg(toQt(model_->alignmentName));
  chart.subtitle = tr("Station %1 to %2")
                       .arg(toQt(text::stationText(model_->startStation)), toQt(text::stationText(model_->endStation)));
  chart.fileName = QFileInfo(toQt(drawing.path)).fileName();
  chart.measure = ChartMeasure::Station;
  chart.unit = unit;
  chart.unitMillimetres = unitMillimetres(drawing.linearUnit);
  chart.xTitle = tr("Station [%1]").arg(unit);
  chart.yTitle = tr("Elevation [%1]").arg(unit);
  if (!model_->elements.empty()) chart.reach = {model_->startStation, 0.0, model_->endStation, 0.0};
  chart.elements = model_->elements;

  std::size_t designs = 0;
  std::size_t grounds = 0;
  for (const view::ProfileLine& profile : model_->profiles) {
    chart.series.push_back(seriesOf(profile, profile.isGround ? groundPen(grounds++) : designPen(designs++)));
  }
  for (const view::ProfileSurface& surface : model_->surfaces) {
    ChartSeries series;
    series.handle = surface.handle;
    series.name = tr("Surface %1").arg(toQt(surface.name));
    series.pen = groundPen(grounds++);
    // Mostly the ground profile was taken from it and would only be doubled.
    series.isShown = false;
    chart.series.push_back(std::move(series));
  }
  const bool isDrawn = std::any_of(model_->profiles.begin(), model_->profiles.end(),
                                   [](const view::ProfileLine& profile) { return !profile.lines.empty(); });
  if (!isDrawn)
    for (ChartSeries& series : chart.series) series.isShown = true;
  chart.emptyText = model_->profiles.empty() ? tr("Alignment %1 has no profiles.").arg(toQt(model_->alignmentName))
                                             : tr("Nothing of alignment %1 is shown.").arg(toQt(model_->alignmentName));
  setChart(std::move(chart), keepsPlace);
  setSelected(selected_);
}

void ProfileView::setSelected(civil::Handle profile) {
  selected_ = profile;
  int index = -1;
  if (model_ && profile != 0) {
    for (std::size_t i = 0; i < model_->profiles.size(); ++i)
      if (model_->profiles[i].handle == profile) index = static_cast<int>(i);
  }
  setHighlighted(index);
}

void ProfileView::seriesWanted(int index) {
  if (!model_) return;
  const auto first = model_->profiles.size();
  const auto at = static_cast<std::size_t>(index);
  if (at < first || at - first >= model_->surfaces.size()) return;
  ChartSeries& series = editChart().series[at];
  if (series.lines.empty()) series.lines = view::groundAlong(*model_->axis, *model_->surfaces[at - first].surface);
}

int ProfileView::seriesAt(Vec2 place, Vec2 reach) const {
  if (!model_) return -1;
  const auto hit = model_->hit(place, reach, [this](std::size_t index) { return chart().series[index].isShown; });
  return hit ? static_cast<int>(*hit) : -1;
}

void ProfileView::seriesClicked(int index) {
  Q_EMIT profileClicked(model_->profiles[static_cast<std::size_t>(index)].handle);
}

void ProfileView::placeClicked(Vec2 place, bool isOnLine) {
  if (model_ && place.x >= model_->startStation && place.x <= model_->endStation)
    Q_EMIT stationClicked(place.x, isOnLine);
}

std::vector<ChartFill> ProfileView::areas() {
  std::vector<AreaMenu::Line> lines;
  for (std::size_t i = 0; i < chart().series.size(); ++i) {
    const ChartSeries& series = chart().series[i];
    const bool isDesign = model_ && i < model_->profiles.size() && !model_->profiles[i].isGround;
    lines.push_back({series.name, isDesign, series.isShown, series.lines});
  }
  areas_.offer(std::move(lines));
  areas_.button()->setEnabled(!chart().series.empty());
  return areas_.fills(chart().unit, false);
}

std::optional<double> ProfileView::elevationOf(std::size_t index, double station) const {
  if (index >= model_->profiles.size()) return view::elevationAt(chart().series[index].lines, station);
  const view::ProfileLine& profile = model_->profiles[index];
  return profile.covers(station) ? profile.profile->elevationAt(station) : std::nullopt;
}

void ProfileView::showStation(std::optional<double> station) {
  if (!model_ || !station || !(*station >= model_->startStation && *station <= model_->endStation)) {
    setCursorLine({});
    return;
  }
  ChartCursor cursor;
  cursor.x = *station;
  for (std::size_t i = 0; i < chart().series.size(); ++i) {
    const ChartSeries& series = chart().series[i];
    if (!series.isShown) continue;
    if (const auto elevation = elevationOf(i, *station))
      cursor.values.push_back(
          {static_cast<int>(i), *elevation, series.name + QStringLiteral(" ") + toQt(text::fixedText(*elevation))});
  }
  if (const QString areas = areas_.textAt(*station); !areas.isEmpty()) cursor.values.push_back({-1, 0.0, areas});
  setCursorLine(std::move(cursor));
}

QString ProfileView::readout(Vec2 place) const {
  QStringList parts;
  parts.append(tr("Station %1").arg(toQt(text::stationText(place.x))));
  parts.append(tr("Elevation %1").arg(toQt(text::fixedText(place.y))));
  for (std::size_t i = 0; i < chart().series.size(); ++i) {
    const ChartSeries& series = chart().series[i];
    if (!series.isShown || !model_) continue;
    const std::optional<double> elevation = elevationOf(i, place.x);
    QString grade;
    if (elevation && i < model_->profiles.size()) {
      const auto rise = model_->profiles[i].profile->gradeAt(place.x);
      if (rise && std::isfinite(*rise)) grade = QStringLiteral(" (") + gradeText(*rise) + QStringLiteral(")");
    }
    if (elevation) parts.append(series.name + QStringLiteral(" ") + toQt(text::fixedText(*elevation)) + grade);
  }
  if (const QString areas = areas_.textAt(place.x); !areas.isEmpty()) parts.append(areas);
  return parts.join(QStringLiteral("    "));
}

QString ProfileView::exportName() const {
  QString name = model_ ? toQt(model_->alignmentName) : QString();
  // What no file name may hold on one system or another.
  for (QChar& letter : name)
    if (QStringLiteral("/\\:*?\"<>|").contains(letter)) letter = QLatin1Char('-');
  //: Name that a profile's file is given first.
  const QString kind = tr("profile");
  return name.isEmpty() ? kind : kind + QLatin1Char('-') + name;
}

}  // namespace lvx::desktop
