#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "framework/exceptions.h"
#include "gls/corridor_stage.h"
#include "host/dialog_window.h"
#include "plain_gls/gls_case.h"
#include "plain_gls/plain_gls.h"
#include "support/random_numbers.h"

/// The module against the plain rules, over random alignments, profiles, sample lines and corridors: orderly ones and
/// ones that no designer would draw. The report is compared to the last bit, exceptions included.
namespace lvx::gls {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class RandomCase {
 public:
  explicit RandomCase(std::mt19937& random) : random_(random) {}

  void fill(GlsCase& made, bool orderly) {
    orderly_ = orderly;
    made.startStation = orderly ? static_cast<double>(below(3)) * 100.0 : station();
    const unsigned elements = orderly ? 1 + below(12) : below(8);
    for (unsigned i = 0; i < elements; ++i) made.elements.push_back(element());
    const unsigned lines = below(15);
    for (unsigned i = 0; i < lines; ++i)
      made.addSampleLine((below(8) == 0 ? L"PV" : L"S") + std::to_wstring(i), station());
    points(made);
    corridors(made);
    made.user.code = below(2) == 0 ? host::kIdOk : host::kIdCancel;
  }

  /// Few values, so that much falls together.
  double station() {
    const unsigned kind = below(orderly_ ? 8 : 12);
    const double base = static_cast<double>(below(13)) * 50.0;
    if (kind == 0) return base + 0.00005;
    if (kind == 1) return base + 0.0001;
    if (kind == 2) return base + 0.0000005;
    if (kind == 3) return base - 0.00009;
    if (kind == 8) return kNaN;
    if (kind == 9) return -base;
    if (kind == 10) return base + 0.000001;
    if (kind == 11) return std::numeric_limits<double>::infinity();
    return base;
  }

 private:
  unsigned below(unsigned count) { return static_cast<unsigned>(random_() % count); }

  host::taxel element() {
    host::taxel made;
    made.type = orderly_ || below(6) != 0 ? static_cast<int>(below(4)) : static_cast<int>(below(9)) - 3;
    made.length = orderly_ || below(5) != 0 ? static_cast<double>(1 + below(4)) * 50.0 : station() - 100.0;
    made.startRadius = static_cast<double>(below(5)) * 100.0 - 200.0;
    made.endRadius = below(2) == 0 ? 0.0 : static_cast<double>(below(9)) * 100.0 - 400.0;
    made.startDirection = static_cast<double>(below(63)) / 10.0;
    made.endDirection = static_cast<double>(below(63)) / 10.0;
    return made;
  }

  void points(GlsCase& made) {
    std::vector<Pvi> pvis;
    const unsigned count = orderly_ ? 2 + below(4) : below(6);
    double at = orderly_ ? static_cast<double>(below(3)) * 25.0 - 25.0 : 0.0;
    for (unsigned i = 0; i < count; ++i) {
      pvis.push_back({at, static_cast<double>(below(9)), static_cast<double>(below(4)) * 25.0});
      at += 50.0 + static_cast<double>(below(6)) * 25.0;
    }
    made.points = profileOf(pvis);
    if (orderly_) return;
    for (host::tvert& point : made.points) {
      if (below(6) == 0) point.station = station();
      if (below(8) == 0) point.halfLength = -point.halfLength;
      if (below(8) == 0) point.radius = 0.0;
      if (below(12) == 0) point.gradeIn = kNaN;
    }
  }

  void corridors(GlsCase& made) {
    const unsigned count = below(4);
    for (unsigned c = 0; c < count; ++c) {
      const auto corridor = made.roadway.addCorridor(L"C" + std::to_wstring(c));
      const unsigned baselines = below(3);
      for (unsigned b = 0; b < baselines; ++b) baseline(*corridor->addBaseline());
    }
  }

