#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "options/commands.h"
#include "options/options.h"

/// Every option and argument of both programs, described once: the command line, job files and the windows' program are
/// built from this table, and so can be whatever else lists options.
namespace lvx::options {

/// Where an option's value is kept. A bool is an option without a value; a list is one that may be given many times.
using Field =
    std::variant<bool*, std::string*, std::optional<std::string>*, std::optional<int>*, std::vector<std::string>*>;

/// What an empty text given for an option means.
enum class EmptyText : std::uint8_t {
  Value,  ///< a text like any other
  None,   ///< that there is no value
};

/// Which objects of the drawing an option's value names, for who offers them.
enum class NamesOf : std::uint8_t { Nothing, Alignments, Sites, Profiles, SampleLineGroups, Surfaces, PointGroups };

/// What a value has to be, beyond a text or a whole number.
struct Check {
  /// As the help names it.
  std::string_view name;
  /// What is wrong with a value; empty where nothing is.
  std::string (*complaint)(const std::string& value) = nullptr;
};

/// Options that the help tells together.
struct OptionGroup {
  std::string_view name;
  std::string_view summary;
  /// True: just one of them is given.
  bool isChoice = false;
};

struct OptionDescription {
  /// "lang" for --lang, which is also the member of a job in a job file; "DRAWING" for an argument that has its place.
  std::string_view name;
  CommandSet commands;
  Field (*field)(Options& options) = nullptr;
  /// A sentence without its full stop, with the default where there is one.
  std::string_view help;
  /// As the help names the value; empty: TEXT.
  std::string_view valueName = {};
  bool isArgument = false;
  bool isRequired = false;
  NamesOf names = NamesOf::Nothing;
  EmptyText emptyText = EmptyText::Value;
  /// The values that there are; empty: any.
  std::span<const std::string_view> choices = {};
  /// Of a whole number: at least 1, at most this.
  int greatest = 0;
  Check check = {};
  /// Names of options that this one can't stand beside, and can't do without; empty: none.
  std::string_view excludes = {};
  std::string_view needs = {};
  const OptionGroup* group = nullptr;

  [[nodiscard]] bool isFlag() const;
  [[nodiscard]] bool isList() const;
};

/// Heads what every command of lvxhost has.
inline constexpr OptionGroup kCommonGroup{"Common options", "", false};

[[nodiscard]] std::span<const OptionDescription> optionTable();

/// The options of a command in the order of its help, its arguments first; those that every command of lvxhost has are at
/// the end, in the group kCommonGroup.
[[nodiscard]] std::vector<const OptionDescription*> optionsOf(Command command);

/// Those that every command of lvxhost has.
[[nodiscard]] std::vector<const OptionDescription*> commonOptions();

/// Takes a value that was given into `options`: any text for an option with a text, a whole number's digits; for one
/// without a value whatever stands here turns it on, a list has it as its last from then on. Throws std::invalid_argument with a sentence for a value that isn't
/// one of the option's.
void apply(const OptionDescription& option, Options& options, const std::string& value);

/// The value as it would be given on a command line, a flag that is on as "true", of a list the last one; empty
/// where there is none.
[[nodiscard]] std::optional<std::string> valueOf(const OptionDescription& option, const Options& options);

/// Whether its value is the path of a file, or how such a path begins.
[[nodiscard]] bool isPath(const OptionDescription& option);

/// The length that an option's text means; not a number for one that means none.
[[nodiscard]] double lengthOf(const std::string& value);

/// The share that "3/8" means; none for any other text. At most a million shares.
[[nodiscard]] std::optional<Share> shareOf(std::string_view value);

/// "en, de and fr"
[[nodiscard]] std::string listed(std::span<const std::string_view> choices);

}  // namespace lvx::options
