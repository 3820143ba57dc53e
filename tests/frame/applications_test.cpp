#include "frame/applications.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"

namespace lvx::frame {
namespace {

using framework::CString;

/// Says in one list what the module asked of its host, in order.
struct Log {
  std::vector<std::wstring> lines;
  void add(std::wstring line) { lines.push_back(std::move(line)); }
};

class LoggingLinker final : public host::VnRxDynamicLinker {
 public:
  explicit LoggingLinker(Log& log) : log_(log) {}
  [[nodiscard]] const host::VnRxClass* isA() const override { return desc(); }
  bool unlockApplication(void*) override {
    log_.add(L"unlock");
    return true;
  }
  bool registerAppMDIAware(void*) override {
    log_.add(L"mdi");
    return true;
  }

 private:
  Log& log_;
};

class LoggingStack final : public host::VnEdCommandStack {
 public:
  explicit LoggingStack(Log& log) : log_(log) {}
  [[nodiscard]] const host::VnRxClass* isA() const override { return desc(); }
  std::int32_t addCommand(const CString& group, const CString& globalName, const CString& localName,
                          std::uint32_t flags, host::CommandFunction, void*, std::int32_t localNameNumber,
                          const host::VnRxResourceInstance* resource) override {
    log_.add(L"add " + group + L" " + globalName + L" " + localName + L" " + std::to_wstring(flags) + L" " +
             std::to_wstring(localNameNumber) + (resource->module() == nullptr ? L" host" : L" own"));
    return 0;
  }
  std::int32_t removeCmd(const CString& group, const CString& globalName) override {
    log_.add(L"remove " + group + L" " + globalName);
    return 0;
  }

 private:
  Log& log_;
};

class LoggingRunTime final : public test::FakeRunTime {
 public:
  explicit LoggingRunTime(Log& log) : log_(log) {}
  void vnrxBuildClassHierarchy() override { log_.add(L"hierarchy"); }
  void deleteVnRxClass(host::VnRxClass* description) override {
    log_.add(std::wstring(L"delete ") + description->classTag());
  }
  std::int32_t vnedDefun(const CString& name, std::int16_t index) override {
    log_.add(L"defun " + name + L" " + std::to_wstring(index));
    return 0;
  }
  std::int32_t vnedRegFunc(std::int32_t (*)(), std::int16_t index) override {
    log_.add(L"regfunc " + std::to_wstring(index));
    return 0;
  }
  std::int32_t vnedUndef(const CString& name, std::int16_t index) override {
    log_.add(L"undef " + name + L" " + std::to_wstring(index));
    return 0;
  }
  [[nodiscard]] std::int32_t vnedGetFunCode() override { return 1; }

 private:
  Log& log_;
};

constexpr char kInstance = 0;
void nothing() {}

/// An application whose tables the test fills.
class TestApp final : public VnRxVmxApp {
 public:
  explicit TestApp(host::Host* host) : VnRxVmxApp(true, true), host_(host) {}
  std::vector<const CommandEntry*> commands;
  std::vector<const ScriptingEntry*> scripting;
  std::vector<ClassEntry*> classes;
  std::vector<std::uint32_t> further;
  int nullMessages = 0;
  int componentsRegistered = 0;

  std::int32_t onFurtherMessage(std::uint32_t message, void* appId) override {
    further.push_back(message);
    return VnRxVmxApp::onFurtherMessage(message, appId);
  }
  std::int32_t onNullMessage(void* appId) override {
    ++nullMessages;
    return VnRxVmxApp::onNullMessage(appId);
  }
  void registerServerComponents() override { ++componentsRegistered; }

 private:
  [[nodiscard]] host::Host* host() const override { return host_; }
  [[nodiscard]] ModuleTables tables() const override { return {commands, scripting, classes}; }
  [[nodiscard]] framework::ResourceHandle moduleInstance() const override { return &kInstance; }
  [[nodiscard]] const wchar_t* resourceText(std::uint32_t id) const override {
    return id == 7 ? longText_.c_str() : nullptr;
  }

