#include "desktop/charts/free_section_view.h"

#include <QHBoxLayout>
#include <QMessageBox>
#include <QSaveFile>
#include <QTextStream>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "desktop/common/file_boxes.h"
#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

using civil::Vec2;

namespace {

constexpr Qt::PenStyle kStyles[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine};
/// Of a thousand surfaces the readout names the first.
constexpr int kMostNamed = 8;

/// Patterns take long to stroke, and of so many lines nobody tells them apart.
constexpr std::size_t kMostPatterns = 60;

ChartPen penOf(bool isCorridor, std::size_t index) {
  constexpr int kCorridorColours[] = {1, 2, 7};
  constexpr int kGroundColours[] = {0, 3, 4, 5, 6};
  const Qt::PenStyle style = index < kMostPatterns ? kStyles[index % std::size(kStyles)] : Qt::SolidLine;
  if (isCorridor) return {kCorridorColours[index % std::size(kCorridorColours)], style, 2.6};
  return {kGroundColours[index % std::size(kGroundColours)], style, 1.3};
}

QString nameOf(const view::FreeSectionPart& part) {
  QString name = toQt(part.name);
  if (!part.baseline.empty() && part.baseline != part.name)
    name += QStringLiteral(" (") + toQt(part.baseline) + QStringLiteral(")");
  return name;
}

QString signedText(double value) {
  const QString text = toQt(text::fixedText(value));
  return value > 0.0 ? QStringLiteral("+") + text : text;
}

}  // namespace

FreeSectionView::FreeSectionView(QWidget* parent) : ChartView(parent), areas_(true, nullptr) {
  setObjectName(QStringLiteral("freeSectionView"));
  // In a row of its own: the one above is full where the window is small.
  row_ = new QHBoxLayout;
  row_->setContentsMargins(6, 0, 6, 0);
  row_->setSpacing(2);
  addRow(row_);
  draw_ = addButton("freeDraw", tr("Draw"), tr("Draw another line over the plan"));
  sampleLine_ = addButton("freeSampleLine", tr("Sample line\u2026"), tr("Make the line a sample line of a group"));
  table_ = addButton("freeTable", tr("Table\u2026"), tr("Write distances, places and elevations as a table"));
  auto* const close = addButton("freeClose", tr("Close"), tr("Back to cross sections"));
  row_->addStretch(1);
  row_->addWidget(areas_.button());
  connect(draw_, &QToolButton::clicked, this, &FreeSectionView::drawWanted);
  connect(sampleLine_, &QToolButton::clicked, this, &FreeSectionView::sampleLineWanted);
  connect(table_, &QToolButton::clicked, this, &FreeSectionView::askTable);
  connect(close, &QToolButton::clicked, this, &FreeSectionView::closeWanted);
  connect(&areas_, &AreaMenu::changed, this, [this] { areasChanged(); });
  clear();
}

QToolButton* FreeSectionView::addButton(const char* name, const QString& text, const QString& tip) {
  auto* const button = new QToolButton;
  button->setObjectName(QLatin1String(name));
  button->setText(text);
  button->setToolTip(tip);
  button->setAutoRaise(true);
  row_->addWidget(button);
  return button;
}

void FreeSectionView::setIdle(bool isIdle) {
  isIdle_ = isIdle;
  updateButtons();
}

void FreeSectionView::updateButtons() {
  const bool hasWhole = isDone_ && !section_.line.isEmpty();
  draw_->setEnabled(isIdle_);
  table_->setEnabled(hasWhole);
  sampleLine_->setEnabled(hasWhole && isIdle_);
}

void FreeSectionView::clear() {
  section_ = {};
  around_ = {};
  isDone_ = true;
  updateButtons();
  Chart chart;
  chart.title = tr("Free section");
  chart.emptyText = tr("Draw a line of two points or more over the plan.");
  setChart(std::move(chart));
}

