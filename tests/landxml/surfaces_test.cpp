#include "drawing_text.h"

namespace lvx::landxml::testing {
namespace {

using ::testing::HasSubstr;

const char* const kSquare =
    "<P id=\"7\">0 0 1</P><P id=\"100\">0 10 2</P><P id=\"3\">10 0 3</P><P id=\"5\">10 10 4</P>";

TEST(Surfaces, NorthingComesFirst) {
  const auto drawing =
      read(tin("<P id=\"1\">0 100 1</P><P id=\"2\">10 100 2</P><P id=\"3\">0 120 3</P>", "<F>1 2 3</F>"));
  const auto box = drawing.surfaces.at(0).surface.box();
  EXPECT_EQ(box.minX, 100.0);
  EXPECT_EQ(box.maxX, 120.0);
  EXPECT_EQ(box.maxY, 10.0);
}

TEST(Surfaces, EveryFormOfAPointGivesTheSamePoint) {
  const char* const forms[] = {
      "<P id=\"5\">10 10 4</P>",
      "<P id='5'>10 10 4</P>",
      "<P   id = \"5\"  >\n10\t10\r\n4 </P >",
      "<P code=\"a>b\" id=\"5\" desc='\"'>10 10 4</P>",
      "<P id=\"5\">10 <!-- </P> -->10 4</P>",
      "<P id=\"5\"><![CDATA[10 10]]> 4</P>",
      "<P id=\"5\">10 10 &#52;</P>",
      "<P id=\"5\">1.0e1 +10.0 4.</P>",
      "<P id=\"5\"><?x y?>10 10 4<Feature>9 9 9</Feature></P>",
      "<P id=\"005\">10 10 4 77</P>",
      "<x:P id=\"5\">10 10 4</x:P>",
  };
  for (const char* const form : forms) {
    SCOPED_TRACE(form);
    const auto drawing =
        read(tin("<P id=\"7\">0 0 1</P><P id=\"100\">0 10 2</P>" + std::string(form), "<F>7 100 5</F>"));
    const auto& surface = drawing.surfaces.at(0).surface;
    ASSERT_EQ(surface.counts().triangles, 1U);
    EXPECT_EQ(surface.box().maxY, 10.0);
    EXPECT_EQ(surface.maxElevation(), 4.0);
  }
}

TEST(Surfaces, FacesAreTakenOrCountedByTheirKind) {
  struct Row {
    const char* face;
    std::size_t triangles;
    const char* diagnostic;
  };
  const Row rows[] = {
      {"<F>7 100 3</F>", 1, ""},
      {"<F n=\"1 2 0\" b=\"3\">7 -100 3</F>", 1, ""},
      {"<F i=\"0\">7 100 3</F>", 1, ""},
      {"<F i=\"1\">100 5 3</F>", 0, "1 invisible face isn't part of the surface"},
      {"<F>7 100 5 3</F>", 2, ""},
      {"<F>7 100 5 5</F>", 1, ""},
      {"<F>7 100 999</F>", 0, "1 face whose points aren't all there left out"},
      {"<F>7 7 3</F>", 0, "1 face that names a point twice left out"},
      {"<F>7 100</F>", 0, "1 unreadable face left out"},
      {"<F>7 100 3 5 7</F>", 0, "1 unreadable face left out"},
      {"<F>7 100 3.5</F>", 0, "1 unreadable face left out"},
      {"<F>7 100 99999999999999999999</F>", 0, "1 unreadable face left out"},
      {"<F/>", 0, "1 unreadable face left out"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.face);
    const auto drawing = read(tin(kSquare, row.face));
    EXPECT_EQ(drawing.surfaces.at(0).surface.counts().triangles, row.triangles);
    EXPECT_THAT(diagnosticsOf(drawing), HasSubstr(row.diagnostic));
  }
}

TEST(Surfaces, PointsAreLeftOutWithACountAndTheFirstLine) {
  struct Row {
    const char* point;
    const char* diagnostic;
  };
  const Row rows[] = {
      {"\n<P id=\"9\">1 2</P>", "1 point without an elevation left out (first in line 2: P 9: no elevation)"},
      {"\n<P id=\"9\">1,5 2 3</P>", "1 unreadable point left out (first in line 2: P 9: '1,5' is not a number"},
      {"<P id=\"9\"/>", "1 unreadable point left out"},
      {"<P>1 2 3</P>", "1 point without a usable id left out"},
      {"<P id=\"x\">1 2 3</P>", "1 point without a usable id left out"},
      {"<P id=\"7\">1 2 3</P>", "1 point with an id given before left out"},
      {"<P id=\"9\" pntRef=\"gone\"/>", "1 unreadable point left out"},
      {"<Q/>stray", "2 other items among its points or faces passed over"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.point);
    const auto drawing = read(tin(std::string(kSquare) + row.point, "<F>7 100 3</F>"));
    EXPECT_EQ(drawing.surfaces.at(0).surface.counts().triangles, 1U);
    EXPECT_THAT(diagnosticsOf(drawing), HasSubstr(row.diagnostic));
  }
}

TEST(Surfaces, SignApartFromItsNumberIsPutTogether) {
  const auto drawing =
      read(tin("<P id=\"1\">0 0 -\n70.029</P><P id=\"2\">1 0 0</P><P id=\"3\">0 1 0</P>", "<F>1 2 3</F>"));
  EXPECT_EQ(drawing.surfaces.at(0).surface.minElevation(), -70.029);
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("sign stood apart"));
}

TEST(Surfaces, FacesMayStandBeforeTheirPoints) {
  const auto drawing =
      read(metric("<Surfaces><Surface name=\"T\"><Definition><Faces><F>1 2 3</F></Faces><Pnts><P id=\"1\">0 0 1</P><P "
                  "id=\"2\">0 1 1</P>"
                  "<P id=\"3\">1 0 1</P></Pnts></Definition></Surface></Surfaces>"));
  EXPECT_EQ(drawing.surfaces.at(0).surface.counts().triangles, 1U);
}

TEST(Surfaces, PointByReferenceLiesOnItsPoint) {
  const auto drawing = read(
      metric("<CgPoints><CgPoint name=\"c\">5 6 7</CgPoint></CgPoints><Surfaces><Surface name=\"T\"><Definition><Pnts>"
             "<P id=\"1\">0 0 1</P><P id=\"2\">0 1 1</P><P id=\"3\" pntRef=\"c\"/></Pnts><Faces><F>1 2 "
             "3</F></Faces></Definition>"
             "</Surface></Surfaces>"));
  EXPECT_EQ(drawing.surfaces.at(0).surface.maxElevation(), 7.0);
}

TEST(Surfaces, WithoutDefinitionAreEmptyAndKept) {
  const auto drawing =
      read(metric("<Surfaces><Surface name=\"N\"><SourceData><Breaklines><x>1</x></Breaklines></SourceData>"
                  "</Surface><Surface name=\"N\"/></Surfaces>"));
  ASSERT_EQ(drawing.surfaces.size(), 2U);
  EXPECT_TRUE(drawing.surfaces[0].surface.isEmpty());
  EXPECT_NE(drawing.surfaces[0].handle, drawing.surfaces[1].handle);
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("surface 'N': has no Definition and is empty"));
}

