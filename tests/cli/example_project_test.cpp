// The example as one file and as a project of files: what users get is the same.
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;

struct Case {
  const char* name;
  std::vector<std::string> arguments;
};

const std::vector<Case>& cases() {
  static const std::vector<Case> kCases{
      {"projection",
       {"projection", "--alignment", "Valley road", "--group", "Cross sections 20 m", "--surface", "Existing ground"}},
      {"projection of an alignment without a site",
       {"projection", "--site", "", "--alignment", "Forest track", "--group", "Track 15 m", "--surface",
        "Existing ground"}},
      {"points of a group", {"points", "--alignment", "Valley road", "--point-group", "Control points"}},
      {"points by numbers", {"points", "--alignment", "Mill lane", "--points", "1,5,7-9,401-410"}},
      {"GLS",
       {"gls", "--alignment", "Valley road", "--profile", "Valley road design", "--group", "Cross sections 20 m"}},
  };
  return kCases;
}

class ExampleProject : public testing::TestWithParam<std::size_t> {
 protected:
  /// The text and the page that the report gives over these files.
  [[nodiscard]] std::string report(const std::vector<std::string>& files) const {
    test::RunRequest request;
    request.program = test::inBuild("/bin/lvxhost");
    request.folder = folder_.path();
    request.arguments = cases().at(GetParam()).arguments;
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (i > 0) request.arguments.emplace_back("--with");
      request.arguments.push_back(test::inSource("/examples/" + files[i]));
    }
    for (const char* const argument : {"--out", "out", "--forms", "txt,html", "--overwrite"})
      request.arguments.emplace_back(argument);
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
    const test::RunResult result = test::runProgram(request);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return test::fileBytes(folder_ / "out.txt") + test::fileBytes(folder_ / "out.html");
  }

 private:
  test::TemporaryFolder folder_;
};

TEST_P(ExampleProject, GivesTheReportBytesOfTheExampleInOneFile) {
  const std::string whole = report({"valley-road.xml"});
  const std::string parts = report({"valley-road/road.xml", "valley-road/ground.xml", "valley-road/points.xml"});
  ASSERT_GT(whole.size(), 2'000U) << cases().at(GetParam()).name;
  EXPECT_EQ(parts, whole) << cases().at(GetParam()).name;
}

INSTANTIATE_TEST_SUITE_P(AllReports, ExampleProject, testing::Range(std::size_t{0}, cases().size()));

}  // namespace
}  // namespace lvx::cli
