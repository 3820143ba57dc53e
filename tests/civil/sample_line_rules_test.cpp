#include "civil/sample_line_rules.h"

#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "civil_makers.h"
#include "text/number_text.h"

namespace lvx::civil {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

const Alignment& road() {
  static const Alignment axis = Alignment::fromText(
      "start 1003 heading 90; line 50; clothoid 30 R inf..100 right; arc 40 R 100 right; clothoid 30 R 100..inf right; "
      "line 27.5");
  return axis;
}

const Profile& design() {
  static const Profile profile = test::designProfile("1003 10; 1060 12 parabola 20; 1120 11 circle 400; 1180.5 13");
  return profile;
}

/// "1003 start; 1020 interval": stations rounded to the millimetre.
std::string stationsOf(const std::string& rules, const Alignment& axis = road(), const Profile* profile = nullptr) {
  std::string text;
  for (const SampleLineStation& at : sampleLineStations(parseSampleLineRules(rules), axis, profile)) {
    std::ostringstream number;
    number.imbue(std::locale::classic());
    number << std::setprecision(10) << std::round(at.station * 1000.0) / 1000.0;
    text += (text.empty() ? "" : "; ") + number.str() + " " + kindName(at.kind);
  }
  return text;
}

std::string errorOf(const std::string& rules, const Alignment& axis = road(), const Profile* profile = nullptr) {
  try {
    (void)makeSampleLines(parseSampleLineRules(rules), {.axis = axis, .profile = profile});
  } catch (const SampleLineError& error) {
    return error.what();
  }
  return "none";
}

// ---------------------------------------------------------------- stations

TEST(SampleLineStations, FollowTheirRules) {
  const struct {
    const char* rules;
    const char* stations;
  } rows[] = {
      {"every=50", "1050 interval; 1100 interval; 1150 interval"},
      {"every=50,count-from-start", "1003 interval; 1053 interval; 1103 interval; 1153 interval"},
      {"every=50,ends", "1003 start; 1050 interval; 1100 interval; 1150 interval; 1180.5 end"},
      {"every=50,from=1050,to=1100", "1050 interval; 1100 interval"},
      {"every=50,from=1040,count-from-start=yes,ends=yes", "1040 start; 1090 interval; 1140 interval; 1180.5 end"},
      {"every=50,ends=no,to=1+099.999", "1050 interval"},
      {"elements", "1003 element; 1053 element; 1083 element; 1123 element; 1153 element; 1180.5 element"},
      {"stations=1100;1020.5; 1+030", "1020.5 listed; 1030 listed; 1100 listed"},
      {"stations=1100;1100;1100.0005", "1100 listed"},
      {"every=50,stations=1050.0004", "1050 listed; 1100 interval; 1150 interval"},
      {"every=50,elements,tolerance=3.5",
       "1003 element; 1053 element; 1083 element; 1100 interval; 1123 element; 1153 element; 1180.5 element"},
      {"elements,ends", "1003 start; 1053 element; 1083 element; 1123 element; 1153 element; 1180.5 end"},
      // The radius is 100 from 1083 to 1123, and below 150 on the inner third of both clothoids.
      {"every=20,half-below=150",
       "1020 interval; 1040 interval; 1060 interval; 1080 interval; 1090 interval; 1100 "
       "interval; 1110 interval; 1120 interval; 1130 interval; 1140 interval; 1160 "
       "interval; 1180 interval"},
      {"every=20,half-below=100",
       "1020 interval; 1040 interval; 1060 interval; 1080 interval; 1100 interval; 1120 "
       "interval; 1140 interval; 1160 interval; 1180 interval"},
      {"every=1000,ends", "1003 start; 1180.5 end"},
      {"ends,from=-500,to=1e9", "1003 start; 1180.5 end"},
      {"ends,from=1100,to=1100", "1100 start"},
  };
  for (const auto& row : rows) EXPECT_EQ(stationsOf(row.rules), row.stations) << row.rules;
  EXPECT_EQ(std::size(rows), 17u);
}

TEST(SampleLineStations, FollowTheProfile) {
  EXPECT_EQ(stationsOf("pvis", road(), &design()), "1003 pvi; 1060 pvi; 1120 pvi; 1180.5 pvi");
  const std::string curves = stationsOf("curve-ends", road(), &design());
  EXPECT_THAT(curves, testing::StartsWith("1050 curve; 1070 curve; "));
  EXPECT_EQ(stationsOf("pvis,curve-ends,every=50,to=1100", road(), &design()),
            "1003 pvi; 1050 curve; 1060 pvi; 1070 curve; 1100 interval");
}

TEST(SampleLineStations, RunOverStationsBelowZero) {
  const auto axis = Alignment::fromText("start -45 line 90");
  EXPECT_EQ(stationsOf("every=20", axis), "-40 interval; -20 interval; 0 interval; 20 interval; 40 interval");
  EXPECT_EQ(stationsOf("every=20,half-below=50", axis), stationsOf("every=20", axis));
}

TEST(SampleLineStations, AreMultiplesWithoutDrift) {
  const auto axis = Alignment::fromText("start 0 heading 90; line 30000");
  const auto stations = sampleLineStations(parseSampleLineRules("every=0.1,ends"), axis, nullptr);
  ASSERT_EQ(stations.size(), 300001u);
  for (std::size_t i = 0; i < stations.size(); i += 1000) EXPECT_EQ(stations[i].station, 0.1 * static_cast<double>(i));
}

// ---------------------------------------------------------------- lines

TEST(SampleLines, StandSquareWithAVertexOnTheAlignment) {
  const auto lines =
      makeSampleLines(parseSampleLineRules("every=10,count-from-start,left=12,right=30"), {.axis = road()});
  ASSERT_EQ(lines.size(), 18u);
  for (const MadeSampleLine& line : lines) {
    EXPECT_LT(length(line.center - road().poseAt(line.station)->point), 1e-9);
    EXPECT_LT(length(line.left - road().pointLocation(line.station, -12.0)->point), 1e-9);
    EXPECT_LT(length(line.right - road().pointLocation(line.station, 30.0)->point), 1e-9);
    EXPECT_THAT(line.vertices(), ElementsAre(line.left, line.center, line.right));
  }
  const auto held = sampleLinesOf(lines);
  ASSERT_EQ(held.size(), 18u);
  EXPECT_EQ(held[3].name, lines[3].name);
  EXPECT_EQ(held[3].station, 1033.0);
  EXPECT_EQ(held[3].vertices, lines[3].vertices());
}

/// Directions whose right angles end on whole coordinates: three whole sides each, and the axes.
struct WholeSides {
  double x;
  double y;
  double length;
};
const WholeSides kWholeSides[] = {{3, 4, 5},     {-4, 3, 5},  {5, 12, 13},  {-12, -5, 13}, {8, 15, 17},
                                  {7, -24, 25},  {0, 1, 1},   {1, 0, 1},    {0, -1, 1},    {-1, 0, 1},
                                  {-20, 21, 29}, {9, 40, 41}, {-11, 60, 61}};

TEST(SampleLines, EndOnTheDecimalsThatRoundingAloneWouldMiss) {
  for (const WholeSides& along : kWholeSides) {
    for (const double far : {0.0, 40.0, 1000.0, 123456.7, -250000.25}) {
      const Vec2 middle{far, 20.0};
      const Vec2 leftOf{-along.y, along.x};
      const Vec2 reach = 200.0 * Vec2{along.x, along.y};
      std::vector<Element> elements;
      elements.push_back(makeLine(middle - reach, middle + reach));
      const Alignment axis(0.0, elements);
      for (const double times : {1.0, 3.0, 7.0}) {
        SampleLineRules rules;
        rules.stations = {200.0 * along.length};
        rules.left = rules.right = times * along.length;
        const auto lines = makeSampleLines(rules, {.axis = axis});
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].center, middle);
        const Vec2 across = times * leftOf;
        EXPECT_EQ(lines[0].left, middle + across) << along.x << ' ' << along.y << ' ' << far;
        EXPECT_EQ(lines[0].right, middle - across) << along.x << ' ' << along.y << ' ' << far;
      }
    }
  }
}

