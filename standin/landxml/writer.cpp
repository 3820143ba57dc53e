#include "landxml/writer.h"

#include <memory>
#include <utility>

#include "landxml/detail/change_writer.h"
#include "landxml/detail/file_editor.h"
#include "landxml/detail/safe_file.h"
#include "landxml/detail/trace.h"

namespace lvx::landxml {

using namespace detail;

namespace {

/// The opened source from its begin to its end, with its hash.
class SourceBytes : public ByteSource {
 public:
  SourceBytes(const SourceFile& file, ContentHash& hash) : file_(file), hash_(hash) {}
  std::size_t read(char* to, std::size_t size) override {
    const std::size_t count = file_.read(at_, to, size);
    hash_.add({to, count});
    at_ += count;
    return count;
  }
  [[nodiscard]] std::uint64_t totalBytes() const override { return file_.size(); }

 private:
  const SourceFile& file_;
  ContentHash& hash_;
  std::uint64_t at_ = 0;
};

}  // namespace

civil::FileMark saveDrawing(civil::Drawing& drawing, const std::string& sourcePath, const std::string& targetPath,
                            const SaveOptions& options) {
  const SourceFile source(sourcePath);
  const auto report = [&](std::uint64_t bytesDone) {
    if (options.progress && !options.progress({bytesDone, 2 * source.size()})) throw Cancelled(targetPath);
  };

  // The file's own words, read as they were when the drawing was opened. Half of the work.
  ContentHash readHash;
  Trace trace;
  civil::Drawing stored;
  const std::string changed =
      "the drawing's file was changed by another program since it was opened; open it again and repeat the work, "
      "or the other changes would be lost";
  ReadOptions readOptions;
  readOptions.progress = [&](const Progress& progress) {
    report(progress.bytesDone);
    return true;
  };
  try {
    stored = readTraced(std::make_unique<SourceBytes>(source, readHash), sourcePath, readOptions, trace);
  } catch (const ReadError& error) {
    if (drawing.file.isKnown) failSaving(changed, sourcePath);
    throw SaveError(error.reason(), error.file(), error.line());
  }
  const civil::FileMark read = readHash.mark();
  if (drawing.file.isKnown && drawing.file != read) failSaving(changed, sourcePath);

  FileEditor editor(source, trace, targetPath);
  writeChanges(drawing, stored, trace, editor, targetPath);

  const bool isOwnFile = SafeFile::leadsTo(targetPath, source.stamp());
  if (editor.isUnchanged() && isOwnFile) return read;
  SafeFile target(targetPath);
  ContentHash copied;
  editor.write(target, copied, [&](std::uint64_t done) { report(source.size() + done); });
  if (copied.mark() != read) failSaving(changed, sourcePath);
  target.replace();
  if (isOwnFile && drawing.file.isKnown) drawing.file = target.mark();
  return target.mark();
}

}  // namespace lvx::landxml
