#include "host/roadway_connection.h"

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "host/roadway_model.h"

namespace lvx::host {
namespace {

constexpr const wchar_t* kApplication = L"Vantor.Application.24";

class FakeRoadwayDocument final : public QmtRoadwayDocument {
 public:
  [[nodiscard]] Ref<QmtCorridors> corridors() override { return nullptr; }
};

class FakeRoadwayApplication final : public QmtRoadwayApplication {
 public:
  Ref<FakeRoadwayDocument> document = std::make_shared<FakeRoadwayDocument>();
  [[nodiscard]] Ref<QmtRoadwayDocument> activeDocument() override { return document; }
};

class FakeApplication final : public VantorApplication {
 public:
  std::vector<std::int16_t> flags;
  std::vector<CString> asked;
  Ref<QmtObject> roadway;
  void setFlag(std::int16_t value) override { flags.push_back(value); }
  [[nodiscard]] Ref<QmtObject> interfaceObject(const CString& programId) override {
    asked.push_back(programId);
    return roadway;
  }
};

class RoadwayConnectionTest : public testing::Test {
 protected:
  ~RoadwayConnectionTest() override { disconnectRoadway(); }

  [[nodiscard]] std::vector<test::FakeUserInterface::Box> stopBox(const CString& text) const {
    return {{text, BoxButtons::Ok, BoxIcon::Stop}};
  }

  test::FakeHost host_;
  Ref<FakeApplication> application_ = std::make_shared<FakeApplication>();
};

TEST_F(RoadwayConnectionTest, TellsAMissingApplicationByStepThree) {
  EXPECT_EQ(connectRoadway(host_, L"No model"), 0);
  EXPECT_EQ(host_.users().boxes, stopBox(L"No model (3)"));
}

TEST_F(RoadwayConnectionTest, TellsAnApplicationThatGivesNothingByStepTwo) {
  host_.setApplication(kApplication, nullptr);
  EXPECT_EQ(connectRoadway(host_, L"No model"), 0);
  EXPECT_EQ(host_.users().boxes, stopBox(L"No model (2)"));
}

TEST_F(RoadwayConnectionTest, TellsAMissingRoadwaySideByStepOne) {
  host_.setApplication(kApplication, application_);
  EXPECT_EQ(connectRoadway(host_, L"No model"), 0);
  EXPECT_EQ(host_.users().boxes, stopBox(L"No model (1)"));
  EXPECT_EQ(application_->flags, std::vector<std::int16_t>{-1});
  EXPECT_EQ(application_->asked, std::vector<CString>{L"QmtXUiRoadway.QmtRoadwayApplication.13.6"});
}

TEST_F(RoadwayConnectionTest, TellsAnObjectOfAnotherInterfaceByStepOneToo) {
  application_->roadway = std::make_shared<FakeRoadwayDocument>();
  host_.setApplication(kApplication, application_);
  EXPECT_EQ(connectRoadway(host_, L"No model"), 0);
  EXPECT_EQ(host_.users().boxes, stopBox(L"No model (1)"));
}

TEST_F(RoadwayConnectionTest, KeepsTheDocumentUntilItIsDisconnectedAndGivesTheApplicationUp) {
  const auto roadway = std::make_shared<FakeRoadwayApplication>();
  application_->roadway = roadway;
  host_.setApplication(kApplication, application_);
  EXPECT_EQ(connectRoadway(host_, L"No model"), 1);
  EXPECT_EQ(roadwayDocument(), roadway->document);
  EXPECT_TRUE(host_.users().boxes.empty());
  EXPECT_EQ(application_.use_count(), 2) << "the test's own and the look-up's";
  EXPECT_EQ(disconnectRoadway(), 1);
  EXPECT_EQ(roadwayDocument(), nullptr);
  EXPECT_EQ(roadway->document.use_count(), 1);
  EXPECT_EQ(disconnectRoadway(), 0);
}

}  // namespace
}  // namespace lvx::host
