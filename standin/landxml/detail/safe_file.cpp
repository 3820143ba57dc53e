#include "landxml/detail/safe_file.h"

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>
#include <vector>

#include "landxml/detail/compressed_source.h"
#include "landxml/error.h"

namespace lvx::landxml::detail {

using standin_platform::AtomicFile;
using standin_platform::AtomicFileError;
using standin_platform::FileStamp;
using standin_platform::InputFile;

void failSaving(const std::string& what, const std::string& file) { throw SaveError(what, file); }

namespace {

constexpr std::size_t kUnpackedAtOnce = std::size_t{1} << 18;

[[noreturn]] void failFor(const AtomicFileError& error, const std::string& file) {
  using Problem = AtomicFileError::Problem;
  const std::string reason = error.reason().message();
  switch (error.problem()) {
    case Problem::Link:
      failSaving("can't follow the link: " + reason, file);
    case Problem::LinkLoop:
      failSaving("the link points to itself", file);
    case Problem::NoReader:
    case Problem::NotRegular:
      failSaving("can't write the drawing: its target is not a regular file", file);
    case Problem::NoNewFile:
      failSaving("can't write the drawing: its folder takes no new file: " + reason, file);
    case Problem::Permissions:
      failSaving("can't give the new file the permissions of the old one: " + reason, file);
    case Problem::TargetChanged:
      failSaving("another program wrote the file while it was being saved; it stays as that one left it", file);
    case Problem::Writing:
      break;
  }
  failSaving("can't write the drawing: " + reason, file);
}

/// Calls `work` and tells its failure as one of saving `file`.
template <class Work>
auto saving(const std::string& file, Work work) {
  try {
    return work();
  } catch (const AtomicFileError& error) {
    failFor(error, file);
  }
}

template <class Work>
auto reading(const std::string& file, Work work) {
  try {
    return work();
  } catch (const std::system_error& error) {
    failSaving("can't read the drawing's file: " + error.code().message(), file);
  }
}

}  // namespace

SourceFile::SourceFile(const std::string& path)
    : path_(path), file_(reading(path, [&] { return std::make_unique<InputFile>(path); })) {
  if (file_->kind() != InputFile::Kind::Regular) failSaving("the drawing's file is not a regular file", path_);
  // In two steps: its head is read as it is.
  if (const std::string_view kind = compressionOf(text(0, kCompressionHead)); !kind.empty()) unpack(kind);
}

void SourceFile::unpack(std::string_view kind) {
  Packing packing{kind, {}, standin_platform::openTemporaryStream(), 0};
  const auto failHere = [&] {
    const std::error_code error(errno, std::generic_category());
    failSaving("can't unpack the drawing's file into the temporary folder: " + error.message(), path_);
  };
  if (!packing.text) failHere();
  try {
    const auto bytes = unpacked(openFile(path_, path_, &packing.mark), path_);
    std::vector<char> block(kUnpackedAtOnce);
    while (const std::size_t count = bytes->read(block.data(), block.size())) {
      if (std::fwrite(block.data(), 1, count, packing.text.get()) != count) failHere();
      packing.size += count;
    }
  } catch (const ReadError& error) {
    throw SaveError(error.reason(), error.file(), error.line());
  }
  if (std::fflush(packing.text.get()) != 0) failHere();
  packing_.emplace(std::move(packing));
}

std::size_t SourceFile::read(std::uint64_t offset, char* to, std::size_t size) const {
  if (!packing_) return reading(path_, [&] { return file_->readAt(offset, to, size); });
  std::FILE* const text = packing_->text.get();
  std::size_t count = 0;
  if (standin_platform::goTo(text, offset)) count = std::fread(to, 1, size, text);
  if (count < size && std::ferror(text) != 0)
    failSaving("can't read the drawing's unpacked file: " + std::error_code(errno, std::generic_category()).message(),
               path_);
  return count;
}

std::string SourceFile::text(std::uint64_t offset, std::size_t size) const {
  std::string bytes(size, '\0');
  bytes.resize(read(offset, bytes.data(), size));
  return bytes;
}

bool SafeFile::leadsTo(const std::string& path, const FileStamp& file) {
  const auto stamp = standin_platform::stampOf(path);
  return stamp && stamp->isSameFile(file);
}

bool SafeFile::isThere(const std::string& path) { return standin_platform::stampOf(path).has_value(); }

SafeFile::SafeFile(const std::string& path)
    : path_(path), file_(saving(path, [&] {
        return std::make_unique<AtomicFile>(
            path, standin_platform::AtomicFilePolicy{.refusesChangedTarget = true, .flushesToDisk = true});
      })) {}

void SafeFile::write(std::string_view bytes) {
  constexpr std::size_t kBuffer = std::size_t{1} << 18;
  hash_.add(bytes);
  buffer_ += bytes;
  if (buffer_.size() >= kBuffer) flush();
}

void SafeFile::flush() {
  if (buffer_.empty()) return;
  saving(path_, [&] { file_->write(buffer_); });
  buffer_.clear();
}

void SafeFile::settle() {
  flush();
  saving(path_, [&] { file_->settle(); });
}

std::string SafeFile::path() const { return file_->lend().string(); }

void SafeFile::replace() {
  flush();
  saving(path_, [&] { file_->commit(); });
}

}  // namespace lvx::landxml::detail
