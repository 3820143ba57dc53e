// The tree of the drawing's objects with its find box.
#include "desktop/panels/drawing_tree.h"

#include <QLabel>
#include <QLineEdit>
#include <QTreeView>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "desktop_user/desktop_user.h"

namespace lvx::test {
namespace {

using civil::Alignment;
using desktop::DrawingTree;
using desktop::DrawingTreeModel;

constexpr int kManyLines = 10'000;

/// Two sites, an alignment without one, 10,000 sample lines.
std::unique_ptr<civil::Drawing> makeDrawing() {
  auto drawing = std::make_unique<civil::Drawing>();
  civil::Handle next = 1;
  const auto alignment = [&](const char* name) {
    auto made = std::make_unique<civil::AlignmentObject>();
    made->handle = next++;
    made->name = name;
    made->geometry = Alignment::fromText("line 100");
    return made;
  };
  civil::Site north;
  north.handle = next++;
  north.name = "North & south";
  auto road = alignment("Main road");
  road->profiles.push_back({next++, "Main design", {}, {}});
  civil::SampleLineGroup group{next++, "Sections", {}, {}};
  for (int line = 0; line < kManyLines; ++line) group.lines.push_back({next++, "SL " + std::to_string(line), 0.0, {}});
  road->sampleLineGroups.push_back(std::move(group));
  north.alignments.push_back(std::move(road));
  north.alignments.push_back(alignment(""));
  drawing->sites.push_back(std::move(north));
  drawing->sites.push_back({next++, "Empty site", {}, {}});
  drawing->siteless.alignments.push_back(alignment("Track"));
  drawing->pointGroups.push_back({next++, "Trees", {}, {1, 2, 3}});
  civil::Corridor corridor{next++, "Corridor", {}, {}};
  corridor.baselines.push_back({"Base", drawing->siteless.alignments.front().get(), nullptr, {{}, {}}});
  drawing->corridors.push_back(std::move(corridor));
  return drawing;
}

/// The visible rows from `parent` on, indented.
void listRows(const QTreeView& view, const QModelIndex& parent, int depth, std::vector<std::string>& rows) {
  for (int row = 0; row < view.model()->rowCount(parent); ++row) {
    const QModelIndex index = view.model()->index(row, 0, parent);
    rows.push_back(std::string(static_cast<std::size_t>(2 * depth), ' ') + index.data().toString().toStdString());
    if (view.isExpanded(index)) listRows(view, index, depth + 1, rows);
  }
}

class Tree : public testing::Test {
 protected:
  Tree() : drawing(makeDrawing()) {
    onGui([this] {
      widget = new DrawingTree;
      widget->setWindowTitle(QStringLiteral("Tree"));
      widget->resize(400, 700);
      QObject::connect(widget, &DrawingTree::selected, widget, [this](quint64 handle) { selected.push_back(handle); });
      QObject::connect(widget, &DrawingTree::clicked, widget, [this](quint64 handle) { clicked.push_back(handle); });
      QObject::connect(widget, &DrawingTree::activated, widget,
                       [this](quint64 handle) { activated.push_back(handle); });
      QObject::connect(widget, &DrawingTree::jumped, widget, [this](quint64 handle) { jumped.push_back(handle); });
      widget->setDrawing(drawing.get());
      view = widget->findChild<QTreeView*>(QStringLiteral("treeView"));
      find = widget->findChild<QLineEdit*>(QStringLiteral("treeFind"));
      widget->show();
    });
    EXPECT_NE(user.waitForActiveWindow(QStringLiteral("Tree")), nullptr);
  }
  ~Tree() override {
    onGui([this] { delete widget; });
  }
  [[nodiscard]] std::vector<std::string> rows() const {
    return onGui([this] {
      std::vector<std::string> found;
      listRows(*view, {}, 0, found);
      return found;
    });
  }
  [[nodiscard]] QModelIndex named(const char* text, const QModelIndex& parent = {}) const {
    for (int row = 0; row < view->model()->rowCount(parent); ++row) {
      const QModelIndex index = view->model()->index(row, 0, parent);
      if (index.data().toString().startsWith(QLatin1String(text))) return index;
      if (const QModelIndex below = named(text, index); below.isValid()) return below;
    }
    return {};
  }
  [[nodiscard]] QPoint placeOf(const char* text) const {
    return onGui([&] {
      const QModelIndex index = named(text);
      view->scrollTo(index);
      return view->visualRect(index).center();
    });
  }
  void clickRow(const char* text) {
    const QPoint place = placeOf(text);
    user.click(onGui([&] { return view->viewport(); }), place);
  }

