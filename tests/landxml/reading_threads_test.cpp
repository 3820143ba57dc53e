// Long lists of points and faces are read in parts by several threads; nothing of what is read tells how many they were.
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "landxml/detail/scanner.h"
#include "landxml/reader.h"

namespace lvx::landxml {
namespace {

constexpr std::array kThreads{1U, 2U, 3U, 8U};

ReadOptions with(unsigned threads) {
  ReadOptions options;
  options.threads = threads;
  return options;
}

using Place = std::array<double, 3>;
using Corners = std::array<std::int32_t, 3>;

/// What stands in the lists of one surface.
struct Lists {
  std::vector<Place> points;  // x, y, z
  std::map<std::int64_t, std::size_t> ids;
  std::vector<Corners> visible;
  std::vector<Corners> invisible;
  std::vector<std::size_t> faults;
  std::size_t firstLine = 0;
  std::string firstText;
  bool operator==(const Lists&) const = default;
};

/// All that reading gives, or the words that it fails with.
struct Outcome {
  std::vector<Lists> lists;
  std::vector<std::tuple<int, std::string, std::size_t>> diagnostics;
  /// Of the drawing's surfaces, as they hold them.
  std::vector<std::vector<Place>> surfacePoints;
  std::vector<std::vector<Corners>> surfaceTriangles;
  std::string failure;
  bool operator==(const Outcome&) const = default;
};

Outcome read(const std::string& text, unsigned threads) {
  Outcome outcome;
  try {
    const detail::ScannedDocument scanned = detail::scanDocument(detail::openText(text), "d.xml", with(threads));
    for (const auto& [place, tin] : scanned.definitions) {
      Lists& lists = outcome.lists.emplace_back();
      for (const civil::Vec3& p : tin.points) lists.points.push_back({p.x, p.y, p.z});
      tin.eachId([&](std::int64_t id, std::size_t index) { lists.ids[id] = index; });
      for (const civil::Triangle& t : tin.faces.triangles) lists.visible.push_back({t.a, t.b, t.c});
      for (const civil::Triangle& t : tin.faces.invisible) lists.invisible.push_back({t.a, t.b, t.c});
      const detail::TinCollector::Faults& f = tin.faults;
      lists.faults = {f.pointsWithoutId,        f.repeatedIds,     f.pointsWithoutElevation, f.unreadablePoints,
                      f.facesWithMissingPoints, f.unreadableFaces, f.repairedSigns,          f.unknownElements,
                      tin.faces.repeating};
      lists.firstLine = f.firstLine;
      lists.firstText = f.firstText;
    }
    const civil::Drawing drawing = readDrawingText(text, "d.xml", with(threads));
    for (const civil::Diagnostic& d : drawing.diagnostics)
      outcome.diagnostics.emplace_back(static_cast<int>(d.severity), d.text, d.line);
    for (const civil::SurfaceObject& object : drawing.surfaces) {
      auto& points = outcome.surfacePoints.emplace_back();
      for (const civil::Vec3& p : object.surface.points()) points.push_back({p.x, p.y, p.z});
      auto& triangles = outcome.surfaceTriangles.emplace_back();
      for (const civil::Triangle& t : object.surface.triangles()) triangles.push_back({t.a, t.b, t.c});
    }
  } catch (const ReadError& error) {
    outcome.failure = error.what();
  }
  return outcome;
}

/// What one thread reads; says where others read something else.
Outcome readByAll(const std::string& text, const std::string& name) {
  Outcome one = read(text, 1);
  for (const unsigned threads : kThreads) EXPECT_TRUE(read(text, threads) == one) << name << ", threads " << threads;
  return one;
}

std::string drawing(const std::string& content) {
  return "<LandXML version='1.2'><Surfaces>" + content + "</Surfaces></LandXML>\n";
}

std::string surface(const std::string& points, const std::string& faces) {
  return "<Surface name='S'><Definition surfType='TIN'>\n<Pnts>" + points + "</Pnts>\n<Faces>" + faces +
         "</Faces></Definition></Surface>";
}

/// A strip of triangles over points in two rows, with `odd` put behind every so many elements.
struct Strip {
  std::size_t count = 60'000;
  std::int64_t firstId = 1;
  std::string prefix = {};
  std::string lineEnd = "\n";
  std::size_t every = 0;
  std::string oddPoint = {};
  std::string oddFace = {};

