// lvxhost volumes, as the real program: cut and fill between two surfaces of a drawing.
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "made_drawing.h"

namespace lvx::cli {
namespace {

using nlohmann::json;
using test::RunResult;
using testing::HasSubstr;

/// A drawing with the ground of small.xml's square, 6400 of area, level at the height given; invisible and standing faces
/// aside.
std::string levelAt(const std::string& name, const std::string& height) {
  std::string text = R"(<LandXML version="1.2"><Units><Metric linearUnit="meter"/></Units><Surfaces><Surface name=")" +
                     name + R"("><Definition surfType="TIN"><Pnts>)";
  int id = 0;
  for (const char* place : {"500 60", "500 140", "580 140", "580 60", "600 200"})
    text += "<P id=\"" + std::to_string(++id) + "\">" + place + " " + height + "</P>";
  return text +
         R"(</Pnts><Faces><F>1 2 4</F><F>2 3 4</F><F i="1">2 3 5</F></Faces></Definition></Surface></Surfaces></LandXML>)";
}

class VolumesCommandTest : public BareDrawingTest {
 protected:
  VolumesCommandTest() {
    // The ground goes from 10 to 22, so that a half of it lies above 16.
    std::ofstream(folder_ / "design.xml") << levelAt("Design", "16");
    std::ofstream(folder_ / "none.xml")
        << R"(<LandXML version="1.2"><Units><Metric linearUnit="meter"/></Units><Surfaces><Surface name="Nothing"/></Surfaces></LandXML>)";
  }
  [[nodiscard]] RunResult volumes(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{"volumes", "small.xml", "--with", "design.xml", "--with", "none.xml"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }
};

TEST_F(VolumesCommandTest, TellsVolumesAndAreasInATable) {
  const RunResult result = volumes({"--surface", "Ground", "--design", "Design"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  // The plane of the ground runs 4 across and 8 along the square; it is point symmetric about 16. Over the half above it
  // stands the mean of |4 u + 8 v| over u, v in [-1/2, 1/2]: 2 (8 / 8 + ...) = 13/6 of the square's 6400.
  EXPECT_EQ(result.output,
            "'Ground' to 'Design'\n"
            "                              volume              area\n"
            "  cut                       6933.333          3200.000\n"
            "  fill                      6933.333          3200.000\n"
            "  net (fill - cut)             0.000          6400.000\n"
            "  equal                                          0.000\n"
            "  only existing                                  0.000\n"
            "  only design                                    0.000\n"
            "  design less existing from -6.000 to 6.000\n");
}

TEST_F(VolumesCommandTest, TellsTheSameFiguresToPrograms) {
  const RunResult result = volumes({"--surface", "Design", "--design", "Ground", "--json"});
  const json answer = json::parse(result.output);
  EXPECT_EQ(answer["command"], "volumes");
  EXPECT_EQ(answer["exit"], 0);
  const json& difference = answer["difference"];
  EXPECT_EQ(difference["existing"], "Design");
  EXPECT_EQ(difference["design"], "Ground");
  const std::vector<std::pair<std::string, double>> wanted{
      {"cut", 20800.0 / 3.0}, {"fill", 20800.0 / 3.0}, {"net", 0.0},        {"cutArea", 3200.0}, {"fillArea", 3200.0},
      {"equalArea", 0.0},     {"onlyExisting", 0.0},   {"onlyDesign", 0.0}, {"lowest", -6.0},    {"highest", 6.0}};
  EXPECT_EQ(difference.size(), wanted.size() + 2);
  for (const auto& [name, value] : wanted) EXPECT_NEAR(difference[name].get<double>(), value, 1e-8) << name;
}

TEST_F(VolumesCommandTest, SaysWhereASurfaceHasNoGround) {
  const RunResult result = volumes({"--surface", "Ground", "--design", "Nothing"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.errors, HasSubstr("warning: surface 'Nothing' has no ground"));
  EXPECT_THAT(result.output, HasSubstr("  only existing                               6400.000\n"));
}

TEST_F(VolumesCommandTest, ListsTheSurfacesThatThereAre) {
  const RunResult result = volumes({"--surface", "Ground", "--design", "Desing"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.errors, HasSubstr("'Desing'"));
  EXPECT_THAT(result.errors, HasSubstr("'Design', "));
  EXPECT_EQ(result.output, "");
}

TEST_F(VolumesCommandTest, WantsBothSurfaces) {
  EXPECT_EQ(volumes({"--surface", "Ground"}).exitCode, 2);
  EXPECT_EQ(volumes({"--design", "Ground"}).exitCode, 2);
}

}  // namespace
}  // namespace lvx::cli