void FreeSectionView::show(view::FreeSection section, bool isDone, const Surroundings& around) {
  const bool isSameLine = section.line.vertices() == section_.line.vertices();
  section_ = std::move(section);
  around_ = around;
  isDone_ = isDone;
  updateButtons();
  const QString unit = unitText(around.linearUnit);
  Chart chart;
  chart.title = tr("Free section");
  const std::size_t turns = section_.line.vertices().size();
  if (turns > 1) {
    const Vec2 from = section_.line.vertices().front();
    const Vec2 to = section_.line.vertices().back();
    const auto text = [](double value) { return toQt(text::fixedText(value)); };
    chart.subtitle = tr("E %1 N %2 to E %3 N %4, length %5 %6")
                         .arg(text(from.x), text(from.y), text(to.x), text(to.y), text(section_.line.length()), unit);
  }
  chart.fileName = around.fileName;
  chart.measure = ChartMeasure::Distance;
  chart.unit = unit;
  chart.usualEnlargement = 5.0;
  chart.mostEnlargement = 20.0;
  chart.unitMillimetres = unitMillimetres(around.linearUnit);
  chart.xTitle = tr("Distance [%1]").arg(unit);
  chart.yTitle = tr("Elevation [%1]").arg(unit);
  chart.reach = {0.0, 0.0, section_.line.length(), 0.0};
  std::size_t corridors = 0;
  std::size_t grounds = 0;
  for (const view::FreeSectionPart& part : section_.parts) {
    ChartSeries series;
    series.handle = part.handle;
    series.name = nameOf(part);
    series.pen = penOf(part.isCorridor, part.isCorridor ? corridors++ : grounds++);
    series.lines = part.lines;
    chart.series.push_back(std::move(series));
  }
  chart.emptyText = section_.line.isEmpty()  ? tr("Draw a line of two points or more over the plan.")
                    : !isDone                ? tr("The section is being cut\u2026")
                    : section_.parts.empty() ? tr("The drawing has neither surfaces nor corridors.")
                                             : tr("The line lies off every surface and corridor that is shown.");
  setChart(std::move(chart), isSameLine);
}

std::vector<ChartFill> FreeSectionView::areas() {
  std::vector<AreaMenu::Line> lines;
  for (std::size_t i = 0; i < chart().series.size(); ++i) {
    const ChartSeries& series = chart().series[i];
    if (!series.lines.empty())
      lines.push_back({series.name, section_.parts[i].isCorridor, series.isShown, series.lines});
  }
  areas_.offer(std::move(lines));
  areas_.button()->setEnabled(!chart().series.empty());
  return areas_.fills(chart().unit, true);
}

void FreeSectionView::showDistance(std::optional<double> distance) {
  if (!distance || section_.line.isEmpty()) {
    setCursorLine({});
    return;
  }
  ChartCursor cursor;
  cursor.x = *distance;
  for (std::size_t i = 0; i < chart().series.size(); ++i) {
    const ChartSeries& series = chart().series[i];
    const auto elevation = series.isShown ? view::elevationAt(series.lines, *distance) : std::nullopt;
    if (elevation)
      cursor.values.push_back(
          {static_cast<int>(i), *elevation, series.name + QStringLiteral(" ") + toQt(text::fixedText(*elevation))});
  }
  setCursorLine(std::move(cursor));
}

