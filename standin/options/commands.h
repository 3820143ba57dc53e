#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace lvx::options {

/// What has options of its own: the commands of lvxhost, and lvxhost-desktop.
enum class Command : std::uint8_t {
  Info,
  Projection,
  Points,
  Gls,
  Sections,
  Profile,
  Lines,
  Group,
  Volumes,
  Batch,
  Play,
  Dialog,
  Desktop
};

/// Any number of commands.
class CommandSet {
 public:
  constexpr CommandSet() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a command is a set of one
  constexpr CommandSet(Command command) : bits_(1U << static_cast<unsigned>(command)) {}
  [[nodiscard]] constexpr bool contains(CommandSet other) const { return (bits_ & other.bits_) == other.bits_; }
  [[nodiscard]] friend constexpr CommandSet operator|(CommandSet a, CommandSet b) {
    a.bits_ |= b.bits_;
    return a;
  }

 private:
  unsigned bits_ = 0;
};

[[nodiscard]] constexpr CommandSet operator|(Command a, Command b) { return CommandSet(a) | CommandSet(b); }

inline constexpr CommandSet kReportCommands = Command::Projection | Command::Points | Command::Gls;
/// Those that draw sheets.
inline constexpr CommandSet kBookCommands = Command::Sections | Command::Profile;
/// What a job of a batch may be.
inline constexpr CommandSet kJobCommands = kReportCommands | kBookCommands;
/// Those that make something in a drawing and save it.
inline constexpr CommandSet kMakingCommands = Command::Lines | Command::Group;
/// The commands of lvxhost that open a drawing.
inline constexpr CommandSet kDrawingCommands =
    kJobCommands | kMakingCommands | Command::Info | Command::Volumes | Command::Play | Command::Dialog;
/// Every command of lvxhost. What all of them have may also stand before the name of the command.
inline constexpr CommandSet kEveryCommand = kDrawingCommands | Command::Batch;

/// A command of lvxhost as its help tells it.
struct CommandDescription {
  Command command;
  std::string_view name;
  std::string_view summary;
  /// Examples and explanations behind the options.
  std::string_view footer;
};

/// The commands of lvxhost in the order of its help.
[[nodiscard]] std::span<const CommandDescription> commands();

/// The command of that name, or null.
[[nodiscard]] const CommandDescription* findCommand(std::string_view name);

/// What lvxhost is, and how to begin with it.
inline constexpr std::string_view kProgramSummary =
    "lvxhost opens LandXML drawings and runs the road reports on them, without windows.";
inline constexpr std::string_view kProgramFooter =
    "Example:\n"
    "  lvxhost info examples/valley-road.xml\n"
    "Each command has its own --help with examples.\n";

}  // namespace lvx::options
