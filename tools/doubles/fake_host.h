#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/host.h"
#include "platform/system_platform.h"

namespace lvx::test {

using framework::CString;

/// The host's registry dictionary over a map that the test fills. What the map points to belongs to the test.
class FakeDictionary final : public host::VnRxDictionary {
 public:
  [[nodiscard]] host::VnRxObject* at(const CString& name) override;

  std::map<CString, host::VnRxObject*> objects;
};

/// A run time that records what it is told and answers from what the test put in. Whatever the test left empty it
/// answers as a host that has nothing: no document manager, no found file, a user who gives up every pick.
///
/// A test that needs more derives from it and hands its own to FakeHost::replaceRunTime.
class FakeRunTime : public host::RunTime {
 public:
  /// Every text that came to the console, one entry a call.
  std::vector<CString> console;
  /// The support paths: a bare name and where it is found.
  std::map<CString, CString> files;
  /// Names that vnedFindFile was asked for, in order.
  std::vector<CString> searchedFiles;
  /// Handles of drawing objects by their identifier's value.
  std::map<std::uint64_t, std::uint64_t> handles;
  /// Drawing objects that can be opened, by their identifier's value; they belong to the test.
  std::map<std::uint64_t, host::VnDbObject*> objects;
  FakeDictionary registry;
  host::VnApDocManager* docManager = nullptr;
  /// Prompts of vnedEntSel, in order.
  std::vector<CString> prompts;

  /// All console texts joined.
  [[nodiscard]] CString consoleText() const;

  [[nodiscard]] host::VnRxDictionary& vnrxSysRegistry() override { return registry; }
  void vnrxBuildClassHierarchy() override {}
  void deleteVnRxClass(host::VnRxClass*) override {}
  std::int32_t vnedDefun(const CString&, std::int16_t) override { return kRefused; }
  std::int32_t vnedRegFunc(std::int32_t (*)(), std::int16_t) override { return kRefused; }
  std::int32_t vnedUndef(const CString&, std::int16_t) override { return kRefused; }
  [[nodiscard]] std::int32_t vnedGetFunCode() override { return kRefused; }
  [[nodiscard]] host::VnApDocManager* vnDocManagerPtr() override { return docManager; }
  [[nodiscard]] void* vnsw_mainWnd() override { return nullptr; }
  std::int32_t vnedFindFile(const CString& name, CString& path, std::size_t maxLength) override;
  void vnutPrintf(const CString& text) override { console.push_back(text); }
  std::int32_t vnedEntSel(const CString& prompt, host::EntityName& entity, host::PickPoint& point) override;
  std::int32_t vndbGetObjectId(host::VnDbObjectId& id, const host::EntityName& entity) override;
  std::int32_t vndbOpenObject(host::VnDbObject*& object, host::VnDbObjectId id, std::int32_t mode,
                              bool openErased) override;
  [[nodiscard]] host::VnDbHandle handle(host::VnDbObjectId id) override;
  std::int32_t vnedSSGet(const CString& mode, const host::SelectionPrompts& prompts, const host::FilterList& filter,
                         host::EntityName& selection) override;
  std::int32_t vnedSSAdd(host::EntityName& selection) override;
  std::int32_t vnedSSLength(const host::EntityName& selection, std::int64_t& length) override;
  std::int32_t vnedSSName(const host::EntityName& selection, std::int64_t index, host::EntityName& entity) override;
  std::int32_t vnedSSFree(const host::EntityName& selection) override;
  [[nodiscard]] host::FilterList* vnutBuildList(std::int16_t groupCode, const CString& text) override;
  std::int32_t vnutRelRb(host::FilterList* list) override;

  /// Filter lists that were built and not given back.
  [[nodiscard]] int openFilterLists() const { return openFilterLists_; }

  /// What every run-time function that has nothing to answer gives: neither 0 nor 5100.
  static constexpr std::int32_t kRefused = -5001;

 private:
  int openFilterLists_ = 0;
};

/// A user who answers each question with the next answer of the queue. A box with one button answers itself and leaves
/// the queue alone. A question without an answer, or with one that its buttons don't offer, throws std::logic_error, so
/// that the test fails at the box that it didn't expect.
class FakeUserInterface : public host::UserInterface {
 public:
  struct Box {
    CString text;
    host::BoxButtons buttons = host::BoxButtons::Ok;
    host::BoxIcon icon = host::BoxIcon::None;
    bool operator==(const Box&) const = default;
  };
  std::vector<Box> boxes;
  std::deque<host::BoxAnswer> answers;

