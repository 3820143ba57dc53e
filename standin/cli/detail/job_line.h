#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace lvx::cli {

/// What a member of a job says, as far as options know it.
struct JobValue {
  enum class Kind {
    Text,
    Number,  ///< `text` has it as it is written
    True,
    False,
    List,   ///< of texts, in `list`
    Other,  ///< what no option takes
  };
  Kind kind = Kind::Other;
  std::string text;
  std::vector<std::string> list;
};

struct JobMember {
  std::string name;
  JobValue value;
};

/// A line isn't what a job is written as. Its words are a sentence without the place.
class JobLineError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The members of a JSON object in their order, each name once. Throws JobLineError.
[[nodiscard]] std::vector<JobMember> jobMembers(std::string_view line);

}  // namespace lvx::cli
