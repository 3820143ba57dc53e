#include "landxml/error.h"

#include <utility>

namespace lvx::landxml {

namespace {

std::string described(const std::string& reason, const std::string& file, std::uint64_t line) {
  return reason + " (" + file + (line > 0 ? ":" + std::to_string(line) : "") + ")";
}

}  // namespace

Error::Error(std::string reason, std::string file, std::uint64_t line)
    : std::runtime_error("landxml: " + described(reason, file, line)),
      reason_(std::move(reason)),
      file_(std::move(file)),
      line_(line) {}

std::string Error::description(const std::string& file) const { return described(reason_, file, line_); }

}  // namespace lvx::landxml
