#pragma once

#include <optional>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "platform/system_platform.h"
#include "runtime/standin_host.h"

/// A drawing that fits on a postcard, for the tests of the runtime:
/// without a site 'Ramp'; site 'North' with 'A1' (profiles 'Ground' and 'Design', group 'SL' with one line at 10) and
/// 'Länge'; site 'Empty'; surface 'Ground', one square of height 5 around A1; points 7 (no elevation) and 8; group 'P'.
namespace lvx::test {

inline civil::Drawing smallDrawing() {
  civil::Drawing drawing;
  drawing.path = "small.xml";
  civil::Handle next = 0x1F0;

  auto ramp = std::make_unique<civil::AlignmentObject>();
  ramp->handle = next++;
  ramp->name = "Ramp";
  ramp->geometry = civil::Alignment::fromText("start 0 at 0 0 heading 90; line 10");
  drawing.siteless.alignments.push_back(std::move(ramp));

  civil::Site north;
  north.handle = next++;
  north.name = "North";
  north.description = "the one in the north";
  auto a1 = std::make_unique<civil::AlignmentObject>();
  a1->handle = next++;  // 1F2
  a1->name = "A1";
  a1->description = "main road";
  a1->geometry = civil::Alignment::fromText(
      "start 100 at 0 0 heading 90; line 100; clothoid 60 R inf..300 right; arc 80 R 300 right; "
      "clothoid 60 R 300..inf right");
  a1->profiles.push_back({next++, "Ground", "as it was", civil::Profile::ground({{{100.0, 5.0}, {400.0, 5.0}}})});
  a1->profiles.push_back(
      {next++, "Design", "as it will be",
       civil::Profile::design(
           {{100.0, 10.0}, {200.0, 12.0, civil::VerticalCurveKind::Parabola, 40.0, 0.0, 0.0}, {400.0, 8.0}})});
  civil::SampleLineGroup group;
  group.handle = next++;
  group.name = "SL";
  group.description = "every so often";
  group.lines.push_back({next++, "0+110", 110.0, {{10.0, 5.0}, {10.0, 0.0}, {10.0, -5.0}}});
  a1->sampleLineGroups.push_back(std::move(group));
  north.alignments.push_back(std::move(a1));
  auto other = std::make_unique<civil::AlignmentObject>();
  other->handle = next++;
  other->name = "L\xC3\xA4nge";
  north.alignments.push_back(std::move(other));
  drawing.sites.push_back(std::move(north));
  civil::Site empty;
  empty.handle = next++;
  empty.name = "Empty";
  drawing.sites.push_back(std::move(empty));

  drawing.surfaces.push_back(
      {next++, "Ground", "",
       civil::TinSurface({{0, -4, 5}, {20, -4, 5}, {20, 4, 5}, {0, 4, 5}}, {{0, 1, 2}, {0, 2, 3}})});
  drawing.points.push_back({next++, 7, 0, {1.0, 2.0, 99.0}, {"", "d7", "full7"}, false});
  drawing.points.push_back({next++, 8, 0, {3.0, 4.0, 5.0}, {"BM", "d8", "full8"}, true});
  drawing.pointGroups.push_back({next++, "P", "", {8, 7}});
  return drawing;
}

/// A front end that picks and answers what the test put in.
class TestFrontEnd final : public runtime::FrontEnd {
 public:
  host::BoxAnswer answer = host::BoxAnswer::Ok;
  std::optional<civil::Handle> picked;
  std::optional<std::vector<civil::Handle>> selected;
  host::CString consoleText;

  host::BoxAnswer messageBox(const host::CString&, host::BoxButtons, host::BoxIcon) override { return answer; }
  std::optional<host::CString> saveFileBox(const host::CString&, std::uint32_t) override { return std::nullopt; }
  void showHelp(const host::CString&) override {}
  std::uint32_t buttonFaceColour() override { return 0; }
  host::DialogRunner& dialogs() override { throw std::logic_error("no dialog was expected"); }
  void* mainWindow() override { return this; }
  void console(const host::CString& text) override { consoleText += text; }
  std::optional<civil::Handle> pickEntity(const host::CString&) override { return picked; }
  std::optional<std::vector<civil::Handle>> selectEntities(const host::CString&, const host::CString&,
                                                           const host::CString&) override {
    return selected;
  }
};

}  // namespace lvx::test
