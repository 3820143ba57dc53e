#include "landxml/detail/compressed_source.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include <minizip/unzip.h>
#include <zlib.h>

#include "landxml/detail/numbers.h"

namespace lvx::landxml::detail {

namespace {

/// Bytes that were read already, and what comes behind them.
class WithHead : public ByteSource {
 public:
  WithHead(std::string head, std::unique_ptr<ByteSource> rest) : head_(std::move(head)), rest_(std::move(rest)) {}
  std::size_t read(char* to, std::size_t size) override {
    if (at_ == head_.size()) return rest_->read(to, size);
    const std::size_t count = head_.copy(to, size, at_);
    at_ += count;
    return count;
  }
  [[nodiscard]] std::uint64_t totalBytes() const override { return rest_->totalBytes(); }

 private:
  std::string head_;
  std::size_t at_ = 0;
  std::unique_ptr<ByteSource> rest_;
};

/// Refuses what a few bytes blow up to: such a file means harm, or is none of ours.
class Measure {
 public:
  Measure(std::string_view kind, const std::string& file) : kind_(kind), file_(file) {}
  /// So many bytes came out of so many.
  void check(std::uint64_t out, std::uint64_t in) const {
    constexpr std::uint64_t kAlways = 100'000'000;
    constexpr std::uint64_t kMostTimes = 100;
    if (out > kAlways && out / kMostTimes > in)
      fail("it unpacks to more than " + std::to_string(kAlways / 1'000'000) + " MB and " + std::to_string(kMostTimes) +
               " times its size (" + std::string(kind_) + "): this is no drawing",
           file_);
  }

 private:
  std::string_view kind_;
  const std::string& file_;
};

/// A gzip file, of one part or several.
class GzipSource : public ByteSource {
 public:
  GzipSource(std::unique_ptr<ByteSource> bytes, std::string file)
      : bytes_(std::move(bytes)), file_(std::move(file)), block_(kBlock) {
    constexpr int kGzipAlone = 16;
    if (inflateInit2(&stream_, MAX_WBITS + kGzipAlone) != Z_OK) throw std::bad_alloc();
  }
  GzipSource(const GzipSource&) = delete;
  GzipSource& operator=(const GzipSource&) = delete;
  ~GzipSource() override { inflateEnd(&stream_); }

  std::size_t read(char* to, std::size_t size) override {
    stream_.next_out = reinterpret_cast<Bytef*>(to);
    stream_.avail_out = static_cast<uInt>(std::min<std::size_t>(size, std::numeric_limits<uInt>::max()));
    const uInt wanted = stream_.avail_out;
    while (stream_.avail_out > 0 && !isAtEnd_) step();
    const std::size_t count = wanted - stream_.avail_out;
    out_ += count;
    measure_.check(out_, in_);
    return count;
  }
  /// By what came out so far.
  [[nodiscard]] std::uint64_t totalBytes() const override {
    const double times = in_ == 0 ? 1.0 : static_cast<double>(out_) / static_cast<double>(in_);
    return isAtEnd_ ? out_ : static_cast<std::uint64_t>(times * static_cast<double>(bytes_->totalBytes()));
  }

 private:
  static constexpr std::size_t kBlock = std::size_t{1} << 17;

  bool refill() {
    const std::size_t count = bytes_->read(block_.data(), block_.size());
    stream_.next_in = reinterpret_cast<Bytef*>(block_.data());
    stream_.avail_in = static_cast<uInt>(count);
    in_ += count;
    return count > 0;
  }

