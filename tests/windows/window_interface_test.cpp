// Message boxes, the file box and help as the system shows them, worked from a thread that stands for the person.
#include "native/window_interface.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "person.h"

namespace lvx::native {
namespace {

using host::BoxAnswer;
using host::BoxButtons;
using host::BoxIcon;
using test::answerFileBox;
using test::Person;
using test::textOf;

constexpr wchar_t kTitle[] = L"Vantor Lorvix \u0416";

// ---------------------------------------------------------------- message boxes

TEST(WindowBoxes, ShowTextTitleAndTheButtonsThatAreAskedFor) {
  struct Row {
    BoxButtons buttons;
    std::vector<int> offered;
  };
  WindowInterface user(nullptr, kTitle);
  for (const Row& row : {Row{BoxButtons::Ok, {IDOK}}, Row{BoxButtons::YesNo, {IDYES, IDNO}},
                         Row{BoxButtons::RetryCancel, {IDRETRY, IDCANCEL}}}) {
    for (const int press : row.offered) {
      CString text;
      std::vector<int> buttons;
      BoxAnswer answer{};
      {
        const Person person(kTitle, [&](HWND box) {
          text = textOf(GetDlgItem(box, 0xFFFF));
          for (const int id : {IDOK, IDCANCEL, IDABORT, IDRETRY, IDIGNORE, IDYES, IDNO}) {
            const HWND button = GetDlgItem(box, id);
            if (button != nullptr && IsWindowVisible(button) != FALSE) buttons.push_back(id);
          }
          PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(press), 0);
        });
        answer = user.messageBox(L"50% \u20AC of & all", row.buttons, BoxIcon::Question);
      }
      EXPECT_EQ(static_cast<int>(answer), press);
      EXPECT_EQ(text, L"50% \u20AC of & all");
      // The one button of a box with an OK alone may carry Cancel's number.
      if (row.buttons == BoxButtons::Ok) continue;
      EXPECT_THAT(buttons, testing::UnorderedElementsAreArray(row.offered));
    }
  }
}

TEST(WindowBoxes, HaveAnIconWhereOneIsAskedFor) {
  WindowInterface user(nullptr, kTitle);
  for (const BoxIcon icon : {BoxIcon::None, BoxIcon::Stop, BoxIcon::Question, BoxIcon::Warning}) {
    bool isShown = false;
    HICON shown = nullptr;
    {
      const Person person(kTitle, [&](HWND box) {
        for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
          if ((GetWindowLongPtrW(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON && IsWindowVisible(child) != FALSE) {
            shown = reinterpret_cast<HICON>(SendMessageW(child, STM_GETICON, 0, 0));
            isShown = isShown || shown != nullptr;
          }
        PostMessageW(box, WM_COMMAND, IDOK, 0);
      });
      user.messageBox(L"text", BoxButtons::Ok, icon);
    }
    EXPECT_EQ(isShown, icon != BoxIcon::None) << static_cast<int>(icon);
  }
}

TEST(WindowBoxes, EscapeIsCancelOrTheOneButton) {
  WindowInterface user(nullptr, kTitle);
  for (const BoxButtons buttons : {BoxButtons::Ok, BoxButtons::RetryCancel}) {
    const Person person(kTitle, [](HWND box) { PostMessageW(box, WM_COMMAND, IDCANCEL, 0); });
    EXPECT_EQ(user.messageBox(L"text", buttons, BoxIcon::Warning),
              buttons == BoxButtons::Ok ? BoxAnswer::Ok : BoxAnswer::Cancel);
  }
}

// ---------------------------------------------------------------- the file box

constexpr wchar_t kFilter[] = L"Text (*.txt)|*.txt|Workbook (*.xls)|*.xls||";

CString temporaryFolder() {
  std::array<wchar_t, MAX_PATH> folder{};
  GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
  return folder.data();
}

TEST(WindowFileBox, GivesThePathAsItWasTypedWithoutAnExtensionOfItsOwn) {
  WindowInterface user(nullptr, kTitle);
  std::array<wchar_t, MAX_PATH> before{};
  GetCurrentDirectoryW(static_cast<DWORD>(before.size()), before.data());
  for (const wchar_t* name : {L"road", L"road \u0416.html.txt", L"road.XLS"}) {
    const CString path = temporaryFolder() + name;
    std::optional<CString> chosen;
    CString firstFilter;
    {
      const Person person(nullptr, [&](HWND box) {
        firstFilter = textOf(GetDlgItem(box, 0x470));
        answerFileBox(box, path, IDOK);
        // A file that isn't there yet is asked about.
        Sleep(300);
        HWND question = nullptr;
        while ((question = FindWindowExW(nullptr, question, L"#32770", nullptr)) != nullptr)
          if (question != box && GetDlgItem(question, IDYES) != nullptr) PostMessageW(question, WM_COMMAND, IDYES, 0);
      });
      chosen = user.saveFileBox(kFilter, host::kHideReadOnly | host::kPromptCreate);
    }
    EXPECT_EQ(chosen, path);
    EXPECT_EQ(firstFilter, L"Text (*.txt)");
  }
  std::array<wchar_t, MAX_PATH> after{};
  GetCurrentDirectoryW(static_cast<DWORD>(after.size()), after.data());
  EXPECT_STREQ(before.data(), after.data());
}

TEST(WindowFileBox, GivesNothingOnCancel) {
  WindowInterface user(nullptr, kTitle);
  const Person person(nullptr, [](HWND box) { answerFileBox(box, L"road", IDCANCEL); });
  EXPECT_EQ(user.saveFileBox(kFilter, host::kHideReadOnly | host::kPromptCreate), std::nullopt);
}

// ---------------------------------------------------------------- help and colours

TEST(WindowHelp, AFileThatIsNotThereHangsNobody) {
  WindowInterface user(nullptr, kTitle);
  user.showHelp(L"C:\\no such file.chm::/project-resources/LVX_015_001.html");
  user.showHelp(L"");
}

TEST(WindowColours, TheFaceOfButtonsIsTheSystems) {
  WindowInterface user(nullptr, kTitle);
  EXPECT_EQ(user.buttonFaceColour(), GetSysColor(COLOR_BTNFACE));
  EXPECT_EQ(user.buttonFaceColour() & 0xFF000000U, 0U);
}

}  // namespace
}  // namespace lvx::native
