#include "host/site_tree.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "doubles/fake_model.h"

namespace lvx::host {
namespace {

using test::FakeDrawing;
using testing::ElementsAre;
using testing::IsEmpty;

/// A drawing object that counts how often it is closed.
class FakeObject : public VnDbObject {
 public:
  FakeObject(std::uint64_t handle, int& closed) : handle_(handle), closed_(closed) {}
  [[nodiscard]] const VnRxClass* isA() const override { return nullptr; }
  void getVnDbHandle(VnDbHandle& handle) const override { handle = VnDbHandle(handle_); }
  std::int32_t close() override {
    ++closed_;
    return kSuccess;
  }

 private:
  std::uint64_t handle_;
  int& closed_;
};

class SiteTreeTest : public testing::Test {
 protected:
  ~SiteTreeTest() override {
    releaseAllAlignments(list_);
    releaseSites(tree_);
  }

  test::FakeHost host_;
  FakeDrawing drawing_;
  AlignmentList list_;
  SiteTree tree_;
  std::map<std::uint64_t, std::unique_ptr<FakeObject>> objects_;
  int closed_ = 0;
  std::uint64_t nextGroupId_ = 1000;

  /// Makes the drawing object behind `id` one that can be opened.
  void addObject(VnDbObjectId id, std::uint64_t handle) {
    objects_[id.value] = std::make_unique<FakeObject>(handle, closed_);
    host_.run().objects[id.value] = objects_[id.value].get();
  }

  test::Ref<test::FakeAlignment> addAlignment(const test::Ref<test::FakeSite>& site, const CString& name,
                                              std::uint64_t handle) {
    auto alignment = drawing_.addAlignment(site, name);
    alignment->descriptionText = L"about " + name;
    if (handle != 0) addObject(alignment->id, handle);
    return alignment;
  }

  test::Ref<test::FakeSampleLineGroup> addGroup(test::FakeAlignment& alignment, const CString& name,
                                                std::uint64_t handle) {
    auto group = alignment.addGroup(name);
    group->id.value = nextGroupId_++;
    group->descriptionText = L"about " + name;
    if (handle != 0) addObject(group->id, handle);
    return group;
  }

  void load() { loadAllAlignments(host_, drawing_.document, drawing_.database, list_); }

  [[nodiscard]] std::vector<std::wstring> namesAndHandles() const {
    std::vector<std::wstring> all;
    for (const talignment2* alignment : list_) {
      all.push_back(alignment->name + L"=" + alignment->handle);
      for (const tslgroup* group : alignment->children) all.push_back(L"  " + group->name + L"=" + group->handle);
    }
    return all;
  }

  tsite* addSiteRecord(const CString& name, int alignments) {
    auto* site = new tsite;
    site->name = name;
    for (int i = 0; i < alignments; ++i) {
      auto* alignment = new tsiteAlignment;
      alignment->children.add(new tprofile);
      site->alignments.add(alignment);
    }
    tree_.add(site);
    return site;
  }

