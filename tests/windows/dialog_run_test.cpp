// lvxhost.exe dialog: a person before real windows, whom this test stands for from another process.
#include <array>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// clang-format off
#include <windows.h>
// clang-format on

#include "host/dialog_controls.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

// As cli/pick_dialogs.h has them.
constexpr int kPickObjects = 1002;
constexpr int kPickNumbers = 1004;

std::wstring textOf(HWND window) {
  std::array<wchar_t, 1024> text{};
  SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  return text.data();
}

class WindowsDialog : public testing::Test {
 protected:
  WindowsDialog() { SetEnvironmentVariableW(L"SOURCE_DATE_EPOCH", L"86400"); }
  ~WindowsDialog() override {
    if (process_.hProcess == nullptr) return;
    TerminateProcess(process_.hProcess, 1);
    WaitForSingleObject(process_.hProcess, INFINITE);
    CloseHandle(process_.hProcess);
    CloseHandle(process_.hThread);
  }

  void start(const std::wstring& words) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    const auto open = [&](const wchar_t* name) {
      return CreateFileW((folder_.path() / name).c_str(), GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited, CREATE_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
    };
    start.hStdOutput = open(L"said");
    start.hStdError = open(L"errors");
    std::wstring line =
        L'"' + fs::absolute(test::inBuild("/bin/lvxhost.exe")).make_preferred().native() + L"\" " + words;
    const BOOL isStarted = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                          folder_.path().c_str(), &start, &process_);
    CloseHandle(start.hStdOutput);
    CloseHandle(start.hStdError);
    if (isStarted == 0) throw std::runtime_error("the program can't be started");
  }

  [[nodiscard]] int code() const {
    WaitForSingleObject(process_.hProcess, 30'000);
    DWORD code = 0;
    GetExitCodeProcess(process_.hProcess, &code);
    return static_cast<int>(code);
  }
  [[nodiscard]] std::string said() const { return test::fileBytes(folder_ / "said"); }
  [[nodiscard]] std::string errors() const { return test::fileBytes(folder_ / "errors"); }

  /// The program's window that has this control, once it is there and takes input.
  [[nodiscard]] HWND dialogWith(int control) const {
    for (int i = 0; i < 3000; ++i) {
      HWND found = nullptr;
      while ((found = FindWindowExW(nullptr, found, L"#32770", nullptr)) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(found, &process);
        if (process == process_.dwProcessId && IsWindowVisible(found) != FALSE && IsWindowEnabled(found) != FALSE &&
            GetDlgItem(found, control) != nullptr)
          return found;
      }
      if (WaitForSingleObject(process_.hProcess, 0) != WAIT_TIMEOUT) break;
      Sleep(10);
    }
    throw std::runtime_error("no window with the control " + std::to_string(control) + "; " + errors());
  }

  static void select(HWND dialog, int list, const wchar_t* text) {
    const HWND control = GetDlgItem(dialog, list);
    const LRESULT row =
        SendMessageW(control, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text));
    EXPECT_GE(row, 0) << list;
    SendMessageW(control, CB_SETCURSEL, static_cast<WPARAM>(row), 0);
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(list, CBN_SELCHANGE), reinterpret_cast<LPARAM>(control));
  }
  static void type(HWND dialog, int box, const wchar_t* text) {
    SendMessageW(GetDlgItem(dialog, box), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
  }
  static void click(HWND dialog, int button) { PostMessageW(GetDlgItem(dialog, button), BM_CLICK, 0, 0); }
  [[nodiscard]] static std::wstring selected(HWND dialog, int list) {
    const HWND control = GetDlgItem(dialog, list);
    std::array<wchar_t, 1024> text{};
    const LRESULT row = SendMessageW(control, CB_GETCURSEL, 0, 0);
    if (row >= 0) SendMessageW(control, CB_GETLBTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text.data()));
    return text.data();
  }
  /// While the program fills the dialog.
  [[nodiscard]] static bool comesToShow(HWND dialog, int list, const std::wstring& text) {
    for (int i = 0; i < 500 && selected(dialog, list) != text; ++i) Sleep(10);
    return selected(dialog, list) == text;
  }

  test::TemporaryFolder folder_;
  PROCESS_INFORMATION process_{};
};

std::wstring drawing() {
  return L'"' + fs::absolute(test::inSource("/examples/valley-road.xml")).make_preferred().native() + L"\" ";
}