TEST(SampleLines, TurnClockwiseByTheirSkew) {
  const auto axis = Alignment::fromText("heading 0; line 100");
  const auto lines = makeSampleLines(parseSampleLineRules("stations=50,left=10,right=20,skew=30"), {.axis = axis});
  ASSERT_EQ(lines.size(), 1u);
  // Northward; square to the right is east, 30 degrees on from there.
  EXPECT_NEAR(lines[0].right.x, 20.0 * std::cos(kPi / 6), 1e-12);
  EXPECT_NEAR(lines[0].right.y, 50.0 - 10.0, 1e-12);
  EXPECT_NEAR(lines[0].left.x, -10.0 * std::cos(kPi / 6), 1e-12);
  EXPECT_NEAR(lines[0].left.y, 50.0 + 5.0, 1e-12);
}

TEST(SampleLines, ReachTheBorderOfASurface) {
  // Ground from x -40 to 25 with a gap from 5 to 10, and nothing north of 100.
  std::vector<Vec3> points;
  std::vector<Triangle> triangles;
  for (const auto& [west, east] : {std::pair(-40.0, 5.0), std::pair(10.0, 25.0)}) {
    const auto first = static_cast<std::int32_t>(points.size());
    points.insert(points.end(), {{west, -10, 1}, {east, -10, 1}, {east, 100, 1}, {west, 100, 1}});
    triangles.push_back({first, first + 1, first + 2});
    triangles.push_back({first, first + 2, first + 3});
  }
  const TinSurface ground(points, triangles);
  const auto axis = Alignment::fromText("heading 0; line 150");
  const auto widths = [&](const char* rules) {
    std::vector<double> result;
    for (const MadeSampleLine& line : makeSampleLines(parseSampleLineRules(rules), {.axis = axis, .border = &ground})) {
      result.push_back(std::round(1e6 * length(line.left - line.center)) / 1e6);
      result.push_back(std::round(1e6 * length(line.right - line.center)) / 1e6);
    }
    return result;
  };
  EXPECT_THAT(widths("stations=50,border=Ground"), ElementsAre(40, 25)) << "across the gap";
  EXPECT_THAT(widths("stations=50,border=Ground,largest=30"), ElementsAre(30, 25));
  EXPECT_THAT(widths("stations=50,border=Ground,right=8"), ElementsAre(40, 8)) << "a side's own width comes first";
  EXPECT_THAT(widths("stations=140,border=Ground,largest=60"), ElementsAre(60, 60)) << "it never meets the surface";
  EXPECT_THAT(errorOf("stations=1050,border=Ground"),
              HasSubstr("border 'Ground': there is no such surface with ground"));

  const auto reaches = [&](const char* rules) {
    const auto lines = makeSampleLines(parseSampleLineRules(rules), {.axis = axis, .border = &ground});
    return std::pair(lines.at(0).leftReach, lines.at(0).rightReach);
  };
  using enum SampleLineReach;
  EXPECT_EQ(reaches("stations=50"), std::pair(Width, Width));
  EXPECT_EQ(reaches("stations=50,border=Ground"), std::pair(Border, Border));
  EXPECT_EQ(reaches("stations=50,border=Ground,largest=30,right=8"), std::pair(Largest, Width));
  EXPECT_EQ(reaches("stations=140,border=Ground"), std::pair(NoGround, NoGround));
}