  void step() {
    if (stream_.avail_in == 0 && !refill()) {
      if (isBetween_) {
        isAtEnd_ = true;
        return;
      }
      fail("can't unpack the file: the gzip file is cut off", file_);
    }
    // Zeros behind the last part fill up a tape or a disk.
    if (isBetween_ && *stream_.next_in == 0) {
      ++stream_.next_in;
      --stream_.avail_in;
      return;
    }
    isBetween_ = false;
    const int result = inflate(&stream_, Z_NO_FLUSH);
    if (result == Z_MEM_ERROR) throw std::bad_alloc();
    if (result == Z_STREAM_END) {
      isBetween_ = true;
      if (inflateReset(&stream_) != Z_OK) throw std::bad_alloc();
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
      fail("can't unpack the file: the gzip file is damaged" +
               (stream_.msg == nullptr ? std::string() : " (" + std::string(stream_.msg) + ")"),
           file_);
    }
  }

  std::unique_ptr<ByteSource> bytes_;
  std::string file_;
  std::vector<char> block_;
  z_stream stream_{};
  Measure measure_{"gzip", file_};
  std::uint64_t in_ = 0;
  std::uint64_t out_ = 0;
  bool isBetween_ = false;  // behind the end of a part
  bool isAtEnd_ = false;
};

/// An archive in memory, as minizip reads a file.
struct ArchiveBytes {
  std::string bytes;
  std::size_t at = 0;
};

extern "C" {
voidpf openArchive(voidpf opaque, const void* /*name*/, int /*mode*/) { return opaque; }
uLong readArchive(voidpf opaque, voidpf /*stream*/, void* to, uLong size) {
  auto& archive = *static_cast<ArchiveBytes*>(opaque);
  const std::size_t count = archive.bytes.copy(static_cast<char*>(to), size, archive.at);
  archive.at += count;
  return static_cast<uLong>(count);
}
ZPOS64_T tellArchive(voidpf opaque, voidpf /*stream*/) { return static_cast<ArchiveBytes*>(opaque)->at; }
long seekArchive(voidpf opaque, voidpf /*stream*/, ZPOS64_T offset, int origin) {
  auto& archive = *static_cast<ArchiveBytes*>(opaque);
  const ZPOS64_T from = origin == ZLIB_FILEFUNC_SEEK_SET   ? 0
                        : origin == ZLIB_FILEFUNC_SEEK_CUR ? archive.at
                                                           : archive.bytes.size();
  if (offset > archive.bytes.size() || from + offset > archive.bytes.size()) return -1;
  archive.at = static_cast<std::size_t>(from + offset);
  return 0;
}
int closeArchive(voidpf /*opaque*/, voidpf /*stream*/) { return 0; }
int errorOfArchive(voidpf /*opaque*/, voidpf /*stream*/) { return 0; }
}

class ZipSource : public ByteSource {
 public:
  ZipSource(std::string bytes, std::string file) : file_(std::move(file)) {
    archive_.bytes = std::move(bytes);
    if (archive_.bytes.starts_with("PK\x05\x06")) holdsNone();  // its end is all there is
    zlib_filefunc64_def functions{openArchive, readArchive,  nullptr,        tellArchive,
                                  seekArchive, closeArchive, errorOfArchive, &archive_};
    zip_ = unzOpen2_64("", &functions);
    if (zip_ == nullptr) damaged();
    try {
      choose();
    } catch (...) {
      unzClose(zip_);
      throw;
    }
  }
  ZipSource(const ZipSource&) = delete;
  ZipSource& operator=(const ZipSource&) = delete;
  ~ZipSource() override {
    if (isOpen_) unzCloseCurrentFile(zip_);
    unzClose(zip_);
  }

  std::size_t read(char* to, std::size_t size) override {
    std::size_t done = 0;
    while (done < size && isOpen_) {
      constexpr std::size_t kMost = std::size_t{1} << 24;
      const int count = unzReadCurrentFile(zip_, to + done, static_cast<unsigned>(std::min(size - done, kMost)));
      if (count < 0) damaged();
      if (count == 0) {
        isOpen_ = false;
        if (unzCloseCurrentFile(zip_) != UNZ_OK || out_ + done != total_) damaged();
      }
      done += static_cast<std::size_t>(count);
    }
    out_ += done;
    measure_.check(out_, archive_.bytes.size());
    return done;
  }
  [[nodiscard]] std::uint64_t totalBytes() const override { return total_; }

