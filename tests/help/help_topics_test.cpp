#include "runtime/help_topics.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "cli/command_line_front_end.h"
#include "dialogs/dialog_services.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::runtime {
namespace {

namespace fs = std::filesystem;
using framework::CString;

const fs::path kHelp = fs::path(test::inSource("/help"));
const CString kFile = L"Vantor Lorvix Extension.chm";

TEST(HelpTopics, LeadEveryDialogToItsPageInEveryLanguage) {
  for (const char* language : {"en", "de"}) {
    const fs::path folder = kHelp / language;
    EXPECT_EQ(helpPage(kFile + CString(dialogs::kHelpProjection), folder),
              folder / "project-resources" / "LVX_015_001.html");
    EXPECT_EQ(helpPage(kFile + CString(dialogs::kHelpPoints), folder),
              folder / "project-resources" / "LVX_015_002.html");
    EXPECT_EQ(helpPage(kFile + CString(dialogs::kHelpGls), folder), folder / "project-resources" / "LVX_015_003.html");
  }
}

TEST(HelpTopics, TakeTheHelpFileWhereverItWasFound) {
  const fs::path folder = kHelp / "en";
  for (const wchar_t* path : {L"/usr/share/host/", L"C:\\Program Files\\Host\\", L"./", L"/odd::place/"})
    EXPECT_EQ(helpPage(path + kFile + L"::/index.html", folder), folder / "index.html");
}

TEST(HelpTopics, GiveNothingForWhatIsNoPageOfThisHelp) {
  const fs::path folder = kHelp / "en";
  const CString topics[] = {
      L"",
      L"::/",
      L"index.html",
      kFile,
      kFile + L"::/",
      kFile + L"::index.html",
      kFile + L"::/project-resources",
      kFile + L"::/project-resources/",
      kFile + L"::/project-resources/LVX_015_004.html",
      kFile + L"::/style.css",
      kFile + L"::/index.html#top",
      L"Another.chm::/index.html",
      L"Vantor Lorvix Extension.chm.bak::/index.html",
      L"::/index.html",
  };
  for (const CString& topic : topics)
    EXPECT_EQ(helpPage(topic, folder), fs::path()) << std::string(topic.begin(), topic.end());
}

TEST(HelpTopics, NeverLeaveTheHelpFolder) {
  test::TemporaryFolder place;
  const fs::path folder = place / "help";
  fs::create_directories(folder / "inner");
  for (const fs::path& file : {place / "secret.html", folder / "page.html", folder / ".hidden.html"})
    std::ofstream(file) << "<html/>";
  EXPECT_EQ(helpPage(kFile + L"::/page.html", folder), folder / "page.html");
  const CString inNul(L"/page.html\0/../../secret.html", 29);
  const CString pages[] = {
      L"/../secret.html",
      L"/inner/../../secret.html",
      L"/./page.html",
      L"//page.html",
      L"/inner//page.html",
      L"/..\\secret.html",
      L"/.hidden.html",
      L"/...html",
      L"/" + place.path().wstring() + L"/secret.html",
      inNul,
      L"/p\u00E4ge.html",
      L"/C:/page.html",
  };
  for (const CString& page : pages)
    EXPECT_EQ(helpPage(kFile + L"::" + page, folder), fs::path()) << std::string(page.begin(), page.end());
}

TEST(HelpTopics, AreNamedByTheCommandLineAsFilesWhereTheyHaveOne) {
  cli::CommandLineFrontEnd frontEnd(cli::Overwrite::Never, kHelp / "de");
  testing::internal::CaptureStderr();
  frontEnd.showHelp(kFile + L"::/project-resources/LVX_015_002.html");
  frontEnd.showHelp(kFile + L"::/nowhere.html");
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find((kHelp / "de" / "project-resources" / "LVX_015_002.html").string()), std::string::npos) << said;
  EXPECT_NE(said.find("Vantor Lorvix Extension.chm::/nowhere.html"), std::string::npos) << said;
}

}  // namespace
}  // namespace lvx::runtime
