#include "runtime/host_services.h"

#include <vector>

#include <gtest/gtest.h>

namespace lvx::runtime {
namespace {

void nothing() {}

TEST(CommandStack, RefusesANameThatIsTakenInItsGroup) {
  CommandStack stack;
  EXPECT_EQ(stack.addCommand(L"lvx_", L"Report_Que", L"lvx_Report_Que", 1, nothing, nullptr, -1, nullptr),
            CommandStack::kAdded);
  EXPECT_EQ(stack.addCommand(L"lvx_", L"Report_Que", L"other", 1, nothing, nullptr, -1, nullptr),
            CommandStack::kDuplicate);
  EXPECT_EQ(stack.addCommand(L"other_", L"Report_Que", L"other", 1, nothing, nullptr, -1, nullptr),
            CommandStack::kAdded);
  EXPECT_EQ(stack.commands().size(), 2U);
}

TEST(CommandStack, FindsByLocalNameBeforeGlobalName) {
  CommandStack stack;
  stack.addCommand(L"a_", L"Que", L"Local", 1, nothing, nullptr, -1, nullptr);
  stack.addCommand(L"b_", L"Local", L"Other", 1, nothing, nullptr, -1, nullptr);
  ASSERT_NE(stack.find(L"Local"), nullptr);
  EXPECT_EQ(stack.find(L"Local")->group, L"a_");
  EXPECT_EQ(stack.find(L"Que")->group, L"a_");
  EXPECT_EQ(stack.find(L"que"), nullptr);
}

TEST(CommandStack, RemovesWhatIsThere) {
  CommandStack stack;
  stack.addCommand(L"lvx_", L"Report_Que", L"lvx_Report_Que", 1, nothing, nullptr, -1, nullptr);
  EXPECT_EQ(stack.removeCmd(L"lvx_", L"Report_Que"), CommandStack::kAdded);
  EXPECT_EQ(stack.removeCmd(L"lvx_", L"Report_Que"), CommandStack::kUnknown);
  EXPECT_TRUE(stack.commands().empty());
}

TEST(SystemRegistry, KnowsTheTwoServicesByNameAndClass) {
  DynamicLinker linker;
  CommandStack stack;
  SystemRegistry registry(linker, stack);
  EXPECT_TRUE(registry.at(L"DynamicLinker")->isA()->isDerivedFrom(host::VnRxDynamicLinker::desc()));
  EXPECT_TRUE(registry.at(L"VANTOR_REGISTERED_COMMANDS")->isA()->isDerivedFrom(host::VnEdCommandStack::desc()));
  EXPECT_EQ(registry.at(L"Other"), nullptr);
}

TEST(DynamicLinker, RemembersApplicationsUntilTheyAreForgotten) {
  DynamicLinker linker;
  int app = 0;
  EXPECT_FALSE(linker.isUnlocked(&app));
  linker.unlockApplication(&app);
  linker.registerAppMDIAware(&app);
  EXPECT_TRUE(linker.isUnlocked(&app));
  EXPECT_TRUE(linker.isMdiAware(&app));
  linker.forget(&app);
  EXPECT_FALSE(linker.isUnlocked(&app));
  EXPECT_FALSE(linker.isMdiAware(&app));
}

class Recorder final : public host::VnApDocManagerReactor {
 public:
  std::vector<std::wstring> told;
  DocumentManager* leave = nullptr;
  void documentCreateStarted(host::VnApDocument*) override { told.emplace_back(L"create started"); }
  void documentCreated(host::VnApDocument*) override { told.emplace_back(L"created"); }
  void documentToBeDestroyed(host::VnApDocument*) override {
    told.emplace_back(L"to be destroyed");
    if (leave != nullptr) leave->removeReactor(this);
  }
  void documentDestroyed(const host::CString& name) override { told.push_back(L"destroyed " + name); }
  void documentBecameCurrent(host::VnApDocument*) override { told.emplace_back(L"current"); }
  void documentToBeActivated(host::VnApDocument*) override { told.emplace_back(L"to be activated"); }
  void documentActivated(host::VnApDocument*) override { told.emplace_back(L"activated"); }
};

TEST(DocumentManager, TellsReactorsOfADocumentsLife) {
  DocumentManager documents;
  Recorder recorder;
  documents.addReactor(&recorder);
  documents.addReactor(&recorder);
  EXPECT_EQ(documents.reactorCount(), 1U);
  documents.open(L"road.xml");
  EXPECT_NE(documents.currentDocument(), nullptr);
  documents.close();
  EXPECT_EQ(documents.currentDocument(), nullptr);
  EXPECT_EQ(recorder.told, (std::vector<std::wstring>{L"create started", L"created", L"to be activated", L"current",
                                                      L"activated", L"to be destroyed", L"destroyed road.xml"}));
}

TEST(DocumentManager, AReactorMayLeaveWhileItIsTold) {
  DocumentManager documents;
  Recorder recorder;
  recorder.leave = &documents;
  documents.addReactor(&recorder);
  documents.open(L"road.xml");
  documents.close();
  EXPECT_EQ(recorder.told.back(), L"to be destroyed");
  EXPECT_EQ(documents.reactorCount(), 0U);
}

TEST(DocumentManager, CountsLocksOfItsOwnDocument) {
  DocumentManager documents;
  EXPECT_EQ(documents.lockDocument(nullptr, host::kLockForPick, nullptr, nullptr, true), DocumentManager::kNotOurs);
  documents.open(L"road.xml");
  host::VnApDocument* const document = documents.currentDocument();
  EXPECT_EQ(documents.lockDocument(document, host::kLockForPick, nullptr, nullptr, true), DocumentManager::kDone);
  EXPECT_EQ(documents.lockCount(), 1U);
  EXPECT_EQ(documents.unlockDocument(document), DocumentManager::kDone);
  EXPECT_EQ(documents.unlockDocument(document), DocumentManager::kNotLocked);
}

}  // namespace
}  // namespace lvx::runtime
