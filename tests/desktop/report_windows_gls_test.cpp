// The GLS report made by a user: profiles picked in their view and in the tree, sections added to the drawing and saved.
#include <QMessageBox>
#include <cmath>

#include "desktop/charts/profile_view.h"
#include "desktop/plan/plan_view.h"
#include "host/dialog_controls.h"
#include "report_user.h"

namespace lvx::test {
namespace {

constexpr const char* kCommand = "lvx_Report_GLS";
constexpr const char* kPrompt = "Pick the surface or profile:";

std::vector<std::string> gls(const std::string& drawing, const std::string& alignment, const std::string& profile,
                             const std::string& group) {
  return {"gls", drawing, "--alignment", alignment, "--profile", profile, "--group", group};
}

class GlsWindows : public testing::Test {
 protected:
  void startWithRoad() {
    user.start(kCommand, host::kGlsDialog);
    user.choose(host::kIdSites, "Valley road upgrade");
  }
  /// OK in the dialog, and an answer to the question about the sections.
  void finish(int answer) {
    user.typeStem(user.stem());
    user.press(host::kIdOk);
    user.expectDialog(host::kAddSectionsDialog);
    EXPECT_EQ(user.textOf(host::kIdQuestion).rfind("Add sections to the corridors", 0), 0U)
        << user.textOf(host::kIdQuestion);
    user.press(answer);
    ASSERT_TRUE(user.waitForEnd());
  }
  [[nodiscard]] bool isChanged() const {
    return onGui([this] { return user.program.window->isWindowModified(); });
  }

