// The module in a host that has no windows for it: it brings them itself, over the host's main window. A thread stands for
// the person before them.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/dialog_controls.h"
#include "landxml/reader.h"
#include "person.h"
#include "runtime/command_runner.h"
#include "runtime/module_loader.h"
#include "runtime/standin_host.h"
#include "support/places.h"

namespace lvx {
namespace {

namespace fs = std::filesystem;
using test::textOf;

const std::string kModule = test::inBuild("/bin/LVX_MirelReport.vmx");

/// A program with a main window and nothing else for a module.
class BareFrontEnd final : public runtime::FrontEnd {
 public:
  BareFrontEnd()
      : window_(CreateWindowExW(0, L"STATIC", L"Vantor Lorvix", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 640, 480,
                                nullptr, nullptr, nullptr, nullptr)) {}
  ~BareFrontEnd() override { DestroyWindow(window_); }

  [[nodiscard]] HWND window() const { return window_; }
  host::CString consoleText;

  bool hasWindows() const override { return false; }
  void* mainWindow() override { return window_; }
  void console(const host::CString& text) override { consoleText += text; }
  std::optional<civil::Handle> pickEntity(const host::CString&) override { return std::nullopt; }
  std::optional<std::vector<civil::Handle>> selectEntities(const host::CString&, const host::CString&,
                                                           const host::CString&) override {
    return std::nullopt;
  }
  // Nobody asks for these.
  host::DialogRunner& dialogs() override { throw std::logic_error("this host has no dialogs"); }
  host::BoxAnswer messageBox(const host::CString&, host::BoxButtons, host::BoxIcon) override {
    throw std::logic_error("this host has no message boxes");
  }
  std::optional<host::CString> saveFileBox(const host::CString&, std::uint32_t) override {
    throw std::logic_error("this host has no file box");
  }
  void showHelp(const host::CString&) override { throw std::logic_error("this host has no help"); }
  std::uint32_t buttonFaceColour() override { throw std::logic_error("this host has no colours"); }

 private:
  HWND window_;
};

class OwnWindows : public testing::Test {
 protected:
  OwnWindows() : folder_(fs::temp_directory_path() / "own windows"), host_(frontEnd_, options()), runner_(host_, true) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    host_.open(landxml::readDrawing(test::inSource("/examples/valley-road.xml")));
    module_.emplace(host_.loadModule(kModule));
    module_->drawingLoaded();
  }
  ~OwnWindows() override {
    module_.reset();
    fs::remove_all(folder_);
  }

  /// Runs a command; what went wrong.
  std::vector<std::string> run(const wchar_t* command) {
    const runtime::CommandOutcome outcome = runner_.run(command);
    std::vector<std::string> wrong = outcome.misuse;
    if (!outcome.found) wrong.emplace_back("no such command");
    if (const std::string words = wordsOf(outcome); !words.empty()) wrong.push_back(words);
    return wrong;
  }
  [[nodiscard]] fs::path file(const char* name) const { return folder_ / name; }

  fs::path folder_;
  BareFrontEnd frontEnd_;

 private:
  static runtime::HostOptions options() {
    runtime::HostOptions options;
    options.platform.fixedMoment = 0;
    options.supportPaths = {test::inSource("/messages/en")};
    return options;
  }