/// A grid of points of every form and numbering, longer than several blocks of the reader, against its own sums.
TEST(Surfaces, BlocksOfTheReaderCutNothing) {
  constexpr int kSide = 320;
  const char* const kEighths[] = {".0", ".125", ".25", ".375", ".5", ".625", ".75", ".875"};
  for (const int stride : {1, 7919}) {
    std::string points;
    std::string faces;
    constexpr int kCount = kSide * kSide;
    double sum = 0.0;
    for (int k = 0; k < kCount; ++k) {
      const int i = static_cast<int>(static_cast<long long>(k) * stride % kCount);
      const double z = (i * 37 % 1000) / 8.0;
      sum += z;
      points += std::string("<P id=\"") + std::to_string(i + 1) + "\">" +
                (k % 11 == 0 ? "<!--" + std::string(k % 97, 'x') + "-->" : "") + std::to_string(i / kSide) + "." +
                std::string(k % 5 + 1, '0') + " " + std::to_string(i % kSide) + " " +
                std::to_string(i * 37 % 1000 / 8) + kEighths[i * 37 % 1000 % 8] + (k % 13 == 0 ? " </P>\n" : "</P>");
    }
    for (int r = 0; r + 1 < kSide; ++r) {
      for (int c = 0; c + 1 < kSide; ++c) {
        const int a = r * kSide + c + 1;
        faces += "<F>" + std::to_string(a) + " " + std::to_string(a + 1) + " " + std::to_string(a + kSide + 1) + " " +
                 std::to_string(a + kSide) + "</F>";
      }
    }
    const auto drawing = read(tin(points, faces));
    const auto& surface = drawing.surfaces.at(0).surface;
    EXPECT_EQ(surface.counts().triangles, 2U * (kSide - 1) * (kSide - 1));
    double read = 0.0;
    for (const auto& p : surface.points()) {
      read += p.z;
      const int i = static_cast<int>(p.y) * kSide + static_cast<int>(p.x);
      EXPECT_EQ(p.z, (i * 37 % 1000) / 8.0);
    }
    EXPECT_EQ(read, sum);
    EXPECT_EQ(diagnosticsOf(drawing), "");
  }
}

}  // namespace
}  // namespace lvx::landxml::testing
