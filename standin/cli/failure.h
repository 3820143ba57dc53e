#pragma once

#include <stdexcept>
#include <string>

#include "options/exit_codes.h"

namespace lvx::cli {

using options::ExitCode;
using enum options::ExitCode;

/// Ends the program with a sentence on standard error and an exit code.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& sentence) : std::runtime_error(sentence), code_(code) {}
  [[nodiscard]] ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace lvx::cli
