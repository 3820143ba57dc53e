// Section and profile views as a person works them: wheel, drag, keys, legend, clicks and exports.
#include "desktop/charts/chart_view.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QSvgRenderer>
#include <QToolButton>
#include <QXmlStreamReader>
#include <cmath>
#include <csignal>
#include <fstream>
#include <memory>
#include <optional>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "desktop/charts/chart_painter.h"
#include "desktop/charts/profile_view.h"
#include "desktop/charts/section_view.h"
#include "desktop_user/desktop_user.h"
#include "landxml/reader.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::desktop {
namespace {

using civil::Vec2;
using test::DesktopUser;
using test::onGui;
using test::TemporaryFolder;

const civil::Drawing& example() {
  static const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  return drawing;
}
const civil::AlignmentObject& road() { return *example().sites[0].alignments[0]; }
const civil::SampleLine& lineAt(std::size_t index) { return road().sampleLineGroups[0].lines.at(index); }

/// A view in a window of its own, and what it said last.
template <class View>
class Shown {
 public:
  Shown() {
    onGui([this] {
      view_ = std::make_unique<View>();
      view_->setWindowTitle(QStringLiteral("Chart"));
      view_->resize(1000, 480);
      QObject::connect(view_.get(), &ChartView::mouseAt, view_.get(), [this](QPointF place) { mouse_ = place; });
      QObject::connect(view_.get(), &ChartView::mouseGone, view_.get(), [this] { mouse_.reset(); });
      view_->show();
    });
  }
  ~Shown() {
    onGui([this] { view_.reset(); });
  }
  Shown(const Shown&) = delete;
  Shown& operator=(const Shown&) = delete;

  View* operator->() const { return view_.get(); }
  View& operator*() const { return *view_; }
  template <class Part>
  [[nodiscard]] Part* part(const char* name) const {
    return onGui([&] { return view_->template findChild<Part*>(QLatin1String(name)); });
  }
  [[nodiscard]] QWidget* canvas() const { return part<QWidget>("canvas"); }
  [[nodiscard]] QPoint pixelOf(Vec2 place) const {
    return onGui([&] { return view_->pixelOf(place); });
  }
  [[nodiscard]] double scale() const {
    return onGui([&] { return view_->viewport().scale(); });
  }
  [[nodiscard]] std::optional<QPointF> mouse() const {
    return onGui([&] { return mouse_; });
  }
  [[nodiscard]] QString readout() const {
    auto* label = part<QLabel>("readout");
    return onGui([&] { return label->text(); });
  }
  /// Of the first line of that name.
  [[nodiscard]] ChartSeries series(const QString& name) const {
    return onGui([&] {
      for (const ChartSeries& series : view_->chart().series)
        if (series.name == name) return series;
      return ChartSeries();
    });
  }

