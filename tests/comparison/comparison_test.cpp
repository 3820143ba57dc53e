#include "comparison/comparison.h"

#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::comparison {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Job sampling() {
  return {"sampling",    "sampling, 100 triangles",           "lvx",
          "at most 0.5", {"samples", "counts_hash", "sum_z"}, {{"walk"}, {"tree", false, 1e-3}, {"plain", true}}};
}

Result resultOf(std::string candidate, double seconds, double samples, double sum) {
  return {std::move(candidate), seconds, 10.0, {{"samples", samples}, {"counts_hash", 77.0}, {"sum_z", sum}}};
}

TEST(ComparisonLine, BecomesAResultWithItsNumbersAsFacts) {
  const auto result = parseResult(R"({"peer": "walk", "seconds": 0.25, "rss_mb": 12, "samples": 7, "data": "x"})");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->candidate, "walk");
  EXPECT_EQ(result->seconds, 0.25);
  EXPECT_EQ(result->megabytes, 12.0);
  EXPECT_EQ(result->facts, (std::map<std::string, double>{{"samples", 7.0}}));
}

TEST(ComparisonLine, IsPassedOverWhereItIsNoObject) { EXPECT_FALSE(parseResult("ratio 0.7")); }

TEST(ComparisonLine, IsRefusedWithoutWhatTablesNeed) {
  for (const char* const line :
       {R"({"peer": "walk", "rss_mb": 1})", R"({"peer": "walk", "seconds": 1})", R"({"seconds": 1, "rss_mb": 1})",
        R"({"peer": "walk", "seconds": 0, "rss_mb": 1})", R"({"peer": "walk", "seconds")"})
    EXPECT_THROW((void)parseResult(line), std::runtime_error) << line;
}

TEST(Comparison, AgreesWhereCountsAreEqualAndSumsWithinTheTolerance) {
  Comparison comparison(sampling());
  for (int round = 0; round < 2; ++round) {
    comparison.add(resultOf("lvx", 1.0, 5.0, 250.0));
    comparison.add(resultOf("walk", 2.0, 5.0, 250.0 * (1.0 + 1e-12)));
    comparison.add(resultOf("tree", 3.0, 5.0, 250.1));
  }
  EXPECT_THAT(comparison.disagreements(), IsEmpty());
}

struct Wrong {
  const char* what;
  Result result;
  const char* told;
};

TEST(Comparison, NamesJobFactAndBothFiguresWhereTheyDisagree) {
  Result silent = resultOf("walk", 1.0, 5.0, 250.0);
  silent.facts.erase("samples");
  Result otherHash = resultOf("walk", 1.0, 5.0, 250.0);
  otherHash.facts["counts_hash"] = 78.0;
  const Wrong rows[] = {
      {"a sum", resultOf("walk", 1.0, 5.0, 250.001), "sampling: sum_z is 250 of lvx, 250.001 of walk"},
      {"a sum beyond its own tolerance", resultOf("tree", 1.0, 5.0, 251.0),
       "sampling: sum_z is 250 of lvx, 251 of tree"},
      {"a count", resultOf("tree", 1.0, 6.0, 250.0), "sampling: samples is 5 of lvx, 6 of tree"},
      {"a count of the bound", resultOf("plain", 1.0, 4.0, 250.0), "sampling: samples is 5 of lvx, 4 of plain"},
      {"a hash", otherHash, "sampling: counts_hash is 77 of lvx, 78 of walk"},
      {"a missing count", silent, "sampling: walk doesn't tell its samples"},
      {"ours in another round", resultOf("lvx", 1.0, 5.0, 250.0000001),
       "sampling: sum_z is 250 of lvx, 250.0000001 of lvx"},
  };
  for (const Wrong& row : rows) {
    Comparison comparison(sampling());
    comparison.add(resultOf("lvx", 1.0, 5.0, 250.0));
    comparison.add(row.result);
    comparison.add(row.result);
    EXPECT_THAT(comparison.disagreements(), ElementsAre(row.told)) << row.what;
  }
}

TEST(Comparison, DisagreesWhereOursToldNothing) {
  Comparison comparison(sampling());
  comparison.add(resultOf("walk", 1.0, 5.0, 250.0));
  EXPECT_THAT(comparison.disagreements(), ElementsAre("sampling: no result of lvx"));
}

TEST(Comparison, TakesTheMedianOfTheRatiosOfTheRounds) {
  Comparison comparison(sampling());
  for (const auto& [ours, theirs] : {std::pair(1.0, 2.0), std::pair(3.0, 10.0), std::pair(2.0, 2.5)}) {
    comparison.add(resultOf("lvx", ours, 5.0, 250.0));
    comparison.add(resultOf("walk", theirs, 5.0, 250.0));
  }
  EXPECT_EQ(comparison.rows(),
            "| sampling, 100 triangles | walk | 2.50 s | 2.00 s | 0.50 (0.30, 0.80) | at most 0.5 | 10 MB | 10 MB |\n");
}

TEST(Comparison, ShowsOursAloneWithoutAnyPeer) {
  Comparison comparison(sampling());
  comparison.add(resultOf("lvx", 0.0123, 5.0, 250.0));
  EXPECT_THAT(comparison.rows(), HasSubstr("| | | 12.3 ms | | at most 0.5 | | 10 MB |"));
}

}  // namespace
}  // namespace lvx::comparison
