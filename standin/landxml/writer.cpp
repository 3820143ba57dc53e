#include "landxml/writer.h"

#include "landxml/detail/file_saving.h"

namespace lvx::landxml {

civil::FileMark saveDrawing(civil::Drawing& drawing, const std::string& sourcePath, const std::string& targetPath,
                            const SaveOptions& options) {
  detail::FileSaving saving(drawing, 0, sourcePath, targetPath);
  saving.write([&](std::uint64_t done) {
    if (options.progress && !options.progress({done, saving.work()})) throw Cancelled(targetPath);
  });
  return saving.replace();
}

}  // namespace lvx::landxml