 private:
  std::unique_ptr<View> view_;
  std::optional<QPointF> mouse_;
};

template <class View>
bool exportTo(const Shown<View>& view, const std::string& path, QString& whyNot) {
  return onGui([&] { return view->exportTo(QString::fromStdString(path), whyNot); });
}

const QString kGround = QStringLiteral("Existing ground");

class SectionViewTest : public testing::Test {
 protected:
  void SetUp() override {
    onGui([this] { view_->show(example(), lineAt(27).handle); });
    ASSERT_NE(user_.waitForActiveWindow(QStringLiteral("Chart")), nullptr);
  }
  [[nodiscard]] civil::Handle shownLine() const {
    return onGui([this] { return view_->sampleLine(); });
  }
  /// A place in the middle of the ground.
  [[nodiscard]] Vec2 onGround() const {
    const ChartSeries ground = view_.series(kGround);
    return ground.lines.at(0).at(ground.lines.at(0).size() / 3);
  }
  DesktopUser user_;
  Shown<SectionView> view_;
};

class ProfileViewTest : public testing::Test {
 protected:
  void SetUp() override {
    onGui([this] {
      view_->show(example(), road().handle);
      QObject::connect(&*view_, &ProfileView::profileClicked, &*view_,
                       [this](quint64 handle) { clicks_.push_back(handle); });
      QObject::connect(&*view_, &ProfileView::stationAt, &*view_,
                       [this](double station) { stations_.push_back(station); });
    });
    ASSERT_NE(user_.waitForActiveWindow(QStringLiteral("Chart")), nullptr);
  }
  [[nodiscard]] std::vector<quint64> clicks() const {
    return onGui([this] { return clicks_; });
  }
  [[nodiscard]] const civil::ProfileObject& design() const { return road().profiles[1]; }
  [[nodiscard]] QPoint onDesign(double station) const {
    return view_.pixelOf({station, *design().profile.elevationAt(station)});
  }
  DesktopUser user_;
  Shown<ProfileView> view_;
  std::vector<quint64> clicks_;
  std::vector<double> stations_;
};

// ---------------------------------------------------------------- moving about

TEST_F(SectionViewTest, KeepsWhatLiesUnderTheMouseWhileTheWheelZooms) {
  user_.moveTo(view_.canvas(), view_.pixelOf(onGround()));
  ASSERT_TRUE(view_.mouse());
  const QPointF before = *view_.mouse();
  const double scale = view_.scale();
  user_.wheel(3);
  ASSERT_TRUE(user_.waitFor([&] { return view_->viewport().scale() > scale * 1.5; }));
  EXPECT_NEAR(view_.scale() / scale, std::pow(1.25, 3), 1e-9);
  EXPECT_NEAR(view_.mouse()->x(), before.x(), 1e-9);
  EXPECT_NEAR(view_.mouse()->y(), before.y(), 1e-9);
  user_.wheel(-3);
  EXPECT_TRUE(user_.waitFor([&] { return std::abs(view_->viewport().scale() / scale - 1.0) < 1e-9; }));
}

TEST_F(SectionViewTest, MovesWithADragAndShowsEverythingAgain) {
  const Vec2 place = onGround();
  const QPoint before = view_.pixelOf(place);
  const double scale = view_.scale();
  user_.drag(view_.canvas(), {300, 150}, {380, 190});
  EXPECT_TRUE(user_.waitFor([&] { return view_->pixelOf(place) != before; }));
  EXPECT_EQ(view_.pixelOf(place), before + QPoint(80, 40));
  EXPECT_EQ(view_.scale(), scale);
  user_.click(view_.part<QToolButton>("fit"));
  EXPECT_TRUE(user_.waitFor([&] { return view_->pixelOf(place) == before; }));
}

TEST_F(SectionViewTest, MovesAndZoomsByTheKeyboard) {
  const double scale = view_.scale();
  const Vec2 place = onGround();
  const QPoint before = view_.pixelOf(place);
  user_.click(view_.canvas(), {200, 60});
  user_.key(Qt::Key_Plus);
  EXPECT_TRUE(user_.waitFor([&] { return view_->viewport().scale() > scale; }));
  user_.key(Qt::Key_Home);
  EXPECT_TRUE(user_.waitFor([&] { return view_->viewport().scale() == scale; }));
  user_.key(Qt::Key_Left);
  EXPECT_TRUE(user_.waitFor([&] { return view_->pixelOf(place) == before + QPoint(40, 0); }));
}

TEST_F(SectionViewTest, EnlargesHeightsAsChosen) {
  auto* heights = view_.part<QComboBox>("exaggeration");
  user_.click(heights);
  for (int down = 0; down < 3; ++down) user_.key(Qt::Key_Down);
  user_.key(Qt::Key_Return);
  EXPECT_TRUE(user_.waitFor([&] { return view_->exaggeration() == 5.0; }));
  user_.click(heights);
  user_.key(Qt::Key_Home);
  user_.key(Qt::Key_Down);
  user_.key(Qt::Key_Return);
  EXPECT_TRUE(user_.waitFor([&] { return view_->exaggeration() == 1.0; }));
  const QPoint origin = view_.pixelOf({0, 410});
  EXPECT_NEAR(view_.pixelOf({10, 410}).x() - origin.x(), origin.y() - view_.pixelOf({0, 420}).y(), 1);
}

// ---------------------------------------------------------------- reading off

TEST_F(SectionViewTest, ReadsOffTheOffsetTheElevationAndTheLines) {
  user_.moveTo(view_.canvas(), view_.pixelOf({-21.5, 413}));
  const auto mouse = view_.mouse();
  ASSERT_TRUE(mouse);
  EXPECT_NEAR(mouse->x(), -21.5, 1.0 / view_.scale());
  const ChartSeries ground = view_.series(kGround);
  const QString expected = QStringLiteral("Offset %1    Elevation %2    Existing ground %3")
                               .arg(QString::number(mouse->x(), 'f', 3), QString::number(mouse->y(), 'f', 3),
                                    QString::number(*view::elevationAt(ground.lines, mouse->x()), 'f', 3));
  EXPECT_EQ(view_.readout().toStdString(), expected.toStdString());
  user_.moveTo(view_.part<QLabel>("title"), {5, 5});
  EXPECT_FALSE(view_.mouse());
  EXPECT_TRUE(view_.readout().isEmpty());
}

TEST_F(SectionViewTest, HidesALineThatIsTickedOffAlsoInTheNextSection) {
  auto* legend = view_.part<QListWidget>("legend");
  const auto rowOf = [&](const QString& name) {
    return onGui([&] { return legend->visualItemRect(legend->findItems(name, Qt::MatchExactly).at(0)); });
  };
  const auto tick = [&] {
    const QRect row = rowOf(kGround);
    user_.click(legend->viewport(), {row.left() + 10, row.center().y()});
  };
  ASSERT_TRUE(view_.series(kGround).isShown);
  tick();
  EXPECT_TRUE(user_.waitFor([&] {
    for (const ChartSeries& series : view_->chart().series)
      if (series.name == kGround) return !series.isShown;
    return false;
  }));
  const civil::Handle before = shownLine();
  user_.click(view_.part<QToolButton>("next"));
  EXPECT_TRUE(user_.waitFor([&] { return view_->sampleLine() != before; }));
  EXPECT_FALSE(view_.series(kGround).isShown);
  tick();
  EXPECT_TRUE(user_.waitFor([&] { return view_->chart().series.back().isShown; }));
}

// ---------------------------------------------------------------- sections

TEST_F(SectionViewTest, GoesToItsNeighboursByButtonKeyAndList) {
  std::vector<quint64> changes;
  onGui([&] {
    QObject::connect(&*view_, &SectionView::sampleLineChanged, &*view_,
                     [&changes](quint64 handle) { changes.push_back(handle); });
  });
  // Between the sample lines stand sections of the corridor.
  const std::size_t start = onGui([&] { return view_->present().value(); });
  const auto stops = onGui([&] { return view_->stops(); });
  ASSERT_EQ(stops[start].sampleLine, lineAt(27).handle);
  const auto isAt = [&](std::size_t stop) { return user_.waitFor([&] { return view_->present() == stop; }); };
  user_.click(view_.part<QToolButton>("next"));
  EXPECT_TRUE(isAt(start + 1));
  user_.click(view_.part<QToolButton>("previous"));
  EXPECT_TRUE(isAt(start));
  user_.click(view_.canvas());
  user_.key(Qt::Key_PageUp);
  EXPECT_TRUE(isAt(start - 1));
  user_.key(Qt::Key_PageDown);
  user_.key(Qt::Key_PageDown);
  EXPECT_TRUE(isAt(start + 1));
  user_.click(view_.part<QComboBox>("sampleLines"));
  user_.key(Qt::Key_Home);
  user_.key(Qt::Key_Return);
  EXPECT_TRUE(user_.waitFor([&] { return view_->sampleLine() == lineAt(0).handle; }));
  EXPECT_FALSE(onGui([&] { return view_->findChild<QToolButton*>(QStringLiteral("previous"))->isEnabled(); }));
  user_.click(view_.canvas());
  user_.key(Qt::Key_PageUp);
  EXPECT_EQ(shownLine(), lineAt(0).handle);
  std::vector<quint64> expected;
  for (const std::size_t stop : {start + 1, start, start - 1, start, start + 1, std::size_t{0}})
    if (stops[stop].sampleLine != 0) expected.push_back(stops[stop].sampleLine);
  EXPECT_EQ(onGui([&] { return changes; }), expected);
  EXPECT_EQ(onGui([&] { return view_->chart().title.toStdString(); }), "Cross section at 1+000.000, Valley road");
}

TEST_F(SectionViewTest, SaysWhyItIsEmpty) {
  onGui([&] { view_->clear(); });
  EXPECT_EQ(shownLine(), 0U);
  EXPECT_FALSE(onGui([&] { return view_->chart().emptyText.isEmpty(); }));
  EXPECT_FALSE(onGui([&] { return view_->findChild<QToolButton*>(QStringLiteral("export"))->isEnabled(); }));
  user_.moveTo(view_.canvas(), {200, 100});
  user_.wheel(2);
  user_.click(view_.canvas());
  EXPECT_TRUE(view_.readout().isEmpty());
  QString whyNot;
  EXPECT_FALSE(onGui([&] { return view_->exportTo(QStringLiteral("nothing.svg"), whyNot); }));
  EXPECT_FALSE(whyNot.isEmpty());
  EXPECT_FALSE(QFileInfo::exists(QStringLiteral("nothing.svg")));
}

// ---------------------------------------------------------------- profiles

TEST_F(ProfileViewTest, TellsWhichProfileIsClicked) {
  user_.click(view_.canvas(), onDesign(1250));
  EXPECT_TRUE(user_.waitFor([&] { return clicks_.size() == 1; }));
  EXPECT_EQ(clicks(), std::vector<quint64>{design().handle});
  const civil::ProfileObject& ground = road().profiles[0];
  user_.click(view_.canvas(), view_.pixelOf({1690, *ground.profile.elevationAt(1690)}));
  EXPECT_TRUE(user_.waitFor([&] { return clicks_.size() == 2; }));
  EXPECT_EQ(clicks().back(), ground.handle);
}

TEST_F(ProfileViewTest, TakesNoDragAndNoClickBesideForAClick) {
  user_.drag(view_.canvas(), onDesign(1250), onDesign(1250) + QPoint(60, 0));
  user_.click(view_.canvas(), onDesign(1500) - QPoint(0, 60));
  EXPECT_TRUE(clicks().empty());
}

TEST_F(ProfileViewTest, TellsTheStationUnderTheMouseWithinTheAlignment) {
  user_.moveTo(view_.canvas(), view_.pixelOf({1400, 410}));
  ASSERT_TRUE(user_.waitFor([&] { return !stations_.empty(); }));
  EXPECT_NEAR(onGui([&] { return stations_.back(); }), 1400.0, 1.0 / view_.scale());
  EXPECT_TRUE(view_.readout().startsWith(QStringLiteral("Station 1+")));
  onGui([&] { stations_.clear(); });
  user_.moveTo(view_.canvas(), view_.pixelOf({992, 410}));
  EXPECT_LT(view_.mouse()->x(), 1000.0);
  EXPECT_TRUE(onGui([&] { return stations_.empty() || stations_.back() >= 1000.0; }));
}

TEST_F(ProfileViewTest, ReadsOffEachProfileWithItsGrade) {
  user_.moveTo(view_.canvas(), view_.pixelOf({1480, 405}));
  ASSERT_TRUE(view_.mouse());
  const double station = view_.mouse()->x();
  const QString expected = QStringLiteral("Valley road design %1 (+2.00 %)")
                               .arg(QString::number(*design().profile.elevationAt(station), 'f', 3));
  EXPECT_TRUE(view_.readout().contains(expected)) << view_.readout().toStdString();
}

TEST_F(ProfileViewTest, ComputesASurfaceOnceItIsTicked) {
  const QString name = QStringLiteral("Surface Existing ground");
  EXPECT_FALSE(view_.series(name).isShown);
  EXPECT_TRUE(view_.series(name).lines.empty());
  auto* legend = view_.part<QListWidget>("legend");
  const QRect row = onGui([&] { return legend->visualItemRect(legend->findItems(name, Qt::MatchExactly).at(0)); });
  user_.click(legend->viewport(), {row.left() + 10, row.center().y()});
  ASSERT_TRUE(user_.waitFor([&] { return view_->chart().series.back().isShown; }));
  const ChartSeries surface = view_.series(name);
  ASSERT_FALSE(surface.lines.empty());
  EXPECT_NEAR(*view::elevationAt(surface.lines, 1500), *road().profiles[0].profile.elevationAt(1500), 0.5);
}

TEST_F(ProfileViewTest, StandsWithoutProfiles) {
  civil::Drawing drawing;
  auto alignment = std::make_unique<civil::AlignmentObject>();
  alignment->handle = 1;
  alignment->name = "Bare";
  alignment->geometry = civil::Alignment::fromText("line 100");
  drawing.siteless.alignments.push_back(std::move(alignment));
  onGui([&] { view_->show(drawing, 1); });
  EXPECT_EQ(onGui([&] { return view_->chart().emptyText.toStdString(); }), "Alignment Bare has no profiles.");
  user_.moveTo(view_.canvas(), {300, 200});
  user_.wheel(2);
  user_.click(view_.canvas());
  EXPECT_TRUE(clicks().empty());
  onGui([&] { view_->show(drawing, 77); });
  EXPECT_EQ(onGui([&] { return view_->alignment(); }), 0U);
  onGui([&] { view_->clear(); });
}

TEST_F(ProfileViewTest, SurvivesWhatNoDrawingShouldHold) {
  using civil::VerticalCurveKind;
  const std::vector<civil::VerticalPoint> profiles[] = {
      {{0, 1e300}, {100, -1e300}},
      {{0, 1e-300}, {1e-300, 2e-300}},
      {{1e17, 5}, {1.1e17, 6}},
      {{50, 5}},
      {{50, 5}, {50, 7}, {50, 6}},
      {{-1e9, 0},
       {0, 1, VerticalCurveKind::Parabola, 1e12},
       {1e-9, 5, VerticalCurveKind::Circle, 0, 0, 1e-9},
       {1e9, 0}},
  };
  const TemporaryFolder folder;
  for (const auto& points : profiles) {
    civil::Drawing drawing;
    auto alignment = std::make_unique<civil::AlignmentObject>();
    alignment->handle = 1;
    alignment->geometry = civil::Alignment::fromText("line 100; arc 20 R 0.001 left");
    alignment->profiles.push_back({2, "Odd", "", civil::Profile::design(points)});
    drawing.siteless.alignments.push_back(std::move(alignment));
    onGui([&] { view_->show(drawing, 1); });
    user_.moveTo(view_.canvas(), {300, 150});
    user_.wheel(30);
    user_.moveTo(view_.canvas(), {310, 160});
    user_.wheel(-60);
    user_.click(view_.canvas(), {320, 150});
    QString whyNot;
    for (const char* name : {"odd.svg", "odd.pdf"}) EXPECT_TRUE(exportTo(view_, folder / name, whyNot));
    onGui([&] { view_->clear(); });
  }
  EXPECT_EQ(std::size(profiles), 6U);
}

// ---------------------------------------------------------------- exports

QByteArray contentOf(const std::string& path) {
  QFile file(QString::fromStdString(path));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What an SVG page holds.
struct SvgContent {
  bool isWhole = false;
  QString title;
  QString width;
  QStringList texts;
  /// Colours that paths are drawn in, one entry a path.
  QStringList pathColours;
};

SvgContent readSvg(const QByteArray& bytes) {
  SvgContent content;
  QXmlStreamReader xml(bytes);
  QStringList strokes{QString()};
  while (!xml.atEnd()) {
    xml.readNext();
    if (xml.isStartElement()) {
      const auto stroke = xml.attributes().value(QLatin1String("stroke")).toString();
      strokes.append(stroke.isEmpty() ? strokes.back() : stroke);
      if (xml.name() == QLatin1String("svg")) content.width = xml.attributes().value(QLatin1String("width")).toString();
      if (xml.name() == QLatin1String("path")) content.pathColours.append(strokes.back());
      if (xml.name() == QLatin1String("title") || xml.name() == QLatin1String("text")) {
        const bool isTitle = xml.name() == QLatin1String("title");
        const QString text = xml.readElementText().trimmed();
        (isTitle ? content.title : content.texts.emplace_back()) = text;
        strokes.removeLast();
      }
    } else if (xml.isEndElement()) {
      strokes.removeLast();
    }
  }
  content.isWhole = !xml.hasError();
  return content;
}

TEST_F(SectionViewTest, WritesAnSvgPageWithTitleScaleAndALineForEachEntry) {
  const TemporaryFolder folder;
  const std::string path = folder / "section.svg";
  QString whyNot;
  ASSERT_TRUE(exportTo(view_, path, whyNot)) << whyNot.toStdString();
  const SvgContent svg = readSvg(contentOf(path));
  EXPECT_TRUE(svg.isWhole);
  EXPECT_EQ(svg.title.toStdString(), "Cross section at 1+540.000, Valley road");
  EXPECT_TRUE(svg.width == QLatin1String("297mm") || svg.width == QLatin1String("420mm")) << svg.width.toStdString();
  for (const char* text : {"Cross section at 1+540.000, Valley road", "Sample line 1+540, Cross sections 20 m",
                           "valley-road.xml", "Existing ground", "Offset [m]"})
    EXPECT_TRUE(svg.texts.contains(QLatin1String(text))) << text;
  EXPECT_EQ(svg.texts.filter(QStringLiteral("Scale 1:")).size(), 1);
  std::size_t entries = 0;
  const auto chart = onGui([&] { return view_->chart(); });
  const QStringList colours{QStringLiteral("#c21a1a"), QStringLiteral("#7a4a1d")};
  for (const ChartSeries& series : chart.series) {
    EXPECT_TRUE(svg.texts.contains(series.name)) << series.name.toStdString();
    EXPECT_EQ(svg.pathColours.count(colours.at(static_cast<qsizetype>(entries))), 1) << series.name.toStdString();
    ++entries;
  }
  EXPECT_EQ(entries, 2U);
}

TEST_F(SectionViewTest, ExportsOnlyWhatIsTicked) {
  auto* legend = view_.part<QListWidget>("legend");
  const QRect row = onGui([&] { return legend->visualItemRect(legend->findItems(kGround, Qt::MatchExactly).at(0)); });
  user_.click(legend->viewport(), {row.left() + 10, row.center().y()});
  ASSERT_TRUE(user_.waitFor([&] { return !view_->chart().series.back().isShown; }));
  const TemporaryFolder folder;
  QString whyNot;
  ASSERT_TRUE(exportTo(view_, folder / "section.svg", whyNot));
  const SvgContent svg = readSvg(contentOf(folder / "section.svg"));
  EXPECT_FALSE(svg.texts.contains(kGround));
  EXPECT_EQ(svg.pathColours.count(QStringLiteral("#7a4a1d")), 0);
}

TEST_F(ProfileViewTest, DrawsItsSvgToTheScaleThatItNames) {
  const TemporaryFolder folder;
  QString whyNot;
  ASSERT_TRUE(exportTo(view_, folder / "profile.svg", whyNot)) << whyNot.toStdString();
  const SvgContent svg = readSvg(contentOf(folder / "profile.svg"));
  EXPECT_TRUE(svg.isWhole);
  EXPECT_TRUE(svg.texts.contains(QStringLiteral("Scale 1:5000, heights 1:500"))) << svg.texts.join(u'|').toStdString();
  EXPECT_TRUE(svg.texts.contains(QStringLiteral("R=300  L=168.3")));
  // The ground is 1093 long: 218.6 mm of paper, as wide as its brown line.
  QSvgRenderer renderer(contentOf(folder / "profile.svg"));
  ASSERT_TRUE(renderer.isValid());
  QImage page(2970, 2100, QImage::Format_RGB32);
  page.fill(Qt::white);
  QPainter painter(&page);
  renderer.render(&painter);
  painter.end();
  int least = page.width();
  int greatest = 0;
  for (int y = 420; y < 1700; ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(page.constScanLine(y));
    for (int x = 0; x < page.width(); ++x) {
      const QColor colour(row[x]);
      if (std::abs(colour.red() - 0xc2) > 8 || std::abs(colour.green() - 0x1a) > 8) continue;
      least = std::min(least, x);
      greatest = std::max(greatest, x);
    }
  }
  EXPECT_NEAR((greatest - least) / 10.0, 1100.0 / 5.0, 2.5)
      << "the design runs from 1000 to 2100, with a ring at its ends";
}

TEST_F(ProfileViewTest, WritesAPdfPage) {
  const TemporaryFolder folder;
  QString whyNot;
  ASSERT_TRUE(exportTo(view_, folder / "profile.pdf", whyNot)) << whyNot.toStdString();
  const QByteArray pdf = contentOf(folder / "profile.pdf");
  EXPECT_TRUE(pdf.startsWith("%PDF-"));
  EXPECT_TRUE(pdf.trimmed().endsWith("%%EOF"));
  EXPECT_TRUE(pdf.contains("/Count 1"));
  EXPECT_TRUE(pdf.contains("/MediaBox [0 0 842.000000 595.000000]") || pdf.contains("/MediaBox [0 0 842 595]"))
      << pdf.mid(pdf.indexOf("/MediaBox"), 60).toStdString();
}

TEST_F(SectionViewTest, TellsWhyAFileCannotBeWritten) {
  const TemporaryFolder folder;
  const struct {
    std::string path;
    const char* reason;
  } rows[] = {
      {folder / "missing/section.svg", "No such file"},
      {folder / "missing/section.pdf", "No such file"},
      {folder / "section.sketch", ".svg or .pdf"},
      {folder / "section", ".svg or .pdf"},
  };
  for (const auto& row : rows) {
    QString whyNot;
    EXPECT_FALSE(exportTo(view_, row.path, whyNot)) << row.path;
    EXPECT_TRUE(whyNot.contains(QString::fromStdString(row.path))) << whyNot.toStdString();
    EXPECT_TRUE(whyNot.contains(QLatin1String(row.reason))) << whyNot.toStdString();
  }
  const std::string onto = folder / "folder.svg";
  ASSERT_TRUE(QDir().mkpath(QString::fromStdString(onto)));
  QString whyNot;
  EXPECT_FALSE(exportTo(view_, onto, whyNot));
  EXPECT_TRUE(whyNot.contains(QString::fromStdString(onto))) << whyNot.toStdString();
  EXPECT_TRUE(QFileInfo(QString::fromStdString(onto)).isDir());
  EXPECT_EQ(QDir(QString::fromStdString(folder.path()))
                .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)
                .size(),
            1);
}

/// No file grows beyond some bytes while this lives: a full disk.
class FullDisk {
 public:
  FullDisk() : former_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &limit_);
    const rlimit small{1000, limit_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &limit_);
    std::signal(SIGXFSZ, former_);
  }

 private:
  void (*former_)(int);
  rlimit limit_{};
};

