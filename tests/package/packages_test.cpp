#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

std::string outputOf(const std::string& program, std::vector<std::string> arguments,
                     std::map<std::string, std::string> environment = {}) {
  RunRequest request;
  request.program = program;
  request.arguments = std::move(arguments);
  request.environment = std::move(environment);
  const RunResult result = runProgram(request);
  EXPECT_EQ(result.exitCode, 0) << program << ": " << result.errors << result.output;
  return result.output;
}

/// The packages of this build, made once for all tests here.
class Packages : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TemporaryFolder;
    make("first");
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }
  static void make(const std::string& name) {
    outputOf(inSource("/packaging/make_packages"), {inBuild(""), (*folder_ / name).string(), "quick"},
             {{"SOURCE_DATE_EPOCH", "1000000000"}});
  }
  static fs::path place(const std::string& name) { return *folder_ / name; }
  /// The one file in there whose name begins and ends so.
  static fs::path find(const std::string& begin, const std::string& end) {
    for (const auto& entry : fs::directory_iterator(place("first"))) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with(begin) && name.ends_with(end)) return entry.path();
    }
    ADD_FAILURE() << "no " << begin << "…" << end;
    return {};
  }

  static TemporaryFolder* folder_;
};

TemporaryFolder* Packages::folder_ = nullptr;

TEST_F(Packages, HoldProgramModuleTextsAndExamples) {
  const std::string list = outputOf("/usr/bin/dpkg-deb", {"-c", find("lvxhost_", ".deb").string()});
  for (const char* file :
       {"-rwxr-xr-x root/root", " ./usr/bin/lvxhost\n", " ./usr/lib/lvxhost/LVX_MirelReport.vmx\n",
        " ./usr/lib/lvxhost/LVX_MIRELLIB.vmx\n", " ./usr/share/lvxhost/messages/de/",
        " ./usr/share/lvxhost/help/en/index.html\n", " ./usr/share/lvxhost/examples/valley-road.xml\n",
        " ./usr/share/doc/lvxhost/copyright\n", " ./usr/share/doc/lvxhost/changelog.gz\n",
        " ./usr/share/doc/lvxhost/README.md\n", " ./usr/share/man/man1/lvxhost.1.gz\n",
        " ./usr/share/man/man1/lvxhost-points.1.gz\n", " ./usr/share/bash-completion/completions/lvxhost\n",
        " ./usr/share/zsh/vendor-completions/_lvxhost\n", " ./usr/share/fish/vendor_completions.d/lvxhost.fish\n"})
    EXPECT_THAT(list, HasSubstr(file));
  EXPECT_THAT(list, Not(HasSubstr("desktop.1.gz")));
  EXPECT_THAT(list, Not(HasSubstr("./usr/bin/lvxhost-desktop")));
}

TEST_F(Packages, HoldTheWindowsApart) {
  if (!fs::exists(inBuild("/bin/lvxhost-desktop"))) GTEST_SKIP() << "this build has no windows";
  const std::string package = find("lvxhost-desktop_", ".deb").string();
  const std::string list = outputOf("/usr/bin/dpkg-deb", {"-c", package});
  for (const char* file :
       {" ./usr/bin/lvxhost-desktop\n", " ./usr/share/applications/lvxhost-desktop.desktop\n",
        " ./usr/share/icons/hicolor/scalable/apps/lvxhost-desktop.svg\n",
        " ./usr/share/metainfo/lvxhost-desktop.metainfo.xml\n", " ./usr/share/mime/packages/lvxhost-desktop.xml\n",
        " ./usr/share/man/man1/lvxhost-desktop.1.gz\n"})
    EXPECT_THAT(list, HasSubstr(file));
  EXPECT_THAT(list, Not(HasSubstr("./usr/lib/")));
  EXPECT_THAT(outputOf("/usr/bin/dpkg-deb", {"-f", package, "Depends"}), HasSubstr("lvxhost (= "));
}

TEST_F(Packages, ClaimNoTypeOfFilesButTheirOwn) {
  const std::string entry = fileBytes(inSource("/standin/desktop/install/lvxhost-desktop.desktop"));
  EXPECT_THAT(entry, HasSubstr("\nMimeType=application/landxml+xml;\n"));
  const std::string types = fileBytes(inSource("/packaging/lvxhost-desktop.xml"));
  EXPECT_THAT(types, HasSubstr("type=\"application/landxml+xml\""));
  EXPECT_THAT(types, Not(HasSubstr("*.xml")));
}

TEST_F(Packages, AreTheSameBytesEachTime) {
  // Of another second, in another folder, made by whoever has other habits about rights.
  outputOf("/bin/sh",
           {"-c", "umask 077; exec \"$0\" \"$@\"", inSource("/packaging/make_packages"), inBuild(""),
            place("second").string(), "quick"},
           {{"SOURCE_DATE_EPOCH", "1000000000"}, {"TZ", "Asia/Tokyo"}});
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(place("first"))) {
    EXPECT_TRUE(fileBytes(entry.path()) == fileBytes(place("second") / entry.path().filename())) << entry.path();
    ++count;
  }
  EXPECT_GE(count, 2U);
}

TEST_F(Packages, RunFromAnyFolderAsAnArchive) {
  const fs::path any = place("any folder");
  fs::create_directories(any);
  outputOf("/usr/bin/env", {"tar", "-C", any.string(), "-xf", find("lvxhost-", ".tar.xz").string()});
  const fs::path top = fs::directory_iterator(any)->path();
  const auto program = (top / "bin/lvxhost").string();
  outputOf(program, {"points", (top / "share/lvxhost/examples/valley-road.xml").string(), "--alignment", "Mill lane",
                     "--points", "1,5", "--lang", "de", "--out", (any / "some").string()});
  for (const char* form : {"some.txt", "some.xls", "some.html"}) EXPECT_GT(fs::file_size(any / form), 100U) << form;
  // What not every system has comes along, with its licence.
  const std::string libraries = outputOf("/usr/bin/env", {"ldd", program});
  EXPECT_THAT(libraries, HasSubstr((top / "bin/../lib/lvxhost/libxlsxwriter").string()));
  EXPECT_FALSE(fs::is_empty(top / "share/doc/lvxhost/licences"));
}

}  // namespace
}  // namespace lvx::test