  runtime::StandinHost host_;
  runtime::CommandRunner runner_;
  std::optional<runtime::LoadedModule> module_;
};

void choose(HWND dialog, int id, const wchar_t* row) {
  const HWND list = GetDlgItem(dialog, id);
  EXPECT_NE(SendMessageW(list, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(row)), CB_ERR) << id;
  SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
}

void press(HWND dialog, int id) {
  PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

void fillProjectionDialog(HWND dialog) {
  choose(dialog, host::kIdSites, L"Valley road upgrade");
  choose(dialog, host::kIdAlignments, L"Valley road");
  choose(dialog, host::kIdSampleLineGroups, L"Cross sections 20 m");
  choose(dialog, host::kIdSurfaces, L"Existing ground");
}

std::string bytesOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST_F(OwnWindows, TheDialogStandsOverTheMainWindowWhichWaitsForIt) {
  HWND owner = nullptr;
  bool isWaiting = false;
  std::wstring title;
  {
    const test::Person person(nullptr, [&](HWND dialog) {
      owner = GetWindow(dialog, GW_OWNER);
      isWaiting = IsWindowEnabled(frontEnd_.window()) == FALSE;
      title = textOf(dialog);
      press(dialog, host::kIdCancel);
    });
    EXPECT_THAT(run(L"lvx_Report_Que"), testing::IsEmpty());
  }
  EXPECT_EQ(owner, frontEnd_.window());
  EXPECT_TRUE(isWaiting);
  EXPECT_THAT(title, testing::Not(testing::IsEmpty()));
  EXPECT_NE(IsWindowEnabled(frontEnd_.window()), FALSE);
  EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(OwnWindows, AReportGoesFromTheDialogOverTheFileBoxAndTheQuestionToItsFiles) {
  const std::string older = "older text";
  std::ofstream(file("valley.txt"), std::ios::binary) << older;
  const std::wstring chosen = file("valley.html").wstring();
  std::wstring stem;
  std::wstring question;
  HWND asker = nullptr;
  {
    const test::Person person([&] {
      const HWND dialog = test::waitForDialog(nullptr);
      fillProjectionDialog(dialog);
      press(dialog, host::kIdOutputFileBox);
      const HWND box = test::waitForDialog(nullptr, dialog);
      test::answerFileBox(box, chosen, IDOK);
      // A file that isn't there yet is asked about.
      for (int i = 0; i < 200 && IsWindow(box) != FALSE; ++i) {
        Sleep(20);
        HWND asked = nullptr;
        while ((asked = FindWindowExW(nullptr, asked, L"#32770", nullptr)) != nullptr)
          if (asked != box && GetDlgItem(asked, IDYES) != nullptr) PostMessageW(asked, WM_COMMAND, IDYES, 0);
      }
      for (int i = 0; i < 500 && IsWindowEnabled(dialog) == FALSE; ++i) Sleep(20);
      Sleep(50);
      stem = textOf(GetDlgItem(dialog, host::kIdOutputStem));
      press(dialog, host::kIdOk);
      if (const HWND overwrite = test::waitForDialog(L"LVX_MirelReport")) {
        question = textOf(GetDlgItem(overwrite, 0xFFFF));
        asker = GetWindow(overwrite, GW_OWNER);
        PostMessageW(overwrite, WM_COMMAND, IDNO, 0);
      }
    });
    EXPECT_THAT(run(L"lvx_Report_Que"), testing::IsEmpty());
  }
  EXPECT_EQ(stem, (folder_ / "valley").wstring());
  EXPECT_THAT(question, testing::HasSubstr(file("valley.txt").wstring()));
  EXPECT_EQ(asker, frontEnd_.window());
  EXPECT_EQ(bytesOf(file("valley.txt")), older);
  EXPECT_GT(fs::file_size(file("valley.xls")), 10000U);
  EXPECT_NE(bytesOf(file("valley.html")).find("<b>Sample line:</b> 2+080"), std::string::npos);
}

TEST_F(OwnWindows, HelpWithoutItsFileLeavesTheDialogAsItIs) {
  bool isStillThere = false;
  {
    const test::Person person(nullptr, [&](HWND dialog) {
      SendMessageW(GetDlgItem(dialog, host::kIdHelp), BM_CLICK, 0, 0);
      isStillThere = IsWindow(dialog) != FALSE;
      press(dialog, host::kIdCancel);
    });
    EXPECT_THAT(run(L"lvx_Report_Points"), testing::IsEmpty());
  }
  EXPECT_TRUE(isStillThere);
}

TEST_F(OwnWindows, AReportWithoutAFolderIsToldInAMessageBoxAndTheDialogComesAgain) {
  std::wstring told;
  {
    const test::Person person([&] {
      const HWND dialog = test::waitForDialog(nullptr);
      SendMessageW(GetDlgItem(dialog, host::kIdOutputStem), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"nowhere"));
      press(dialog, host::kIdOk);
      if (const HWND box = test::waitForDialog(L"LVX_MirelReport")) {
        told = textOf(GetDlgItem(box, 0xFFFF));
        PostMessageW(box, WM_COMMAND, IDOK, 0);
        for (int i = 0; i < 500 && IsWindow(box) != FALSE; ++i) Sleep(20);
      }
      if (const HWND again = test::waitForDialog(nullptr)) press(again, host::kIdCancel);
    });
    EXPECT_THAT(run(L"lvx_Report_Points"), testing::IsEmpty());
  }
  EXPECT_THAT(told, testing::Not(testing::IsEmpty()));
}

// ---------------------------------------------------------------- the module file

/// A loaded library's own description of itself.
class Image {
 public:
  explicit Image(const fs::path& file) : base_(LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (base_ == nullptr) throw std::runtime_error("can't load " + file.string());
  }
  ~Image() { FreeLibrary(base_); }
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  [[nodiscard]] std::vector<std::string> imports() const {
    std::vector<std::string> names;
    const auto* entry = table<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
    for (; entry != nullptr && entry->Name != 0; ++entry) names.emplace_back(at<char>(entry->Name));
    return names;
  }
  [[nodiscard]] std::vector<std::string> exports() const {
    std::vector<std::string> names;
    const auto* const all = table<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    if (all == nullptr) return names;
    const DWORD* const offsets = at<DWORD>(all->AddressOfNames);
    for (DWORD i = 0; i < all->NumberOfNames; ++i) names.emplace_back(at<char>(offsets[i]));
    // A function without a name would be one more.
    for (DWORD i = all->NumberOfNames; i < all->NumberOfFunctions; ++i) names.emplace_back("by number");
    return names;
  }

 private:
  template <class Type>
  [[nodiscard]] const Type* at(DWORD offset) const {
    return reinterpret_cast<const Type*>(reinterpret_cast<const char*>(base_) + offset);
  }
  template <class Type>
  [[nodiscard]] const Type* table(unsigned number) const {
    const auto* const headers = at<IMAGE_NT_HEADERS>(static_cast<DWORD>(at<IMAGE_DOS_HEADER>(0)->e_lfanew));
    const DWORD offset = headers->OptionalHeader.DataDirectory[number].VirtualAddress;
    return offset == 0 ? nullptr : at<Type>(offset);
  }

  HMODULE base_;
};

// The host finds itself behind the module's accessor, so one has to stand there.
TEST_F(OwnWindows, TheModuleExportsItsTwoFunctionsAndNeedsItsCompanionAndTheSystemAlone) {
  const Image module(kModule);
  EXPECT_THAT(module.exports(), testing::UnorderedElementsAre("vnrxEntryPoint", "vnrxGetApiVersion"));
  std::array<wchar_t, MAX_PATH> system{};
  GetSystemDirectoryW(system.data(), static_cast<UINT>(system.size()));
  std::vector<std::string> others;
  bool hasCompanion = false;
  for (const std::string& name : module.imports()) {
    if (name == "LVX_MIRELLIB.vmx")
      hasCompanion = true;
    else if (!fs::exists(fs::path(system.data()) / name))
      others.push_back(name);
  }
  EXPECT_TRUE(hasCompanion);
  EXPECT_THAT(others, testing::IsEmpty());
}

}  // namespace
}  // namespace lvx
