// Drawings that are kept compressed: gzip, and zip with one drawing in it.
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <minizip/zip.h>
#include <zlib.h>

#include "drawing_compare.h"
#include "landxml/project.h"
#include "landxml/reader.h"
#include "landxml/writer.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::landxml {
namespace {

using test::TemporaryFolder;
using ::testing::HasSubstr;

std::string gzipOf(std::string_view text) {
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, 6, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY), Z_OK);
  std::string packed(deflateBound(&stream, static_cast<uLong>(text.size())) + 100, '\0');
  std::string input(text);
  stream.next_in = reinterpret_cast<Bytef*>(input.data());
  stream.avail_in = static_cast<uInt>(input.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

struct Entry {
  std::string name;
  std::string text;
  const char* password = nullptr;
};

std::string zipOf(const std::vector<Entry>& entries) {
  const TemporaryFolder folder;
  const std::string path = (folder / "a.zip").string();
  zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
  for (const Entry& entry : entries) {
    const zip_fileinfo info{};
    const auto crc = entry.password == nullptr ? 0
                                               : crc32(0, reinterpret_cast<const Bytef*>(entry.text.data()),
                                                       static_cast<uInt>(entry.text.size()));
    EXPECT_EQ(zipOpenNewFileInZip3(zip, entry.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED, 6, 0,
                                   -MAX_WBITS, 8, Z_DEFAULT_STRATEGY, entry.password, crc),
              ZIP_OK);
    EXPECT_EQ(zipWriteInFileInZip(zip, entry.text.data(), static_cast<unsigned>(entry.text.size())), ZIP_OK);
    EXPECT_EQ(zipCloseFileInZip(zip), ZIP_OK);
  }
  EXPECT_EQ(zipClose(zip, nullptr), ZIP_OK);
  return test::fileBytes(path);
}

class Compressed : public ::testing::Test {
 protected:
  std::string put(const std::string& name, const std::string& bytes) const {
    const std::string path = (folder_ / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  /// The words with which reading fails; empty where it doesn't.
  static std::string failureOf(const std::string& path) {
    try {
      (void)readDrawing(path);
      return {};
    } catch (const ReadError& error) {
      EXPECT_THAT(error.what(), HasSubstr(path));
      return error.what();
    }
  }

  TemporaryFolder folder_;
  const std::string text_ = test::fileBytes(test::inSource("/examples/valley-road.xml"));
};

TEST_F(Compressed, HoldsTheSameDrawing) {
  const civil::Drawing wanted = readDrawing(put("plain.xml", text_));
  const std::string half = text_.substr(0, text_.size() / 2);
  const std::vector<std::pair<std::string, std::string>> files{
      {"a.xml.gz", gzipOf(text_)},
      {"gzip under another name.xml", gzipOf(text_)},
      {"parts.gz", gzipOf(half) + gzipOf(text_.substr(half.size()))},
      {"filled up.gz", gzipOf(text_) + std::string(1'000, '\0')},
      {"a.zip", zipOf({{"road.xml", text_}})},
      {"folders.zip", zipOf({{"folder/", ""}, {"folder/Road.XML", text_}, {"__MACOSX/folder/road.xml", "x"}})},
      {"beside others.zip", zipOf({{"readme.txt", "about"}, {"road.xml", text_}, {"plan.pdf", "%PDF"}})},
      {"one.zip", zipOf({{"road", text_}})},
  };
  for (const auto& [name, bytes] : files) {
    const std::string path = put(name, bytes);
    const civil::Drawing drawing = readDrawing(path);
    EXPECT_EQ(testing::DrawingComparison::difference(drawing, wanted), "") << name;
    EXPECT_EQ(drawing.file.size, bytes.size()) << name;
    ReadOptions names;
    names.namesAlone = true;
    EXPECT_EQ(readDrawing(path, names).surfaces.size(), wanted.surfaces.size()) << name;
  }
}

TEST_F(Compressed, TellsWhatIsWrongWithItsFile) {
  const std::string gzip = gzipOf(text_);
  const std::string zip = zipOf({{"road.xml", text_}});
  const auto damaged = [](std::string bytes, std::size_t at) {
    bytes[at] = static_cast<char>(bytes[at] ^ 0x55);
    return bytes;
  };
  struct Row {
    const char* name;
    std::string bytes;
    const char* words;
  };
  const std::vector<Row> rows{
      {"head.gz", gzip.substr(0, 2), "the gzip file is cut off"},
      {"cut.gz", gzip.substr(0, gzip.size() / 2), "the gzip file is cut off"},
      {"without its end.gz", gzip.substr(0, gzip.size() - 5), "the gzip file is cut off"},
      {"sum.gz", damaged(gzip, gzip.size() - 6), "the gzip file is damaged (incorrect data check)"},
      {"garbage.gz", gzip + "abc", "the gzip file is damaged (incorrect header check)"},
      {"cut.zip", zip.substr(0, zip.size() / 2), "the zip archive is damaged or cut off"},
      {"sum.zip", damaged(zip, zip.rfind("PK\x01\x02") + 16), "the zip archive is damaged or cut off"},
      {"empty.zip", zipOf({}), "holds no drawing"},
      {"none.zip", zipOf({{"a.txt", "a"}, {"b.txt", "b"}}), "holds no drawing"},
      {"two.zip", zipOf({{"a.xml", text_}, {"b.xml", text_}}), "holds 2 drawings ('a.xml', 'b.xml'): unpack it"},
      {"three.zip", zipOf({{"a.xml", ""}, {"b.xml", ""}, {"c.xml", ""}}), "holds 3 drawings ('a.xml', 'b.xml', …)"},
      {"locked.zip", zipOf({{"a.xml", text_, "secret"}}), "'a.xml' in the zip archive is locked by a password"},
      {"other.gz", gzipOf("<svg/>"), "not a LandXML file: its root is <svg>"},
      {"nothing.gz", gzipOf(""), "holds no XML"},
      {"cut drawing.gz", gzipOf(text_.substr(0, text_.size() / 2)), "the file ends inside"},
  };
  for (const Row& row : rows) EXPECT_THAT(failureOf(put(row.name, row.bytes)), HasSubstr(row.words)) << row.name;
}

TEST_F(Compressed, CountsLinesOfTheDrawing) {
  const std::string path = put("a.xml.gz", gzipOf("<LandXML>\n\n<Surfaces></LandXML>"));
  EXPECT_THAT(failureOf(path), HasSubstr(":3"));
}

TEST_F(Compressed, UnpacksNoBomb) {
  std::string bomb = gzipOf("<LandXML>");
  const std::string blanks = gzipOf(std::string(20'000'000, ' '));
  for (int i = 0; i < 6; ++i) bomb += blanks;
  EXPECT_THAT(failureOf(put("bomb.gz", bomb)), HasSubstr("unpacks to more than 100 MB and 100 times its size"));
}

TEST_F(Compressed, StandsBesideOthersInAProject) {
  const std::string road = put("road.xml", test::fileBytes(test::inSource("/examples/valley-road/road.xml")));
  const std::string ground =
      put("ground.zip", zipOf({{"ground.xml", test::fileBytes(test::inSource("/examples/valley-road/ground.xml"))}}));
  civil::Drawing drawing = readProject({{road}, {ground}});
  EXPECT_EQ(drawing.surfaces.size(), 1U);
  const std::string packedRoad = put("road.gz", gzipOf(test::fileBytes(road)));
  EXPECT_EQ(alignmentFirst({{ground}, {packedRoad}}).front().path, packedRoad);
  // What isn't changed isn't written, so a compressed file is in nobody's way.
  EXPECT_NO_THROW((void)saveProject(drawing, (folder_ / "saved.xml").string()));
}

/// As a user does who gives a group of sample lines another text.
void change(civil::Drawing& drawing) {
  for (auto& site : drawing.sites) {
    for (auto& alignment : site.alignments) {
      for (auto& group : alignment->sampleLineGroups) group.description = "changed \u00e4";
    }
  }
}

TEST_F(Compressed, IsSavedUnpackedUnderAnotherName) {
  const std::string plain = put("road.xml", text_);
  const std::vector<std::pair<std::string, std::string>> files{{"road.xml.gz", gzipOf(text_)},
                                                               {"road.zip", zipOf({{"road.xml", text_}})}};
  for (const bool isChanged : {false, true}) {
    civil::Drawing wanted = readDrawing(plain);
    if (isChanged) change(wanted);
    const std::string wantedPath = (folder_ / "wanted.xml").string();
    (void)saveProject(wanted, wantedPath);
    for (const auto& [name, bytes] : files) {
      const std::string path = put(name, bytes);
      civil::Drawing drawing = readDrawing(path);
      if (isChanged) change(drawing);
      const std::string target = (folder_ / "saved.xml").string();
      const std::vector<SavedFile> saved = saveProject(drawing, target);
      EXPECT_EQ(test::fileBytes(target), test::fileBytes(wantedPath)) << name;
      EXPECT_EQ(test::fileBytes(target) == text_, !isChanged);
      EXPECT_EQ(test::fileBytes(path), bytes) << name;
      // It lives on there.
      ASSERT_EQ(saved.size(), 1U);
      drawing.path = target;
      drawing.file = saved.front().mark;
      change(drawing);
      EXPECT_NO_THROW((void)saveProject(drawing, target));
    }
  }
}

TEST_F(Compressed, IsntSavedInPlaceNorUnpackedUnderACompressedName) {
  const std::string bytes = gzipOf(text_);
  const std::string path = put("road.xml.gz", bytes);
  civil::Drawing drawing = readDrawing(path);
  EXPECT_NO_THROW((void)saveProject(drawing, path)) << "there is nothing to save";
  change(drawing);
  for (const std::string& target : {path, (folder_ / "other.XML.GZ").string(), (folder_ / "other.zip").string()}) {
    try {
      (void)saveProject(drawing, target);
      ADD_FAILURE() << target;
    } catch (const SaveError& error) {
      EXPECT_THAT(error.what(), HasSubstr("the drawing was read from a compressed file (gzip)"));
      EXPECT_THAT(error.what(), HasSubstr("save it under another name, one that ends with .xml"));
    }
    EXPECT_EQ(test::fileBytes(path), bytes);
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "other.XML.GZ"));
}

TEST_F(Compressed, IsntSavedOnceItsFileWasChanged) {
  const std::string path = put("road.xml.gz", gzipOf(text_));
  civil::Drawing drawing = readDrawing(path);
  const std::string target = (folder_ / "saved.xml").string();
  struct Row {
    std::string bytes;
    const char* reason;
  };
  // The same text, packed anew, is another file as well: nobody looked what is in it.
  for (const Row& row :
       {Row{gzipOf(text_ + "\n"), "was changed by another program"},
        Row{gzipOf(text_.substr(0, 100)) + gzipOf(text_.substr(100)), "was changed by another program"},
        Row{gzipOf(text_).substr(0, 200), "the gzip file is cut off"}}) {
    (void)put("road.xml.gz", row.bytes);
    try {
      (void)saveProject(drawing, target);
      ADD_FAILURE() << row.reason;
    } catch (const SaveError& error) {
      EXPECT_THAT(error.what(), HasSubstr(row.reason));
    }
    EXPECT_FALSE(std::filesystem::exists(target));
  }
}

}  // namespace
}  // namespace lvx::landxml
