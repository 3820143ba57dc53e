// Job files come from people and programs: whatever stands in one must end in jobs or in a Failure that names its line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "cli/failure.h"
#include "cli/job_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    std::size_t line = 0;
    for (const auto& job : lvx::cli::parseJobs({reinterpret_cast<const char*>(data), size}, "jobs.jsonl", {})) {
      if (job.line <= line || job.label.empty() || job.arguments.empty()) std::abort();
      line = job.line;
    }
  } catch (const lvx::cli::Failure& failure) {
    if (failure.code() != lvx::options::kUsage) std::abort();
  }
  return 0;
}
