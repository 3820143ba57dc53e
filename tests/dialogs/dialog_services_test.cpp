#include "dialogs/dialog_services.h"

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "support/bits_window.h"
#include "windowless/dialog_state.h"

namespace lvx::dialogs {
namespace {

TEST(OutputFileBox, CutsTheKnownExtensionsInOneFixedOrder) {
  struct Row {
    const wchar_t* path;
    const wchar_t* stem;
  };
  const Row rows[] = {
      {L"/r/x.txt", L"/r/x"},
      {L"/r/x.xls", L"/r/x"},
      {L"/r/x.html", L"/r/x"},
      {L"/r/x.html.txt", L"/r/x"},
      {L"/r/x.html.xls", L"/r/x"},
      {L"/r/x.txt.html", L"/r/x.txt"},
      {L"/r/x.TXT", L"/r/x.TXT"},
      {L"/r/x.Html", L"/r/x.Html"},
      {L"/r/x.csv", L"/r/x.csv"},
      {L"/r/x.txt.xls", L"/r/x.txt"},
      {L"/r/x.xls.txt", L"/r/x.xls"},
      {L".txt", L""},
      {L".html", L""},
      {L"", L""},
      {L"txt", L"txt"},
  };
  for (const Row& row : rows) EXPECT_EQ(stemOfChosenPath(row.path), row.stem);
}

TEST(HelpFile, IsTheFoundOneOrItsBareName) {
  test::FakeHost host;
  EXPECT_EQ(helpFilePath(host), L"Vantor Lorvix Extension.chm");
  host.run().files[L"Vantor Lorvix Extension.chm"] = L"/host/help/Vantor Lorvix Extension.chm";
  showHelp(host, CString(kHelpPoints));
  EXPECT_EQ(host.users().helpTopics,
            std::vector<CString>{L"/host/help/Vantor Lorvix Extension.chm::/project-resources/LVX_015_002.html"});
}

/// A dialog with nothing but a picture, to see what setPictures hands over.
class PictureWindow final : public DialogBehaviour {
 public:
  explicit PictureWindow(host::Host& host) : host_(host) {}
  [[nodiscard]] const DialogTemplate& dialogTemplate() const override {
    static constexpr std::array<ControlTemplate, 2> kControls{
        {{1, ControlKind::Picture, L"", {}}, {2, ControlKind::PictureButton, L"*", {}}}};
    static constexpr DialogTemplate kTemplate{"PictureWindow", L"", 10, 10, kControls};
    return kTemplate;
  }
  void onOpening(DialogWindow& window) override {
    static constexpr std::array<PictureOn, 1> kSmall{{{1, kPictureSite}}};
    static constexpr std::array<PictureOn, 2> kOthers{{{2, kPicturePick}, {2, "IDB_MISSING"}}};
    setPictures(host_, window, kSmall, kOthers);
  }
  void onClick(DialogWindow&, int) override {}
  void onSelectionChanged(DialogWindow&, int) override {}
  void onTextChanged(DialogWindow&, int) override {}

 private:
  host::Host& host_;
};

TEST(DialogPictures, ShowTheDarkFaceBehindSmallPicturesAndLeavePickPicturesUnchanged) {
  test::FakeHost host;
  host.users().faceColour = 0x00302010;  // blue 30, green 20, red 10
  PictureWindow dialog(host);
  host::BitsWindow window;
  dialog.onOpening(window);
  const PictureBits& site = window.pictures.at(1);
  EXPECT_EQ(site.bytes[0], 0x30);
  EXPECT_EQ(site.bytes[1], 0x20);
  EXPECT_EQ(site.bytes[2], 0x10);
  EXPECT_EQ(window.pictures.at(2).bytes, findPicture(kPicturePick)->bytes);
  EXPECT_EQ(findPicture(kPictureSite)->bytes[0], 255) << "the module's own picture stays as it is";
}

}  // namespace
}  // namespace lvx::dialogs
