#include "desktop/charts/chart.h"

#include <QCoreApplication>
#include <algorithm>
#include <string_view>

#include "desktop/common/qt_text.h"

namespace lvx::desktop {

namespace {

struct Unit {
  std::string_view name;
  const char* text;
  double millimetres;
};

constexpr Unit kUnits[] = {
    {"meter", "m", 1000.0},    {"foot", "ft", 304.8},       {"USSurveyFoot", "ft", 1'200'000.0 / 3937.0},
    {"millimeter", "mm", 1.0}, {"centimeter", "cm", 10.0},  {"kilometer", "km", 1'000'000.0},
    {"inch", "in", 25.4},      {"mile", "mi", 1'609'344.0},
};

const Unit* unitNamed(const std::string& name) {
  if (name.empty()) return &kUnits[0];
  for (const Unit& unit : kUnits)
    if (unit.name == name) return &unit;
  return nullptr;
}

}  // namespace

civil::Box Chart::box() const {
  civil::Box box;
  for (const ChartSeries& line : series) {
    if (!line.isShown) continue;
    view::extend(box, line.lines);
    for (const ChartMark& mark : line.marks) view::extend(box, mark.place);
  }
  if (!box.isEmpty() && !reach.isEmpty()) {
    box.minX = std::min(box.minX, reach.minX);
    box.maxX = std::max(box.maxX, reach.maxX);
  }
  return box;
}

std::vector<ChartEntry> listedEntries(const Chart& chart, std::size_t most) {
  const auto isSomewhere = [](const view::Lines& lines) {
    return std::any_of(lines.begin(), lines.end(), [](const view::Line& line) { return !line.empty(); });
  };
  std::vector<ChartEntry> entries;
  for (const ChartSeries& series : chart.series)
    if (series.isShown && isSomewhere(series.lines)) entries.push_back({series.name, &series, nullptr});
  std::size_t fills = 0;
  for (const ChartFill& fill : chart.fills)
    if (fill.isShown && (isSomewhere(fill.areas) || isSomewhere(fill.bands))) {
      entries.push_back({fill.name, nullptr, &fill});
      ++fills;
    }
  if (entries.size() <= most) return entries;
  // Fills are few, and what their hatching means is told nowhere else: lines give way.
  const std::size_t room = most > fills + 1 ? most - fills - 1 : 0;
  const std::size_t left = entries.size() - fills - std::min(room, entries.size() - fills);
  const auto first = entries.begin() + static_cast<std::ptrdiff_t>(entries.size() - fills - left);
  const auto more = entries.erase(first, first + static_cast<std::ptrdiff_t>(left));
  entries.insert(more,
                 {QCoreApplication::translate("lvx::desktop::Chart", "and %n more", nullptr, static_cast<int>(left)),
                  nullptr, nullptr});
  return entries;
}

QString unitText(const std::string& linearUnit) {
  const Unit* unit = unitNamed(linearUnit);
  return unit != nullptr ? QString::fromLatin1(unit->text) : toQt(linearUnit);
}

double unitMillimetres(const std::string& linearUnit) {
  const Unit* unit = unitNamed(linearUnit);
  return unit != nullptr ? unit->millimetres : 1000.0;
}

}  // namespace lvx::desktop
