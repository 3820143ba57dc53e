#include "gls/station_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "plain_gls/gls_case.h"
#include "plain_gls/plain_gls.h"
#include "support/random_numbers.h"

namespace lvx::gls {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

void addRows(tglsReport& report, const std::vector<double>& stations) {
  for (std::size_t i = 0; i < stations.size(); ++i) {
    report.rows.add(new tglsRow);
    report.rows[report.rows.size() - 1]->station = stations[i];
    report.rows[report.rows.size() - 1]->name = L"R" + std::to_wstring(i);
  }
}

/// Names and stations from the top.
std::wstring namesOf(const tglsReport& report) {
  std::wstring text;
  for (const tglsRow* row : report.rows) text += (text.empty() ? L"" : L" | ") + row->name;
  return text;
}

struct Label {
  std::wstring name;
  double station = 0.0;
};

std::wstring withLabels(const std::vector<double>& stations, const std::vector<Label>& labels) {
  tglsReport report;
  addRows(report, stations);
  StationRows rows(report);
  for (const Label& label : labels) rows.addStationLabel(label.name, label.station);
  rows.finish();
  return namesOf(report);
}

TEST(StationRows, JoinsALabelToTheRowWithinTheToleranceBehindItsLabels) {
  EXPECT_EQ(withLabels({100.0, 200.0}, {{L"S", 100.00009}}), L"R0, S | R1");
  EXPECT_EQ(withLabels({100.0, 200.0}, {{L"S", 99.99991}}), L"R0, S | R1");
  EXPECT_EQ(withLabels({100.0, 200.0}, {{L"S", 100.0}, {L"T", 100.0}}), L"R0, S, T | R1");
}

TEST(StationRows, GivesALabelARowOfItsOwnBeyondTheTolerance) {
  EXPECT_EQ(withLabels({100.0, 200.0}, {{L"S", 100.00011}}), L"R0 | S | R1");
  EXPECT_EQ(withLabels({100.0, 200.0}, {{L"S", 99.99989}}), L"S | R0 | R1");
}

TEST(StationRows, PutsNoSeparatorInFrontOfTheFirstLabelOfANamelessRow) {
  tglsReport report;
  addRows(report, {100.0});
  report.rows[0]->name.clear();
  StationRows rows(report);
  rows.addStationLabel(L"S", 100.0);
  rows.finish();
  EXPECT_EQ(namesOf(report), L"S");
}

TEST(StationRows, DropsALabelBehindTheLastRow) {
  EXPECT_EQ(withLabels({100.0, 200.0}, {{L"S", 200.00011}, {L"T", 1e9}}), L"R0 | R1");
  EXPECT_EQ(withLabels({}, {{L"S", 1.0}}), L"");
}

TEST(StationRows, PutsALabelInFrontOfTheFirstRow) {
  EXPECT_EQ(withLabels({100.0}, {{L"S", -5.0}, {L"T", -6.0}}), L"T | S | R0");
}

TEST(StationRows, MarksAnAddedRowAsWithoutCorridorAndElement) {
  tglsReport report;
  addRows(report, {100.0});
  StationRows rows(report);
  rows.addStationLabel(L"S", 50.0);
  rows.finish();
  EXPECT_TRUE(isNoCorridor(*report.rows[0]));
  EXPECT_EQ(report.rows[0]->horType, kNoElement);
  EXPECT_EQ(report.rows[0]->station, 50.0);
}

TEST(StationRows, LeavesTheReportAloneUntilItIsFinished) {
  tglsReport report;
  addRows(report, {100.0});
  {
    StationRows rows(report);
    rows.addStationLabel(L"S", 50.0);
  }
  EXPECT_EQ(namesOf(report), L"R0");
}

TEST(StationRows, PutsALabelAtExactlyTheToleranceInFrontOfTheRowThatStopsIt) {
  // 0.0001 above 0.0: the row stops it, and it isn't near enough to join. The next label there joins it.
  EXPECT_EQ(withLabels({0.0, 10.0}, {{L"S", 0.0001}}), L"S | R0 | R1");
  EXPECT_EQ(withLabels({0.0, 10.0}, {{L"S", 0.0001}, {L"T", 0.00015}, {L"U", 0.00003}}), L"S, T, U | R0 | R1");
}

TEST(StationRows, StopsEveryLabelAtARowWhoseStationIsNoNumber) {
  EXPECT_EQ(withLabels({1.0, kNaN, 5.0}, {{L"S", 3.0}, {L"T", 9.0}, {L"U", 0.0}}), L"U | R0 | S | T | R1 | R2");
  EXPECT_EQ(withLabels({1.0, 5.0}, {{L"S", kNaN}, {L"T", 5.0}}), L"T | S | R0 | R1");
}

TEST(StationRows, AgreesWithTheWalkFromTheTop) {
  auto random = test::seededByTestName();
  const auto pick = [&random](int run) {
    const double coarse[] = {0.0, 0.0001, 0.00005, 1.0, 1.0001, 1.00005, 2.0, -1.0, 0.00010000000000000001, 0.9999};
    const unsigned kind = random() % 12;
    if (run % 3 == 0 && kind == 0) return kNaN;
    if (run % 3 == 0 && kind == 1) return random() % 2 == 0 ? kInfinity : -kInfinity;
    if (kind < 6) return coarse[random() % 10];
    if (kind == 6) return 1e13 + static_cast<double>(random() % 3);
    return static_cast<double>(random() % 200) * 0.00003;
  };
  for (int run = 0; run < 1000; ++run) {
    std::vector<double> stations(random() % 12);
    for (double& station : stations) station = pick(run);
    if (run % 2 == 0) std::sort(stations.begin(), stations.end(), [](double a, double b) { return a < b; });
    tglsReport expected;
    tglsReport actual;
    addRows(expected, stations);
    addRows(actual, stations);
    StationRows rows(actual);
    const unsigned labels = random() % 40;
    for (unsigned i = 0; i < labels; ++i) {
      const CString name = L"L" + std::to_wstring(i);
      const double station = pick(run);
      rows.addStationLabel(name, station);
      plain::addStationLabel(name, station, expected);
    }
    rows.finish();
    ASSERT_EQ(textOf(actual), textOf(expected)) << "run " << run;
  }
}

}  // namespace
}  // namespace lvx::gls
