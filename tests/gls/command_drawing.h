#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "dialogs/dialog_window.h"
#include "host/companion.h"
#include "runtime/dialog_state.h"
#include "support/fake_companion.h"
#include "support/fake_model.h"
#include "support/fake_picking.h"
#include "support/fake_roadway.h"

namespace lvx::gls {

using framework::CString;
using runtime::DialogState;

/// A user who works each opening of the report's dialog by the next step, and after the last one closes it by its mark.
/// The question about corridor sections is answered with `answer`.
class GlsUser final : public dialogs::DialogRunner {
 public:
  using Step = std::function<void(DialogState&)>;

  int runModal(dialogs::DialogBehaviour& dialog, void* parent) override;

  std::vector<Step> steps;
  std::size_t openings = 0;
  int answer = dialogs::kIdCancel;
  int questions = 0;
};

/// An open drawing for the whole command, over the fakes: alignments with elements, profiles and sample line groups,
/// corridors, objects that can be picked by their handle, and a user.
class CommandDrawing {
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

  explicit CommandDrawing(const platform::PosixSettings& settings);

  /// To the site given; null: outside any site.
  host::Ref<test::FakeAlignment> addAlignment(const host::Ref<test::FakeSite>& site, const CString& name, Axis axis);
  /// A step that types `stem`, ticks these forms alone and presses OK.
  [[nodiscard]] static GlsUser::Step okWith(CString stem, std::initializer_list<int> forms);
  [[nodiscard]] static GlsUser::Step click(int id);
  [[nodiscard]] static CString handleText(std::uint64_t handle);

  test::FakeHost host;
  test::PickingRunTime& run;
  test::FakeRoadway roadway;
  test::FakeCompanion companion;
  test::FakeDrawing drawing;
  GlsUser user;

 private:
  static test::PickingRunTime& installPicking(test::FakeHost& fake);
  void fillTree(host::SiteTree& sites) const;

  std::map<CString, Axis> axes_;
};

}  // namespace lvx::gls
