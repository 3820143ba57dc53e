// The station under the mouse in plan, profile and section at once; sections between sample lines; the free section.
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QListWidget>
#include <QSlider>
#include <QToolButton>
#include <algorithm>
#include <cmath>
#include <memory>

#include "desktop/charts/free_section_view.h"
#include "desktop/charts/profile_view.h"
#include "desktop/charts/section_view.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/edits.h"
#include "desktop/shell/session.h"
#include "program_window.h"
#include "text/number_text.h"

namespace lvx::test {
namespace {

using civil::Vec2;
using desktop::FreeSectionView;
using desktop::ProfileView;
using desktop::SectionView;

class LinkedViews : public testing::Test {
 protected:
  void SetUp() override {
    profile_ = onGui([&] { return program_.window->findChild<ProfileView*>(); });
    section_ = onGui([&] { return program_.window->findChild<SectionView*>(); });
    free_ = onGui([&] { return program_.window->findChild<FreeSectionView*>(); });
    onGui([&] { plan().zoomTo(road().handle); });
  }
  [[nodiscard]] desktop::PlanView& plan() { return program_.window->plan(); }
  [[nodiscard]] const civil::Drawing& drawing() { return program_.window->session().drawing()->drawing(); }
  [[nodiscard]] const civil::AlignmentObject& road() { return *drawing().sites[0].alignments[0]; }
  [[nodiscard]] QPoint pixelOf(Vec2 place) {
    return onGui([&] {
      const Vec2 pixel = plan().viewport().toPixels(place);
      return QPointF(pixel.x, pixel.y).toPoint();
    });
  }
  [[nodiscard]] Vec2 placeAt(double station, double offset) {
    return onGui([&] { return road().geometry.pointLocation(station, offset)->point; });
  }
  [[nodiscard]] QWidget* canvasOf(QWidget* view) {
    return onGui([&] { return view->findChild<QWidget*>(QStringLiteral("canvas")); });
  }
  void raise(const char* dock) {
    onGui([&] {
      auto* const found = program_.window->findChild<QDockWidget*>(QLatin1String(dock));
      found->show();
      found->raise();
    });
  }
  void startFreeSection() {
    onGui([&] { program_.window->findChild<QAction*>(QStringLiteral("freeSection"))->trigger(); });
  }
  /// Draws a line by clicks, where they are and not where they would snap to, and ends it by Enter.
  void drawLine(const std::vector<Vec2>& points) {
    startFreeSection();
    program_.user.key(Qt::Key_S);
    for (const Vec2 point : points) {
      program_.user.click(&plan(), pixelOf(point));
      program_.user.moveTo(&plan(), pixelOf(point) + QPoint(7, 9));  // two clicks at once would be a double click
    }
    program_.user.key(Qt::Key_Return);
  }
  [[nodiscard]] bool waitForFreeSection() {
    return program_.user.waitFor([&] {
      return free_->isVisible() && !free_->section().line.isEmpty() && !plan().isInteracting() &&
             !free_->chart().box().isEmpty();
    });
  }

