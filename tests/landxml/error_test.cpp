#include "landxml/error.h"

#include <type_traits>

#include "corridor_drawings.h"
#include "drawing_text.h"
#include "saved_file.h"

namespace lvx::landxml::testing {
namespace {

TEST(Error, HoldsReasonFileAndLineAndTellsThemInOneLine) {
  const ReadError withLine("Spiral 3: radiusEnd is not a number", "road.xml", 118);
  EXPECT_EQ(withLine.reason(), "Spiral 3: radiusEnd is not a number");
  EXPECT_EQ(withLine.file(), "road.xml");
  EXPECT_EQ(withLine.line(), 118U);
  EXPECT_STREQ(withLine.what(), "landxml: Spiral 3: radiusEnd is not a number (road.xml:118)");
  EXPECT_EQ(withLine.description(), "Spiral 3: radiusEnd is not a number (road.xml:118)");
  EXPECT_EQ(withLine.description("other.xml"), "Spiral 3: radiusEnd is not a number (other.xml:118)");

  const SaveError withoutLine("can't write the drawing", "road.xml");
  EXPECT_EQ(withoutLine.line(), 0U);
  EXPECT_STREQ(withoutLine.what(), "landxml: can't write the drawing (road.xml)");
}

TEST(Error, OfReadingTellsTheLineAsANumber) {
  try {
    (void)read("<LandXML>\n<Units>\n</Alignments></LandXML>");
    FAIL() << "no error";
  } catch (const ReadError& error) {
    EXPECT_EQ(error.reason(), "</Alignments> stands where </Units> is due");
    EXPECT_EQ(error.file(), "road.xml");
    EXPECT_EQ(error.line(), 3U);
  }
}

// Whoever saves handles the two apart, whatever words a path holds.
TEST(Error, OfAFileWhoseNameSaysCancelledIsNoCancellation) {
  static_assert(!std::is_base_of_v<SaveError, Cancelled> && !std::is_base_of_v<ReadError, Cancelled>);
  const ScratchFolder folder;
  const std::string source = folder.file("road.xml");
  writeBytes(source, ownCorridor());
  civil::Drawing drawing = readDrawing(source);
  const std::string target = folder.file("cancelled/cancelled.xml");
  try {
    saveDrawing(drawing, source, target);
    FAIL() << "saved in a folder that isn't there";
  } catch (const Cancelled&) {
    FAIL() << "told as a cancellation";
  } catch (const SaveError& error) {
    EXPECT_EQ(error.file(), target);
    EXPECT_THAT(error.reason(), ::testing::StartsWith("can't write the drawing: "));
  }
  SaveOptions options;
  options.progress = [](const Progress&) { return false; };
  EXPECT_THROW(saveDrawing(drawing, source, folder.file("copy.xml"), options), Cancelled);
}

TEST(Error, OfASourceThatCantBeReadKeepsItsPlaceWhenSavingTellsIt) {
  const ScratchFolder folder;
  const std::string source = folder.file("road.xml");
  writeBytes(source, "<LandXML>\n<Units>\n</Alignments></LandXML>");
  civil::Drawing drawing;  // of a text in memory: its file isn't known
  try {
    saveDrawing(drawing, source, folder.file("copy.xml"));
    FAIL() << "saved from a source that is no XML";
  } catch (const SaveError& error) {
    EXPECT_EQ(error.file(), source);
    EXPECT_EQ(error.line(), 3U);
    EXPECT_EQ(std::string(error.what()), "landxml: </Alignments> stands where </Units> is due (" + source + ":3)");
  }
}

}  // namespace
}  // namespace lvx::landxml::testing