  [[nodiscard]] std::vector<std::wstring> siteNames() const {
    std::vector<std::wstring> all;
    for (const tsite* site : tree_) all.push_back(site->name);
    return all;
  }
};

// ---------------------------------------------------------------- overall alignment list

TEST_F(SiteTreeTest, ListsTheAlignmentsOutsideAnySiteFirstThenSiteBySiteUnsorted) {
  const auto south = drawing_.addSite(L"South");
  const auto north = drawing_.addSite(L"North");
  addAlignment(north, L"B", 0x2B);
  addAlignment(south, L"Z", 0x2C);
  addAlignment(south, L"A", 0x2D);
  addAlignment(nullptr, L"Z", 0x2E);
  addAlignment(nullptr, L"A", 0x2F);
  load();
  EXPECT_THAT(namesAndHandles(), ElementsAre(L"Z=2E", L"A=2F", L"Z=2C", L"A=2D", L"B=2B"));
}

TEST_F(SiteTreeTest, ListsAnAlignmentOfOneNameInTwoSitesTwice) {
  addAlignment(drawing_.addSite(L"S"), L"A", 0x1);
  addAlignment(drawing_.addSite(L"S"), L"A", 0x2);
  load();
  EXPECT_THAT(namesAndHandles(), ElementsAre(L"A=1", L"A=2"));
}

TEST_F(SiteTreeTest, HangsTheSampleLineGroupsBelowTheirAlignment) {
  const auto axis = addAlignment(nullptr, L"A", 0xABC);
  addGroup(*axis, L"G2", 0x1F4);
  addGroup(*axis, L"G1", 0x1F5);
  addAlignment(nullptr, L"B", 0xABD);
  load();
  EXPECT_THAT(namesAndHandles(), ElementsAre(L"A=ABC", L"  G2=1F4", L"  G1=1F5", L"B=ABD"));
  EXPECT_EQ(list_[0]->description, L"about A");
  EXPECT_EQ(list_[0]->reserved, 0U);
  EXPECT_EQ(list_[0]->children[0]->description, L"about G2");
  EXPECT_EQ(list_[0]->children[0]->reserved, 0U);
}

TEST_F(SiteTreeTest, ClosesEveryObjectThatItOpened) {
  addGroup(*addAlignment(nullptr, L"A", 0x1), L"G", 0x2);
  addAlignment(nullptr, L"B", 0);
  load();
  EXPECT_EQ(closed_, 2);
}

TEST_F(SiteTreeTest, GivesAnObjectThatCannotBeOpenedTheHandleTextOfTheObjectBefore) {
  const auto first = addAlignment(nullptr, L"A", 0x10);
  addGroup(*first, L"G1", 0x11);
  addGroup(*first, L"G2", 0);
  const auto second = addAlignment(nullptr, L"B", 0);
  addGroup(*second, L"G3", 0x12);
  addGroup(*second, L"G4", 0x13);
  addAlignment(drawing_.addSite(L"S"), L"C", 0);
  load();
  EXPECT_THAT(namesAndHandles(),
              ElementsAre(L"A=10", L"  G1=11", L"  G2=11", L"B=11", L"  G3=12", L"  G4=13", L"C=13"));
}

TEST_F(SiteTreeTest, GivesTheFirstObjectNoHandleTextWhereItCannotBeOpened) {
  addAlignment(nullptr, L"A", 0);
  addAlignment(nullptr, L"B", 0x10);
  load();
  EXPECT_THAT(namesAndHandles(), ElementsAre(L"A=", L"B=10"));
  load();
  EXPECT_THAT(namesAndHandles(), ElementsAre(L"A=", L"B=10")) << "the text doesn't outlive its run";
}

TEST_F(SiteTreeTest, KeepsARecordForAReferenceThatTheHostLeavesEmpty) {
  addAlignment(nullptr, L"A", 0x10);
  drawing_.document->alignments->items.push_back(nullptr);
  load();
  EXPECT_THAT(namesAndHandles(), ElementsAre(L"A=10", L"=10"));
}

TEST_F(SiteTreeTest, FreesWhatTheListHeldBefore) {
  addAlignment(nullptr, L"A", 0x10);
  load();
  load();
  EXPECT_EQ(list_.size(), 1);
  loadAllAlignments(host_, nullptr, nullptr, list_);
  EXPECT_EQ(list_.size(), 0);
}

TEST_F(SiteTreeTest, LoadsNothingWhereTheModelHandsOutNoCollections) {
  drawing_.addSite(L"S")->alignmentList = nullptr;
  drawing_.document->alignments = nullptr;
  load();
  EXPECT_EQ(list_.size(), 0);
  drawing_.database->siteList = nullptr;
  load();
  EXPECT_EQ(list_.size(), 0);
}

TEST_F(SiteTreeTest, LoadsAnAlignmentWithoutAGroupCollection) {
  addAlignment(nullptr, L"A", 0x10)->groups = nullptr;
  load();
  EXPECT_THAT(namesAndHandles(), ElementsAre(L"A=10"));
}

TEST_F(SiteTreeTest, ReleasingAllAlignmentsEmptiesTheList) {
  addGroup(*addAlignment(nullptr, L"A", 0x10), L"G", 0x11);
  load();
  releaseAllAlignments(list_);
  EXPECT_EQ(list_.size(), 0);
  releaseAllAlignments(list_);
  EXPECT_EQ(list_.size(), 0);
}

// ---------------------------------------------------------------- site tree

TEST_F(SiteTreeTest, NeverShowsASiteWithoutAlignments) {
  addSiteRecord(L"", 0);
  addSiteRecord(L"A", 1);
  addSiteRecord(L"empty 1", 0);
  addSiteRecord(L"empty 2", 0);
  addSiteRecord(L"B", 2);
  addSiteRecord(L"empty 3", 0);
  removeSitesWithoutAlignments(tree_);
  EXPECT_THAT(siteNames(), ElementsAre(L"A", L"B"));
  EXPECT_EQ(tree_[1]->alignments.size(), 2);
}

TEST_F(SiteTreeTest, KeepsTheRowOfTheAlignmentsOutsideAnySiteWhileItHasAny) {
  addSiteRecord(L"", 1);
  addSiteRecord(L"A", 0);
  removeSitesWithoutAlignments(tree_);
  EXPECT_THAT(siteNames(), ElementsAre(L""));
}

TEST_F(SiteTreeTest, RemovesEverySiteWhereNoneHasAlignments) {
  addSiteRecord(L"A", 0);
  addSiteRecord(L"B", 0);
  removeSitesWithoutAlignments(tree_);
  EXPECT_THAT(siteNames(), IsEmpty());
  removeSitesWithoutAlignments(tree_);
  EXPECT_THAT(siteNames(), IsEmpty());
}

TEST_F(SiteTreeTest, ReleasingSitesFreesTheWholeTree) {
  addSiteRecord(L"A", 3);
  releaseSites(tree_);
  EXPECT_EQ(tree_.size(), 0);
}

// ---------------------------------------------------------------- handle text

TEST_F(SiteTreeTest, GivesTheHandleOfAnIdentifierWithoutOpeningItsObject) {
  host_.run().handles[7] = 0x1F4;
  host_.run().handles[8] = 0xFFFFFFFFFFFFFFFF;
  EXPECT_EQ(handleText(host_, {7}), L"1F4");
  EXPECT_EQ(handleText(host_, {8}), L"FFFFFFFFFFFFFFFF");
  EXPECT_EQ(closed_, 0);
}

TEST_F(SiteTreeTest, GivesNoHandleTextForAnUnknownIdentifier) { EXPECT_EQ(handleText(host_, {}), L""); }

}  // namespace
}  // namespace lvx::host
