#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "landxml/detail/ground_filter.h"
#include "landxml/reader.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

namespace fs = std::filesystem;

/// Every name of a drawing with what it belongs to.
std::vector<std::string> namesOf(const civil::Drawing& drawing) {
  std::vector<std::string> names;
  const auto inSite = [&](const civil::Site& site) {
    for (const auto& alignment : site.alignments) {
      const std::string place = site.name + "/" + alignment->name;
      names.push_back(place);
      for (const auto& profile : alignment->profiles) names.push_back(place + "/profile " + profile.name);
      for (const auto& group : alignment->sampleLineGroups) names.push_back(place + "/lines " + group.name);
    }
  };
  inSite(drawing.siteless);
  for (const auto& site : drawing.sites) inSite(site);
  for (const auto& surface : drawing.surfaces) names.push_back("surface " + surface.name);
  for (const auto& group : drawing.pointGroups) names.push_back("points " + group.name);
  return names;
}

landxml::ReadOptions namesAlone() {
  landxml::ReadOptions options;
  options.namesAlone = true;
  return options;
}

TEST(ReadingNamesAlone, FindsThoseOfTheWholeDrawingInEveryFileOfTheTree) {
  std::size_t count = 0;
  for (const char* folder : {"/examples", "/tests"})
    for (const auto& entry : fs::recursive_directory_iterator(inSource(folder))) {
      if (entry.path().extension() != ".xml") continue;
      const std::string path = entry.path().string();
      civil::Drawing whole;
      try {
        whole = landxml::readDrawing(path);
      } catch (const landxml::ReadError&) {
        EXPECT_THROW((void)landxml::readDrawing(path, namesAlone()), landxml::ReadError) << path;
        continue;
      }
      EXPECT_EQ(namesOf(landxml::readDrawing(path, namesAlone())), namesOf(whole)) << path;
      ++count;
    }
  EXPECT_GE(count, 4U);
}

TEST(ReadingNamesAlone, LeavesTheGroundOut) {
  const civil::Drawing drawing = landxml::readDrawing(inSource("/examples/valley-road/ground.xml"), namesAlone());
  ASSERT_FALSE(drawing.surfaces.empty());
  EXPECT_TRUE(drawing.surfaces.front().surface.triangles().empty());
}

TEST(ReadingNamesAlone, ReadsAllWhereAnEndTagStandsInAComment) {
  const TemporaryFolder folder;
  const std::string path = (folder / "odd.xml").string();
  std::ofstream(path) << "<LandXML><Surfaces><Surface name='A'><Definition surfType='TIN'><Pnts><!-- </Pnts> --><P "
                         "id='1'>0 0 0</P><P id='2'>0 1 0</P><P id='3'>1 0 0</P></Pnts><Faces><F>1 2 "
                         "3</F></Faces></Definition></Surface></Surfaces></LandXML>";
  EXPECT_EQ(namesOf(landxml::readDrawing(path, namesAlone())), std::vector<std::string>{"surface A"});
}

// ---------------------------------------------------------------- the filter

/// Gives a text in pieces of so many bytes.
class InPieces : public landxml::detail::ByteSource {
 public:
  InPieces(std::string text, std::size_t piece) : text_(std::move(text)), piece_(piece) {}
  std::size_t read(char* to, std::size_t size) override {
    const std::size_t count = text_.copy(to, std::min(size, piece_), at_);
    at_ += count;
    return count;
  }
  [[nodiscard]] std::uint64_t totalBytes() const override { return text_.size(); }

 private:
  std::string text_;
  std::size_t piece_;
  std::size_t at_ = 0;
};

std::string filtered(const std::string& text, std::size_t piece) {
  const auto source = landxml::detail::withoutGround(std::make_unique<InPieces>(text, piece));
  std::string result;
  char block[7];
  while (const std::size_t count = source->read(block, sizeof block)) result.append(block, count);
  return result;
}

TEST(GroundFilter, KeepsTagsAndAllElseWhereverTheBytesAreCut) {
  struct Row {
    std::string_view whole;
    std::string_view left;
  };
  const std::vector<Row> rows{
      {"", ""},
      {"no markup", "no markup"},
      {"<a>t</a>", "<a>t</a>"},
      {"<d><Pnts a='>'><P>1</P></Pnts><Faces><F>1</F></Faces ></d>", "<d><Pnts a='>'></Pnts><Faces></Faces ></d>"},
      {"<x:Pnts>1</Pnts></x:Pnts>b", "<x:Pnts></x:Pnts>b"},
      {"<Pnts/><P>1</P>", "<Pnts/><P>1</P>"},
      {"<PntsOther>1</PntsOther>", "<PntsOther>1</PntsOther>"},
      {"<!-- <Pnts> --><b>1</b>", "<!-- <Pnts> --><b>1</b>"},
      {"<![CDATA[<Faces>]]><b>1</b>", "<![CDATA[<Faces>]]><b>1</b>"},
      {"<?p <Faces> ?><b>1</b>", "<?p <Faces> ?><b>1</b>"},
      {"<Pnts>cut", "<Pnts>cut"},
      {"<a b='", "<a b='"},
      {"<", "<"},
  };
  for (const Row& row : rows)
    for (const std::size_t piece : {1U, 2U, 3U, 5U, 1000U}) {
      // Of a cut element the filter keeps what might have begun its end.
      const std::string result = filtered(std::string(row.whole), piece);
      if (row.whole == "<Pnts>cut") {
        EXPECT_TRUE(result.starts_with("<Pnts>")) << result;
      } else {
        EXPECT_EQ(result, row.left) << row.whole << " in pieces of " << piece;
      }
    }
}

}  // namespace
}  // namespace lvx::test
