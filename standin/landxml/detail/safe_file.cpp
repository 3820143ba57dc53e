#include "landxml/detail/safe_file.h"

#include <system_error>

#include "landxml/detail/compressed_source.h"
#include "landxml/error.h"

namespace lvx::landxml::detail {

using standin_platform::AtomicFile;
using standin_platform::AtomicFileError;
using standin_platform::FileStamp;
using standin_platform::InputFile;

void failSaving(const std::string& what, const std::string& file) { throw SaveError(what, file); }

namespace {

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
  if (const std::string_view kind = compressionOf(text(0, kCompressionHead)); !kind.empty())
    failSaving("the drawing was read from a compressed file (" + std::string(kind) +
                   "), and saving keeps the rest of a file as it stands: unpack it and open the unpacked one",
               path_);
}

std::size_t SourceFile::read(std::uint64_t offset, char* to, std::size_t size) const {
  return reading(path_, [&] { return file_->readAt(offset, to, size); });
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
