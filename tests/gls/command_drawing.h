#pragma once

#include <map>
#include <vector>

#include "doubles/fake_roadway.h"
#include "host/companion.h"
#include "report_drawing/report_drawing.h"

namespace lvx::gls {

using framework::CString;

/// An open drawing whose alignments also have elements and profiles with their points, and which has corridors.
class CommandDrawing : public test::ReportDrawing {
 public:
  struct Profile {
    CString name;
    std::uint64_t handle = 0;
    std::vector<host::tvert> points;
  };
  struct Axis {
    std::uint64_t handle = 0;
    double start = 0.0;
    std::vector<host::taxel> elements;
    std::vector<Profile> profiles;
  };

  explicit CommandDrawing(const platform::PlatformSettings& settings);

  /// To the site given; null: outside any site.
  host::Ref<test::FakeAlignment> addAlignment(const host::Ref<test::FakeSite>& site, const CString& name, Axis axis);
  test::FakeRoadway roadway;

 private:
  std::map<CString, Axis> axes_;
};

}  // namespace lvx::gls
