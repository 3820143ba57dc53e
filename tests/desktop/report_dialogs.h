#pragma once

#include <QApplication>
#include <QWidget>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "desktop/common/qt_text.h"
#include "desktop/dialogs/boxes.h"
#include "desktop/dialogs/template_dialog.h"
#include "desktop/panels/help_window.h"
#include "desktop_user/desktop_user.h"
#include "doubles/fake_host.h"
#include "doubles/fake_model.h"
#include "doubles/fake_roadway.h"
#include "fake_companion/fake_companion.h"
#include "host/run_time.h"
#include "support/places.h"

/// The module's own dialogs over a small drawing, with a user whose boxes are windows.
namespace lvx::test {

/// Answers with the desktop's boxes and its help window.
class WindowedUser final : public host::UserInterface {
 public:
  host::BoxAnswer messageBox(const CString& text, host::BoxButtons buttons, host::BoxIcon icon) override {
    return desktop::showMessageBox(nullptr, desktop::toQt(text), buttons, icon);
  }
  std::optional<CString> saveFileBox(const CString& filter, std::uint32_t flags) override {
    const std::optional<QString> path = desktop::askSavePath(nullptr, desktop::toQt(filter), flags);
    if (!path) return std::nullopt;
    return desktop::toWide(*path);
  }
  void showHelp(const CString& topic) override {
    if (!help_) help_ = std::make_unique<desktop::HelpWindow>(test::inSource("/help/") + language);
    help_->showTopic(topic);
  }
  std::uint32_t buttonFaceColour() override { return desktop::faceColour(QApplication::palette()); }

  /// Windows' thread.
  void closeHelp() { help_.reset(); }

  std::string language = "en";

 private:
  std::unique_ptr<desktop::HelpWindow> help_;
};

/// A host whose questions reach windows; all else is the fake's.
class WindowedHost final : public host::Host {
 public:
  [[nodiscard]] host::RunTime& runTime() override { return fake.runTime(); }
  [[nodiscard]] host::UserInterface& userInterface() override { return user; }
  [[nodiscard]] platform::Platform& platform() override { return fake.platform(); }
  [[nodiscard]] host::Ref<host::AutomationObject> createAutomationObject(const CString& programId) override {
    return fake.createAutomationObject(programId);
  }
  [[nodiscard]] host::DialogRunner& dialogs() override { return fake.dialogs(); }
  [[nodiscard]] framework::ModuleState& moduleState() override { return fake.moduleState(); }
  [[nodiscard]] host::ActiveApplication activeApplication(const CString& programId) override {
    return fake.activeApplication(programId);
  }

  FakeHost fake;
  WindowedUser user;
};

/// Site "North" with axes "A1" (groups "A1 lines", "A1 fine"; profiles "Design", "Ground") and "A2" (group "A2 lines";
/// profiles "Design A2", "Ground A2"), site "South" with "B1" (group "B1 lines", profile "Design B1"), one axis outside
/// any site; two surfaces, three point groups, one corridor on A1.
class ReportDrawing {
 public:
  explicit ReportDrawing(WindowedHost& host) : host_(host), roadway_(host.fake) {
    const auto north = drawing_.addSite(L"North");
    const auto first = alignment(north, L"A1", {L"A1 lines", L"A1 fine"}, {L"Design", L"Ground"});
    alignment(north, L"A2", {L"A2 lines"}, {L"Design A2", L"Ground A2"});
    alignment(drawing_.addSite(L"South"), L"B1", {L"B1 lines"}, {L"Design B1"});
    alignment(nullptr, L"Loose", {}, {});
    drawing_.addSurface(L"Ground");
    drawing_.addSurface(L"Rock & gravel");
    drawing_.addPointGroup(L"Survey", {1, 2});
    drawing_.addPointGroup(L"Benchmark", {7});
    roadway_.addCorridor(L"Main road")->addBaseline()->alignmentObject = first;
    companion_.document = drawing_.document;
    companion_.database = drawing_.database;
    companion_.fillSites = [this](host::SiteTree& sites) { fillTree(sites); };
  }

 private:
  /// A drawing object that opens and tells its handle.
  class OpenableObject final : public host::VnDbObject {
   public:
    explicit OpenableObject(std::uint64_t handle) : handle_(handle) {}
    [[nodiscard]] const host::VnRxClass* isA() const override { return nullptr; }
    void getVnDbHandle(host::VnDbHandle& handle) const override { handle = host::VnDbHandle(handle_); }
    std::int32_t close() override { return 0; }

   private:
    std::uint64_t handle_;
  };

  host::Ref<FakeAlignment> alignment(const host::Ref<FakeSite>& site, const CString& name,
                                     std::initializer_list<CString> groups, std::initializer_list<CString> profiles) {
    const auto made = drawing_.addAlignment(site, name);
    made->handleText = L"A" + std::to_wstring(made->id.value);
    objects_.emplace_back(0xA0 + made->id.value);  // the same handle, as a number
    host_.fake.run().objects[made->id.value] = &objects_.back();
    for (const CString& group : groups) made->addGroup(group);
    profiles_[made->handleText] = profiles;
    return made;
  }

  void fillTree(host::SiteTree& sites) {
    const auto add = [&](const CString& name, FakeAlignments& alignments) {
      host::tsite* site = newSite(name, {});
      for (const auto& item : alignments.items) {
        host::tsiteAlignment* record = newSiteAlignment(item->nameText, item->handleText);
        for (const CString& profile : profiles_[item->handleText]) {
          auto* made = new host::tprofile;
          made->name = profile;
          record->children.add(made);
        }
        site->alignments.add(record);
      }
      sites.add(site);
    };
    for (const auto& site : drawing_.database->siteList->items) add(site->nameText, *site->alignmentList);
    add(L"", *drawing_.document->alignments);
  }

  WindowedHost& host_;
  FakeRoadway roadway_;
  FakeCompanion companion_;
  FakeDrawing drawing_;
  std::list<OpenableObject> objects_;
  std::map<CString, std::vector<CString>> profiles_;
};

}  // namespace lvx::test
