#include "landxml/project.h"

#include <filesystem>
#include <fstream>

#include "civil/drawing_files.h"
#include "drawing_text.h"

namespace lvx::landxml::testing {
namespace {

using ::testing::HasSubstr;

const std::string kGround =
    "<Surfaces><Surface name=\"Ground\"><Definition surfType=\"TIN\"><Pnts><P id=\"1\">0 0 1</P><P id=\"2\">30 0 2</P>"
    "<P id=\"3\">0 60 3</P></Pnts><Faces><F>1 2 3</F></Faces></Definition></Surface></Surfaces>";

std::string inFeet(const std::string& unit, const std::string& content) {
  return "<LandXML version=\"1.2\"><Units><Imperial linearUnit=\"" + unit +
         "\" angularUnit=\"decimal degrees\"/></Units>" + content + "</LandXML>";
}

class Project : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::path(::testing::TempDir()) /
              ("project-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    std::filesystem::create_directories(folder_);
    std::filesystem::current_path(folder_);
  }
  void TearDown() override {
    std::filesystem::current_path("/");
    std::filesystem::remove_all(folder_);
  }
  static void write(const std::string& name, const std::string& text) { std::ofstream(name) << text; }
  static std::string errorOf(const std::vector<ProjectFile>& files, const ProjectOptions& options = {}) {
    try {
      (void)readProject(files, options);
    } catch (const ReadError& error) {
      return error.what();
    }
    return {};
  }

