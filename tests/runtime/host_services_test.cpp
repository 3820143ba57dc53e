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
  std::vector<host::VnApDocument*> told;
  DocumentManager* leave = nullptr;
  void documentToBeDestroyed(host::VnApDocument* document) override {
    told.push_back(document);
    if (leave != nullptr) leave->removeReactor(this);
  }
};

TEST(DocumentManager, TellsAReactorOnceOfEachDocumentThatIsAboutToGo) {
  DocumentManager documents;
  Recorder recorder;
  documents.addReactor(&recorder);
  documents.addReactor(&recorder);
  EXPECT_EQ(documents.reactorCount(), 1U);
  documents.open();
  EXPECT_NE(documents.currentDocument(), nullptr);
  EXPECT_TRUE(recorder.told.empty());
  std::vector<host::VnApDocument*> wanted{documents.currentDocument()};
  documents.open();
  EXPECT_EQ(recorder.told, wanted) << "another drawing takes the place of the first";
  wanted.push_back(documents.currentDocument());
  documents.close();
  EXPECT_EQ(documents.currentDocument(), nullptr);
  EXPECT_EQ(recorder.told, wanted);
  documents.close();
  EXPECT_EQ(recorder.told, wanted) << "there was none left";
}

TEST(DocumentManager, AReactorMayLeaveWhileItIsTold) {
  DocumentManager documents;
  Recorder recorder;
  recorder.leave = &documents;
  documents.addReactor(&recorder);
  documents.open();
  documents.close();
  EXPECT_EQ(recorder.told.size(), 1U);
  EXPECT_EQ(documents.reactorCount(), 0U);
}

TEST(DocumentManager, CountsLocksOfItsOwnDocument) {
  DocumentManager documents;
  EXPECT_EQ(documents.lockDocument(nullptr, host::kLockForPick, nullptr, nullptr, true), DocumentManager::kNotOurs);
  documents.open();
  host::VnApDocument* const document = documents.currentDocument();
  EXPECT_EQ(documents.lockDocument(document, host::kLockForPick, nullptr, nullptr, true), DocumentManager::kDone);
  EXPECT_EQ(documents.lockCount(), 1U);
  EXPECT_EQ(documents.unlockDocument(document), DocumentManager::kDone);
  EXPECT_EQ(documents.unlockDocument(document), DocumentManager::kNotLocked);
}

}  // namespace
}  // namespace lvx::runtime
