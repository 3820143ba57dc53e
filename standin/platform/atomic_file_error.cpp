#include <string>

#include "standin_platform/atomic_file.h"

namespace lvx::standin_platform {

namespace {

using Problem = AtomicFileError::Problem;

const char* wordsFor(Problem problem) {
  switch (problem) {
    case Problem::Link:
      return "a link can't be followed";
    case Problem::LinkLoop:
      return "the link points to itself";
    case Problem::NotRegular:
      return "the target is not a regular file";
    case Problem::NoNewFile:
      return "the folder takes no new file";
    case Problem::NoReader:
      return "no program reads from the pipe";
    case Problem::Permissions:
      return "the permissions can't be kept";
    case Problem::Writing:
      return "the file can't be written";
    case Problem::TargetChanged:
      return "another program wrote the file meanwhile";
  }
  return "";
}

}  // namespace

AtomicFileError::AtomicFileError(Problem problem, std::error_code reason)
    : std::runtime_error(wordsFor(problem) + (reason ? ": " + reason.message() : std::string())),
      problem_(problem),
      reason_(reason) {}

}  // namespace lvx::standin_platform