  ProgramWindow program_;
  ProfileView* profile_ = nullptr;
  SectionView* section_ = nullptr;
  FreeSectionView* free_ = nullptr;
};

// ---------------------------------------------------------------- linked cursor

TEST_F(LinkedViews, TheMouseInThePlanShowsItsStationInTheProfile) {
  const Vec2 place = placeAt(1500, 6);
  program_.user.moveTo(&plan(), pixelOf(place));
  ASSERT_TRUE(program_.user.waitFor([&] { return profile_->cursorLine().has_value(); }));
  onGui([&] {
    const auto& cursor = *profile_->cursorLine();
    EXPECT_NEAR(cursor.x, 1500, 2.0 / plan().viewport().scale());
    ASSERT_GE(cursor.values.size(), 3U) << "design, ground, and cut or fill";
    const double design = *road().profiles[1].profile.elevationAt(cursor.x);
    EXPECT_NEAR(cursor.values[0].y, design, 1e-9);
    EXPECT_TRUE(cursor.values[0].text.endsWith(QString::fromStdString(text::fixedText(design))));
    EXPECT_EQ(cursor.values.back().series, -1);
  });
  EXPECT_EQ(onGui([&] { return section_->model(); }), nullptr) << "the section follows only on demand";
  // Far off the alignment nothing is meant.
  program_.user.moveTo(&plan(), {3, 3});
  EXPECT_TRUE(program_.user.waitFor([&] { return !profile_->cursorLine(); }));
}

TEST_F(LinkedViews, TheMouseInTheProfileMarksThePlanAndTheMouseInASectionMarksItsLine) {
  raise("profileDock");
  const QImage before = onGui([&] { return plan().grab().toImage(); });
  program_.user.moveTo(canvasOf(profile_), onGui([&] { return profile_->pixelOf({1400, 405}); }));
  ASSERT_TRUE(program_.user.waitFor([&] { return plan().grab().toImage() != before; }));
  const QPoint mark = pixelOf(placeAt(1400, 0));
  const auto differs = [&](QPoint at) {
    return onGui([&] {
      const QImage now = plan().grab(QRect(at - QPoint(16, 16), QSize(32, 32))).toImage();
      return now != before.copy(QRect((at - QPoint(16, 16)) * before.devicePixelRatio(), now.size()));
    });
  };
  EXPECT_TRUE(differs(mark));

  const civil::SampleLine& line = road().sampleLineGroups[0].lines.at(27);
  onGui([&] { section_->show(drawing(), line.handle); });
  raise("sectionDock");
  ASSERT_TRUE(program_.user.waitFor([&] { return section_->isVisible(); }));
  onGui([&] { plan().zoomTo(line.handle); });
  ASSERT_TRUE(program_.user.waitFor([&] { return plan().isSharp(); }));
  const double elevation = onGui([&] { return (section_->chart().box().minY + section_->chart().box().maxY) / 2; });
  program_.user.moveTo(canvasOf(section_), onGui([&] { return section_->pixelOf({-8, elevation}); }));
  ASSERT_TRUE(program_.user.waitFor([&] { return profile_->cursorLine().has_value(); }));
  EXPECT_NEAR(onGui([&] { return profile_->cursorLine()->x; }), line.station, 1e-9);
  program_.user.moveTo(canvasOf(section_), {2, 2});
  EXPECT_TRUE(program_.user.waitFor([&] { return !profile_->cursorLine(); }));
}

TEST_F(LinkedViews, TheSectionFollowsTheMouseOnceItIsAskedTo) {
  const civil::Handle line = onGui([&] { return road().sampleLineGroups[0].lines.at(3).handle; });
  onGui([&] { section_->show(drawing(), line); });
  raise("sectionDock");
  ASSERT_TRUE(program_.user.waitFor([&] { return section_->isVisible(); }));
  program_.user.moveTo(&plan(), pixelOf(placeAt(1800, 3)));
  EXPECT_EQ(onGui([&] { return section_->sampleLine(); }), line);
  program_.user.click(onGui([&] { return section_->findChild<QToolButton*>(QStringLiteral("follow")); }));
  program_.user.moveTo(&plan(), pixelOf(placeAt(1800, -3)));
  EXPECT_TRUE(program_.user.waitFor([&] { return std::abs(section_->model()->station - 1800) < 11; }));
  program_.user.moveTo(&plan(), pixelOf(placeAt(1300, -3)));
  EXPECT_TRUE(program_.user.waitFor([&] { return std::abs(section_->model()->station - 1300) < 11; }));
}

TEST_F(LinkedViews, AClickInTheProfileOpensTheNearestSection) {
  raise("profileDock");
  const QPoint beside = onGui([&] {
    // Above all lines or below them, however low the panel is: where there is more room.
    const civil::Box box = profile_->chart().box();
    const int line = profile_->pixelOf({1503, *road().profiles[1].profile.elevationAt(1503)}).y();
    const QPoint top = profile_->pixelOf({1503, box.maxY});
    const QPoint foot = profile_->pixelOf({1503, box.minY});
    return line - top.y() > foot.y() - line ? top : foot;
  });
  program_.user.click(canvasOf(profile_), beside);
  ASSERT_TRUE(program_.user.waitFor([&] { return section_->isVisible() && section_->model() != nullptr; }));
  onGui([&] {
    // A pixel of a small profile is some metres.
    const double pixel = 1.0 / profile_->viewport().scale();
    const auto nearest = view::nearestStop(section_->stops(), 1503);
    ASSERT_TRUE(nearest);
    const double least = std::abs(section_->stops()[*nearest].station - 1503);
    EXPECT_LE(std::abs(section_->model()->station - 1503), least + 2.0 * pixel);
    EXPECT_LT(std::abs(section_->model()->station - 1503), 10.5 + pixel);
  });
}

// ---------------------------------------------------------------- sections

TEST_F(LinkedViews, EverySectionOfTheCorridorIsReachedBySliderKeysAndItsStation) {
  onGui([&] { section_->show(drawing(), road().sampleLineGroups[0].lines.at(0).handle); });
  raise("sectionDock");
  ASSERT_TRUE(program_.user.waitFor([&] { return section_->isVisible(); }));
  const auto stops = onGui([&] { return section_->stops(); });
  std::size_t between = stops.size();
  for (std::size_t i = 1; i < stops.size() && between == stops.size(); ++i)
    if (stops[i].sampleLine == 0) between = i;
  ASSERT_LT(between, stops.size()) << "a section that only the corridor has";

  auto* const station = onGui([&] { return section_->findChild<QLineEdit*>(QStringLiteral("station")); });
  program_.user.click(station);
  onGui([&] { station->selectAll(); });
  program_.user.type(text::fixedText(stops[between].station, 3));
  program_.user.key(Qt::Key_Return);
  ASSERT_TRUE(program_.user.waitFor([&] { return section_->present() == between; }));
  onGui([&] {
    EXPECT_EQ(section_->sampleLine(), 0U);
    EXPECT_FALSE(section_->model()->corridors.empty());
    EXPECT_FALSE(section_->model()->grounds.at(0).lines.empty());
    EXPECT_LT(section_->model()->leastOffset, -5.0);
    EXPECT_EQ(station->text().toStdString(), text::stationText(stops[between].station));
    EXPECT_EQ(section_->chart().subtitle.toStdString(), "Section of a corridor");
  });
  program_.user.click(canvasOf(section_));
  program_.user.key(Qt::Key_PageDown);
  EXPECT_TRUE(program_.user.waitFor([&] { return section_->present() == between + 1; }));
  program_.user.key(Qt::Key_PageUp);
  EXPECT_TRUE(program_.user.waitFor([&] { return section_->present() == between; }));
  auto* const slider = onGui([&] { return section_->findChild<QSlider*>(QStringLiteral("stationSlider")); });
  EXPECT_EQ(onGui([&] { return slider->maximum(); }), static_cast<int>(stops.size()) - 1);
  program_.user.click(slider);
  program_.user.key(Qt::Key_End);
  EXPECT_TRUE(program_.user.waitFor([&] { return section_->present() == stops.size() - 1; }));
  program_.user.key(Qt::Key_Home);
  EXPECT_TRUE(program_.user.waitFor([&] { return section_->present() == 0U; }));
}

TEST_F(LinkedViews, ASectionIsFilledByCodesAndItsCutAndFillAreMeasured) {
  const auto measured = [&] {
    view::Lines built;
    for (const view::SectionCorridor& corridor : section_->model()->corridors)
      for (const view::Line& part : corridor.lines()) built.push_back(part);
    return view::cutFillBetween(built, section_->model()->grounds.at(0).lines);
  };
  // One with both.
  onGui([&] {
    for (const civil::SampleLine& line : road().sampleLineGroups[0].lines) {
      section_->show(drawing(), line.handle);
      if (const view::CutFill between = measured(); between.cut > 0.1 && between.fill > 0.1) break;
    }
  });
  raise("sectionDock");
  const auto fillOf = [&](const QString& key) {
    return onGui([&] {
      for (const desktop::ChartFill& fill : section_->chart().fills)
        if (fill.key == key) return fill;
      return desktop::ChartFill();
    });
  };
  for (const char* code : {"code:Base", "code:Pave", "code:Subbase", "code:Slope"})
    EXPECT_FALSE(fillOf(QLatin1String(code)).name.isEmpty()) << code;
  EXPECT_FALSE(fillOf(QStringLiteral("code:Base")).areas.empty());
  const view::CutFill between = onGui(measured);
  ASSERT_GT(between.cut, 0.1);
  ASSERT_GT(between.fill, 0.1);
  const QString cut = fillOf(QStringLiteral("cut")).name;
  EXPECT_EQ(cut.toStdString(), "Cut " + text::fixedText(between.cut, 2) + " m\u00b2");
  auto* const legend = onGui([&] { return section_->findChild<QListWidget*>(QStringLiteral("legend")); });
  EXPECT_FALSE(onGui([&] { return legend->findItems(cut, Qt::MatchExactly).isEmpty(); }));
  // Off by its row, on paper too.
  onGui([&] { legend->findItems(cut, Qt::MatchExactly).at(0)->setCheckState(Qt::Unchecked); });
  EXPECT_FALSE(fillOf(QStringLiteral("cut")).isShown);
  QString whyNot;
  const QString path = program_.path("section.svg");
  ASSERT_TRUE(onGui([&] { return section_->exportTo(path, whyNot); })) << whyNot.toStdString();
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QString svg = QString::fromUtf8(file.readAll());
  EXPECT_FALSE(svg.contains(cut));
  EXPECT_TRUE(svg.contains(fillOf(QStringLiteral("fill")).name));
  EXPECT_TRUE(svg.contains(QStringLiteral(">Base<")));
}

// ---------------------------------------------------------------- free section

TEST_F(LinkedViews, AFreeSectionShowsWhatLiesAlongTheLineWhileItIsDrawn) {
  startFreeSection();
  program_.user.key(Qt::Key_S);  // no snapping: the places are compared below
  const Vec2 from = placeAt(1480, -25);
  const Vec2 to = placeAt(1560, 25);
  program_.user.click(&plan(), pixelOf(from));
  program_.user.moveTo(&plan(), pixelOf(to));
  ASSERT_TRUE(program_.user.waitFor([&] { return !free_->chart().box().isEmpty(); }))
      << "live, before the second click";
  EXPECT_TRUE(onGui([&] { return free_->isVisible() && plan().isInteracting(); }));
  program_.user.click(&plan(), pixelOf(to));
  program_.user.moveTo(&plan(), pixelOf(to) + QPoint(60, 40));
  program_.user.key(Qt::Key_Escape);
  ASSERT_TRUE(waitForFreeSection());
  const double pixel = 2.0 / onGui([&] { return plan().viewport().scale(); });
  onGui([&] {
    EXPECT_EQ(free_->section().line.vertices().size(), 2U) << "without the place where the mouse was";
    EXPECT_NEAR(free_->section().line.length(), civil::length(to - from), 2 * pixel);
    EXPECT_EQ(free_->chart().title.toStdString(), "Free section");
    ASSERT_EQ(free_->section().parts.size(), free_->chart().series.size());
    bool hasCorridor = false;
    for (const view::FreeSectionPart& part : free_->section().parts)
      hasCorridor = hasCorridor || (part.isCorridor && !part.lines.empty());
    EXPECT_TRUE(hasCorridor);
    EXPECT_FALSE(free_->chart().fills.empty());
  });
  // Station and offset under the mouse.
  const double middle = onGui([&] { return free_->section().line.length() / 2; });
  const double level = onGui([&] { return free_->chart().box().maxY; });
  program_.user.moveTo(canvasOf(free_), onGui([&] { return free_->pixelOf({middle, level}); }));
  const auto readout = [&] {
    return onGui([&] { return free_->findChild<QLabel*>(QStringLiteral("readout"))->text().toStdString(); });
  };
  EXPECT_NE(readout().find("Station 1+5"), std::string::npos) << readout();
  EXPECT_NE(readout().find("Existing ground"), std::string::npos) << readout();

  QString whyNot;
  for (const char* name : {"free.svg", "free.pdf"})
    EXPECT_TRUE(onGui([&] { return free_->exportTo(program_.path(name), whyNot); })) << whyNot.toStdString();
  const QString path = program_.path("free.csv");
  ASSERT_TRUE(onGui([&] { return free_->writeTable(path, whyNot); })) << whyNot.toStdString();
  EXPECT_FALSE(onGui([&] { return free_->writeTable(program_.path("none/free.csv"), whyNot); }));
  EXPECT_FALSE(whyNot.isEmpty());
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QStringList rows = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  ASSERT_GT(rows.size(), 10);
  EXPECT_TRUE(rows[0].contains(QStringLiteral("\"Distance\",\"Easting\",\"Northing\""))) << rows[0].toStdString();
  EXPECT_TRUE(rows[0].contains(QStringLiteral("less"))) << "differences";
  EXPECT_TRUE(rows[1].startsWith(QStringLiteral("0.000,"))) << rows[1].toStdString();
  for (const QString& row : rows) EXPECT_EQ(row.count(QLatin1Char(',')), rows[0].count(QLatin1Char(',')));

  // Back to cross sections.
  program_.user.click(onGui([&] { return free_->findChild<QToolButton*>(QStringLiteral("freeClose")); }));
  EXPECT_TRUE(program_.user.waitFor([&] { return section_->isVisible() && !free_->isVisible(); }));
}

TEST_F(LinkedViews, AFreeSectionSnapsToWhatIsDrawnUnlessAKeyTurnsThatOff) {
  const civil::SampleLine& line = road().sampleLineGroups[0].lines.at(27);
  const Vec2 from = line.vertices.front();
  const Vec2 to = line.vertices.back();
  onGui([&] {
    plan().zoomTo(line.handle);
    // The ground's vertices stand as near to an end as the mouse does, where the plan is small.
    desktop::PlanLook look = plan().look();
    look.surface = desktop::SurfaceLook::None;
    look.border = false;
    plan().setLook(look);
  });
  const auto waitForBox = [&](const char* part) {
    return program_.user.waitFor(
        [&] { return plan().pointerBox().join(QLatin1Char('|')).contains(QLatin1String(part)); });
  };
  // Beside each end, by less than snaps reach.
  const QPoint beside(3, -4);
  startFreeSection();
  program_.user.moveTo(&plan(), pixelOf(from) + beside);
  EXPECT_TRUE(waitForBox("First point of the section|End of "))
      << onGui([&] { return plan().pointerBox().join(QLatin1Char('|')).toStdString(); });
  EXPECT_TRUE(waitForBox("S: snapping off, Esc: end"));
  program_.user.click(&plan(), pixelOf(from) + beside);
  program_.user.moveTo(&plan(), pixelOf(to) + beside);
  EXPECT_TRUE(program_.waitUntilSaid("Next point of the section"));
  EXPECT_TRUE(program_.user.waitFor([&] { return free_->section().line.vertices().size() == 2; }))
      << "the line up to the mouse snaps too";
  program_.user.click(&plan(), pixelOf(to) + beside);
  program_.user.key(Qt::Key_Return);
  ASSERT_TRUE(waitForFreeSection());
  onGui([&] {
    const auto& vertices = free_->section().line.vertices();
    ASSERT_EQ(vertices.size(), 2U);
    EXPECT_NEAR(civil::length(vertices.front() - from), 0.0, 1e-9);
    EXPECT_NEAR(civil::length(vertices.back() - to), 0.0, 1e-9);
  });

  startFreeSection();
  program_.user.moveTo(&plan(), pixelOf(from) + beside);
  ASSERT_TRUE(waitForBox("End of "));
  program_.user.key(Qt::Key_S);
  EXPECT_TRUE(waitForBox("First point of the section|S: snapping on, Esc: end"));
  program_.user.click(&plan(), pixelOf(from) + beside);
  program_.user.moveTo(&plan(), pixelOf(to) + beside);
  program_.user.click(&plan(), pixelOf(to) + beside);
  program_.user.key(Qt::Key_Return);
  ASSERT_TRUE(waitForFreeSection());
  onGui([&] {
    const double pixel = 1.0 / plan().viewport().scale();
    const auto& vertices = free_->section().line.vertices();
    ASSERT_EQ(vertices.size(), 2U);
    EXPECT_GT(civil::length(vertices.front() - from), 3 * pixel);
    EXPECT_NEAR(civil::length(vertices.back() - to), 5 * pixel, 1.5 * pixel);
  });
}

TEST_F(LinkedViews, AFreeSectionBecomesASampleLineThatCanBeUndone) {
  drawLine({placeAt(1487, -20), placeAt(1493, 22)});
  ASSERT_TRUE(waitForFreeSection());
  const std::size_t before = onGui([&] { return road().sampleLineGroups[0].lines.size(); });
  program_.user.click(onGui([&] { return free_->findChild<QToolButton*>(QStringLiteral("freeSampleLine")); }));
  QWidget* const dialog = program_.waitForNamed("freeSampleLineDialog");
  ASSERT_NE(dialog, nullptr);
  const auto what = [&] {
    return onGui([&] { return dialog->findChild<QLabel*>(QStringLiteral("what"))->text().toStdString(); });
  };
  EXPECT_NE(what().find("1+4"), std::string::npos) << what();
  // Another alignment that the line doesn't cross: said, and refused.
  auto* const alignments = onGui([&] { return dialog->findChild<QComboBox*>(QStringLiteral("alignment")); });
  onGui([&] { alignments->setCurrentIndex(alignments->findText(QStringLiteral("Mill lane"))); });
  EXPECT_EQ(what(), "The line doesn't cross alignment Mill lane. A sample line has to.");
  QPushButton* const accept = ProgramWindow::button(dialog, "OK");
  EXPECT_FALSE(onGui([&] { return accept->isEnabled(); }));
  onGui([&] { alignments->setCurrentIndex(alignments->findText(QStringLiteral("Valley road"))); });
  program_.user.key(Qt::Key_Return);
  ASSERT_TRUE(program_.user.waitFor([&] { return road().sampleLineGroups[0].lines.size() == before + 1; }));
  EXPECT_TRUE(program_.user.waitFor([&] {
    return section_->isVisible() && section_->model() != nullptr &&
           std::abs(section_->model()->station - 1490) < 2.0 + 1.0 / plan().viewport().scale();
  }));
  onGui([&] { program_.window->edits().undo(); });
  EXPECT_EQ(onGui([&] { return road().sampleLineGroups[0].lines.size(); }), before);
}

TEST_F(LinkedViews, AFreeSectionOffEverythingOrWithoutLengthSaysSo) {
  onGui([&] { plan().zoomToAll(); });
  const QPoint corner = onGui([&] { return plan().rect().topLeft() + QPoint(12, 60); });
  onGui([&] { program_.window->findChild<QAction*>(QStringLiteral("freeSection"))->trigger(); });
  program_.user.click(&plan(), corner);
  program_.user.moveTo(&plan(), corner + QPoint(0, 25));
  program_.user.click(&plan(), corner + QPoint(0, 25));
  program_.user.key(Qt::Key_Return);
  ASSERT_TRUE(program_.user.waitFor([&] { return !plan().isInteracting(); }));
  ASSERT_TRUE(program_.user.waitFor([&] { return free_->section().line.vertices().size() == 2; }));
  EXPECT_TRUE(program_.user.waitFor([&] {
    return free_->chart().emptyText == QStringLiteral("The line lies off every surface and corridor that is shown.");
  })) << onGui([&] { return free_->chart().emptyText.toStdString(); });
  // Once more, with one click alone: nothing to keep.
  onGui([&] { program_.window->findChild<QAction*>(QStringLiteral("freeSection"))->trigger(); });
  program_.user.click(&plan(), corner);
  program_.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program_.user.waitFor([&] { return !free_->isVisible() && !plan().isInteracting(); }));
}

/// A drawing of that many surfaces of two triangles, one above the other.
void writeSurfaces(const QString& path, int count) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(
      "<?xml version=\"1.0\"?><LandXML xmlns=\"http://www.landxml.org/schema/LandXML-1.2\" version=\"1.2\">"
      "<Units><Metric linearUnit=\"meter\" areaUnit=\"squareMeter\" volumeUnit=\"cubicMeter\" "
      "temperatureUnit=\"celsius\" pressureUnit=\"HPA\"/></Units><Surfaces>");
  for (int i = 0; i < count; ++i) {
    const QByteArray height = QByteArray::number(100 + i);
    file.write("<Surface name=\"Layer " + QByteArray::number(i) + "\"><Definition surfType=\"TIN\"><Pnts>");
    int number = 0;
    for (const char* place : {"0 0 ", "0 100 ", "100 100 ", "100 0 "})
      file.write("<P id=\"" + QByteArray::number(++number) + "\">" + place + height + "</P>");
    file.write("</Pnts><Faces><F>1 2 3</F><F>1 3 4</F></Faces></Definition></Surface>");
  }
  file.write("</Surfaces></LandXML>");
}

