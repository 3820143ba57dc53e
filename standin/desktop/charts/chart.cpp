#include "desktop/charts/chart.h"

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

QString unitText(const std::string& linearUnit) {
  const Unit* unit = unitNamed(linearUnit);
  return unit != nullptr ? QString::fromLatin1(unit->text) : toQt(linearUnit);
}

double unitMillimetres(const std::string& linearUnit) {
  const Unit* unit = unitNamed(linearUnit);
  return unit != nullptr ? unit->millimetres : 1000.0;
}

}  // namespace lvx::desktop
