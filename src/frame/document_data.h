#pragma once

#include <map>

#include "host/host.h"
#include "host/run_time.h"

namespace lvx::frame {

/// Keeps one `Data` for each open document and forgets it when the host reports that the document is about to go. It is
/// a reactor of the host's document manager for as long as it lives.
template <class Data>
class VnApDataManager final : public host::VnApDocManagerReactor {
 public:
  explicit VnApDataManager(host::Host* host) : host_(host) {
    if (host::VnApDocManager* manager = documentManager()) manager->addReactor(this);
  }
  VnApDataManager(const VnApDataManager&) = delete;
  VnApDataManager& operator=(const VnApDataManager&) = delete;
  ~VnApDataManager() override {
    // While the host shuts down there is no manager left to leave, and a library that couldn't come up whole may be
    // detached behind the host's end.
    if (host_ != vnrxHost()) return;
    if (host::VnApDocManager* manager = documentManager()) manager->removeReactor(this);
  }

  /// The document's data, made at the first call.
  [[nodiscard]] Data& dataOf(host::VnApDocument* document) { return data_[document]; }
  [[nodiscard]] std::size_t size() const { return data_.size(); }

  void documentToBeDestroyed(host::VnApDocument* document) override { data_.erase(document); }

 private:
  [[nodiscard]] host::VnApDocManager* documentManager() const {
    return host_ == nullptr ? nullptr : host_->runTime().vnDocManagerPtr();
  }

  host::Host* host_;
  std::map<host::VnApDocument*, Data> data_;
};

/// What a document keeps for this module: nothing yet.
struct CDocData {};

}  // namespace lvx::frame