TEST_F(WindowsDialog, WritesTheReportThatAPersonAsksForWithAPick) {
  start(L"dialog " + drawing() + L"projection");
  HWND dialog = dialogWith(host::kIdSurfaces);
  select(dialog, host::kIdSites, L"Valley road upgrade");
  // An alignment from the list of a pick: the dialog goes and comes back with it.
  click(dialog, host::kIdPickAlignment);
  HWND pick = dialogWith(kPickObjects);
  EXPECT_EQ(textOf(pick), L"Pick an object");
  EXPECT_FALSE(IsWindowEnabled(GetDlgItem(pick, IDOK)));
  select(pick, kPickObjects, L"Alignment: Valley road (Valley road upgrade)");
  click(pick, IDOK);
  dialog = dialogWith(host::kIdSurfaces);
  EXPECT_TRUE(comesToShow(dialog, host::kIdAlignments, L"Valley road"));
  click(dialog, host::kIdPickSurface);
  pick = dialogWith(kPickObjects);
  select(pick, kPickObjects, L"Surface: Existing ground");
  click(pick, IDOK);
  dialog = dialogWith(host::kIdSurfaces);
  EXPECT_TRUE(comesToShow(dialog, host::kIdSurfaces, L"Existing ground"));
  select(dialog, host::kIdSampleLineGroups, L"Cross sections 20 m");
  type(dialog, host::kIdOutputStem, L".\\b\u00FCro");
  click(dialog, IDOK);
  EXPECT_EQ(code(), 0) << errors();
  for (const wchar_t* name : {L"b\u00FCro.txt", L"b\u00FCro.xls", L"b\u00FCro.html"})
    EXPECT_TRUE(fs::exists(folder_.path() / name));
  EXPECT_THAT(said(), HasSubstr("b\xC3\xBCro.txt  "));
}

TEST_F(WindowsDialog, AsksBeforeItReplacesAndTakesPointsByTheirNumbers) {
  for (const int answer : {IDNO, IDYES}) {
    start(L"dialog " + drawing() + L"points --quiet");
    HWND dialog = dialogWith(host::kIdPointGroups);
    select(dialog, host::kIdSites, L"Valley road upgrade");
    select(dialog, host::kIdAlignments, L"Valley road");
    click(dialog, host::kIdPickPoints);
    const HWND pick = dialogWith(kPickNumbers);
    type(pick, kPickNumbers, L"1,9999");
    click(pick, IDOK);
    for (int i = 0; i < 500 && textOf(GetDlgItem(pick, 1003)).find(L"9999") == std::wstring::npos; ++i) Sleep(10);
    EXPECT_NE(textOf(GetDlgItem(pick, 1003)).find(L"9999"), std::wstring::npos) << "told where it is asked for";
    type(pick, kPickNumbers, L"1,5");
    click(pick, IDOK);
    dialog = dialogWith(host::kIdPointGroups);
    EXPECT_EQ(textOf(GetDlgItem(dialog, host::kIdPointCount)).find(L'2'), 0U)
        << std::string(fs::path(textOf(GetDlgItem(dialog, host::kIdPointCount))).string());
    for (const int box : {host::kIdCheckExcel, host::kIdCheckHtml})
      if (SendMessageW(GetDlgItem(dialog, box), BM_GETCHECK, 0, 0) == BST_CHECKED) click(dialog, box);
    if (answer == IDNO) {
      HANDLE older =
          CreateFileW((folder_.path() / "road.txt").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
      CloseHandle(older);
    }
    type(dialog, host::kIdOutputStem, L".\\road");
    click(dialog, IDOK);
    const HWND question = dialogWith(answer);
    PostMessageW(question, WM_COMMAND, static_cast<WPARAM>(answer), 0);
    EXPECT_EQ(code(), 0) << errors();
    EXPECT_EQ(fs::file_size(folder_ / "road.txt") > 0, answer == IDYES);
    CloseHandle(process_.hProcess);
    CloseHandle(process_.hThread);
    process_ = {};
  }
}

TEST_F(WindowsDialog, OffersToTryAgainWhileAnotherProgramHoldsTheFile) {
  const fs::path text = folder_ / "road.xls";
  HANDLE held =
      CreateFileW(text.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  start(L"dialog " + drawing() + L"points");
  const HWND dialog = dialogWith(host::kIdPointGroups);
  select(dialog, host::kIdSites, L"Valley road upgrade");
  select(dialog, host::kIdAlignments, L"Valley road");
  select(dialog, host::kIdPointGroups, L"Control points");
  type(dialog, host::kIdOutputStem, L".\\road");
  click(dialog, IDOK);
  PostMessageW(dialogWith(IDYES), WM_COMMAND, IDYES, 0);  // replace it?
  for (int round = 0; round < 2; ++round) {
    const HWND box = dialogWith(IDRETRY);
    if (round == 1) CloseHandle(held);
    PostMessageW(box, WM_COMMAND, IDRETRY, 0);
    Sleep(300);
  }
  EXPECT_EQ(code(), 0) << errors();
  EXPECT_GT(fs::file_size(text), 1000U);
}

TEST_F(WindowsDialog, EndsWithoutAReportWhenItIsCancelledAndKnowsWhatIsNoCommand) {
  start(L"dialog " + drawing() + L"gls");
  click(dialogWith(host::kIdSampleLineGroups), IDCANCEL);
  EXPECT_EQ(code(), 0) << errors();
  EXPECT_EQ(said(), "");
  CloseHandle(process_.hProcess);
  CloseHandle(process_.hThread);
  process_ = {};
  start(L"dialog " + drawing() + L"nothing");
  EXPECT_EQ(code(), 2);
  EXPECT_THAT(errors(), HasSubstr("the module has no command 'nothing'; its reports are projection, points and gls"));
}

}  // namespace
}  // namespace lvx