TEST(FreeSections, ThroughAThousandSurfacesKeepTheWindowAliveAndTheirLegendInBounds) {
  constexpr int kCount = 1000;
  const TemporaryFolder folder;
  const QString path = QString::fromStdString(folder / "layers.xml");
  writeSurfaces(path, kCount);
  ProgramWindow program(path);
  auto* const free = onGui([&] { return program.window->findChild<FreeSectionView*>(); });
  desktop::PlanView& plan = program.window->plan();
  // Shading a thousand grounds one above the other isn't what is tried here.
  onGui([&] {
    desktop::PlanLook look = plan.look();
    look.surface = desktop::SurfaceLook::None;
    look.triangles = false;
    plan.setLook(look);
  });
  const auto pixelOf = [&](Vec2 place) {
    return onGui([&] {
      const Vec2 pixel = plan.viewport().toPixels(place);
      return QPointF(pixel.x, pixel.y).toPoint();
    });
  };
  onGui([&] { program.window->findChild<QAction*>(QStringLiteral("freeSection"))->trigger(); });
  program.user.click(&plan, pixelOf({10, 10}));
  for (const double east : {30.0, 50.0, 70.0, 90.0}) program.user.moveTo(&plan, pixelOf({east, 60}));
  program.user.click(&plan, pixelOf({90, 60}));
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(program.user.waitFor([&] {
    return free->chart().series.size() == kCount && !plan.isInteracting() && !free->chart().series.back().lines.empty();
  }));
  onGui([&] {
    const auto entries = desktop::listedEntries(free->chart());
    EXPECT_EQ(entries.size(), 24U);
    EXPECT_EQ(std::count_if(entries.begin(), entries.end(),
                            [](const desktop::ChartEntry& entry) {
                              return entry.series == nullptr && entry.fill == nullptr &&
                                     entry.name.startsWith(QStringLiteral("and 9"));
                            }),
              1);
    EXPECT_EQ(free->findChild<QListWidget*>(QStringLiteral("legend"))->count(),
              kCount + static_cast<int>(free->chart().fills.size()));
    QString whyNot;
    EXPECT_TRUE(free->exportTo(program.path("many.pdf"), whyNot)) << whyNot.toStdString();
    EXPECT_GT(free->table().size(), kCount);
  });
  auto* const canvas = onGui([&] { return free->findChild<QWidget*>(QStringLiteral("canvas")); });
  program.user.moveTo(canvas, onGui([&] { return free->pixelOf({free->section().line.length() / 2, 600}); }));
  EXPECT_TRUE(program.user.waitFor([&] {
    return free->findChild<QLabel*>(QStringLiteral("readout"))->text().contains(QStringLiteral("and 992 more"));
  })) << onGui([&] { return free->findChild<QLabel*>(QStringLiteral("readout"))->text().toStdString(); });
}

}  // namespace
}  // namespace lvx::test
