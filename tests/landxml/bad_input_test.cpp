#include <cstdio>
#include <filesystem>
#include <fstream>

#include "drawing_text.h"
#include "landxml/detail/scanner.h"

namespace lvx::landxml::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::string fileErrorOf(const std::string& path) {
  try {
    (void)readDrawing(path);
  } catch (const ReadError& error) {
    return error.what();
  }
  return {};
}

TEST(BadInput, MissingFileIsNamed) {
  EXPECT_THAT(fileErrorOf("no/such/road.xml"), StartsWith("landxml: can't open the file: "));
  EXPECT_THAT(fileErrorOf("no/such/road.xml"), EndsWith("(no/such/road.xml)"));
}

TEST(BadInput, FolderIsNoFile) { EXPECT_THAT(fileErrorOf("."), HasSubstr("it is a folder")); }

TEST(BadInput, EachKindOfWrongFileIsToldWithItsLine) {
  struct Row {
    const char* what;
    std::string text;
    const char* message;
  };
  const std::string deep = [] {
    std::string text = "<LandXML>";
    for (int i = 0; i < 5000; ++i) text += "<a>";
    return text;
  }();
  const Row rows[] = {
      {"empty", "", "the file holds no XML: it is empty or has no element (road.xml)"},
      {"blank", " \n ", "the file holds no XML: it is empty or has no element (road.xml)"},
      {"text", "\nstation offset elevation\n", "not an XML file: it begins with 'station offset"},
      {"other root", "<?xml version=\"1.0\"?>\n<svg/>", "not a LandXML file: its root is <svg> (road.xml:2)"},
      {"other namespace", "<LandXML xmlns=\"http://example.com/x\"/>",
       "its namespace is 'http://example.com/x' (road.xml:1)"},
      {"document type", "<!DOCTYPE LandXML [<!ENTITY a \"b\">]>\n<LandXML>&a;</LandXML>", "document type (DOCTYPE)"},
      {"unknown entity", "<LandXML>\n<Project name=\"&a;\"/></LandXML>", "'&a;' isn't an entity of XML (road.xml:2)"},
      {"byte 0", std::string("<LandXML>\n\0</LandXML>", 20), "a byte 0 stands in the file"},
      {"deep", deep, "nested deeper than 200 levels"},
      {"mismatch", "<LandXML>\n<Units>\n</Alignments></LandXML>",
       "</Alignments> stands where </Units> is due (road.xml:3)"},
      {"two roots", "<LandXML/>\n<LandXML/>", "a second root element <LandXML> (road.xml:2)"},
      {"tail", "<LandXML/>\nxyz", "text stands behind the end of the root element (road.xml:2)"},
      {"twice", "<LandXML>\n<Units a=\"b\" c=\"d\"\n a=\"b\"/></LandXML>",
       "<Units> has the attribute 'a' twice (road.xml:2)"},
      {"twice in a face",
       "<LandXML><Surfaces><Surface name=\"S\"><Definition surfType=\"TIN\"><Pnts><P id=\"1\">0 0 1</P><P id=\"2\">9 0 "
       "1</P>"
       "<P id=\"3\">0 9 1</P></Pnts><Faces>\n<F n=\"0\" i=\"1\" i=\"0\">1 2 "
       "3</F></Faces></Definition></Surface></Surfaces>"
       "</LandXML>",
       "<F> has the attribute 'i' twice (road.xml:2)"},
      {"twice in a point",
       "<LandXML><Surfaces><Surface name=\"S\"><Definition surfType=\"TIN\"><Pnts>\n<P id=\"1\" id=\"2\">0 0 "
       "1</P></Pnts>"
       "</Definition></Surface></Surfaces></LandXML>",
       "<P> has the attribute 'id' twice (road.xml:2)"},
      {"attribute", "<LandXML>\n<Units a=b/></LandXML>", "an attribute's value has no quotes (road.xml:2)"},
      {"tag in tag", "<LandXML>\n<Units <Metric/></LandXML>", "'<' stands inside a tag (road.xml:2)"},
      {"encoding", "<?xml version=\"1.0\" encoding=\"klingon\"?><LandXML/>", "the encoding 'KLINGON' isn't known"},
      {"mismatch among points", tin("\n<P id=\"1\">1 2 3</F>", ""), "</F> stands where </P> is due (road.xml:2)"},
      {"points closed as faces", tin("\n<P id=\"1\">1 2 3</P></Faces>", ""),
       "</Faces> stands where </Pnts> is due (road.xml:2)"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const std::string message = errorOf(row.text);
    EXPECT_THAT(message, StartsWith("landxml: "));
    EXPECT_THAT(message, HasSubstr(row.message));
  }
}

TEST(BadInput, FileCutAnywhereIsRefused) {
  const std::string text =
      "<?xml version=\"1.0\"?><!-- a --><LandXML><Project name='x'><![CDATA[t]]></Project><Surfaces><Surface "
      "name=\"T\">"
      "<Definition surfType=\"TIN\"><Pnts><P id=\"1\">1 2 3</P></Pnts><Faces><F>1 2 "
      "3</F></Faces></Definition></Surface>"
      "</Surfaces></LandXML>";
  ASSERT_EQ(errorOf(text), "");
  for (std::size_t size = 0; size < text.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_THAT(errorOf(text.substr(0, size)), StartsWith("landxml: "));
  }
}

TEST(BadInput, PointWithEndlessTextIsRefused) {
  EXPECT_THAT(errorOf(tin("<P id=\"1\">" + std::string(3'000'000, '1') + "</P>", "")),
              HasSubstr("longer than any point"));
}

TEST(BadInput, NumbersOutOfRangeAreToldAndLeftOut) {
  for (const char* const number : {"NaN", "INF", "1e400", "1e300", "1,5", "0x10", "--1"}) {
    SCOPED_TRACE(number);
    const auto drawing =
        read(metric("<CgPoints><CgPoint name=\"1\">" + std::string(number) + " 2 3</CgPoint></CgPoints>"));
    EXPECT_TRUE(drawing.points.empty());
    EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("point '1': '" + std::string(number) + "' is not a number"));
  }
}