TEST_F(SectionViewTest, LeavesTheOldFileWholeWhenTheDiskIsFull) {
  const TemporaryFolder folder;
  for (const char* name : {"section.svg", "section.pdf"}) {
    const std::string path = folder / name;
    QString whyNot;
    ASSERT_TRUE(exportTo(view_, path, whyNot)) << whyNot.toStdString();
    const QByteArray before = contentOf(path);
    bool isWritten = true;
    onGui([&] {
      const FullDisk full;
      isWritten = view_->exportTo(QString::fromStdString(path), whyNot);
    });
    EXPECT_FALSE(isWritten);
    EXPECT_TRUE(whyNot.contains(QString::fromStdString(path))) << whyNot.toStdString();
    EXPECT_EQ(contentOf(path), before);
  }
  EXPECT_EQ(QDir(QString::fromStdString(folder.path())).entryList(QDir::Files | QDir::Hidden).size(), 2)
      << "nothing half-written stays";
}

TEST_F(SectionViewTest, ExportsByItsButtonToTheNameThatIsTyped) {
  const TemporaryFolder folder;
  const std::string path = folder / "typed.pdf";
  user_.click(view_.part<QToolButton>("export"));
  ASSERT_NE(user_.waitForActiveWindow(QStringLiteral("Export the chart")), nullptr);
  user_.key(Qt::Key_A, Qt::ControlModifier);
  user_.type(path);
  user_.key(Qt::Key_Return);
  EXPECT_TRUE(user_.waitFor([&] { return QFileInfo(QString::fromStdString(path)).size() > 0; }));
  EXPECT_TRUE(contentOf(path).startsWith("%PDF-"));
  ASSERT_NE(user_.waitForActiveWindow(QStringLiteral("Chart")), nullptr);
}