QString FreeSectionView::readout(Vec2 place) const {
  const auto text = [](double value) { return toQt(text::fixedText(value)); };
  QStringList parts;
  parts.append(tr("Distance %1").arg(text(place.x)));
  if (!section_.line.isEmpty() && place.x >= 0.0 && place.x <= section_.line.length()) {
    const Vec2 at = section_.line.placeAt(place.x);
    parts.append(tr("E %1 N %2").arg(text(at.x), text(at.y)));
    const auto measured = around_.alignment != nullptr ? around_.alignment->geometry.stationOffset(at) : std::nullopt;
    if (measured)
      parts.append(tr("Station %1 Offset %2").arg(toQt(text::stationText(measured->station)), text(measured->offset)));
  }
  parts.append(tr("Elevation %1").arg(text(place.y)));
  // Each with its difference to the first that is there.
  std::optional<double> first;
  int named = 0;
  for (const ChartSeries& series : chart().series) {
    const auto elevation = series.isShown ? view::elevationAt(series.lines, place.x) : std::nullopt;
    if (!elevation) continue;
    if (++named > kMostNamed) continue;
    QString value = series.name + QStringLiteral(" ") + text(*elevation);
    if (first) value += QStringLiteral(" (") + signedText(*elevation - *first) + QStringLiteral(")");
    if (!first) first = elevation;
    parts.append(value);
  }
  if (named > kMostNamed) parts.append(tr("and %n more", nullptr, named - kMostNamed));
  if (const QString areas = areas_.textAt(place.x); !areas.isEmpty()) parts.append(areas);
  return parts.join(QStringLiteral("    "));
}

QString FreeSectionView::exportName() const {
  //: Name that a free section's file is given first.
  return tr("free-section");
}

// ---------------------------------------------------------------- table

QString FreeSectionView::table() const {
  //: Decimal sign of tables for spreadsheets.
  const QString decimal = tr(".", "decimal sign");
  const QString column = decimal == QLatin1String(",") ? QStringLiteral(";") : QStringLiteral(",");
  const auto number = [&](double value) { return toQt(text::fixedText(value)).replace(QLatin1Char('.'), decimal); };
  const auto quoted = [](QString name) {
    return QStringLiteral("\"") + name.replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QStringLiteral("\"");
  };
  std::vector<std::size_t> shown;
  QStringList head{quoted(tr("Distance")), quoted(tr("Easting")), quoted(tr("Northing"))};
  for (std::size_t i = 0; i < chart().series.size(); ++i) {
    if (!chart().series[i].isShown || chart().series[i].lines.empty()) continue;
    shown.push_back(i);
    head << quoted(chart().series[i].name);
  }
  for (std::size_t i = 1; i < shown.size(); ++i)
    head << quoted(tr("%1 less %2").arg(chart().series[shown[i]].name, chart().series[shown[0]].name));
  QString table = head.join(column) + QLatin1Char('\n');
  for (const view::FreeSectionRow& row : view::tableOf(section_, shown)) {
    QStringList cells{number(row.distance), number(row.place.x), number(row.place.y)};
    for (const auto& elevation : row.elevations) cells << (elevation ? number(*elevation) : QString());
    for (std::size_t i = 1; i < row.elevations.size(); ++i) {
      const bool hasBoth = row.elevations[i] && row.elevations[0];
      cells << (hasBoth ? number(*row.elevations[i] - *row.elevations[0]) : QString());
    }
    table += cells.join(column) + QLatin1Char('\n');
  }
  return table;
}

bool FreeSectionView::writeTable(const QString& path, QString& whyNot) const {
  // By the mark in front spreadsheets know the letters.
  const QByteArray bytes = QByteArrayLiteral("\xef\xbb\xbf") + table().toUtf8();
  QSaveFile file(path);
  if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit()) return true;
  whyNot = tr("%1 can't be written: %2.").arg(path, file.errorString());
  return false;
}

void FreeSectionView::askTable() {
  const auto path = askTarget(this, {tr("Write the table"),
                                     FilePurpose::Export,
                                     exportName() + QStringLiteral(".csv"),
                                     {{tr("Table"), {QStringLiteral("csv"), QStringLiteral("txt")}}},
                                     {}});
  if (!path) return;
  QString whyNot;
  if (writeTable(*path, whyNot))
    Q_EMIT exported(*path);
  else
    QMessageBox::warning(this, tr("Write the table"), whyNot);
}

}  // namespace lvx::desktop