  ReportUser user;
};

/// A place of a profile in its view, where the other profiles of the alignment are far.
QPoint placeOf(const ReportUser& user, const desktop::ProfileView& view, const std::string& name) {
  return onGui([&] {
    const civil::AlignmentObject& road = user.alignment("Valley road");
    QPoint best;
    double clear = 0.0;
    for (double station = 1010.0; station < 2090.0; station += 5.0) {
      const civil::ProfileObject* wanted = nullptr;
      for (const civil::ProfileObject& profile : road.profiles)
        if (profile.name == name) wanted = &profile;
      const auto height = wanted->profile.elevationAt(station);
      if (!height) continue;
      double nearest = 1e9;
      for (const civil::ProfileObject& other : road.profiles)
        if (&other != wanted)
          if (const auto beside = other.profile.elevationAt(station))
            nearest = std::min(nearest, std::abs(*beside - *height));
      if (nearest <= clear) continue;
      clear = nearest;
      best = view.pixelOf({station, *height});
    }
    return best;
  });
}

TEST_F(GlsWindows, WriteWhatTheCommandLineWritesWithoutAddedSections) {
  startWithRoad();
  user.choose(host::kIdProfiles, "Valley road design");
  user.choose(host::kIdSampleLineGroups, "Bridge 5 m");
  finish(host::kIdCancel);
  EXPECT_FALSE(isChanged());
  EXPECT_EQ(ReportUser::formsOf(user.stem()).size(), 3U);
  ReportUser::expectAsTheLineWrites(user.stem(),
                                    gls(kExample.toStdString(), "Valley road", "Valley road design", "Bridge 5 m"));
}

TEST_F(GlsWindows, TakeAProfileThatIsClickedInItsViewOrInTheTree) {
  startWithRoad();
  auto* const view = onGui([&] { return user.program.window->findChild<desktop::ProfileView*>(); });
  auto* const canvas = onGui([&] { return view->findChild<QWidget*>(QStringLiteral("canvas")); });
  user.press(host::kIdPickProfile);
  user.expectPrompt(kPrompt);
  user.clickTree("Valley road ground");
  user.expectDialog();
  EXPECT_EQ(user.rows(host::kIdProfiles), "[Valley road ground]|Valley road design");
  EXPECT_TRUE(user.program.waitUntilSaid("Picked: Profile Valley road ground"));

  user.press(host::kIdPickProfile);
  user.expectPrompt(kPrompt);
  user.program.user.click(canvas, placeOf(user, *view, "Valley road design"));
  user.expectDialog();
  EXPECT_EQ(user.rows(host::kIdAlignments), "[Valley road]|Mill lane");
  EXPECT_EQ(user.rows(host::kIdProfiles), "Valley road ground|[Valley road design]");
  user.choose(host::kIdSampleLineGroups, "Cross sections 20 m");
  finish(host::kIdCancel);
  ReportUser::expectAsTheLineWrites(
      user.stem(), gls(kExample.toStdString(), "Valley road", "Valley road design", "Cross sections 20 m"));
}

TEST_F(GlsWindows, BringTheProfilesOfTheDialogsAlignmentToTheFrontForAPick) {
  startWithRoad();
  auto* const view = onGui([&] { return user.program.window->findChild<desktop::ProfileView*>(); });
  auto* const dock = user.program.part<QDockWidget>("sectionDock");
  user.choose(host::kIdAlignments, "Mill lane");
  onGui([&] { dock->raise(); });
  EXPECT_TRUE(user.program.user.waitFor([&] { return view->visibleRegion().isEmpty(); }));
  user.press(host::kIdPickProfile);
  user.expectPrompt(kPrompt);
  EXPECT_TRUE(user.program.user.waitFor([&] { return !view->visibleRegion().isEmpty(); }));
  EXPECT_EQ(onGui([&] { return view->alignment(); }), user.alignment("Mill lane").handle);
  user.program.user.key(Qt::Key_Escape);
  user.expectDialog();
}

TEST_F(GlsWindows, TakeAProfileOfAnotherAlignmentWithThatAlignment) {
  startWithRoad();
  user.press(host::kIdPickProfile);
  user.expectPrompt(kPrompt);
  user.clickTree("Mill lane design");
  user.expectDialog();
  EXPECT_EQ(user.rows(host::kIdAlignments), "Valley road|[Mill lane]");
  EXPECT_EQ(user.rows(host::kIdProfiles), "Mill lane ground|[Mill lane design]");
  EXPECT_EQ(user.rows(host::kIdSampleLineGroups), "[Mill lane 25 m]");
  finish(host::kIdCancel);
  ReportUser::expectAsTheLineWrites(user.stem(),
                                    gls(kExample.toStdString(), "Mill lane", "Mill lane design", "Mill lane 25 m"));
}

TEST_F(GlsWindows, ComeBackFromTheirPicksByEscapeAndRefuseSomethingElse) {
  startWithRoad();
  user.choose(host::kIdProfiles, "Valley road design");
  user.choose(host::kIdSampleLineGroups, "Bridge 5 m");
  for (const auto& [button, prompt] :
       {std::pair(host::kIdPickAlignment, "Pick an alignment:"), std::pair(host::kIdPickProfile, kPrompt)}) {
    user.press(button);
    user.expectPrompt(prompt);
    user.program.user.key(Qt::Key_Escape);
    user.expectDialog();
    EXPECT_EQ(user.rows(host::kIdAlignments), "[Valley road]|Mill lane");
    EXPECT_EQ(user.rows(host::kIdProfiles), "Valley road ground|[Valley road design]");
    EXPECT_EQ(user.rows(host::kIdSampleLineGroups), "Cross sections 20 m|[Bridge 5 m]");
  }
  user.press(host::kIdPickProfile);
  user.expectPrompt(kPrompt);
  user.clickAt(user.alignment("Valley road").handle);
  user.answer(user.expectBox("messageBox", QMessageBox::Critical, "That is not a profile."), "OK");
  user.expectPrompt(kPrompt);
  user.program.user.key(Qt::Key_Escape);
  user.expectDialog();
  user.press(host::kIdCancel);
  EXPECT_TRUE(user.program.waitUntilSaid("GLS ended and wrote nothing"));
}

TEST_F(GlsWindows, AddSectionsAndSaveThemAsTheCommandLineDoes) {
  startWithRoad();
  user.choose(host::kIdProfiles, "Valley road design");
  user.choose(host::kIdSampleLineGroups, "Bridge 5 m");
  finish(host::kIdOk);
  EXPECT_TRUE(user.program.user.waitFor([&] { return user.program.window->isWindowModified(); }));
  EXPECT_TRUE(user.program.isEnabled("save"));
  EXPECT_TRUE(user.program.waitUntilSaid("The drawing has new sections that aren't saved yet."));

  // Closing asks, and goes back on Cancel.
  user.program.user.key(Qt::Key_Q, Qt::ControlModifier);
  user.answer(user.expectBox("saveChanges", QMessageBox::Question, "valley-road.xml has sections that aren't saved."),
              "Cancel");
  ASSERT_TRUE(user.program.user.waitFor([&] { return QApplication::activeWindow() == user.program.window; }));
  EXPECT_TRUE(isChanged());

  const std::filesystem::path saved = user.program.folder / "saved.xml";
  user.program.user.key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
  QWidget* box = nullptr;
  ASSERT_TRUE(user.program.user.waitFor([&] {
    box = QApplication::activeModalWidget();
    return box != nullptr && box == QApplication::activeWindow();
  }));
  user.program.user.key(Qt::Key_A, Qt::ControlModifier);
  user.program.user.type(saved.string());
  user.program.user.key(Qt::Key_Return);
  ASSERT_TRUE(user.program.waitUntilSaid("is saved"));
  EXPECT_FALSE(isChanged());
  EXPECT_TRUE(onGui([&] { return user.program.window->windowTitle(); }).startsWith(QStringLiteral("saved.xml")));

  const std::string bytes = fileBytes(saved);
  std::filesystem::remove(saved);
  std::vector<std::string> arguments = gls(kExample.toStdString(), "Valley road", "Valley road design", "Bridge 5 m");
  arguments.insert(arguments.end(), {"--add-sections", "--save", saved.string()});
  ReportUser::expectAsTheLineWrites(user.stem(), arguments);
  EXPECT_TRUE(fileBytes(saved) == bytes);
  EXPECT_FALSE(fileBytes(kExample.toStdString()) == bytes);

  // Nothing is left to ask for.
  user.program.user.key(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_TRUE(user.program.user.waitFor([&] { return !user.program.window->isVisible(); }));
}

TEST_F(GlsWindows, LeaveTheFileAloneWhereAddedSectionsArentSaved) {
  const std::string before = fileBytes(kExample.toStdString());
  startWithRoad();
  user.choose(host::kIdProfiles, "Valley road design");
  user.choose(host::kIdSampleLineGroups, "Bridge 5 m");
  finish(host::kIdOk);
  ASSERT_TRUE(user.program.user.waitFor([&] { return user.program.window->isWindowModified(); }));
  user.program.user.key(Qt::Key_Q, Qt::ControlModifier);
  user.answer(user.expectBox("saveChanges", QMessageBox::Question, "aren't saved"), "Don't save");
  EXPECT_TRUE(user.program.user.waitFor([&] { return !user.program.window->isVisible(); }));
  EXPECT_TRUE(fileBytes(kExample.toStdString()) == before);
}

}  // namespace
}  // namespace lvx::test