  std::wstring longText_ = std::wstring(200, L'n');
  host::Host* host_;
};

class ApplicationTest : public testing::Test {
 protected:
  ApplicationTest() {
    host_.replaceRunTime(std::make_unique<LoggingRunTime>(log_));
    host_.run().registry.objects[L"DynamicLinker"] = &linker_;
    host_.run().registry.objects[L"VANTOR_REGISTERED_COMMANDS"] = &stack_;
  }

  Log log_;
  test::FakeHost host_;
  LoggingLinker linker_{log_};
  LoggingStack stack_{log_};
  TestApp app_{&host_};
};

constexpr CommandEntry kFirst{L"lvx_", L"First", L"lvx_First", 1, &nothing, nullptr, 0};
constexpr CommandEntry kSecond{L"lvx_", L"Second", L"lvx_Second", 1U | kHostResources, &nothing, nullptr, 0};

TEST_F(ApplicationTest, InitUnlocksRegistersForSeveralDocumentsAndAddsEveryCommandInOrder) {
  app_.commands = {nullptr, &kFirst, nullptr, &kSecond, nullptr};
  EXPECT_EQ(app_.dispatch(1, nullptr), 0);
  EXPECT_EQ(log_.lines, (std::vector<std::wstring>{
                            L"unlock", L"mdi", L"add lvx_ First lvx_First 1 -1 own",
                            L"add lvx_ Second lvx_Second " + std::to_wstring(1U | kHostResources) + L" -1 host"}));
  EXPECT_EQ(app_.instance(), &kInstance);
  EXPECT_EQ(app_.componentsRegistered, 1);
}

TEST_F(ApplicationTest, UnloadRemovesEveryCommandInOrderAndASecondInitAddsThemAgain) {
  app_.commands = {&kFirst, nullptr, &kSecond};
  app_.dispatch(1, nullptr);
  log_.lines.clear();
  app_.dispatch(2, nullptr);
  EXPECT_EQ(log_.lines, (std::vector<std::wstring>{L"remove lvx_ First", L"remove lvx_ Second"}));
  log_.lines.clear();
  app_.dispatch(1, nullptr);
  EXPECT_EQ(log_.lines.size(), 4U);
}

TEST_F(ApplicationTest, TakesAMissingLocalNameFromTheTextResourceWithin131Characters) {
  static constexpr CommandEntry kByNumber{L"lvx_", L"Third", nullptr, 1, &nothing, nullptr, 7};
  app_.commands = {&kByNumber};
  app_.dispatch(1, nullptr);
  EXPECT_EQ(log_.lines.back(), L"add lvx_ Third " + std::wstring(131, L'n') + L" 1 -1 own");
}

TEST_F(ApplicationTest, CallsNothingOfAServiceThatIsMissingOrOfAnotherClass) {
  app_.commands = {&kFirst};
  host_.run().registry.objects[L"DynamicLinker"] = &stack_;
  host_.run().registry.objects.erase(L"VANTOR_REGISTERED_COMMANDS");
  EXPECT_EQ(app_.dispatch(1, nullptr), 0);
  EXPECT_EQ(app_.dispatch(2, nullptr), 0);
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(ApplicationTest, AnswersANumberAboveFifteenWithoutTouchingAnything) {
  for (const std::uint32_t message : {16U, 100U, 0xFFFFFFFFU}) EXPECT_EQ(app_.dispatch(message, nullptr), 0);
  EXPECT_TRUE(app_.further.empty());
  EXPECT_EQ(app_.nullMessages, 0);
}

TEST_F(ApplicationTest, HandsMessageZeroToTheNullMessageAndSixToFifteenToTheFurtherOnes) {
  app_.dispatch(0, nullptr);
  EXPECT_EQ(app_.nullMessages, 1);
  EXPECT_TRUE(log_.lines.empty()) << "the null message is not the init message";
  for (std::uint32_t message = 6; message <= 15; ++message) EXPECT_EQ(app_.dispatch(message, nullptr), 0);
  EXPECT_EQ(app_.further.size(), 10U);
}

std::int32_t answerSeven() { return 7; }
std::int32_t answerEight() { return 8; }

TEST_F(ApplicationTest, NumbersScriptingFunctionsByTheirFilledSlots) {
  static constexpr ScriptingEntry kPlain{L"plain", &answerSeven, false};
  static constexpr ScriptingEntry kDirect{L"direct", &answerEight, true};
  app_.scripting = {nullptr, &kPlain, nullptr, &kDirect};
  app_.dispatch(3, nullptr);
  EXPECT_EQ(app_.dispatch(5, nullptr), 8) << "the host asks for number 1";
  app_.dispatch(4, nullptr);
  EXPECT_EQ(log_.lines, (std::vector<std::wstring>{L"defun plain 0", L"defun direct 1", L"regfunc 1", L"undef plain 0",
                                                   L"undef direct 1"}));
}

TEST_F(ApplicationTest, DoesNothingForScriptingWhereTheTableIsEmpty) {
  app_.scripting = {nullptr};
  for (const std::uint32_t message : {3U, 4U, 5U}) EXPECT_EQ(app_.dispatch(message, nullptr), 0);
  EXPECT_TRUE(log_.lines.empty());
}

int classesMade = 0;

TEST_F(ApplicationTest, MakesCustomClassesBeforeTheHierarchyAndDeletesOnlyMarkedOnes) {
  host::VnRxClass description(L"LVX_THING", nullptr);
  ClassEntry entry{&description, [] { ++classesMade; }, false};
  app_.classes = {nullptr, &entry};
  app_.dispatch(2, nullptr);
  EXPECT_TRUE(log_.lines.empty()) << "nothing was marked yet";
  app_.dispatch(1, nullptr);
  EXPECT_EQ(classesMade, 1);
  EXPECT_TRUE(entry.registered);
  EXPECT_EQ(log_.lines.back(), L"hierarchy");
  app_.dispatch(2, nullptr);
  EXPECT_EQ(log_.lines.back(), L"delete LVX_THING");
  EXPECT_FALSE(entry.registered);
}

TEST_F(ApplicationTest, RemovesTheClassesThatDeriveFromAnotherBeforeIt) {
  host::VnRxClass base(L"LVX_BASE", nullptr);
  const host::VnRxClass baseAsOthersKnowIt(L"LVX_BASE", nullptr);
  host::VnRxClass child(L"LVX_CHILD", &baseAsOthersKnowIt);
  host::VnRxClass grandchild(L"LVX_GRANDCHILD", &child);
  host::VnRxClass sibling(L"LVX_SIBLING", &base);
  host::VnRxClass stranger(L"LVX_STRANGER", nullptr);
  ClassEntry b{&base, &nothing};
  ClassEntry s{&stranger, &nothing};
  ClassEntry c{&child, &nothing};
  ClassEntry g{&grandchild, &nothing};
  ClassEntry i{&sibling, &nothing};
  const auto unloadOrder = [this](const std::vector<ClassEntry*>& table) {
    app_.classes = table;
    app_.dispatch(1, nullptr);
    log_.lines.clear();
    app_.dispatch(2, nullptr);
    return log_.lines;
  };
  using Lines = std::vector<std::wstring>;
  EXPECT_EQ(unloadOrder({&b, &s, &c, &g, &i}),
            (Lines{L"delete LVX_GRANDCHILD", L"delete LVX_CHILD", L"delete LVX_SIBLING", L"delete LVX_BASE",
                   L"delete LVX_STRANGER"}));
  EXPECT_EQ(unloadOrder({&g, &s, nullptr, &c, &b}),
            (Lines{L"delete LVX_GRANDCHILD", L"delete LVX_STRANGER", L"delete LVX_CHILD", L"delete LVX_BASE"}));
  EXPECT_EQ(unloadOrder({&b, &g}), (Lines{L"delete LVX_GRANDCHILD", L"delete LVX_BASE"}))
      << "the class between them isn't the module's";
  for (const ClassEntry* entry : {&b, &s, &c, &g, &i}) EXPECT_FALSE(entry->registered);
}

TEST(Application, AnswersEveryMessageWithoutAHost) {
  TestApp app(nullptr);
  app.commands = {&kFirst};
  for (std::uint32_t message = 0; message <= kLastMessage; ++message) EXPECT_EQ(app.dispatch(message, nullptr), 0);
}

}  // namespace
}  // namespace lvx::frame
