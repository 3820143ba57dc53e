#include "frame/document_data.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"

namespace lvx::frame {
namespace {

class Document final : public host::VnApDocument {};

class Manager final : public host::VnApDocManager {
 public:
  std::vector<host::VnApDocManagerReactor*> reactors;
  [[nodiscard]] host::VnApDocument* currentDocument() override { return nullptr; }
  std::int32_t lockDocument(host::VnApDocument*, std::int32_t, const wchar_t*, const wchar_t*, bool) override {
    return 0;
  }
  std::int32_t unlockDocument(host::VnApDocument*) override { return 0; }
  void addReactor(host::VnApDocManagerReactor* reactor) override { reactors.push_back(reactor); }
  void removeReactor(host::VnApDocManagerReactor* reactor) override { std::erase(reactors, reactor); }
};

TEST(DocumentData, IsAReactorForAsLongAsItLives) {
  test::FakeHost host;
  Manager manager;
  host.run().docManager = &manager;
  {
    const VnApDataManager<CDocData> data(&host);
    EXPECT_EQ(manager.reactors.size(), 1U);
    EXPECT_STREQ(data.isA()->classTag(), L"VnApDocManagerReactor");
  }
  EXPECT_TRUE(manager.reactors.empty());
}

TEST(DocumentData, ForgetsADocumentThatIsAboutToGo) {
  test::FakeHost host;
  VnApDataManager<int> data(&host);
  Document first;
  Document second;
  data.dataOf(&first) = 1;
  data.dataOf(&second) = 2;
  data.documentToBeDestroyed(&first);
  EXPECT_EQ(data.size(), 1U);
  EXPECT_EQ(data.dataOf(&second), 2);
}

TEST(DocumentData, TakesTheReportOfADocumentThatItNeverKnew) {
  test::FakeHost host;
  VnApDataManager<CDocData> data(&host);
  Document document;
  data.documentToBeDestroyed(&document);
  EXPECT_EQ(data.size(), 0U);
}

TEST(DocumentData, LivesWithoutADocumentManagerAndWithoutAHost) {
  test::FakeHost host;
  Manager manager;
  {
    const VnApDataManager<CDocData> withoutHost(nullptr);
    const VnApDataManager<CDocData> withoutManager(&host);
  }
  host.run().docManager = &manager;
  {
    const VnApDataManager<CDocData> data(&host);
    host.run().docManager = nullptr;  // the host shuts down first
  }
  EXPECT_EQ(manager.reactors.size(), 1U);
}

}  // namespace
}  // namespace lvx::frame