TEST_F(SectionViewTest, AsksBeforeItReplacesAFileWhoseEndingWasAdded) {
  const TemporaryFolder folder;
  const std::string path = folder / "section 1+020.000.pdf";
  std::ofstream(path) << "mine";
  const auto chosen = [&] {
    user_.click(view_.part<QToolButton>("export"));
    EXPECT_NE(user_.waitForActiveWindow(QStringLiteral("Export the chart")), nullptr);
    user_.key(Qt::Key_A, Qt::ControlModifier);
    user_.type(folder / "section 1+020.000");  // the decimals are no ending
    user_.key(Qt::Key_Return);
    EXPECT_TRUE(user_.waitFor([] {
      const QWidget* const open = QApplication::activeModalWidget();
      return open != nullptr && open->objectName() == QStringLiteral("replaceQuestion") && open->isActiveWindow();
    }));
  };
  chosen();
  user_.key(Qt::Key_Escape);
  ASSERT_NE(user_.waitForActiveWindow(QStringLiteral("Export the chart")), nullptr) << "a No returns to the box";
  user_.key(Qt::Key_Escape);
  ASSERT_NE(user_.waitForActiveWindow(QStringLiteral("Chart")), nullptr);
  EXPECT_EQ(contentOf(path), "mine");
  chosen();
  user_.key(Qt::Key_R, Qt::AltModifier);
  EXPECT_TRUE(user_.waitFor([&] { return contentOf(path).startsWith("%PDF-"); }));
  EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(folder / "section 1+020.000")));
}