std::string scanErrorOf(const std::string& text, const detail::ScanLimits& limits) {
  try {
    (void)detail::scanDocument(detail::openText(text), "road.xml", {}, detail::ScanMode::Read, limits);
  } catch (const ReadError& error) {
    return error.what();
  }
  return {};
}

TEST(BadInput, LimitsOfPointsAndOfOtherElementsAreToldAndReachedByTheirOwnKindAlone) {
  const std::string points =
      "<LandXML><CgPoints>\n<CgPoint name=\"1\" code=\"A\" desc=\"B\">1 2 3</CgPoint>\n"
      "<CgPoint name=\"2\">1 2 3</CgPoint></CgPoints>";
  EXPECT_EQ(scanErrorOf(points + "</LandXML>", {.points = 2, .nodes = 2}), "");
  EXPECT_THAT(scanErrorOf(points + "</LandXML>", {.points = 1, .nodes = 2}),
              HasSubstr("more than 1 CgPoint elements (road.xml:3)"));
  EXPECT_EQ(scanErrorOf(points + "<Project name=\"P\"/></LandXML>", {.points = 2, .nodes = 4}), "");
  EXPECT_THAT(scanErrorOf(points + "\n<Project name=\"P\"/></LandXML>", {.points = 2, .nodes = 3}),
              HasSubstr("more than 3 elements and attributes besides CgPoint, P and F (road.xml:4)"));
  EXPECT_EQ(detail::ScanLimits().nodes, 30'000'000U);
  EXPECT_EQ(detail::ScanLimits().points, 100'000'000U);
}

TEST(BadInput, CancelledLoadSaysSo) {
  const ReadOptions options{[](const Progress&) { return false; }};
  try {
    (void)readDrawingText("<LandXML/>", "road.xml", options);
    FAIL() << "not cancelled";
  } catch (const Cancelled& error) {
    EXPECT_STREQ(error.what(), "landxml: cancelled (road.xml)");
  }
}

TEST(BadInput, OddFileNamesOpen) {
  const auto folder = std::filesystem::path(::testing::TempDir()) / "landxml odd %s <names>";
  std::filesystem::create_directories(folder);
  const std::string path = (folder /
                            "stra\xC3\x9F"
                            "e & 100%.xml")
                               .string();
  std::ofstream(path) << metric("");
  EXPECT_EQ(readDrawing(path).path, path);
  std::filesystem::remove_all(folder);
}

TEST(Progress, RisesToTheWholeFile) {
  std::string points;
  for (int i = 0; i < 400'000; ++i) points += "<P id=\"" + std::to_string(i + 1) + "\">1 2 3</P>";
  const std::string text = tin(points, "");
  std::uint64_t last = 0;
  std::size_t calls = 0;
  const ReadOptions options{[&](const Progress& progress) {
    EXPECT_GE(progress.bytesDone, last);
    EXPECT_EQ(progress.bytesTotal, text.size());
    last = progress.bytesDone;
    ++calls;
    return true;
  }};
  (void)readDrawingText(text, "road.xml", options);
  EXPECT_EQ(last, text.size());
  EXPECT_GT(calls, 2U);
}

}  // namespace
}  // namespace lvx::landxml::testing
