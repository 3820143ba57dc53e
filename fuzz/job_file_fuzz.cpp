// Job files come from people and programs: whatever stands in one must end in jobs or in a Failure that names its line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "cli/failure.h"
#include "cli/job_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const lvx::cli::JobFile jobs(std::string(reinterpret_cast<const char*>(data), size),
                                 {"jobs.jsonl", {}, {}, {}, {}});
    std::size_t line = 0;
    for (const lvx::cli::JobFile::Entry& entry : jobs.entries()) {
      const lvx::cli::Job job = jobs.read(entry);
      if (job.line <= line || job.label.empty() || entry.drawing >= jobs.drawingCount()) std::abort();
      line = job.line;
    }
  } catch (const lvx::cli::Failure& failure) {
    if (failure.code() != lvx::options::kUsage) std::abort();
  }
  return 0;
}