  struct FileBox {
    CString filter;
    std::uint32_t flags = 0;
    bool operator==(const FileBox&) const = default;
  };
  std::vector<FileBox> fileBoxes;
  /// Paths that the user chooses; an empty one is Cancel. A file box without a path throws std::logic_error.
  std::deque<std::optional<CString>> paths;
  /// Help topics shown, in order.
  std::vector<CString> helpTopics;
  std::uint32_t faceColour = 0x00F0F0F0;

  host::BoxAnswer messageBox(const CString& text, host::BoxButtons buttons, host::BoxIcon icon) override;
  [[nodiscard]] std::optional<CString> saveFileBox(const CString& filter, std::uint32_t flags) override;
  void showHelp(const CString& topic) override { helpTopics.push_back(topic); }
  [[nodiscard]] std::uint32_t buttonFaceColour() override { return faceColour; }
};

/// A host for tests of the module's logic. It stands behind vnrxHost() for the length of a scope and gives the place
/// back to whoever had it; the message catalogue starts anew with it and is forgotten at its end. The platform is the
/// real one.
///
///     FakeHost host({.fixedMoment = 0});
///     host.useMessages("en");
///     host.users().answers = {host::BoxAnswer::Yes};
///     writeReport(...);
///     EXPECT_EQ(host.users().boxes.size(), 1U);
class FakeHost final : public host::Host {
 public:
  explicit FakeHost(platform::PlatformSettings settings = {});
  ~FakeHost() override;

  /// Another clock, release or code page from here on; messages are read anew.
  void setPlatform(platform::PlatformSettings settings);
  /// The message file of that language of the source tree, found under its bare name from here on.
  void useMessages(const std::string& language);
  /// Writes `bytes` as the message file into the scope's own folder and uses it.
  void useMessageBytes(const std::string& bytes);
  /// What starts programs for automation; without it none can be started.
  void setAutomationFactory(std::function<host::Ref<host::AutomationObject>(const CString& programId)> factory) {
    automationFactory_ = std::move(factory);
  }
  /// A running application; without it the look-up of the identifier fails. An empty reference is an application that
  /// is found but hands out nothing.
  void setApplication(const CString& programId, host::Ref<host::VantorApplication> application);
  /// Who runs the dialogs; it belongs to the test. Without it a dialog throws std::logic_error.
  void setDialogRunner(host::DialogRunner* runner) { dialogRunner_ = runner; }
  void replaceRunTime(std::unique_ptr<FakeRunTime> runTime);

  [[nodiscard]] FakeRunTime& run() { return *runTime_; }
  [[nodiscard]] FakeUserInterface& users() { return userInterface_; }
  /// A folder of this scope's own, made at the first call and removed at the end with all it holds. Ends with a slash.
  [[nodiscard]] CString folder();

  [[nodiscard]] host::RunTime& runTime() override { return *runTime_; }
  [[nodiscard]] host::UserInterface& userInterface() override { return userInterface_; }
  [[nodiscard]] platform::Platform& platform() override { return *platform_; }
  [[nodiscard]] host::Ref<host::AutomationObject> createAutomationObject(const CString& programId) override;
  [[nodiscard]] host::DialogRunner& dialogs() override;
  [[nodiscard]] framework::ModuleState& moduleState() override { return moduleState_; }
  [[nodiscard]] host::ActiveApplication activeApplication(const CString& programId) override;

 private:
  std::unique_ptr<FakeRunTime> runTime_;
  FakeUserInterface userInterface_;
  std::unique_ptr<platform::SystemPlatform> platform_;
  std::function<host::Ref<host::AutomationObject>(const CString& programId)> automationFactory_;
  std::map<CString, host::Ref<host::VantorApplication>> applications_;
  host::DialogRunner* dialogRunner_ = nullptr;
  framework::ModuleState moduleState_;
  std::string folder_;
  host::Host* before_ = nullptr;
};

/// Name under which the module looks for its messages.
inline constexpr wchar_t kMessageFileName[] = L"LVX_MIRELREPORT.txt";

}  // namespace lvx::test