 private:
  [[noreturn]] void damaged() const { fail("can't unpack the file: the zip archive is damaged or cut off", file_); }

  [[noreturn]] void holdsNone() const {
    fail("the zip archive holds no drawing: none of its files ends with .xml or .landxml", file_);
  }

  static bool isDrawing(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    // What one system adds to every file of an archive.
    if (name.starts_with("__macosx/")) return false;
    return name.ends_with(".xml") || name.ends_with(".landxml");
  }

  void choose() {
    struct Entry {
      std::string name;
      unz64_file_pos place;
    };
    std::vector<Entry> drawings;
    std::vector<Entry> files;
    for (int found = unzGoToFirstFile(zip_); found != UNZ_END_OF_LIST_OF_FILE; found = unzGoToNextFile(zip_)) {
      std::array<char, 65'536> name{};
      unz_file_info64 info{};
      Entry entry{};
      if (found != UNZ_OK || unzGetFilePos64(zip_, &entry.place) != UNZ_OK ||
          unzGetCurrentFileInfo64(zip_, &info, name.data(), name.size() - 1, nullptr, 0, nullptr, 0) != UNZ_OK)
        damaged();
      entry.name = name.data();
      if (entry.name.ends_with('/')) continue;
      if (isDrawing(entry.name)) drawings.push_back(entry);
      files.push_back(std::move(entry));
    }
    if (drawings.empty() && files.size() == 1) drawings = files;
    if (drawings.empty()) holdsNone();
    if (drawings.size() > 1)
      fail("the zip archive holds " + std::to_string(drawings.size()) + " drawings ('" + shown(drawings[0].name) +
               "', '" + shown(drawings[1].name) + (drawings.size() > 2 ? "', …" : "'") +
               "): unpack it and name the one that is meant",
           file_);
    unz_file_info64 info{};
    if (unzGoToFilePos64(zip_, &drawings[0].place) != UNZ_OK ||
        unzGetCurrentFileInfo64(zip_, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK)
      damaged();
    constexpr uLong kLocked = 1;
    if ((info.flag & kLocked) != 0)
      fail("'" + shown(drawings[0].name) + "' in the zip archive is locked by a password: unpack it first", file_);
    if (info.compression_method != 0 && info.compression_method != Z_DEFLATED)
      fail("'" + shown(drawings[0].name) + "' in the zip archive is packed by a method that isn't read here (" +
               std::to_string(info.compression_method) + "): unpack it first",
           file_);
    if (unzOpenCurrentFile(zip_) != UNZ_OK) damaged();
    isOpen_ = true;
    total_ = info.uncompressed_size;
  }

  std::string file_;
  ArchiveBytes archive_;
  unzFile zip_ = nullptr;
  Measure measure_{"zip", file_};
  bool isOpen_ = false;
  std::uint64_t total_ = 0;
  std::uint64_t out_ = 0;
};

}  // namespace

std::string_view compressionOf(std::string_view head) {
  if (head.starts_with("\x1F\x8B")) return "gzip";
  if (head.starts_with("PK\x03\x04") || head.starts_with("PK\x05\x06")) return "zip";
  return {};
}

std::unique_ptr<ByteSource> unpacked(std::unique_ptr<ByteSource> bytes, const std::string& file) {
  std::string head(kCompressionHead, '\0');
  std::size_t size = 0;
  while (size < head.size()) {
    const std::size_t count = bytes->read(head.data() + size, head.size() - size);
    if (count == 0) break;
    size += count;
  }
  head.resize(size);
  const std::string_view kind = compressionOf(head);
  auto whole = std::make_unique<WithHead>(std::move(head), std::move(bytes));
  if (kind == "gzip") return std::make_unique<GzipSource>(std::move(whole), file);
  if (kind == "zip") return std::make_unique<ZipSource>(readAll(*whole), file);
  return whole;
}

}  // namespace lvx::landxml::detail
