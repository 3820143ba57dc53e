#include "standin_platform/left_overs.h"

#include <exception>
#include <mutex>
#include <set>
#include <system_error>

#include "standin_platform/detail/left_over.h"

namespace lvx::standin_platform {

namespace fs = std::filesystem;

void clearLeftOvers(const fs::path& folder) noexcept {
  static std::mutex mutex;
  static std::set<fs::path> cleared;
  try {
    {
      const std::lock_guard guard(mutex);
      if (!cleared.insert(fs::absolute(folder / "").lexically_normal()).second) return;
    }
    std::error_code end;
    for (fs::directory_iterator entry(folder, end); !end && entry != fs::directory_iterator(); entry.increment(end))
      clearLeftOver(entry->path());
  } catch (const std::exception&) {
    // Short of memory: the next run has another chance, and this one its own work.
  }
}

}  // namespace lvx::standin_platform
