#include "runtime/standin_host.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "host/picking.h"
#include "host/site_tree.h"
#include "platform/utf8.h"
#include "services/excel_driver.h"
#include "small_drawing.h"
#include "support/run_program.h"

namespace lvx::runtime {
namespace {

using test::TestFrontEnd;

TEST(StandinHost, StandsBehindTheAccessorsForAsLongAsItLives) {
  TestFrontEnd frontEnd;
  host::Host* const before = vnrxHost();
  {
    StandinHost host(frontEnd);
    EXPECT_EQ(vnrxHost(), &host);
    EXPECT_EQ(lvxCompanionAccess(), &host);
  }
  EXPECT_EQ(vnrxHost(), before);
  EXPECT_EQ(lvxCompanionAccess(), nullptr);
}

TEST(StandinHost, RefusesAnUnknownCodePage) {
  TestFrontEnd frontEnd;
  HostOptions options;
  options.platform.reportCodePage = "NO-SUCH-PAGE";
  EXPECT_THROW(StandinHost(frontEnd, options), std::invalid_argument);
  EXPECT_EQ(lvxCompanionAccess(), nullptr);
}

TEST(StandinHost, ConnectsOnlyWhileADrawingIsOpen) {
  TestFrontEnd frontEnd;
  StandinHost host(frontEnd);
  host::Ref<host::QmtDocument> document;
  host::Ref<host::QmtDatabase> database;
  EXPECT_FALSE(host.connect(document, database));
  EXPECT_EQ(document, nullptr);
  host.open(test::smallDrawing());
  EXPECT_EQ(host.drawing(), nullptr);
  EXPECT_TRUE(host.connect(document, database));
  EXPECT_NE(host.drawing(), nullptr);
  host.disconnect();
  EXPECT_EQ(host.drawing(), nullptr);
  host.close();
  EXPECT_EQ(host.openDrawing(), nullptr);
}

TEST(StandinHost, FindsFilesAlongTheSupportPathsInTheirOrder) {
  const test::TemporaryFolder first;
  const test::TemporaryFolder second;
  std::ofstream(second / "LVX_MIRELREPORT.txt") << "1 second\n";
  TestFrontEnd frontEnd;
  HostOptions options;
  options.supportPaths = {first.path().string(), second.path().string()};
  StandinHost host(frontEnd, options);
  std::wstring path = L"untouched";
  EXPECT_NE(host.runTime().vnedFindFile(L"missing.txt", path, 2048), host::kNormal);
  EXPECT_EQ(path, L"untouched");
  EXPECT_EQ(host.runTime().vnedFindFile(L"LVX_MIRELREPORT.txt", path, 2048), host::kNormal);
  EXPECT_EQ(path, platform::fromUtf8((second / "LVX_MIRELREPORT.txt").string()));
  std::ofstream(first / "LVX_MIRELREPORT.txt") << "1 first\n";
  EXPECT_EQ(host.runTime().vnedFindFile(L"LVX_MIRELREPORT.txt", path, 2048), host::kNormal);
  EXPECT_EQ(path, platform::fromUtf8((first / "LVX_MIRELREPORT.txt").string()));
  EXPECT_NE(host.runTime().vnedFindFile(L"LVX_MIRELREPORT.txt", path, 5), host::kNormal);
}

TEST(StandinHost, AFileGivenForANameWins) {
  TestFrontEnd frontEnd;
  HostOptions options;
  options.files[L"LVX_MIRELREPORT.txt"] = "my/words.txt";
  StandinHost host(frontEnd, options);
  std::wstring path;
  EXPECT_EQ(host.runTime().vnedFindFile(L"LVX_MIRELREPORT.txt", path, 2048), host::kNormal);
  EXPECT_EQ(path, L"my/words.txt");
}

TEST(StandinHost, OpensDrawingObjectsForReadingAndCountsThem) {
  TestFrontEnd frontEnd;
  StandinHost host(frontEnd);
  host.open(test::smallDrawing());
  host::VnDbObject* object = nullptr;
  EXPECT_NE(host.runTime().vndbOpenObject(object, {0xDEAD}, 0, false), host::kSuccess);
  EXPECT_EQ(object, nullptr);
  constexpr std::int32_t kForWriting = 1;
  EXPECT_NE(host.runTime().vndbOpenObject(object, {0x1F2}, kForWriting, false), host::kSuccess);
  ASSERT_EQ(host.runTime().vndbOpenObject(object, {0x1F2}, 0, false), host::kSuccess);
  EXPECT_STREQ(object->isA()->classTag(), L"QMT_ALIGNMENT");
  host::VnDbHandle handle;
  object->getVnDbHandle(handle);
  EXPECT_EQ(handle.value(), 0x1F2U);
  EXPECT_EQ(host.standinRunTime().openObjectCount(), 1U);
  object->close();
  EXPECT_EQ(host.standinRunTime().openObjectCount(), 0U);
}

TEST(StandinHost, TagsEveryClassThatCanBePicked) {
  using civil::ObjectKind;
  EXPECT_STREQ(classOf(ObjectKind::Alignment).classTag(), host::kClassAlignment);
  EXPECT_STREQ(classOf(ObjectKind::Surface).classTag(), host::kClassSurface);
  EXPECT_STREQ(classOf(ObjectKind::Profile).classTag(), host::kClassProfile);
  EXPECT_STREQ(classOf(ObjectKind::Point).classTag(), host::kClassPoint);
}

TEST(StandinHost, APickGivesWhatTheFrontEndChose) {
  TestFrontEnd frontEnd;
  StandinHost host(frontEnd);
  host.open(test::smallDrawing());
  host::EntityName entity;
  host::PickPoint point;
  EXPECT_NE(host.runTime().vnedEntSel(L"Pick", entity, point), host::kNormal);
  frontEnd.picked = 0x1F2;
  ASSERT_EQ(host.runTime().vnedEntSel(L"Pick", entity, point), host::kNormal);
  host::VnDbObjectId id;
  ASSERT_EQ(host.runTime().vndbGetObjectId(id, entity), host::kSuccess);
  EXPECT_EQ(host::handleText(host, id), L"1F2");
  frontEnd.picked = 0xDEAD;
  ASSERT_EQ(host.runTime().vnedEntSel(L"Pick", entity, point), host::kNormal);
  EXPECT_NE(host.runTime().vndbGetObjectId(id, entity), host::kSuccess);
}

TEST(StandinHost, ASelectionHoldsOnlyTheClassOfItsFilter) {
  TestFrontEnd frontEnd;
  StandinHost host(frontEnd);
  auto drawing = test::smallDrawing();
  const civil::Handle point = drawing.points[0].handle;
  host.open(std::move(drawing));
  frontEnd.selected = {{0x1F2, point, 0xDEAD}};
  host::FilterList* const filter = host.runTime().vnutBuildList(host::kEntityStart, host::kClassPoint);
  host::EntityName selection;
  ASSERT_EQ(host.runTime().vnedSSGet(L":$", {}, *filter, selection), host::kNormal);
  host.runTime().vnutRelRb(filter);
  std::int64_t length = 0;
  ASSERT_EQ(host.runTime().vnedSSLength(selection, length), host::kNormal);
  EXPECT_EQ(length, 1);
  host::EntityName entity;
  ASSERT_EQ(host.runTime().vnedSSName(selection, 0, entity), host::kNormal);
  EXPECT_NE(host.runTime().vnedSSName(selection, 1, entity), host::kNormal);
  host::VnDbObjectId id;
  EXPECT_EQ(host.runTime().vndbGetObjectId(id, entity), host::kSuccess);
  EXPECT_EQ(id.value, point);
  EXPECT_EQ(host.standinRunTime().selectionSetCount(), 1U);
  EXPECT_EQ(host.runTime().vnedSSFree(selection), host::kNormal);
  EXPECT_EQ(host.standinRunTime().selectionSetCount(), 0U);
  EXPECT_EQ(host.standinRunTime().filterListCount(), 0U);
}

TEST(StandinHost, APickFillsTheSetThatStandsAndMakesOneWhereNoneDoes) {
  TestFrontEnd frontEnd;
  StandinHost host(frontEnd);
  auto drawing = test::smallDrawing();
  const civil::Handle point = drawing.points[0].handle;
  host.open(std::move(drawing));
  host::RunTime& run = host.runTime();
  host::EntityName selection;
  ASSERT_EQ(run.vnedSSAdd(selection), host::kNormal);
  const auto name = selection.words;
  frontEnd.selected = {{point, point, 0x1F2, point}};
  ASSERT_EQ(run.vnedSSGet(L":$", {}, {}, selection), host::kNormal);
  EXPECT_EQ(selection.words, name) << "the empty set is filled, not replaced";
  EXPECT_EQ(host.standinRunTime().selectionSetCount(), 1U);
  std::int64_t length = 0;
  ASSERT_EQ(run.vnedSSLength(selection, length), host::kNormal);
  EXPECT_EQ(length, 2) << "a set holds an object once";

  frontEnd.selected.reset();
  EXPECT_EQ(run.vnedSSGet(L":$", {}, {}, selection), host::kUserGaveUp);
  ASSERT_EQ(run.vnedSSLength(selection, length), host::kNormal);
  EXPECT_EQ(length, 2) << "giving up leaves the set as it is";

  EXPECT_EQ(run.vnedSSFree(selection), host::kNormal);
  EXPECT_NE(run.vnedSSFree(selection), host::kNormal) << "a set is freed once";
  length = 77;
  EXPECT_NE(run.vnedSSLength(selection, length), host::kNormal);
  EXPECT_EQ(length, 77);
  frontEnd.selected = {{point}};
  ASSERT_EQ(run.vnedSSGet(L":$", {}, {}, selection), host::kNormal);
  EXPECT_NE(selection.words, name) << "a name that was freed stands for no set any more";
  EXPECT_EQ(run.vnedSSFree(selection), host::kNormal);
  EXPECT_EQ(host.standinRunTime().selectionSetCount(), 0U);
}

TEST(StandinHost, TheOverallListFindsItsHandlesThroughTheRunTime) {
  TestFrontEnd frontEnd;
  StandinHost host(frontEnd);
  host.open(test::smallDrawing());
  host::Ref<host::QmtDocument> document;
  host::Ref<host::QmtDatabase> database;
  ASSERT_TRUE(host.connect(document, database));
  host::AlignmentList list;
  host::loadAllAlignments(host, document, database, list);
  ASSERT_EQ(list.size(), 3);
  EXPECT_EQ(list[0]->name, L"Ramp");
  EXPECT_EQ(list[1]->handle, L"1F2");
  ASSERT_EQ(list[1]->children.size(), 1);
  EXPECT_EQ(list[1]->children[0]->name, L"SL");
  host::releaseAllAlignments(list);
  document.reset();
  database.reset();
  EXPECT_EQ(host.openDrawing()->liveObjects().description(), "");
  EXPECT_EQ(host.standinRunTime().openObjectCount(), 0U);
}

// ---------------------------------------------------------------- workbooks

/// A workbook with one cell, saved under `path` through the module's own driver.
void writeWorkbook(const std::string& path) {
  services::ExcelLink link;
  ASSERT_TRUE(services::startExcel(link));
  services::writeCell(link, L"A1", L"text");
  services::finishExcel(link, platform::fromUtf8(path));
}

TEST(HostWorkbooks, LeaveTheReasonOfAFailedSaveInTheJournalAndEndTheCommand) {
  const test::TemporaryFolder folder;
  TestFrontEnd frontEnd;
  StandinHost host(frontEnd);
  const std::string path = (folder / "missing/road.xls").string();
  EXPECT_THROW(writeWorkbook(path), framework::AutomationException);
  ASSERT_EQ(host.journal().events().size(), 1U);
  EXPECT_EQ(host.journal().events()[0].fate, FileFate::Failed);
  EXPECT_EQ(host.journal().events()[0].path, path);
  EXPECT_EQ(host.journal().events()[0].reason, "workbook: no file can be made in its folder");
}

TEST(HostWorkbooks, LeaveTheirSizeInTheJournal) {
  const test::TemporaryFolder folder;
  TestFrontEnd frontEnd;
  StandinHost host(frontEnd);
  const std::string path = (folder / "road.xls").string();
  writeWorkbook(path);
  ASSERT_EQ(host.journal().events().size(), 1U);
  EXPECT_EQ(host.journal().events()[0].fate, FileFate::Written);
  EXPECT_EQ(host.journal().events()[0].path, path);
  EXPECT_EQ(host.journal().events()[0].bytes, std::filesystem::file_size(path));
}

TEST(HostWorkbooks, StopWhereTheUserWantsToAndLeaveNoFile) {
  const test::TemporaryFolder folder;
  TestFrontEnd frontEnd;
  int cellsLeft = 2;
  HostOptions options;
  options.isInterrupted = [&cellsLeft] { return cellsLeft-- == 0; };
  const StandinHost host(frontEnd, options);
  services::ExcelLink link;
  ASSERT_TRUE(services::startExcel(link));
  services::writeCell(link, L"A1", L"text");
  services::writeNumberCell(link, L"A2", L"1.000");
  EXPECT_THROW(services::finishExcel(link, platform::fromUtf8((folder / "road.xls").string())), Interrupted);
  EXPECT_TRUE(host.journal().events().empty());
  EXPECT_FALSE(std::filesystem::exists(folder / "road.xls"));
}

TEST(HostWorkbooks, AreTheOnlyProgramThatCanBeStarted) {
  TestFrontEnd frontEnd;
  StandinHost host(frontEnd);
  EXPECT_NE(host.createAutomationObject(L"Excel.Application"), nullptr);
  EXPECT_EQ(host.createAutomationObject(L"Other.Application"), nullptr);
}

}  // namespace
}  // namespace lvx::runtime
