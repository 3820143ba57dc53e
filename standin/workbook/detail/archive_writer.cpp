#include "workbook/detail/archive_writer.h"

#include <array>
#include <memory>
#include <stdexcept>
#include <utility>

#include <minizip/unzip.h>
#include <minizip/zip.h>
#include <zlib.h>

#include "workbook/detail/archive_check.h"

namespace lvx::workbook::detail {

namespace {

void require(bool holds, const char* words) {
  if (!holds) throw std::runtime_error(words);
}
constexpr const char* kFrameUnsound = "workbook: what the workbook library made isn't whole";
constexpr const char* kNotWritten = "workbook: the file can't be written to its folder; the disk may be full";

struct FrameCloser {
  void operator()(void* zip) const { unzClose(zip); }
};
struct ArchiveCloser {
  void operator()(void* zip) const { zipClose(zip, nullptr); }
};

class Writer {
 public:
  Writer(const std::filesystem::path& frame, const std::filesystem::path& to)
      : frame_(unzOpen64(frame.string().c_str())) {
    require(frame_ != nullptr, kFrameUnsound);
    archive_.reset(zipOpen64(to.string().c_str(), APPEND_STATUS_CREATE));
    require(archive_ != nullptr, kNotWritten);
  }

  /// Calls use(name) for each part of the frame.
  template <class Use>
  void eachPart(Use use) {
    int state = unzGoToFirstFile(frame_.get());
    for (; state == UNZ_OK; state = unzGoToNextFile(frame_.get())) {
      std::array<char, 256> name{};
      require(
          unzGetCurrentFileInfo64(frame_.get(), &info_, name.data(), name.size() - 1, nullptr, 0, nullptr, 0) == UNZ_OK,
          kFrameUnsound);
      use(std::string(name.data()));
    }
    require(state == UNZ_END_OF_LIST_OF_FILE, kFrameUnsound);
  }

  /// The text of the part that is on.
  std::string text() {
    std::string text(info_.uncompressed_size, '\0');
    require(unzOpenCurrentFile(frame_.get()) == UNZ_OK, kFrameUnsound);
    const int size = unzReadCurrentFile(frame_.get(), text.data(), static_cast<unsigned>(text.size()));
    require(unzCloseCurrentFile(frame_.get()) == UNZ_OK && size == static_cast<int>(text.size()), kFrameUnsound);
    return text;
  }

  /// A part that is packed here, or already where `isPacked`.
  void begin(const std::string& name, bool isPacked, bool isLarge) {
    zip_fileinfo info{};
    info.tmz_date.tm_sec = info_.tmu_date.tm_sec;
    info.tmz_date.tm_min = info_.tmu_date.tm_min;
    info.tmz_date.tm_hour = info_.tmu_date.tm_hour;
    info.tmz_date.tm_mday = info_.tmu_date.tm_mday;
    info.tmz_date.tm_mon = info_.tmu_date.tm_mon;
    info.tmz_date.tm_year = info_.tmu_date.tm_year;
    info.internal_fa = info_.internal_fa;
    info.external_fa = info_.external_fa;
    require(zipOpenNewFileInZip2_64(archive_.get(), name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                                    Z_DEFAULT_COMPRESSION, isPacked ? 1 : 0, isLarge ? 1 : 0) == ZIP_OK,
            kNotWritten);
  }
  void write(std::string_view text) {
    require(zipWriteInFileInZip(archive_.get(), text.data(), static_cast<unsigned>(text.size())) == ZIP_OK,
            kNotWritten);
  }
  void end() { require(zipCloseFileInZip(archive_.get()) == ZIP_OK, kNotWritten); }
  void endPacked(const SheetPacker::Packed& packed) {
    require(zipCloseFileInZipRaw64(archive_.get(), packed.size, packed.checksum) == ZIP_OK, kNotWritten);
  }
  void finish() { require(zipClose(archive_.release(), nullptr) == ZIP_OK, kNotWritten); }

 private:
  std::unique_ptr<void, FrameCloser> frame_;
  std::unique_ptr<void, ArchiveCloser> archive_;
  unz_file_info64 info_{};
};

/// What stands before the rows of a sheet, and behind them.
std::pair<std::string, std::string> aroundRows(const std::string& sheet) {
  constexpr std::string_view kBegin = "<sheetData>";
  constexpr std::string_view kEnd = "</sheetData>";
  const std::size_t begin = sheet.find(kBegin);
  const std::size_t end = sheet.find(kEnd);
  require(begin != std::string::npos && end != std::string::npos, kFrameUnsound);
  return {sheet.substr(0, begin + kBegin.size()), sheet.substr(end)};
}

}  // namespace

void writeArchive(const std::filesystem::path& frame, const std::filesystem::path& to, bool isLarge,
                  standin_platform::Crew& crew, const NextPiece& rows) {
  Writer writer(frame, to);
  writer.eachPart([&](const std::string& name) {
    const std::string text = writer.text();
    if (name != kSheetPart) {
      writer.begin(name, false, false);
      writer.write(text);
      writer.end();
      return;
    }
    const auto around = aroundRows(text);
    bool isBegun = false;
    const auto sheet = [&](std::string& piece) {
      if (!std::exchange(isBegun, true)) piece += around.first;
      const bool hasMore = rows(piece);
      if (!hasMore) piece += around.second;
      return hasMore;
    };
    writer.begin(name, true, isLarge);
    writer.endPacked(SheetPacker(crew).pack(sheet, [&writer](std::string_view bytes) { writer.write(bytes); }));
  });
  writer.finish();
}

}  // namespace lvx::workbook::detail
