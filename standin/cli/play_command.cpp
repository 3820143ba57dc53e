#include "cli/play_command.h"

#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "cli/answer.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/host_setup.h"
#include "cli/terminal.h"
#include "platform/utf8.h"
#include "runtime/command_runner.h"
#include "script/script_front_end.h"
#include "script/window_opener.h"
#include "standin_platform/standard_input.h"

namespace lvx::cli {

namespace {

using Json = nlohmann::ordered_json;

std::vector<script::ScriptAction> readScript(const std::string& path) {
  const std::string text = readSteeringFile(path, "script");
  try {
    return script::parseScript(text, steeringName(path));
  } catch (const script::ScriptError& error) {
    throw Failure(kUsage, error.what());
  }
}

/// A line on standard output, or one more event of the document.
void takeEvent(std::string_view line) {
  if (answer().isGathered())
    answer().append("events", Json::parse(line));
  else
    print(line);
}

/// Plays the whole script; true where every command ended by itself and did nothing wrong.
bool play(runtime::StandinHost& host, script::ScriptFrontEnd& frontEnd, script::Transcript& transcript, bool checks) {
  bool clean = true;
  runtime::CommandRunner runner(host, checks);
  while (const auto command = frontEnd.nextCommand()) {
    const runtime::CommandOutcome outcome = runner.run(platform::fromUtf8(*command));
    if (!outcome.found) throw script::ScriptMismatch("script: the module has no command '" + *command + "'");
    if (const std::string words = runtime::wordsOf(outcome); !words.empty()) {
      transcript.exception(words);
      clean = false;
    }
    for (const std::string& misuse : outcome.misuse) transcript.misuse(misuse);
    clean = clean && outcome.misuse.empty();
    transcript.end(*command);
  }
  for (const std::string& misuse : runner.takeOutsideCalls()) {
    transcript.misuse(misuse);
    clean = false;
  }
  return clean;
}

}  // namespace

ExitCode runPlay(const options::Options& options) {
  const bool isScriptFromInput = options.play.script == options::kStandardInput;
  if (isScriptFromInput && options.drawing == options::kStandardInput)
    throw Failure(kUsage, "standard input can be the drawing or the script, not both; './-' is a file of that name");
  std::vector<script::ScriptAction> actions = readScript(options.play.script);
  if (answer().isGathered()) answer().set("events", Json::array());
  script::Transcript transcript(takeEvent);
  if (options.play.windows && !script::canOpenWindows())
    throw Failure(kUsage, "--windows: this system has no windows that the module's dialogs could be");
  script::ScriptFrontEnd frontEnd(std::move(actions), transcript,
                                  options.play.windows ? script::windowOpener() : script::DialogOpener());
  runtime::InputFiles inputs;
  if (isScriptFromInput)
    inputs.add(standin_platform::standardInputName().string(), "the script on standard input");
  else
    inputs.add(options.play.script, "the script");
  addStandardInput(inputs, options);
  const auto host = makeHost(frontEnd, options.common, inputs);
  civil::Drawing drawing = loadDrawing(options);
  if (!options.common.quiet) tellDiagnostics(drawing);

  bool allWritten = true;
  host->journal().listener = [&transcript, &allWritten](const runtime::FileEvent& event) {
    allWritten = allWritten && event.fate != runtime::FileFate::Failed;
    transcript.file(event);
    if (event.fate == runtime::FileFate::Written)
      answer().addWritten(event.path);
    else
      answer().removeWritten(event.path);
  };
  host->open(std::move(drawing));
  frontEnd.setDrawing(&host->openDrawing()->drawing());
  bool clean = true;
  try {
    const auto module = host->loadModule(runtime::chosenModule(options.common.host));
    clean = play(*host, frontEnd, transcript, options.play.checks);
  } catch (const runtime::ModuleError& error) {
    throw Failure(kNotWritten, error.what());
  } catch (const script::ScriptMismatch& error) {
    throw Failure(kScriptMismatch, error.what());
  }
  if (host->journal().wasCutOff()) say("not enough memory for the whole transcript");
  if (!allWritten) say("something couldn't be written; the transcript tells what and why");
  if (!clean || host->journal().wasCutOff()) return kException;
  return allWritten ? kDone : kNotWritten;
}

}  // namespace lvx::cli
