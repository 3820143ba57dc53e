// The checking layer, shown on commands that leave something behind and on the module, which leaves nothing.
#include <filesystem>
#include <vector>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/exceptions.h"
#include "host/companion.h"
#include "module_host.h"
#include "runtime/model_objects.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

host::Host& loader() { return *vnrxHost(); }

host::Ref<host::QmtDocument> keptDocument;
runtime::StandinHost* standin = nullptr;

void keepReference() { keptDocument = runtime::makeDocument(standin->openDrawing()); }
void keepLock() {
  auto* manager = loader().runTime().vnDocManagerPtr();
  manager->lockDocument(manager->currentDocument(), host::kLockForPick, nullptr, nullptr, true);
}
host::VnDbObject* keptObject = nullptr;
void keepObjectOpen() {
  const civil::Handle handle = standin->openDrawing()->drawing().sites[0].alignments[0]->handle;
  loader().runTime().vndbOpenObject(keptObject, {handle}, 0, false);
}
host::EntityName keptSelection;
host::FilterList* keptFilter = nullptr;
void keepSelection() {
  loader().runTime().vnedSSAdd(keptSelection);
  keptFilter = loader().runTime().vnutBuildList(host::kEntityStart, host::CString(L"QMT_COGO_POINT"));
}
const char kOtherResources = 0;
void keepResources() { loader().moduleState().setResourceHandle(&kOtherResources); }
void raise() { throw framework::InvalidArgumentException(); }
void doNothing() {}

class ChecksTest : public testing::Test {
 protected:
  ChecksTest() { standin = &process_.host; }
  ~ChecksTest() override {
    keptDocument.reset();
    if (keptObject != nullptr) keptObject->close();
    keptObject = nullptr;
  }

  runtime::CommandOutcome run(host::CommandFunction function) {
    process_.host.commands().addCommand(L"t", L"T", L"T", 0, function, nullptr, -1, nullptr);
    runtime::CommandOutcome outcome = process_.runner.run(L"T");
    process_.host.commands().removeCmd(L"t", L"T");
    EXPECT_TRUE(outcome.found);
    return outcome;
  }

  test::ModuleHost process_;
};

TEST_F(ChecksTest, AreContentWithACommandThatLeavesNothing) { EXPECT_THAT(run(doNothing).misuse, IsEmpty()); }

TEST_F(ChecksTest, NameAReferenceThatWasNotReleased) {
  EXPECT_THAT(run(keepReference).misuse, ElementsAre("references of QmtDocument: 1 left over"));
  EXPECT_THAT(run([] { keptDocument.reset(); }).misuse,
              ElementsAre("references of QmtDocument: 1 given back too often"));
}

TEST_F(ChecksTest, NameALockThatWasLeftOver) {
  EXPECT_THAT(run(keepLock).misuse, ElementsAre("document locks: 1 left over"));
}

TEST_F(ChecksTest, NameAnObjectThatWasLeftOpen) {
  EXPECT_THAT(run(keepObjectOpen).misuse, ElementsAre("open objects: 1 left over"));
}

TEST_F(ChecksTest, NameASelectionSetAndAFilterListThatWereNotFreed) {
  EXPECT_THAT(run(keepSelection).misuse, ElementsAre("selection sets: 1 left over", "filter lists: 1 left over"));
  loader().runTime().vnedSSFree(keptSelection);
  loader().runTime().vnutRelRb(keptFilter);
}

TEST_F(ChecksTest, NameResourcesThatWereNotPutBack) {
  EXPECT_THAT(run(keepResources).misuse, ElementsAre("resources: the former ones were not put back"));
}

TEST_F(ChecksTest, TellACallOutsideACommand) {
  loader().runTime().vnutPrintf(L"too early");
  EXPECT_THAT(process_.runner.takeOutsideCalls(), ElementsAre("call outside a command: vnutPrintf"));
  run([] { loader().runTime().vnutPrintf(L"in time"); });
  EXPECT_THAT(process_.runner.takeOutsideCalls(), IsEmpty());
}

TEST_F(ChecksTest, KeepTheHostAliveWhenACommandRaises) {
  const runtime::CommandOutcome outcome = run(raise);
  ASSERT_TRUE(outcome.exception.has_value());
  EXPECT_EQ(outcome.exception->words, framework::InvalidArgumentException().what());
  EXPECT_EQ(outcome.raisedByHost, nullptr);
  EXPECT_THAT(run(doNothing).misuse, IsEmpty());
}

