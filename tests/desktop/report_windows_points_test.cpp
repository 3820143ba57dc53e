// The points report made by a user: a group, or points that are selected in the plan.
#include <QMessageBox>
#include <algorithm>
#include <set>

#include "desktop/plan/plan_view.h"
#include "host/dialog_controls.h"
#include "report_user.h"

namespace lvx::test {
namespace {

constexpr const char* kCommand = "lvx_Report_Points";
constexpr const char* kAddPrompt = "Select points to add:";
constexpr const char* kRemovePrompt = "Select points to remove:";

using Numbers = std::set<std::int32_t>;

std::string listOf(const Numbers& numbers) {
  std::string list;
  for (const std::int32_t number : numbers) list += (list.empty() ? "" : ",") + std::to_string(number);
  return list;
}

std::vector<std::string> picked(const std::string& alignment, const Numbers& numbers) {
  return {"points", kExample.toStdString(), "--alignment", alignment, "--points", listOf(numbers)};
}

std::vector<std::string> ofGroup(const std::string& alignment, const std::string& group) {
  return {"points", kExample.toStdString(), "--alignment", alignment, "--point-group", group};
}

/// The points whose places lie between two corners of the plan, by the coordinates of the drawing.
Numbers within(const ReportUser& user, QPoint a, QPoint b) {
  return onGui([&] {
    const view::Viewport& port = user.program.window->plan().viewport();
    const civil::Vec2 from = port.toDrawing({static_cast<double>(a.x()), static_cast<double>(a.y())});
    const civil::Vec2 to = port.toDrawing({static_cast<double>(b.x()), static_cast<double>(b.y())});
    Numbers numbers;
    for (const civil::Point& point : user.drawing().points) {
      const bool across = point.position.x >= std::min(from.x, to.x) && point.position.x <= std::max(from.x, to.x);
      const bool up = point.position.y >= std::min(from.y, to.y) && point.position.y <= std::max(from.y, to.y);
      if (across && up) numbers.insert(point.number);
    }
    return numbers;
  });
}

/// What stands beside the pointer about the number of selected points.
bool waitForCount(const ReportUser& user, std::size_t count) {
  const QString words = QStringLiteral("%1 selected").arg(count);
  return user.program.user.waitFor([&] { return user.program.window->plan().pointerBox().contains(words); });
}

class PointsWindows : public testing::Test {
 protected:
  void startPicking() {
    user.start(kCommand, host::kPointsDialog);
    user.choose(host::kIdSites, "Valley road upgrade");
    user.press(host::kIdPickPoints);
    user.expectPrompt(kAddPrompt);
  }
  void expectReport(const std::string& alignment, const Numbers& numbers) {
    user.choose(host::kIdAlignments, alignment);
    user.typeStem(user.stem());
    user.press(host::kIdOk);
    ASSERT_TRUE(user.waitForEnd());
    EXPECT_EQ(ReportUser::formsOf(user.stem()).size(), 3U);
    ReportUser::expectAsTheLineWrites(user.stem(), picked(alignment, numbers));
  }
  /// Enter, and the dialog with what was selected.
  void finish(std::size_t count) {
    user.program.user.key(Qt::Key_Return);
    user.expectDialog();
    EXPECT_EQ(user.textOf(host::kIdPointCount),
              std::to_string(count) + (count == 1 ? " point selected" : " points selected"));
    EXPECT_NE(user.rows(host::kIdPointGroups).find("[*Picked points*]"), std::string::npos)
        << user.rows(host::kIdPointGroups);
  }