  DesktopUser user;
  std::unique_ptr<civil::Drawing> drawing;
  DrawingTree* widget = nullptr;
  QTreeView* view = nullptr;
  QLineEdit* find = nullptr;
  std::vector<quint64> selected;
  std::vector<quint64> clicked;
  std::vector<quint64> activated;
  std::vector<quint64> jumped;
};

TEST_F(Tree, ShowsTheHeadingsWithTheirCountsAndTheAlignmentsOfNoSiteApart) {
  EXPECT_EQ(rows(), (std::vector<std::string>{"Sites (2)", "  North & south (2)", "  Empty site (0)",
                                              "Alignments without a site (1)", "  Track", "Surfaces (0)",
                                              "Point groups (1)", "  Trees (3)", "Corridors (1)", "  Corridor (1)"}));
}

TEST_F(Tree, MakesTheRowsOfAGroupOnlyWhenItIsOpened) {
  const auto start = std::chrono::steady_clock::now();
  onGui([&] { view->expand(named("North & south")); });
  const QString text = onGui([&] {
    view->expand(named("Main road"));
    view->expand(named("Sample line groups"));
    return named("Sections").data().toString();
  });
  EXPECT_EQ(text, QStringLiteral("Sections (10\u202f000)"));
  onGui([&] { view->expand(named("Sections")); });
  EXPECT_EQ(onGui([&] { return view->model()->rowCount(named("Sections")); }), kManyLines);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(Tree, NamesWhatHasNoName) {
  onGui([&] { view->expand(named("North & south")); });
  EXPECT_TRUE(onGui([&] { return named("(without a name)").isValid(); }));
}

TEST_F(Tree, FindsAsOneTypesWithWhatTheObjectsStandIn) {
  user.click(find);
  user.type("sl 999");
  const std::vector<std::string> found{"Sites (2)",
                                       "  North & south (2)",
                                       "    Main road",
                                       "      Sample line groups (1)",
                                       "        Sections (10\u202f000)",
                                       "          SL 999",
                                       "          SL 9990"};
  ASSERT_TRUE(user.waitFor([&] { return view->isExpanded(named("Sections")); }));
  std::vector<std::string> shown = rows();
  EXPECT_EQ(shown.size(), 6U + 10U);
  shown.resize(found.size());
  EXPECT_EQ(shown, found);
}

TEST_F(Tree, FindsInAnyCaseAndLeavesWhatStandsInAFoundObject) {
  user.click(find);
  user.type("MAIN ROAD");
  ASSERT_TRUE(user.waitFor([&] { return view->isExpanded(named("North & south")); }));
  EXPECT_EQ(rows(), (std::vector<std::string>{"Sites (2)", "  North & south (2)", "    Main road"}));
  EXPECT_TRUE(onGui([&] { return view->model()->hasChildren(named("Main road")); }));
}

TEST_F(Tree, ShowsAllAgainWhenTheFindBoxIsEmptied) {
  const std::size_t before = rows().size();
  user.click(find);
  user.type("no such thing");
  ASSERT_TRUE(user.waitFor([&] { return view->model()->rowCount() == 0; }));
  user.key(Qt::Key_Escape);
  ASSERT_TRUE(user.waitFor([&] { return view->model()->rowCount() == 5; }));
  EXPECT_GE(before, 5U);
}

TEST_F(Tree, EnterGoesFromHitToHitAndRoundTheEnd) {
  user.click(find);
  user.type("main");
  auto* const found = onGui([&] { return widget->findChild<QLabel*>(QStringLiteral("treeFound")); });
  ASSERT_TRUE(user.waitFor([&] { return found->text() == QStringLiteral("2 found: Enter goes to the next"); }))
      << found->text().toStdString();
  for (std::size_t count = 1; count <= 3; ++count) {
    user.key(Qt::Key_Return);
    ASSERT_TRUE(user.waitFor([&] { return jumped.size() == count; }));
  }
  const civil::AlignmentObject& road = *drawing->sites.front().alignments.front();
  EXPECT_EQ(jumped, (std::vector<quint64>{road.handle, road.profiles.front().handle, road.handle}));
  EXPECT_TRUE(onGui([&] { return find->hasFocus(); })) << "one goes on by Enter";
}

TEST_F(Tree, FindsPointsByNumberAndByNameAndSaysWhereNothingIs) {
  onGui([&] {
    drawing->points.push_back({900'001, 17, 0, {1, 2, 3}, {}, true});
    drawing->points.push_back({900'002, 18, 0, {1, 2, 3}, {"GP-a", "", ""}, true});
    widget->setDrawing(drawing.get());
  });
  auto* const found = onGui([&] { return widget->findChild<QLabel*>(QStringLiteral("treeFound")); });
  const auto look = [&](const char* text, const char* answer) {
    onGui([&] { find->clear(); });
    user.click(find);
    user.type(text);
    EXPECT_TRUE(user.waitFor([&] { return found->text() == QString::fromUtf8(answer); }))
        << found->text().toStdString();
    user.key(Qt::Key_Return);
  };
  look("17", "Point 17 and 299 more: Enter goes to the next");
  EXPECT_TRUE(user.waitFor([&] { return jumped == std::vector<quint64>{900'001}; }));
  look("GP-a", "Point GP-a: Enter shows it");
  EXPECT_TRUE(user.waitFor([&] { return jumped.size() == 2; }));
  look("no such thing", "Nothing found");
  onGui([&] { find->clear(); });
  EXPECT_TRUE(user.waitFor([&] { return !found->isVisible(); }));
  EXPECT_EQ(jumped.size(), 2U);
}

TEST_F(Tree, StandsAsItStoodWhenNothingIsLookedForAnyMore) {
  clickRow("Track");
  onGui([&] { view->collapse(named("Sites")); });
  const std::vector<std::string> before = rows();
  user.click(find);
  user.type("design");
  const auto isAsBefore = [&] {
    std::vector<std::string> now;
    listRows(*view, {}, 0, now);
    return now == before;
  };
  ASSERT_TRUE(user.waitFor([&] { return !isAsBefore(); }));
  user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.waitFor(isAsBefore));
}

TEST_F(Tree, TellsWhatWasSelectedByMouseAndByKeyboard) {
  clickRow("Track");
  const quint64 track = onGui([&] { return drawing->siteless.alignments.front()->handle; });
  ASSERT_TRUE(user.waitFor([&] { return selected == std::vector<quint64>{track}; }));
  EXPECT_EQ(onGui([&] { return clicked; }), std::vector<quint64>{track});
  user.key(Qt::Key_Down);
  ASSERT_TRUE(user.waitFor([&] { return selected.size() == 2; }));
  EXPECT_EQ(selected[1], 0U) << "a heading is no object";
}

TEST_F(Tree, ADoubleClickOrEnterActivates) {
  const QPoint place = placeOf("Trees");
  user.doubleClick(onGui([&] { return view->viewport(); }), place);
  const quint64 trees = onGui([&] { return drawing->pointGroups.front().handle; });
  ASSERT_TRUE(user.waitFor([&] { return activated == std::vector<quint64>{trees}; }));
  user.key(Qt::Key_Return);
  EXPECT_TRUE(user.waitFor([&] { return activated == std::vector<quint64>(2, trees); }));
}

TEST_F(Tree, DownLeadsFromTheFindBoxToTheRows) {
  user.click(find);
  user.type("trees");
  user.key(Qt::Key_Down);
  EXPECT_TRUE(user.waitFor([&] { return view->hasFocus() && view->currentIndex().isValid(); }));
}

TEST_F(Tree, RevealsAnObjectWithoutTellingThatItWasSelected) {
  const civil::Handle line =
      onGui([&] { return drawing->sites.front().alignments.front()->sampleLineGroups.front().lines[5000].handle; });
  onGui([&] { widget->reveal(line); });
  EXPECT_EQ(onGui([&] { return view->currentIndex().data().toString(); }), QStringLiteral("SL 5000"));
  EXPECT_TRUE(onGui([&] { return view->visualRect(view->currentIndex()).isValid(); }));
  onGui([&] { widget->reveal(0); });
  EXPECT_FALSE(onGui([&] { return view->currentIndex().isValid(); }));
  EXPECT_TRUE(onGui([&] { return selected.empty(); }));
}

TEST_F(Tree, ABaselineLeadsToItsAlignment) {
  onGui([&] { view->expand(named("Corridor (1)")); });
  clickRow("Base");
  EXPECT_TRUE(
      user.waitFor([&] { return selected == std::vector<quint64>{drawing->siteless.alignments.front()->handle}; }));
}

}  // namespace
}  // namespace lvx::test
