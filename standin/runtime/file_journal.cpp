#include "runtime/file_journal.h"

#include <utility>

namespace lvx::runtime {

void FileJournal::add(FileEvent event) {
  missing_.clear();
  events_.reserve(events_.size() + prepared_ + 1);
  events_.push_back(std::move(event));
  if (listener) listener(events_.back());
}

void FileJournal::lookedFor(const std::string& path, bool found) {
  if (found)
    missing_.clear();
  else
    missing_ = path;
}

std::string FileJournal::whyNoReport() const {
  return unread_.empty() ? std::string() : "the words of reports couldn't be read from '" + unread_ + "'";
}

void FileJournal::prepare() {
  events_.reserve(events_.size() + prepared_ + 1);
  ++prepared_;
}

void FileJournal::addPrepared(FileEvent event) noexcept {
  --prepared_;
  missing_.clear();
  events_.push_back(std::move(event));  // into the room that prepare() kept
  try {
    if (listener) listener(events_.back());
  } catch (...) {
    wasCutOff_ = true;
  }
}

const FileEvent* FileJournal::last(const std::string& path) const {
  for (auto event = events_.rbegin(); event != events_.rend(); ++event)
    if (event->path == path) return &*event;
  return nullptr;
}

}  // namespace lvx::runtime