TEST(ModuleExceptions, AreToldInTheirOwnWordsWhenTheLibraryThatTheyLieInHasGone) {
  test::ModuleHost process;
  std::vector<runtime::CommandOutcome> outcomes;
  {
    const runtime::LoadedModule module = process.host.loadModule(test::inBuild("/tests/module/odd/raising_module.vmx"));
    for (const wchar_t* command : {L"Exception", L"Thing"}) outcomes.push_back(process.runner.run(command));
  }
  void* const library = dlopen(test::inBuild("/tests/module/odd/raising_module.vmx").c_str(), RTLD_NOLOAD | RTLD_NOW);
  EXPECT_EQ(library, nullptr) << "the library has to be gone for this to show anything";
  ASSERT_TRUE(outcomes[0].exception.has_value());
  EXPECT_EQ(outcomes[0].exception->words, "words that lie in the module");
  ASSERT_TRUE(outcomes[1].exception.has_value());
  EXPECT_EQ(outcomes[1].exception->words, "") << "it has none";
}

// ---------------------------------------------------------------- the module under the checks

std::string runScript(const std::string& out) {
  return R"([{"command": "lvx_Report_Que"}, {"type": 100, "text": ")" + out + R"("}, {"click": 1}])";
}

TEST(ModuleChecks, AreContentWithTheProjectionCommand) {
  const test::TemporaryFolder folder;
  test::ModuleHost process(runScript((folder / "road").string()));
  const runtime::LoadedModule module = process.host.loadModule(test::kModuleFile);
  EXPECT_THAT(process.playAll(), IsEmpty());
  EXPECT_THAT(process.runner.takeOutsideCalls(), IsEmpty());
  EXPECT_THAT(test::fileBytes(folder / "road.txt"), HasSubstr("L10   0+010.000\r\n    -5.000   100.000\r\n"));
}

TEST(ModuleChecks, AreContentWithPicksAndEscapes) {
  test::ModuleHost process(R"([{"command": "lvx_Report_Que"},
    {"click": 126}, {"pick": {"name": "ground", "class": "QMT_TIN_SURFACE"}}, {"answer": "ok"}, {"escape": true},
    {"click": 126}, {"pick": {"name": "A", "class": "QMT_ALIGNMENT"}},
    {"click": 232}, {"pick": "FFFFFF"}, {"pick": {"name": "ground", "class": "QMT_TIN_SURFACE"}}, {"click": 2}])");
  const runtime::LoadedModule module = process.host.loadModule(test::kModuleFile);
  EXPECT_THAT(process.playAll(), IsEmpty());
}

TEST(ModuleChecks, AreContentWhenAFailingSheetEndsTheCommandAndTheNextOneRuns) {
  const test::TemporaryFolder folder;
  // Too long for a file name, so the finished workbook can't be put in place.
  const std::string tooLong = (folder / std::string(252, 'a')).string();
  const std::string good = (folder / "road").string();
  const auto command = [](const std::string& stem) {
    return R"({"command": "lvx_Report_Que"}, {"type": 100, "text": ")" + stem + R"("}, {"click": 1})";
  };
  test::ModuleHost process("[" + command(tooLong) + ", " + command(good) + "]");
  const runtime::LoadedModule module = process.host.loadModule(test::kModuleFile);
  EXPECT_THAT(process.playAll(), IsEmpty());
  ASSERT_TRUE(process.lastException.has_value());
  EXPECT_THAT(process.lastException->words, Not(IsEmpty()));
  for (const char* form : {"road.txt", "road.xls", "road.html"})
    EXPECT_TRUE(std::filesystem::exists(folder / form)) << form;
}

TEST(ModuleChecks, AreContentWhenTheScriptEndsInTheMiddleOfADialog) {
  test::ModuleHost process(R"([{"command": "lvx_Report_Que"}, {"select": 261, "row": 0}])");
  const runtime::LoadedModule module = process.host.loadModule(test::kModuleFile);
  EXPECT_THAT(process.playAll(), IsEmpty()) << "what the front end raises unwinds the module like any exception";
  EXPECT_FALSE(process.lastException.has_value()) << "the module raised nothing of its own";
  ASSERT_NE(process.lastRaisedByHost, nullptr);
  EXPECT_THROW(std::rethrow_exception(process.lastRaisedByHost), script::ScriptMismatch);
}

}  // namespace
}  // namespace lvx