  [[nodiscard]] std::string points() const {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
      const std::string id = std::to_string(firstId + static_cast<std::int64_t>(i));
      text += "<" + prefix + "P id=\"" + id + "\">" + std::to_string(i / 2) + ".25 " + std::to_string(i % 2) +
              ".125 -" + std::to_string(i % 97) + ".5</" + prefix + "P>" + lineEnd;
      if (every != 0 && i % every == every - 1) text += oddPoint;
    }
    return text;
  }
  [[nodiscard]] std::string faces() const {
    std::string text;
    for (std::size_t i = 2; i < count; ++i) {
      text += "<" + prefix + (i % 1001 == 5 ? "F i=\"1\">" : "F>");
      for (const std::size_t corner : {i - 2, i - 1, i})
        text += std::to_string(firstId + static_cast<std::int64_t>(corner)) + " ";
      text += "</" + prefix + "F>" + lineEnd;
      if (every != 0 && i % every == every - 1) text += oddFace;
    }
    return text;
  }
  [[nodiscard]] std::string text() const { return drawing(surface(points(), faces())); }
};

void expectAllOf(const Strip& strip, const Outcome& outcome, const std::string& name) {
  EXPECT_EQ(outcome.failure, "") << name;
  ASSERT_EQ(outcome.lists.size(), 1U) << name;
  const Lists& lists = outcome.lists.front();
  ASSERT_EQ(lists.points.size(), strip.count) << name;
  std::vector<Corners> visible;
  std::vector<Corners> invisible;
  for (std::size_t i = 0; i < strip.count; ++i) {
    const Place place{static_cast<double>(i % 2) + 0.125, static_cast<double>(i / 2) + 0.25,
                      -static_cast<double>(i % 97) - 0.5};
    ASSERT_EQ(lists.points[i], place) << name;
    ASSERT_EQ(lists.ids.at(strip.firstId + static_cast<std::int64_t>(i)), i) << name;
    const auto at = static_cast<std::int32_t>(i);
    if (i >= 2) (i % 1001 == 5 ? invisible : visible).push_back({at - 2, at - 1, at});
  }
  EXPECT_TRUE(lists.visible == visible) << name;
  EXPECT_TRUE(lists.invisible == invisible) << name;
}

TEST(ReadingThreads, GiveAllPointsAndFacesWhateverStandsAmongThem) {
  struct Row {
    const char* name;
    Strip strip;
  };
  const std::string ending = "<!-- </P></F> <P id='1'>9 9 9</P> <F>1 2 3</F> -->";
  const std::string longEnding = [&] {
    std::string all = "<!--";
    while (all.size() < 700'000) all += "<P id=\"7\">1.5 2.5 3.5</P>\n<F>1 2 3</F>\n";
    return all + "-->";
  }();
  const std::vector<Row> rows{
      {"plain", {.count = 300'000}},
      {"ids from elsewhere", {.firstId = 9'000'000'000}},
      {"a prefix", {.prefix = "lx:"}},
      {"lines of another system", {.lineEnd = "\r\n"}},
      {"one line", {.lineEnd = ""}},
      {"comments with elements in them", {.every = 3, .oddPoint = ending, .oddFace = ending}},
      {"long comments with elements in them",
       {.count = 50'000, .every = 9'000, .oddPoint = longEnding, .oddFace = longEnding}},
      {"instructions", {.every = 1'000, .oddPoint = "<?a </P>?>", .oddFace = "<?a </F>?>"}},
      {"many blanks", {.every = 10'000, .oddPoint = std::string(300'000, ' '), .oddFace = std::string(300'000, '\n')}},
  };
  for (const Row& row : rows) expectAllOf(row.strip, readByAll(row.strip.text(), row.name), row.name);
}

TEST(ReadingThreads, TellTheSameOfWhatIsWrong) {
  struct Row {
    const char* name;
    Strip strip;
    /// Counted while the lists stream past; faces whose points aren't there are counted later.
    std::size_t faults = 0;
  };
  const std::vector<Row> rows{
      {"points given twice", {.every = 777, .oddPoint = "<P id=\"5\">1 2 3</P>"}, 77},
      {"points out of order", {.every = 20'000, .oddPoint = "<P id=\"800000\">1 2 3</P>"}, 2},
      {"points without elevation", {.every = 40'011, .oddPoint = "\n<P id=\"900000\">1 2</P>"}, 1},
      {"signs apart", {.every = 33'333, .oddPoint = "<P id=\"900000\">1 2 - 3</P>"}, 1},
      {"numbers too large", {.every = 12'345, .oddPoint = "<P id=\"900000\">1 2e300 3</P>"}, 4},
      {"points by reference", {.every = 9'999, .oddPoint = "<P id=\"900000\" pntRef=\"x\"/>"}, 0},
      {"other elements", {.every = 4'321, .oddPoint = "<Feature><P id=\"1\">1</P></Feature>", .oddFace = "<X/>"}, 26},
      {"text", {.every = 30'000, .oddPoint = "abc", .oddFace = "<![CDATA[</F>]]>"}, 4},
      {"faces without their points", {.every = 25'000, .oddFace = "\n\n<F>1 2 77777777</F>"}, 0},
      {"faces that name a point twice", {.every = 2'500, .oddFace = "<F>1 2 2</F><F>1 2 3 3</F><F>1 2 3 2</F>"}, 48},
      {"faces of four", {.every = 2'500, .oddFace = "<F>1 2 4 3</F><F i='1'>1 2 4 3</F>"}, 0},
      {"unreadable faces", {.every = 2'500, .oddFace = "<F>1 2</F><F>a b c</F>"}, 48},
  };
  for (const Row& row : rows) {
    const Outcome outcome = readByAll(row.strip.text(), row.name);
    EXPECT_EQ(outcome.failure, "") << row.name;
    ASSERT_EQ(outcome.lists.size(), 1U) << row.name;
    std::size_t faults = 0;
    for (const std::size_t count : outcome.lists.front().faults) faults += count;
    EXPECT_EQ(faults, row.faults) << row.name;
  }
}

TEST(ReadingThreads, FailInTheSameWords) {
  const std::string whole = Strip{.count = 150'000}.text();
  const std::size_t inFaces = whole.find("<Faces>") + 2'000'000;
  struct Row {
    const char* name;
    std::string fault;
    const char* words;
  };
  const std::vector<Row> rows{
      {"a byte 0", std::string(1, '\0'), "a byte 0 stands in the file"},
      {"an end tag of another element", "</X>", "is due"},
      {"an end tag of the other list", "</P></F>", ""},
      {"an entity", "<P id='1'>&x;</P><F>&x;</F>", ""},
      {"a document type", "<!DOCTYPE x>", "document type"},
      {"a tag that is none", "<1>", "isn't a tag"},
  };
  for (const Row& row : rows)
    for (const std::size_t near : {std::size_t{100}, std::size_t{400'000}, std::size_t{5'000'000}, inFaces}) {
      std::string text = whole;
      text.insert(text.find('\n', near) + 1, row.fault);
      const Outcome outcome = readByAll(text, row.name);
      EXPECT_NE(outcome.failure, "") << row.name << " at " << near;
      EXPECT_NE(outcome.failure.find(row.words), std::string::npos) << outcome.failure;
    }
  for (const std::size_t size : {std::size_t{70'000}, std::size_t{3'000'000}, inFaces, whole.size() - 20})
    EXPECT_NE(readByAll(whole.substr(0, size), "cut").failure.find("the file ends inside"), std::string::npos) << size;
}

TEST(ReadingThreads, ReadFacesInFrontOfTheirPointsAndManySurfaces) {
  const Strip strip{.count = 20'000};
  const std::string reversed = drawing("<Surface name='S'><Definition surfType='TIN'><Faces>" + strip.faces() +
                                       "</Faces><Pnts>" + strip.points() + "</Pnts></Definition></Surface>");
  const Outcome outcome = readByAll(reversed, "faces first");
  ASSERT_EQ(outcome.lists.size(), 1U);
  EXPECT_EQ(outcome.lists.front().points.size(), strip.count);
  std::string many;
  for (const std::size_t count : {3U, 100U, 3'000U, 9'000U, 40'000U, 3U, 12'000U, 8'000U})
    many += surface(Strip{.count = count}.points(), Strip{.count = count}.faces());
  EXPECT_EQ(readByAll(drawing(many), "many").lists.size(), 8U);
}

/// Odd things at random between all elements.
TEST(ReadingThreads, ReadAnyMixture) {
  const std::vector<std::string> oddPoints{"<!-- </P> -->",
                                           "<P id='3'>1 1 1</P>",
                                           "<P id=\"70000000\" >5 5 5 5</P>",
                                           "x",
                                           "<P>1 2 3</P>",
                                           "  \n",
                                           "<P\nid=\"71000000\">+1 2. .5</P>",
                                           "<P id=\"72000000\">1e2 2 3</P>"};
  const std::vector<std::string> oddFaces{"<!-- </F> -->", "<F>1 1 1</F>",        "<F i='1' n=\"4\">1 2 3</F>",
                                          "<F>-1 2 3</F>", "<F>1 2 99999999</F>", "<F/>",
                                          "\r\n",          "<F>1 2 3 4 5</F>"};
  for (unsigned seed = 1; seed <= 12; ++seed) {
    std::mt19937 random(seed);
    const std::size_t rare = std::size_t{1} << (random() % 17);
    std::string points;
    std::string faces;
    for (std::size_t i = 1; i <= 30'000; ++i) {
      const std::string n = std::to_string(i);
      points += "<P id=\"" + n + "\">" + std::to_string(random() % 1000) + "." + n + " 0." + n + " " + n + "</P>\n";
      if (random() % rare == 0) points += oddPoints[random() % oddPoints.size()];
      faces += "<F>" + std::to_string(1 + random() % 30'000) + " " + n + " " + std::to_string(1 + random() % 30'010) +
               "</F>";
      if (random() % rare == 0) faces += oddFaces[random() % oddFaces.size()];
    }
    const Outcome outcome = readByAll(drawing(surface(points, faces)), "seed " + std::to_string(seed));
    EXPECT_EQ(outcome.failure, "") << seed;
  }
}

TEST(ReadingThreads, EndWhereTheUserWishesSo) {
  const std::string text = Strip{.count = 250'000}.text();
  for (const unsigned threads : kThreads) {
    ReadOptions options = with(threads);
    std::uint64_t told = 0;
    options.progress = [&](const Progress& progress) {
      told = progress.bytesDone;
      return progress.bytesDone < 5'000'000;
    };
    EXPECT_THROW((void)readDrawingText(text, "d.xml", options), Cancelled) << threads;
    EXPECT_LT(told, 14'000'000U) << threads;
  }
}

/// Fails behind so many bytes.
class BrokenSource : public detail::ByteSource {
 public:
  BrokenSource(std::string_view text, std::size_t good) : text_(text), good_(good) {}
  std::size_t read(char* to, std::size_t size) override {
    if (at_ >= good_) detail::fail("can't read the file: the disk is gone", "d.xml");
    const std::size_t count = text_.substr(0, good_).copy(to, size, at_);
    at_ += count;
    return count;
  }
  [[nodiscard]] std::uint64_t totalBytes() const override { return text_.size(); }

 private:
  std::string_view text_;
  std::size_t good_;
  std::size_t at_ = 0;
};

TEST(ReadingThreads, TellWhyTheFileCantBeReadOn) {
  const std::string text = Strip{.count = 250'000}.text();
  for (const unsigned threads : kThreads)
    for (const std::size_t good : {std::size_t{10'000}, std::size_t{1'500'000}, std::size_t{9'000'000}}) {
      try {
        (void)detail::scanDocument(std::make_unique<BrokenSource>(text, good), "d.xml", with(threads));
        ADD_FAILURE() << threads;
      } catch (const ReadError& error) {
        EXPECT_NE(std::string(error.what()).find("the disk is gone"), std::string::npos) << error.what();
      }
    }
}

}  // namespace
}  // namespace lvx::landxml