TEST_F(SectionViewTest, CopiesItsPictureFromTheMenu) {
  onGui([] { QApplication::clipboard()->clear(); });
  user_.click(view_.canvas(), {300, 120}, Qt::RightButton);
  ASSERT_TRUE(user_.waitFor([] { return QApplication::activePopupWidget() != nullptr; }));
  user_.key(Qt::Key_C);
  ASSERT_TRUE(user_.waitFor([] { return !QApplication::clipboard()->image().isNull(); }));
  const QImage picture = onGui([] { return QApplication::clipboard()->image(); });
  EXPECT_GT(picture.width(), 1000);
  EXPECT_EQ(picture.pixelColor(2, 2), QColor(Qt::white)) << "in print colours";
}

TEST(ChartPainter, PutsDotsOnPointsOnlyWhereTheyStandApart) {
  // A line of twelve points, `width` long in a chart of 100.
  const auto picture = [](double width, bool hasDots) {
    return test::onGui([=] {
      Chart chart;
      chart.reach.add({0.0, 0.0});
      chart.reach.add({100.0, 0.0});
      ChartSeries series;
      series.hasDots = hasDots;
      series.lines.emplace_back();
      constexpr int kPoints = 12;
      for (int point = 0; point < kPoints; ++point)
        series.lines.back().push_back({50.0 + width * (point / (kPoints - 1.0) - 0.5), point % 2 * 2.0});
      chart.series.push_back(series);
      QImage image(600, 300, QImage::Format_RGB32);
      image.fill(Qt::white);
      QPainter painter(&image);
      const ChartPainter chartPainter(chart, ChartLook::printed(), QFont());
      chartPainter.paint(painter, image.rect(), chartPainter.viewportFor(image.rect(), 1.0));
      return image;
    });
  };
  EXPECT_NE(picture(100.0, true), picture(100.0, false));
  EXPECT_EQ(picture(10.0, true), picture(10.0, false)) << "one blot";
}

}  // namespace
}  // namespace lvx::desktop
