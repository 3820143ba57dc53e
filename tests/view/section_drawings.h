#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "civil/drawing.h"
#include "support/corridor_makers.h"
#include "view/section_model.h"

namespace lvx::view {

/// A drawing with one alignment to the east, from station 100 at the origin to 200, and a sample line square to it at
/// station 150, from 20 on its left to 20 on its right.
class SectionDrawing {
 public:
  static constexpr civil::Handle kLine = 10;

  SectionDrawing() {
    auto axis = std::make_unique<civil::AlignmentObject>();
    axis->handle = 1;
    axis->name = "Axis";
    axis->geometry = civil::Alignment::fromText("start 100 at 0 0 heading 90; line 100");
    civil::ProfileObject design;
    design.handle = 2;
    design.name = "Design";
    design.profile = civil::Profile::design({{100, 400}, {200, 403}});
    axis->profiles.push_back(std::move(design));
    civil::SampleLineGroup group;
    group.handle = 3;
    group.name = "Lines";
    group.lines.push_back({kLine, "L1", 150.0, {{50, 20}, {50, -20}}});
    axis->sampleLineGroups.push_back(std::move(group));
    drawing_.siteless.alignments.push_back(std::move(axis));
    auto other = std::make_unique<civil::AlignmentObject>();
    other->handle = 4;
    other->name = "Other";
    drawing_.siteless.alignments.push_back(std::move(other));
  }

  void addSurface(std::vector<civil::Vec3> points, std::vector<civil::Triangle> triangles) {
    civil::SurfaceObject object;
    object.handle = 20 + drawing_.surfaces.size();
    object.name = "Surface " + civil::test::numberText(static_cast<double>(drawing_.surfaces.size() + 1));
    object.surface = civil::TinSurface(std::move(points), std::move(triangles));
    drawing_.surfaces.push_back(std::move(object));
  }
  /// A strip along the road from x = -100 to 300, from one northing to another: {y, elevation} each.
  using Side = std::pair<double, double>;
  void addStrips(const std::vector<std::pair<Side, Side>>& strips) {
    std::vector<civil::Vec3> points;
    std::vector<civil::Triangle> triangles;
    for (const auto& [from, to] : strips) {
      const auto first = static_cast<std::int32_t>(points.size());
      points.insert(points.end(), {{-100, from.first, from.second},
                                   {300, from.first, from.second},
                                   {300, to.first, to.second},
                                   {-100, to.first, to.second}});
      triangles.push_back({first, first + 1, first + 2});
      triangles.push_back({first, first + 2, first + 3});
    }
    addSurface(std::move(points), std::move(triangles));
  }
  void addStrip(Side from, Side to) { addStrips({{from, to}}); }

  void addCorridor(const std::vector<std::string>& regions, bool onAxis = true) {
    civil::Corridor corridor;
    corridor.handle = 30;
    corridor.name = "Road";
    corridor.baselines.push_back(civil::test::baselineFrom(regions));
    corridor.baselines[0].alignment = drawing_.siteless.alignments[onAxis ? 0 : 1].get();
    corridor.baselines[0].profile = axis().profiles.data();
    drawing_.corridors.push_back(std::move(corridor));
  }
  void addLine(const std::string& name, double station) {
    auto& lines = axis().sampleLineGroups[0].lines;
    lines.push_back({kLine + lines.size(), name, station, {{station - 100, 20}, {station - 100, -20}}});
  }
  void setLine(std::vector<civil::Vec2> vertices) { line().vertices = std::move(vertices); }
  void setStation(double station) { line().station = station; }
  void setAxis(civil::Alignment geometry) { axis().geometry = std::move(geometry); }

  [[nodiscard]] civil::AlignmentObject& axis() { return *drawing_.siteless.alignments[0]; }
  [[nodiscard]] std::vector<civil::Corridor>& corridors() { return drawing_.corridors; }
  [[nodiscard]] const civil::Drawing& drawing() const { return drawing_; }
  [[nodiscard]] std::optional<SectionModel> section() const { return sectionOf(drawing_, kLine); }

 private:
  [[nodiscard]] civil::SampleLine& line() { return axis().sampleLineGroups[0].lines[0]; }

  civil::Drawing drawing_;
};

}  // namespace lvx::view
