// lvxhost.exe with what can't be: each is told in a sentence, and nothing is half written.
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

namespace fs = std::filesystem;
using test::RunResult;
using testing::HasSubstr;
using testing::IsEmpty;

class WindowsBadInput : public testing::Test {
 protected:
  WindowsBadInput() {
    fs::create_directory(out());
    fs::copy_file(test::inSource("/examples/valley-road.xml"), folder_ / "road.xml");
  }
  [[nodiscard]] fs::path out() const { return folder_ / "out"; }

  [[nodiscard]] RunResult points(const std::string& drawing, const std::string& stem,
                                 const std::vector<std::string>& more = {}) const {
    return runIn(test::inBuild("/bin/lvxhost.exe"), drawing, stem, more);
  }
  [[nodiscard]] RunResult runIn(const std::string& program, const std::string& drawing, const std::string& stem,
                                const std::vector<std::string>& more = {}) const {
    test::RunRequest request;
    request.program = fs::absolute(program).make_preferred();
    request.folder = folder_.path();
    request.arguments = {"points", drawing, "--alignment", "Valley road", "--points", "1", "--out", stem};
    request.arguments.insert(request.arguments.end(), more.begin(), more.end());
    return test::runProgram(request);
  }
  [[nodiscard]] std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(out())) names.push_back(entry.path().filename().string());
    return names;
  }
  /// The module alone, the program's installation around it.
  [[nodiscard]] fs::path program() const {
    fs::create_directories(folder_ / "bin");
    fs::copy_file(test::inBuild("/bin/lvxhost.exe"), folder_ / "bin/lvxhost.exe", fs::copy_options::overwrite_existing);
    fs::copy_file(test::inBuild("/bin/LVX_MirelReport.vmx"), folder_ / "bin/LVX_MirelReport.vmx",
                  fs::copy_options::overwrite_existing);
    return folder_ / "bin/lvxhost.exe";
  }

  test::TemporaryFolder folder_;
};

TEST_F(WindowsBadInput, NamesThatWindowsKeepsForItselfAreNoOutput) {
  struct Row {
    const char* stem;
    const char* words;
  };
  const std::vector<Row> table{{"out/CON", "the name means a device of Windows"},
                               {"out/nul.x", "the name means a device of Windows"},
                               {"out\\Com1", "the name means a device of Windows"},
                               {"out/a:b", "a name may hold none of"},
                               {"out/what?", "a name may hold none of"}};
  for (const Row& row : table)
    for (const char* mode : {"--overwrite", "--keep"}) {
      const RunResult result = points("road.xml", row.stem, {mode});
      EXPECT_EQ(result.exitCode, 1) << row.stem;
      EXPECT_THAT(result.errors, HasSubstr(std::string("lvxhost: nothing was written: '") + row.stem));
      EXPECT_THAT(result.errors, HasSubstr(row.words));
      EXPECT_THAT(files(), IsEmpty()) << row.stem;
    }
  EXPECT_THAT(points("road.xml", "out./a").errors, HasSubstr("a name may not end with a dot or a blank"));
  EXPECT_THAT(points("aux.xml", "out/a").errors, HasSubstr("the name means a device of Windows"));
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(WindowsBadInput, DrivesAndServersThatAreNotThereAreTold) {
  for (const std::string place : {"Q:\\", "\\\\no-such-server\\share\\"}) {
    const RunResult unread = points(place + "road.xml", "out/a");
    EXPECT_EQ(unread.exitCode, 3) << place;
    EXPECT_THAT(unread.errors, HasSubstr("landxml: can't open the file: "));
    EXPECT_THAT(unread.errors, HasSubstr(place + "road.xml"));
    const RunResult unwritten = points("road.xml", place + "a");
    EXPECT_EQ(unwritten.exitCode, 1) << place;
    EXPECT_THAT(unwritten.errors, HasSubstr("nothing was written: there is no folder '"));
  }
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(WindowsBadInput, LongPathsAndLettersOfAllScriptsAreNone) {
  const std::string part = "\xC3\xA4\xD0\x96\xE8\xB7\xAF" + std::string(110, 'x');
  const std::string folder = "out/" + part + "/" + part + "/" + part;
  fs::create_directories(R"(\\?\)" / (folder_ / folder).make_preferred());
  ASSERT_EQ(points("road.xml", folder + "/a").exitCode, 0);
  fs::copy_file(folder_ / "road.xml", R"(\\?\)" / (folder_ / (folder + "/road.xml")).make_preferred());
  EXPECT_EQ(points(folder + "/road.xml", folder + "/b").exitCode, 0);
  const RunResult tooLong = points("road.xml", "out/" + std::string(300, 'y'));
  EXPECT_NE(tooLong.exitCode, 0);
  EXPECT_THAT(tooLong.errors, HasSubstr("can't write 'out/yyy"));
  EXPECT_THAT(files(), testing::SizeIs(1)) << "the folder above";
}

TEST_F(WindowsBadInput, AModuleOfAnotherBitnessIsTold) {
  const fs::path narrow = folder_ / "narrow.vmx";
  std::string bytes = test::fileBytes(test::inBuild("/bin/LVX_MirelReport.vmx"));
  std::uint32_t header = 0;
  std::memcpy(&header, bytes.data() + 0x3C, sizeof header);
  const std::uint16_t of32Bits = 0x014C;
  std::memcpy(bytes.data() + header + 4, &of32Bits, sizeof of32Bits);
  std::ofstream(narrow, std::ios::binary) << bytes;
  const RunResult result = points("road.xml", "out/a", {"--module", narrow.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("it is no module for this system ("));
  EXPECT_THAT(result.errors, testing::Not(HasSubstr("%1")));
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(WindowsBadInput, AMissingCompanionOrMessageFileIsTold) {
  fs::create_directories(folder_ / "share/lvxhost/messages");
  const RunResult wordless = runIn(program().string(), "road.xml", "out/a");
  EXPECT_NE(wordless.exitCode, 0);
  EXPECT_THAT(files(), IsEmpty()) << wordless.errors;
  EXPECT_THAT(wordless.errors, testing::Not(IsEmpty()));
  fs::copy(test::inSource("/messages"), folder_ / "share/lvxhost/messages",
           fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  const RunResult lonely = runIn(program().string(), "road.xml", "out/a");
  EXPECT_EQ(lonely.exitCode, 1);
  EXPECT_THAT(lonely.errors, HasSubstr("it needs 'LVX_MIRELLIB.vmx', which isn't beside it or can't be read"));
  EXPECT_THAT(files(), IsEmpty());
}

}  // namespace
}  // namespace lvx