 private:
  std::filesystem::path folder_;
};

TEST_F(Project, HoldsTheAlignmentOfOneFileAndTheGroundOfAnother) {
  write("road.xml", metric(northward("")));
  write("ground.xml", metric(kGround));
  const civil::Drawing drawing = readProject({{"road.xml"}, {"ground.xml"}});
  ASSERT_EQ(drawing.siteless.alignments.size(), 1U);
  ASSERT_EQ(drawing.surfaces.size(), 1U);
  EXPECT_EQ(drawing.surfaces[0].file, 1U);
  EXPECT_EQ(civil::pathOf(drawing, 1), "ground.xml");
  EXPECT_TRUE(drawing.addedFiles[0].mark.isKnown);
  EXPECT_NE(drawing.siteless.alignments[0]->handle, drawing.surfaces[0].handle);
}

TEST_F(Project, NamesTheFileThatCantBeRead) {
  write("road.xml", metric(northward("")));
  write("cut.xml", "<LandXML><Units>");
  EXPECT_THAT(errorOf({{"road.xml"}, {"cut.xml"}}), HasSubstr("(cut.xml"));
  EXPECT_THAT(errorOf({{"road.xml"}, {"gone.xml"}}), HasSubstr("(gone.xml"));
}

TEST_F(Project, RefusesAFileThatIsGivenTwice) {
  write("road.xml", metric(northward("")));
  std::filesystem::create_symlink("road.xml", "other.xml");
  EXPECT_EQ(errorOf({{"road.xml"}, {"road.xml"}}), "landxml: the file is given twice (road.xml)");
  EXPECT_EQ(errorOf({{"road.xml"}, {"other.xml"}}), "landxml: the file is given twice, also as 'road.xml' (other.xml)");
}

TEST_F(Project, PutsTheFirstFileWithAnAlignmentInFront) {
  const std::string far(std::size_t{3} << 20, ' ');
  write("points.xml", metric("<CgPoints><CgPoint name=\"1\">0 0</CgPoint></CgPoints><Alignments/>"));
  write("ground.xml", metric("<Survey note=\"the Alignment of it\"/>" + kGround));
  write("road.xml", metric(far + northward("")));
  write("rail.xml", metric(northward("")));
  const auto order = [](const std::vector<ProjectFile>& files) {
    std::string names;
    for (const ProjectFile& file : files) names += file.path + (file.swapAxes ? "! " : " ");
    return names;
  };
  EXPECT_EQ(order(alignmentFirst({{"points.xml"}, {"ground.xml"}, {"road.xml", true}, {"rail.xml"}})),
            "road.xml! points.xml ground.xml rail.xml ");
  EXPECT_EQ(order(alignmentFirst({{"rail.xml"}, {"road.xml"}})), "rail.xml road.xml ");
  EXPECT_EQ(order(alignmentFirst({{"points.xml"}, {"gone.xml"}, {"ground.xml"}})), "points.xml gone.xml ground.xml ");
  EXPECT_EQ(order(alignmentFirst({{"points.xml"}, {"road.xml"}}, [] { return false; })), "points.xml road.xml ");
}

TEST_F(Project, FindsAnAlignmentWhereverItsNameIsCut) {
  write("points.xml", metric("<CgPoints/>"));
  // Files are read by blocks; the tag stands at the end of one in every way.
  for (std::size_t before = 0; before < 16; ++before) {
    write("road.xml", std::string((std::size_t{1} << 20) - before, ' ') + "<lx:Alignment name=\"A\"/>");
    EXPECT_EQ(alignmentFirst({{"points.xml"}, {"road.xml"}}).front().path, "road.xml") << before;
  }
}

TEST_F(Project, TellsUnitsThatDifferAsSuch) {
  write("road.xml", metric(northward("")));
  write("ground.xml", inFeet("USSurveyFoot", kGround));
  try {
    (void)readProject({{"road.xml"}, {"ground.xml"}});
    FAIL() << "nothing was thrown";
  } catch (const UnitMismatch& error) {
    EXPECT_EQ(error.file(), "ground.xml");
    EXPECT_EQ(error.unit(), "USSurveyFoot");
    EXPECT_EQ(error.drawingUnit(), "meter");
  }
}

TEST_F(Project, RefusesAFileThatIsGivenTwiceBeforeItReadsAny) {
  write("cut.xml", "<LandXML><Units>");
  EXPECT_EQ(errorOf({{"cut.xml"}, {"ground.xml"}, {"ground.xml"}}), "landxml: the file is given twice (ground.xml)");
}

TEST_F(Project, RefusesAnotherUnitAndOffersToConvert) {
  write("road.xml", metric(northward("")));
  write("ground.xml", inFeet("USSurveyFoot", kGround));
  EXPECT_EQ(errorOf({{"road.xml"}, {"ground.xml"}}),
            "landxml: its linear unit is USSurveyFoot, that of 'road.xml' is meter; --convert-units converts the added "
            "files (ground.xml)");
}

TEST_F(Project, ConvertsExactly) {
  write("road.xml", metric(northward("")));
  write("ground.xml", inFeet("USSurveyFoot", kGround + northward("")));
  const civil::Drawing drawing = readProject({{"road.xml"}, {"ground.xml"}}, {.progress = {}, .convertUnits = true});
  constexpr double kFoot = 1200.0 / 3937.0;
  EXPECT_EQ(drawing.addedFiles[0].lengthFactor, kFoot);
  EXPECT_EQ(drawing.surfaces[0].surface.box().maxX, 60 * kFoot);
  EXPECT_EQ(drawing.surfaces[0].surface.box().maxY, 30 * kFoot);
  EXPECT_EQ(drawing.surfaces[0].surface.maxElevation(), 3 * kFoot);
  EXPECT_DOUBLE_EQ(drawing.siteless.alignments[1]->geometry.length(), 100 * kFoot);
}

TEST_F(Project, TakesMetresAndNoUnitForOne) {
  write("road.xml", metric(northward("")));
  write("ground.xml", "<LandXML version=\"1.2\">" + kGround + "</LandXML>");
  EXPECT_EQ(errorOf({{"road.xml"}, {"ground.xml"}}), "");
}

TEST_F(Project, SwapsTheAxesOfOneFile) {
  write("road.xml", metric(northward("")));
  write("ground.xml", metric(kGround + "<CgPoints><CgPoint name=\"1\">5 7 9</CgPoint></CgPoints>" + northward("")));
  const civil::Drawing drawing = readProject({{"road.xml"}, {.path = "ground.xml", .swapAxes = true}});
  EXPECT_EQ(drawing.surfaces[0].surface.box().maxX, 30);
  EXPECT_EQ(drawing.surfaces[0].surface.box().maxY, 60);
  EXPECT_EQ(drawing.points[0].position.x, 5);
  EXPECT_EQ(drawing.siteless.alignments[0]->geometry.poseAt(100)->point.y, 100);
  EXPECT_EQ(drawing.siteless.alignments[1]->geometry.poseAt(100)->point.x, 100);
}

TEST_F(Project, KeepsAnOpenDrawingAsItWasWhereAFileCantBeAdded) {
  write("road.xml", metric(northward("")));
  write("ground.xml", inFeet("foot", kGround));
  civil::Drawing drawing = readProject({{"road.xml"}});
  EXPECT_THROW(addFile(drawing, {"ground.xml"}), ReadError);
  EXPECT_TRUE(drawing.addedFiles.empty());
  EXPECT_TRUE(drawing.surfaces.empty());
  addFile(drawing, {"ground.xml"}, {.progress = {}, .convertUnits = true});
  EXPECT_EQ(drawing.surfaces.size(), 1U);
}

TEST_F(Project, TellsWhichFileIsBeingRead) {
  write("road.xml", metric(northward("")));
  write("ground.xml", metric(kGround));
  std::vector<std::string> told;
  ProjectOptions options;
  options.progress = [&](const std::string& path, const Progress&) {
    if (told.empty() || told.back() != path) told.push_back(path);
    return path != "ground.xml";
  };
  EXPECT_THROW((void)readProject({{"road.xml"}, {"ground.xml"}}, options), Cancelled);
  EXPECT_THAT(told, ::testing::ElementsAre("road.xml", "ground.xml"));
}

}  // namespace
}  // namespace lvx::landxml::testing