  void baseline(test::FakeBaseline& made) {
    made.profileObject->elevation = [](double station) { return station / 8.0; };
    const unsigned regions = below(3);
    for (unsigned r = 0; r < regions; ++r) {
      std::vector<double> stations(below(12));
      for (double& at : stations) at = station();
      made.addRegion(std::move(stations));
    }
    // What a section looks like follows from its station alone, so that both sides are told the same.
    made.compute = [](double at) -> Ref<test::FakeSection> {
      std::mt19937 shape(std::isnan(at) || std::isinf(at) ? 1U : static_cast<unsigned>(std::fabs(at) * 4.0));
      if (shape() % 6 == 0) return nullptr;
      auto section = std::make_shared<test::FakeSection>();
      const unsigned parts = shape() % 4;
      for (unsigned p = 0; p < parts; ++p) {
        test::FakeSectionPart& part = section->addPart({shape() % 4 == 0 ? L"Kerb" : p % 2 == 0 ? L"Pave" : L"Belag"});
        const unsigned points = shape() % 5;
        for (unsigned i = 0; i < points; ++i) {
          const double offset = static_cast<double>(static_cast<int>(shape() % 13) - 6) +
                                static_cast<double>(shape() % 4) * 0.00000006 * (shape() % 3 == 0 ? 10.0 : 1.0);
          const double shift = shape() % 5 == 0 ? 50.0 : 0.0;
          part.addPoint(at + shift, offset, static_cast<double>(shape() % 7) / 4.0,
                        {shape() % 3 == 0 ? L"Crown" : L"ETW"});
        }
        if (shape() % 8 == 0) part.addPoint(host::HostArray<double>::of({at, -20.0}), {L"ETW"});
      }
      return section;
    };
  }

  std::mt19937& random_;
  bool orderly_ = true;
};

/// What a run leaves behind: the report, the drawing's changes and how it ended.
std::string outcomeOf(GlsCase& made, const std::function<void(tglsReport&)>& collect) {
  tglsReport report;
  std::string text;
  try {
    collect(report);
  } catch (const framework::InvalidArgumentException&) {
    text = "invalid argument\n";
  }
  text += textOf(report);
  for (const CString& entry : made.roadway.log) text += std::string(entry.begin(), entry.end()) + '\n';
  return text;
}

void expectAgreement(bool orderly, int runs) {
  auto random = test::seededByTestName();
  int finished = 0;
  for (int run = 0; run < runs; ++run) {
    const auto seed = static_cast<unsigned>(random());
    const auto outcome = [&](bool plain) {
      GlsCase made;
      std::mt19937 same(seed);
      RandomCase(same).fill(made, orderly);
      return outcomeOf(made, [&](tglsReport& report) {
        if (plain)
          plain::collectGlsRows(made, report);
        else
          made.collect(report);
      });
    };
    const std::string expected = outcome(true);
    ASSERT_EQ(outcome(false), expected) << "run " << run << ", seed " << seed;
    if (!expected.starts_with("invalid")) ++finished;
  }
  EXPECT_GT(finished, orderly ? runs / 4 : 0);
}

TEST(GlsAgreement, OfOrderlyDrawingsWithThePlainRules) { expectAgreement(true, 200); }
TEST(GlsAgreement, OfOddDrawingsWithThePlainRules) { expectAgreement(false, 300); }

TEST(GlsAgreement, OfTheCorridorRecordsWithThePlainRules) {
  auto random = test::seededByTestName();
  for (int run = 0; run < 150; ++run) {
    const auto seed = static_cast<unsigned>(random());
    const auto outcome = [&](bool plain) {
      GlsCase made;
      std::mt19937 same(seed);
      RandomCase source(same);
      source.fill(made, run % 2 == 0);
      tglsReport report;
      const auto rows = static_cast<unsigned>(same() % 20);
      for (unsigned i = 0; i < rows; ++i) {
        report.rows.add(new tglsRow);
        report.rows[report.rows.size() - 1]->station = source.station();
      }
      CorridorList corridors;
      if (plain)
        plain::readCorridorData(made, corridors, report);
      else
        readCorridorData(made.host, corridors, report);
      const std::string text = textOf(corridors) + textOf(report);
      releaseCorridors(corridors);
      return text;
    };
    ASSERT_EQ(outcome(false), outcome(true)) << "run " << run << ", seed " << seed;
  }
}

}  // namespace
}  // namespace lvx::gls