  ReportUser user;
};

TEST_F(PointsWindows, WriteAGroupAsTheCommandLineDoes) {
  user.start(kCommand, host::kPointsDialog);
  user.choose(host::kIdSites, "Valley road upgrade");
  user.choose(host::kIdAlignments, "Mill lane");
  user.choose(host::kIdPointGroups, "Boundary stones");
  EXPECT_EQ(user.textOf(host::kIdPointCount), "18 points selected");
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  ReportUser::expectAsTheLineWrites(user.stem(), ofGroup("Mill lane", "Boundary stones"));
}

TEST_F(PointsWindows, WriteASingleClickedPoint) {
  startPicking();
  user.clickAt(user.point(1).handle);
  EXPECT_TRUE(waitForCount(user, 1));
  finish(1);
  expectReport("Valley road", {1});
}

TEST_F(PointsWindows, SelectByClickByWindowAndByCrossingAndTakeAwayAgain) {
  startPicking();
  QWidget* const plan = user.program.part("plan");
  const QSize size = onGui([&] { return plan->size(); });

  // A window from left to right, a crossing from right to left.
  const QPoint a(size.width() / 8, size.height() / 5);
  const QPoint b(size.width() / 3, size.height() * 4 / 5);
  Numbers wanted = within(user, a, b);
  ASSERT_GT(wanted.size(), 5U);
  user.program.user.drag(plan, a, b);
  EXPECT_TRUE(waitForCount(user, wanted.size()));
  const QPoint c(size.width() * 7 / 8, size.height() / 5);
  const QPoint d(size.width() * 2 / 3, size.height() * 4 / 5);
  const Numbers crossed = within(user, c, d);
  ASSERT_GT(crossed.size(), 5U);
  user.program.user.drag(plan, c, d);
  wanted.insert(crossed.begin(), crossed.end());
  EXPECT_TRUE(waitForCount(user, wanted.size()));

  // Clicks; the same point twice counts once.
  const auto outside = [&] {
    for (const civil::Point& point : user.drawing().points)
      if (!wanted.contains(point.number)) return point.number;
    throw std::runtime_error("every point is selected");
  };
  const std::int32_t added = outside();
  for (int times = 0; times < 2; ++times) user.clickAt(user.point(added).handle);
  wanted.insert(added);
  EXPECT_TRUE(waitForCount(user, wanted.size()));

  // Away by Shift and by R, and back by A.
  const std::int32_t first = *crossed.begin();
  const std::int32_t last = *crossed.rbegin();
  user.clickAt(user.point(first).handle, Qt::ShiftModifier);
  wanted.erase(first);
  EXPECT_TRUE(waitForCount(user, wanted.size()));
  user.program.user.key(Qt::Key_R);
  user.expectPrompt(kRemovePrompt);
  user.clickAt(user.point(last).handle);
  wanted.erase(last);
  EXPECT_TRUE(waitForCount(user, wanted.size()));
  user.program.user.key(Qt::Key_A);
  user.expectPrompt(kAddPrompt);
  user.clickAt(user.point(first).handle);
  wanted.insert(first);
  EXPECT_TRUE(waitForCount(user, wanted.size()));

  finish(wanted.size());
  expectReport("Valley road", wanted);
}

TEST_F(PointsWindows, TakeAWindowAwayInTheModeThatRemoves) {
  startPicking();
  QWidget* const plan = user.program.part("plan");
  const QSize size = onGui([&] { return plan->size(); });
  const QPoint corner(4, 4);
  const QPoint middle(size.width() / 2, size.height() - 4);
  const QPoint end(size.width() - 4, size.height() - 4);
  Numbers wanted = within(user, corner, end);
  ASSERT_EQ(wanted.size(), user.drawing().points.size()) << "the whole drawing shows";
  // Two clicks where nothing lies make a window as well.
  user.program.user.click(plan, corner);
  user.program.user.click(plan, end);
  EXPECT_TRUE(waitForCount(user, wanted.size()));
  user.program.user.key(Qt::Key_R);
  user.expectPrompt(kRemovePrompt);
  const Numbers left = within(user, corner, middle);
  user.program.user.drag(plan, corner, middle);
  for (const std::int32_t number : left) wanted.erase(number);
  ASSERT_GT(wanted.size(), 10U);
  EXPECT_TRUE(waitForCount(user, wanted.size()));
  finish(wanted.size());
  expectReport("Mill lane", wanted);
}

TEST_F(PointsWindows, ForgetPickedPointsWhereEscapeEndsTheSelection) {
  startPicking();
  user.clickAt(user.point(1).handle);
  finish(1);
  user.press(host::kIdPickPoints);
  user.expectPrompt(kAddPrompt);
  user.clickAt(user.point(5).handle);
  user.program.user.key(Qt::Key_Escape);
  user.expectDialog();
  EXPECT_EQ(user.rows(host::kIdPointGroups).rfind("[Control points]", 0), 0U) << user.rows(host::kIdPointGroups);
  EXPECT_EQ(user.textOf(host::kIdPointCount), "12 points selected");
  user.choose(host::kIdPointGroups, "*Picked points*");
  EXPECT_EQ(user.textOf(host::kIdPointCount), "0 points selected");
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  EXPECT_TRUE(user.program.waitUntilSaid("Points ended and wrote nothing"));
  EXPECT_TRUE(ReportUser::formsOf(user.stem()).empty());
}

TEST_F(PointsWindows, ReplaceASelectionByTheNextAndKeepItThroughOtherPicks) {
  startPicking();
  user.clickAt(user.point(1).handle);
  finish(1);
  user.press(host::kIdPickPoints);
  user.expectPrompt(kAddPrompt);
  for (const std::int32_t number : {2, 3}) user.clickAt(user.point(number).handle);
  finish(2);
  user.press(host::kIdPickAlignment);
  user.expectPrompt("Pick an alignment:");
  user.clickAt(user.alignment("Forest track").handle);
  user.expectDialog();
  EXPECT_EQ(user.rows(host::kIdAlignments), "[Forest track]");
  EXPECT_EQ(user.textOf(host::kIdPointCount), "2 points selected");
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  ReportUser::expectAsTheLineWrites(user.stem(), picked("Forest track", {2, 3}));
}

TEST_F(PointsWindows, ComeBackFromAFolderThatIsntThere) {
  user.start(kCommand, host::kPointsDialog);
  user.choose(host::kIdSites, "Valley road upgrade");
  user.choose(host::kIdPointGroups, "Trees");
  user.typeStem(user.program.folder / "nowhere" / "trees");
  user.press(host::kIdOk);
  ASSERT_TRUE(user.program.waitUntilSaid(("There is no folder " + (user.program.folder / "nowhere").string()).c_str()));
  user.expectDialog();
  EXPECT_EQ(user.textOf(host::kIdOutputStem), (user.program.folder / "nowhere" / "trees").string());
  user.choose(host::kIdPointGroups, "Trees");
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  ReportUser::expectAsTheLineWrites(user.stem(), ofGroup("Valley road", "Trees"));
}

}  // namespace
}  // namespace lvx::test
