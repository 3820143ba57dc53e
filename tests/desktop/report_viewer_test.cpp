#include "desktop/panels/report_viewer.h"

#include <QScrollBar>
#include <QTextBrowser>
#include <fstream>

#include <gtest/gtest.h>

#include "desktop_user/desktop_user.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

TEST(ReportViewer, ShowsAPageAsABrowserDoes) {
  const DesktopUser user;
  const TemporaryFolder folder;
  std::ofstream(folder / "page.html") << "<html><body>Rise 0.90&#37<br />R&#38;D<table border=\"1\"><tr>" << [] {
    std::string cells;
    for (int column = 0; column < 40; ++column) cells += "<td>2+000.000</td>";
    return cells;
  }() << "</tr></table></body></html>";
  const QString failure =
      onGui([&] { return desktop::openReport(QString::fromStdString((folder / "page.html").string()), {}, nullptr); });
  EXPECT_EQ(failure.toStdString(), "");
  QWidget* const window = user.waitForActiveWindow(QStringLiteral("page.html"));
  ASSERT_NE(window, nullptr);
  auto* const page = onGui([&] { return window->findChild<QTextBrowser*>(QStringLiteral("page")); });
  const std::string text = onGui([&] { return page->toPlainText().toStdString(); });
  EXPECT_NE(text.find("Rise 0.90%\nR&D\n"), std::string::npos) << text;
  EXPECT_GT(onGui([&] { return page->horizontalScrollBar()->maximum(); }), 0) << "numbers are broken to fit";
  onGui([&] { window->close(); });
}

TEST(ReportViewer, TellsOfAFileThatIsGone) {
  const std::string failure =
      onGui([] { return desktop::openReport(QStringLiteral("/nowhere/road.html"), {}, nullptr).toStdString(); });
  EXPECT_NE(failure.find("/nowhere/road.html isn't there any more"), std::string::npos) << failure;
}

}  // namespace
}  // namespace lvx::test
