#include "workbook/detail/sheet_packer.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zlib.h>

#include "support/random_numbers.h"

namespace lvx::workbook::detail {
namespace {

/// Rows that repeat each other over some distance.
std::string rows(std::size_t size) {
  std::string text;
  for (std::size_t i = 0; text.size() < size; ++i)
    text += "<row r=\"" + std::to_string(i) + "\"><c><v>" + std::to_string(i * 7919 % 100003) + "</v></c></row>";
  text.resize(size);
  return text;
}

struct Outcome {
  std::string bytes;
  SheetPacker::Packed told;
};

Outcome packed(const std::string& text, unsigned threads) {
  standin_platform::Crew crew(threads);
  Outcome outcome;
  std::size_t at = 0;
  outcome.told = SheetPacker(crew).pack(
      [&](std::string& piece) {
        piece += text.substr(at, SheetPacker::kPiece);
        at += SheetPacker::kPiece;
        return at < text.size();
      },
      [&outcome](std::string_view bytes) { outcome.bytes += bytes; });
  return outcome;
}

std::string unpacked(const std::string& bytes, std::size_t size) {
  std::string text(size + 1, '\0');
  z_stream stream{};
  inflateInit2(&stream, -15);
  std::string in = bytes;
  stream.next_in = reinterpret_cast<Bytef*>(in.data());
  stream.avail_in = static_cast<uInt>(in.size());
  stream.next_out = reinterpret_cast<Bytef*>(text.data());
  stream.avail_out = static_cast<uInt>(text.size());
  EXPECT_EQ(inflate(&stream, Z_FINISH), Z_STREAM_END);
  EXPECT_EQ(stream.avail_in, 0U) << "bytes behind the end";
  text.resize(stream.total_out);
  inflateEnd(&stream);
  return text;
}

TEST(SheetPacker, GivesTheTextBackAndTheSameBytesForAnyNumberOfThreads) {
  const std::size_t piece = SheetPacker::kPiece;
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{40000}, piece - 1, piece, piece + 1,
                                 2 * piece, 5 * piece + 17, 16 * piece, 17 * piece + 3}) {
    const std::string text = rows(size);
    const Outcome one = packed(text, 1);
    EXPECT_EQ(unpacked(one.bytes, size), text) << size;
    EXPECT_EQ(one.told.size, size);
    EXPECT_EQ(one.told.checksum, crc32_z(0, reinterpret_cast<const Bytef*>(text.data()), size)) << size;
    for (const unsigned threads : {2U, 3U, 8U}) {
      const Outcome several = packed(text, threads);
      EXPECT_TRUE(several.bytes == one.bytes) << size << " by " << threads;
      EXPECT_EQ(several.told.checksum, one.told.checksum);
    }
  }
}

TEST(SheetPacker, LooksBackAcrossPieces) {
  // What a piece begins with stands at the end of the one before it, and can't be packed by itself.
  std::string block;
  auto generator = test::seededByTestName();
  while (block.size() < 30000) block += static_cast<char>(generator() & 0xFFU);
  const std::string text = std::string(SheetPacker::kPiece - block.size(), 'a') + block + block;
  EXPECT_LT(packed(text, 1).bytes.size(), block.size() + block.size() / 10);
}

TEST(SheetPacker, PassesOnWhatItsTextAndItsTargetThrow) {
  standin_platform::Crew crew(2);
  const auto endless = [](std::string& piece) {
    piece += rows(SheetPacker::kPiece);
    return true;
  };
  int given = 0;
  const auto failing = [&](std::string& piece) {
    if (++given == 7) throw std::runtime_error("no rows");
    return endless(piece);
  };
  EXPECT_THROW(SheetPacker(crew).pack(failing, [](std::string_view) {}), std::runtime_error);
  EXPECT_THROW(SheetPacker(crew).pack(endless, [](std::string_view) { throw std::runtime_error("full"); }),
               std::runtime_error);
}

}  // namespace
}  // namespace lvx::workbook::detail
