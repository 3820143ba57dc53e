#include "desktop/shell/drawing_file_set.h"

#include <algorithm>

namespace lvx::desktop {

void DrawingFileSet::hold(const QStringList& paths, const std::vector<std::optional<FileStamp>>& stamps) {
  files_.clear();
  files_.resize(static_cast<std::size_t>(paths.size()));
  for (std::size_t number = 0; number < files_.size(); ++number) {
    files_[number].file = std::make_unique<DrawingFile>();
    watch(number);
    files_[number].file->hold(paths[static_cast<qsizetype>(number)], stamps[number]);
  }
}

void DrawingFileSet::holdAgain(std::size_t file, const QString& path) {
  files_[file].file->hold(path, stampOf(path));
  note(file, State::AsHeld);
}

void DrawingFileSet::watch(std::size_t number) {
  DrawingFile* const file = files_[number].file.get();
  connect(file, &DrawingFile::changed, this, [this, number] { note(number, State::Changed); });
  connect(file, &DrawingFile::vanished, this, [this, number] { note(number, State::Vanished); });
  connect(file, &DrawingFile::restored, this, [this, number] { note(number, State::AsHeld); });
}

void DrawingFileSet::note(std::size_t number, State state) {
  files_[number].state = state;
  // One that is well again leaves the word to the next that isn't.
  const auto told = state != State::AsHeld ? files_.begin() + static_cast<std::ptrdiff_t>(number)
                                           : std::find_if(files_.begin(), files_.end(),
                                                          [](const Held& held) { return held.state != State::AsHeld; });
  if (told == files_.end())
    Q_EMIT restored();
  else if (told->state == State::Changed)
    Q_EMIT changed(told->file->path());
  else
    Q_EMIT vanished(told->file->path());
}

}  // namespace lvx::desktop
