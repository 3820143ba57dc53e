#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "doubles/fake_host.h"
#include "doubles/fake_model.h"
#include "doubles/fake_roadway.h"
#include "fake_companion/fake_companion.h"
#include "gls/corridor_records.h"
#include "gls/gls_records.h"
#include "host/companion.h"
#include "host/dialog_window.h"

/// A drawing for the GLS report in a few lines, over the fakes of host, model and companion.
namespace lvx::gls {

using test::Ref;

// Horizontal elements; radii with their sign, 0.0 for none.
[[nodiscard]] host::taxel line(double length, double direction = 0.0);
[[nodiscard]] host::taxel arc(double length, double radius, double startDirection = 0.0, double endDirection = 0.0);
/// Type 2; `otherRadius` is 0.0 for infinite.
[[nodiscard]] host::taxel clothoidIn(double length, double radius, double otherRadius = 0.0);
/// Type 3.
[[nodiscard]] host::taxel clothoidOut(double length, double radius, double otherRadius = 0.0);

/// One intersection point of a profile as a designer writes it; grades follow from the neighbours.
struct Pvi {
  double station = 0.0;
  double elevation = 0.0;
  double halfLength = 0.0;
};
/// Radii follow from half length and change of grade.
[[nodiscard]] std::vector<host::tvert> profileOf(const std::vector<Pvi>& points);

/// Answers every dialog with one code and remembers their names.
class AnsweringUser final : public host::DialogRunner {
 public:
  int runModal(host::DialogBehaviour& dialog, void* parent) override;

  int code = host::kIdCancel;
  std::vector<std::string> asked;
  std::vector<void*> parents;
};

/// One site-less alignment "A" with one sample line group "G", its elements, and a profile "P".
struct GlsCase {
  GlsCase();

  void addSampleLine(const CString& name, double station) { group->addLine(name, station); }
  /// The report of alignment, group and profile into `report`.
  void collect(tglsReport& report);

  test::FakeHost host;
  AnsweringUser user;
  test::FakeDrawing drawing;
  test::FakeCompanion companion;
  test::FakeRoadway roadway;
  Ref<test::FakeAlignment> axis;
  Ref<test::FakeSampleLineGroup> group;
  double startStation = 0.0;
  std::vector<host::taxel> elements;
  std::vector<host::tvert> points;
  /// Site and profile names that the companion was asked for.
  std::vector<CString> sitesAsked;
  std::vector<CString> profilesAsked;
  CString siteName;
};

/// Every field of a report, a line a record, for comparison of two reports. Numbers to the last bit.
[[nodiscard]] std::string textOf(const tglsReport& report);
[[nodiscard]] std::string textOf(const CorridorList& corridors);

}  // namespace lvx::gls
