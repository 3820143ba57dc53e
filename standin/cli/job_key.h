#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/job_file.h"

namespace lvx::cli {

/// What a journal tells jobs apart by, as SHA-256 in hexadecimal digits (journal::JobKey). Files are read once each.
class JobKeys {
 public:
  /// All options that the report's content, its files or the saved drawing depend on, and SOURCE_DATE_EPOCH; not those that
  /// say what is told and what may be overwritten.
  [[nodiscard]] static std::string options(const Job& job);

  /// Of the program with its module and the companion library beside that.
  [[nodiscard]] const std::string& program(const Job& job);
  /// Of the message file; empty where it can't be read.
  [[nodiscard]] const std::string& messages(const Job& job);

 private:
  std::map<std::string, std::string> programs_;
  std::map<std::string, std::string> messages_;
};

/// The paths of a job's drawing and of what is added to it, in their order.
[[nodiscard]] std::vector<std::string> drawingFiles(const options::Options& options);

/// SHA-256 of a file; empty where it can't be read.
[[nodiscard]] std::string hashOrNothing(const std::string& path);

}  // namespace lvx::cli
