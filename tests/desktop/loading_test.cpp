// Drawings are read beside the window, which lives meanwhile.
#include <QLineEdit>
#include <QProgressBar>
#include <QStringList>
#include <QTreeView>
#include <thread>

#include <gmock/gmock.h>

#include "desktop/plan/plan_view.h"
#include "desktop_user/foreign_windows.h"
#include "large_drawing.h"
#include "program_window.h"

namespace lvx::test {
namespace {

std::string nameOfOpen(const ProgramWindow& program) {
  return onGui([&] {
    const auto& drawing = program.window->session().drawing();
    return drawing ? std::filesystem::path(drawing->drawing().path).filename().string() : std::string();
  });
}

class Loading : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder = new TemporaryFolder;
    writeLargeDrawing(*folder / "large.xml");
  }
  static void TearDownTestSuite() {
    delete folder;
    folder = nullptr;
  }
  static std::string large() { return (*folder / "large.xml").string(); }

  static TemporaryFolder* folder;
};
TemporaryFolder* Loading::folder = nullptr;

/// Everything that a label showed, however shortly: a drawing that is read fast shows its words between two looks.
class ShownTexts : public QObject {
 public:
  explicit ShownTexts(QLabel* label) : label_(label) {
    moveToThread(label_->thread());
    onGui([this] { label_->installEventFilter(this); });
  }
  ~ShownTexts() override {
    onGui([this] { label_->removeEventFilter(this); });
  }
  ShownTexts(const ShownTexts&) = delete;
  ShownTexts& operator=(const ShownTexts&) = delete;

  [[nodiscard]] std::string all() const {
    return onGui([this] { return texts_.join(QLatin1Char('\n')).toStdString(); });
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint && !texts_.endsWith(label_->text())) texts_ << label_->text();
    return QObject::eventFilter(watched, event);
  }

 private:
  QLabel* label_;
  QStringList texts_;
};

TEST_F(Loading, ShowsHowFarItIsAndTakesTheTreesFindBoxMeanwhile) {
  ProgramWindow program;
  const ShownTexts shown(program.part<QLabel>("progressText"));
  program.enter("open " + large());
  auto* const strip = program.part("progressStrip");
  ASSERT_TRUE(program.user.waitFor([&] { return strip->isVisible(); }));
  EXPECT_FALSE(program.isEnabled("open"));
  EXPECT_FALSE(program.isEnabled("lvx_Report_Que"));
  // The drawing that was open is still there to be looked at.
  auto* const find = program.part<QLineEdit>("treeFind");
  program.user.click(find);
  program.user.type("mill");
  EXPECT_EQ(onGui([&] { return find->text(); }), QStringLiteral("mill"));
  ASSERT_TRUE(program.user.waitFor([&] { return !strip->isVisible(); }, std::chrono::seconds(120)));
  EXPECT_THAT(shown.all(), testing::ContainsRegex("Reading large.xml: [0-9.]+ [kM]B of [0-9.]+ MB"));
  EXPECT_THAT(shown.all(), testing::HasSubstr("large.xml: Making surfaces ready"));
  EXPECT_EQ(nameOfOpen(program), "large.xml");
  EXPECT_TRUE(program.isEnabled("lvx_Report_Que"));
  EXPECT_EQ(onGui([&] { return find->text(); }), QString());
}

TEST_F(Loading, TheWindowAnswersAtOnceAllTheWhile) {
  ProgramWindow program;
  program.enter("open " + large());
  auto* const strip = program.part("progressStrip");
  ASSERT_TRUE(program.user.waitFor([&] { return strip->isVisible(); }));
  std::chrono::steady_clock::duration longest{};
  while (onGui([&] { return strip->isVisible(); })) {
    const auto start = std::chrono::steady_clock::now();
    onGui([] {});
    longest = std::max(longest, std::chrono::steady_clock::now() - start);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_EQ(nameOfOpen(program), "large.xml");
  // Generous, for a machine that does other things as well; reading itself takes seconds here.
  EXPECT_LT(longest, std::chrono::milliseconds(1500));
}

TEST_F(Loading, ItsButtonCancelsAndTheFormerDrawingStays) {
  ProgramWindow program;
  const auto before = onGui([&] { return program.window->session().drawing().get(); });
  program.enter("open " + large());
  auto* const strip = program.part("progressStrip");
  ASSERT_TRUE(program.user.waitFor([&] { return strip->isVisible(); }));
  program.user.click(program.part("progressCancel"));
  ASSERT_TRUE(program.waitUntilSaid("was cancelled"));
  EXPECT_FALSE(onGui([&] { return strip->isVisible(); }));
  EXPECT_EQ(onGui([&] { return program.window->session().drawing().get(); }), before);
  EXPECT_TRUE(program.isEnabled("lvx_Report_Que"));
}

TEST_F(Loading, EscapeCancelsToo) {
  ProgramWindow program;
  program.enter("open " + large());
  ASSERT_TRUE(program.user.waitFor([&, strip = program.window->findChild<QWidget*>(QStringLiteral("progressStrip"))] {
    return strip->isVisible();
  }));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.waitUntilSaid("was cancelled"));
  EXPECT_EQ(nameOfOpen(program), "valley-road.xml");
}

TEST_F(Loading, ANewDrawingTakesThePlaceOfEverythingOfTheFormer) {
  ProgramWindow program;
  const std::weak_ptr<runtime::OpenDrawing> former = onGui([&] { return program.window->session().drawing(); });
  program.enter("open " + large());
  ASSERT_TRUE(program.user.waitFor([&] { return program.window->windowTitle().contains(QStringLiteral("large.xml")); },
                                   std::chrono::seconds(120)))
      << program.said();
  EXPECT_TRUE(former.expired()) << "somebody still holds the former drawing";
  auto* const tree = program.part<QTreeView>("treeView");
  EXPECT_EQ(onGui([&] { return tree->model()->index(0, 0).data().toString(); }), QStringLiteral("Sites (1)"));
  EXPECT_EQ(
      onGui([&] {
        return program.window->findChild<QLabel*>(QStringLiteral("station"))->text().section(QLatin1Char(':'), 0, 0);
      }),
      QStringLiteral("Road"));
}

TEST_F(Loading, AnEmptyWindowStaysAnEmptyWindowWhenItsFirstDrawingIsCancelled) {
  ProgramWindow program{QString()};
  program.enter("open " + large());
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.waitUntilSaid("was cancelled"));
  EXPECT_FALSE(onGui([&] { return program.isOpen(); }));
  EXPECT_FALSE(program.isEnabled("lvx_Report_Que"));
  program.enter("open " + kExample.toStdString());
  EXPECT_TRUE(program.user.waitFor([&] { return program.isOpen(); }));
}

}  // namespace
}  // namespace lvx::test