TEST(SampleLines, AreNamedByThePattern) {
  const auto names = [](const std::string& rules) {
    std::vector<std::string> result;
    for (const MadeSampleLine& line :
         makeSampleLines(parseSampleLineRules(rules), {.axis = road(), .stationText = [](double station) {
                                                         return "S" + std::to_string(std::lround(station));
                                                       }}))
      result.push_back(line.name);
    return result;
  };
  EXPECT_THAT(names("every=80,ends"), ElementsAre("S1003", "S1040", "S1120", "S1181"));
  EXPECT_THAT(names("every=80,ends,name='{n}, {kind} {{{station}}}'"),
              ElementsAre("1, start {S1003}", "2, interval {S1040}", "3, interval {S1120}", "4, end {S1181}"));
  EXPECT_THAT(names("every=80,name=same"), ElementsAre("same", "same"));
  const auto plain = makeSampleLines(parseSampleLineRules("ends"), {.axis = road()});
  EXPECT_EQ(plain[0].name, "1003.000");
}

TEST(SampleLines, AreMadeByTheHundredThousand) {
  const auto axis =
      Alignment::fromText("start 0 heading 20; bloss 500 R inf..3000 right; arc 9000 R 3000 right; line 500");
  const auto lines = makeSampleLines(parseSampleLineRules("every=0.1,half-below=10000,name={n}"), {.axis = axis});
  EXPECT_GT(lines.size(), 180'000u);
  EXPECT_EQ(lines.back().name, std::to_string(lines.size()));
}

// ---------------------------------------------------------------- errors

TEST(SampleLineRules, SayWhichKeyAndWhichValueIsWrong) {
  const struct {
    const char* rules;
    const char* error;
  } rows[] = {
      {"", "sample lines: nothing says where lines stand; every, ends,"},
      {"left=20", "nothing says where lines stand"},
      {"evry=20", "sample lines: there is no key 'evry', only every, count-from-start,"},
      {"every=20,every=10", "every: given twice"},
      {"every", "every: a value is wanted, as in every=N"},
      {"every=", "every: a value is wanted"},
      {"every=abc", "every 'abc': a number is wanted"},
      {"every=1,5x", "there is no key '5x'"},
      {"every=0", "every '0': a length above 0 is wanted"},
      {"every=-20", "every '-20': a length above 0 is wanted"},
      {"every=nan", "every 'nan': a number is wanted"},
      {"every=inf", "every 'inf': a number is wanted"},
      {"every=20,left=0", "left '0': a width above 0 is wanted"},
      {"every=20,right=-3", "right '-3': a width above 0 is wanted"},
      {"every=20,right=1e999", "right '1e999': a number is wanted"},
      {"every=20,largest=0", "largest '0': a width above 0 is wanted"},
      {"every=20,skew=90", "skew '90': an angle between -90 and 90 degrees is wanted"},
      {"every=20,tolerance=-1", "tolerance '-1': a length of at least 0 is wanted"},
      {"every=20,ends=maybe", "ends 'maybe': yes or no is wanted"},
      {"every=20,from=1100,to=1050", "from '1100': lies behind to '1050'"},
      {"every=20,from=1+", "from '1+': a station is wanted"},
      {"stations=;", "stations ';': stations between semicolons are wanted"},
      {"stations=1100;x", "stations 'x': a number is wanted"},
      {"stations=5", "stations '5': the alignment runs from 1003.000 to 1180.500"},
      {"ends,half-below=100", "half-below '100': there is no interval to halve"},
      {"every=20,name={what}", "name '{what}': there is no field {what}, only {station}, {kind} and {n}"},
      {"every=20,name={n", "name '{n': a brace isn't closed"},
      {"every=20,name=n}", "name 'n}': a brace closes that wasn't opened"},
      {"every=20,name='x", "name: the quote isn't closed"},
      {"every=20,name='x'y", "name: a comma is wanted behind the quote, at 'y'"},
      {"every=20,from=1181,to=1300", "the alignment runs from 1003.000 to 1180.500; nothing of it lies in the range"},
      {"every=20,from=1041,to=1059", "the rules give no line between 1041.000 and 1059.000"},
      {"every=0.0001", "every '0.0001': gives more than 1000000 lines"},
      {"every=1e-300", "gives more than 1000000 lines"},
      {"pvis", "pvis: there is no profile with points"},
      {"every=20,curve-ends", "curve-ends: there is no profile with points"},
      {"every=20,border=Ground", "border 'Ground': there is no such surface with ground"},
  };
  for (const auto& row : rows) EXPECT_THAT(errorOf(row.rules), HasSubstr(row.error)) << row.rules;
  EXPECT_EQ(std::size(rows), 37u);
  EXPECT_THAT(errorOf("ends", Alignment()), HasSubstr("the alignment has no length"));
}

TEST(SampleLineRules, AreCheckedHoweverTheyWereMade) {
  const auto isRefused = [](auto change) {
    SampleLineRules rules;
    rules.every = 20.0;
    checkRules(rules);
    change(rules);
    try {
      checkRules(rules);
    } catch (const SampleLineError&) {
      return true;
    }
    return false;
  };
  EXPECT_TRUE(isRefused([](SampleLineRules& rules) { rules.every = kNaN; }));
  EXPECT_TRUE(isRefused([](SampleLineRules& rules) { rules.every = kInfinity; }));
  EXPECT_TRUE(isRefused([](SampleLineRules& rules) { rules.left = kInfinity; }));
  EXPECT_TRUE(isRefused([](SampleLineRules& rules) { rules.right = kNaN; }));
  EXPECT_TRUE(isRefused([](SampleLineRules& rules) { rules.stations = {kNaN}; }));
  EXPECT_TRUE(isRefused([](SampleLineRules& rules) { rules.from = kNaN; }));
  EXPECT_TRUE(isRefused([](SampleLineRules& rules) { rules.skew = kNaN; }));
  EXPECT_TRUE(isRefused([](SampleLineRules& rules) { rules.name = " "; }));
}

TEST(SampleLineRules, ComeBackFromTheirText) {
  for (const char* text :
       {"every=20", "every=20,left=30,right=12.5,skew=-10", "ends,elements,pvis,curve-ends,profile=Design 2",
        "every=0.1,count-from-start,half-below=150,from=-12.25,to=1000.125,tolerance=0.01",
        "stations=1;2.5;-3,border='Ground, old',largest=80,name='{n}, {kind}'", "ends,name=it's {n}"}) {
    const SampleLineRules rules = parseSampleLineRules(text);
    EXPECT_EQ(textOf(rules), text);
    EXPECT_EQ(parseSampleLineRules(textOf(rules)), rules);
  }
}

TEST(SampleLineRules, AreTheSameFromPairsAsFromTheirText) {
  const std::vector<SampleLineRule> pairs =
      splitSampleLineRules("every=20, ends,border='Ground, old',name=\"{n}\",left=1+000");
  EXPECT_THAT(pairs, ElementsAre(SampleLineRule{"every", "20"}, SampleLineRule{"ends", "yes"},
                                 SampleLineRule{"border", "Ground, old"}, SampleLineRule{"name", "{n}"},
                                 SampleLineRule{"left", "1+000"}));
  const std::vector<SampleLineRule> both = {{"every", "20"}, {"border", "it's \"so\", isn't it"}};
  EXPECT_EQ(sampleLineRules(both).border, "it's \"so\", isn't it") << "no text with quotes could say that";
  EXPECT_EQ(sampleLineRules(splitSampleLineRules("every=20,left=5")), parseSampleLineRules("every=20,left=5"));
  const std::vector<SampleLineRule> twice = {{"every", "20"}, {"every", "25"}};
  EXPECT_THROW(static_cast<void>(sampleLineRules(twice)), SampleLineError);
  const std::vector<SampleLineRule> unknown = {{"evry", "20"}};
  EXPECT_THROW(static_cast<void>(sampleLineRules(unknown)), SampleLineError);
  EXPECT_THROW(static_cast<void>(sampleLineRules({})), SampleLineError) << "nothing says where lines stand";
}

TEST(SampleLineRules, TellTheDefaultsThatHold) {
  const SampleLineRules defaults;
  const struct {
    const char* key;
    std::string value;
  } rows[] = {
      {"tolerance", text::shortText(defaults.tolerance)},
      {"left", text::shortText(SampleLineRules::kWidth) + ", or to the border"},
      {"right", text::shortText(SampleLineRules::kWidth) + ", or to the border"},
      {"largest", text::shortText(defaults.largest)},
      {"skew", text::shortText(defaults.skew)},
      {"name", defaults.name},
  };
  std::size_t told = 0;
  for (const auto& row : rows)
    for (const SampleLineKey& key : sampleLineKeys()) {
      if (key.key != row.key) continue;
      EXPECT_THAT(std::string(key.meaning), HasSubstr("(default: " + row.value + ")"));
      ++told;
    }
  EXPECT_EQ(told, 6u);
}

TEST(SampleLineRules, HaveEveryKeyInTheirTable) {
  for (const SampleLineKey& key : sampleLineKeys()) {
    EXPECT_FALSE(key.meaning.empty());
    // Known: what is wrong is something else, if anything.
    EXPECT_THAT(errorOf(std::string(key.key) + "=x"), testing::Not(HasSubstr("there is no key"))) << key.key;
  }
}

}  // namespace
}  // namespace lvx::civil
