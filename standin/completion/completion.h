#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// What may follow on a command line that a user is typing: commands, options and their values from the one description of
/// options, names from the drawing that the line names already.
namespace lvx::completion {

enum class Shell : std::uint8_t { Bash, Zsh, Fish };

struct Candidate {
  /// As the program takes it, without quotes.
  std::string value;
  /// A few words for the user; may be empty.
  std::string help;
};

struct Completion {
  /// Those that begin as the last word does, in the order of the help or of the drawing.
  std::vector<Candidate> candidates;
  /// A file may stand here: the shell knows them best.
  bool files = false;
};

/// `words`: the line from the program's name on (lvxhost or lvxhost-desktop), up to the place that is completed; the last
/// one is what stands there so far, maybe nothing. As the shell has them: of bash and fish with their quotes, those of bash
/// also cut at '='. Reads the drawing where a name of it is asked for (landxml::ProjectOptions::namesAlone); one that
/// can't be read has no names. Nothing is thrown for what can't be completed.
[[nodiscard]] Completion complete(Shell shell, const std::vector<std::string>& words);

/// The answer as the shells' functions read it: "files" or "values", then a line "value<TAB>help" for each candidate.
[[nodiscard]] std::string answerText(const Completion& completion);

}  // namespace lvx::completion
