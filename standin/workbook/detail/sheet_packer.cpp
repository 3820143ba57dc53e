#include "workbook/detail/sheet_packer.h"

#include <array>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include <zlib.h>

namespace lvx::workbook::detail {

namespace {

constexpr std::size_t kWindow = 32768;  // what deflate looks back on
constexpr int kRaw = -15;               // without a head, as archives hold it
constexpr int kMemory = 8;

/// How far a match is looked for: half of the time of level 6, for a file larger by less than a hundredth, since rows repeat
/// what stands near by.
constexpr int kLevel = 6;
constexpr int kGoodLength = 8;
constexpr int kLazyLength = 16;
constexpr int kNiceLength = 64;
constexpr int kChain = 16;

class Deflater {
 public:
  Deflater() {
    if (deflateInit2(&stream_, kLevel, Z_DEFLATED, kRaw, kMemory, Z_DEFAULT_STRATEGY) != Z_OK) throw std::bad_alloc();
  }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;
  ~Deflater() { deflateEnd(&stream_); }

  /// `before` is what stands before the text; the last text ends the stream.
  void pack(std::string_view before, std::string_view text, bool isLast, std::string& out) {
    deflateReset(&stream_);
    deflateTune(&stream_, kGoodLength, kLazyLength, kNiceLength, kChain);
    if (!before.empty()) deflateSetDictionary(&stream_, bytesOf(before), static_cast<uInt>(before.size()));
    out.resize(deflateBound(&stream_, text.size()) + 16);
    std::size_t size = 0;
    stream_.next_in = const_cast<Bytef*>(bytesOf(text));
    stream_.avail_in = static_cast<uInt>(text.size());
    do {
      if (size == out.size()) out.resize(out.size() + out.size() / 2);
      stream_.next_out = static_cast<Bytef*>(static_cast<void*>(out.data() + size));
      stream_.avail_out = static_cast<uInt>(out.size() - size);
      deflate(&stream_, isLast ? Z_FINISH : Z_SYNC_FLUSH);
      size = out.size() - stream_.avail_out;
    } while (stream_.avail_out == 0);
    out.resize(size);
  }

  static const Bytef* bytesOf(std::string_view text) {
    return static_cast<const Bytef*>(static_cast<const void*>(text.data()));
  }

 private:
  z_stream stream_{};
};

}  // namespace

struct SheetPacker::Piece {
  std::string before;
  std::string text;
  std::string packed;
  unsigned long checksum = 0;
  std::optional<Deflater> deflater;
};

struct SheetPacker::State {
  explicit State(standin_platform::Crew& theCrew) : crew(theCrew) {}

  /// Fills as many pieces of `batch` as there are, and gives their number.
  std::size_t fill(std::vector<Piece>& batch, const NextPiece& next) {
    std::size_t count = 0;
    for (; !isEnded && count < batch.size(); ++count) {
      Piece& piece = batch[count];
      piece.text.clear();
      piece.before = last;
      isEnded = !next(piece.text);
      // A short piece keeps what was before it.
      last += piece.text;
      if (last.size() > kWindow) last.erase(0, last.size() - kWindow);
    }
    return count;
  }

  standin_platform::Crew& crew;
  std::string last;  ///< the end of all text so far
  bool isEnded = false;
};

SheetPacker::SheetPacker(standin_platform::Crew& crew) : state_(std::make_unique<State>(crew)) {}
SheetPacker::~SheetPacker() = default;

SheetPacker::Packed SheetPacker::pack(const NextPiece& next, const std::function<void(std::string_view)>& write) {
  const std::size_t size = state_->crew.size() > 1 ? std::size_t{2} * state_->crew.size() : 1;
  std::vector<Piece> batch(size);
  std::vector<Piece> following(size);
  Packed packed;
  std::size_t count = state_->fill(batch, next);
  while (count > 0) {
    std::size_t nextCount = 0;
    // The last piece is known before it is packed.
    const bool isLastBatch = state_->isEnded;
    const std::function<void()> makeNext = [&] { nextCount = state_->fill(following, next); };
    state_->crew.run(isLastBatch ? std::function<void()>() : makeNext, count, [&](std::size_t i) {
      Piece& piece = batch[i];
      if (!piece.deflater) piece.deflater.emplace();
      piece.deflater->pack(piece.before, piece.text, isLastBatch && i + 1 == count, piece.packed);
      piece.checksum = crc32_z(0, Deflater::bytesOf(piece.text), piece.text.size());
    });
    for (std::size_t i = 0; i < count; ++i) {
      const Piece& piece = batch[i];
      packed.checksum = crc32_combine(packed.checksum, piece.checksum, static_cast<z_off_t>(piece.text.size()));
      packed.size += piece.text.size();
      write(piece.packed);
    }
    std::swap(batch, following);
    count = nextCount;
  }
  return packed;
}

}  // namespace lvx::workbook::detail
