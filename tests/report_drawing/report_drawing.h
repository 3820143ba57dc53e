#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "doubles/fake_model.h"
#include "doubles/fake_picking.h"
#include "fake_companion/fake_companion.h"
#include "host/dialog_window.h"
#include "windowless/dialog_state.h"

namespace lvx::test {

/// A user who works each opening of a report's dialog by the next step; after the last one the dialog is closed by its
/// mark. The question about corridor sections is answered with `answer`.
class SteppingUser final : public host::DialogRunner {
 public:
  using Step = std::function<void(windowless::DialogState&)>;

  int runModal(host::DialogBehaviour& dialog, void* parent) override;

  std::vector<Step> steps;
  /// Codes that a front end gives back in place of the first openings' own.
  std::vector<int> codes;
  std::size_t openings = 0;
  int answer = host::kIdCancel;
  int questions = 0;
};

/// A drawing that is open in a host, for a report's dialog or its whole command: the companion library hands it out with
/// its site tree, the run time opens and picks its objects, a user works the dialogs.
///
///     class PointsDialogTest : public testing::Test, public test::ReportDrawing { ... };
class ReportDrawing {
 public:
  explicit ReportDrawing(const platform::PlatformSettings& settings = {});

  /// To the site given; null: outside any site. Its identifier is its handle, by which it opens and can be picked; 0
  /// leaves both to the drawing, which counts from 1.
  Ref<FakeAlignment> addAlignment(const Ref<FakeSite>& site, const CString& name, std::uint64_t handle = 0);
  [[nodiscard]] static CString handleText(std::uint64_t handle);
  /// The tree as the companion library builds it: the alignments outside any site first, then every site.
  void fillSiteTree(host::SiteTree& sites) const;

  // ---------------------------------------------------------------- steps of the user

  /// Types `stem`, or the drawing's own where it is empty, and presses OK with only these forms ticked.
  [[nodiscard]] SteppingUser::Step okWith(std::initializer_list<int> forms, const CString& stem = {});
  [[nodiscard]] static SteppingUser::Step click(int id);

  // ---------------------------------------------------------------- files of the report

  /// Output stem in the host's own folder.
  [[nodiscard]] CString stem() { return host.folder() + L"road"; }
  /// Of the file with that extension: its bytes, whether it is there, another content.
  [[nodiscard]] std::string fileText(const CString& ending);
  [[nodiscard]] bool stands(const CString& ending);
  void write(const CString& ending, const std::string& text);

  FakeHost host;
  PickingRunTime& runTime;
  FakeCompanion companion;
  FakeDrawing drawing;
  SteppingUser user;

 private:
  static PickingRunTime& installPicking(FakeHost& fake);
};

/// A list as short text: rows between bars, the selected one in brackets.
[[nodiscard]] std::wstring rows(const windowless::DialogState& state, int id);

}  // namespace lvx::test
