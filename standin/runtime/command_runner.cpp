#include "runtime/command_runner.h"

#include <algorithm>
#include <array>
#include <utility>

#include "runtime/raised_by_host.h"

namespace lvx::runtime {

namespace {

/// A module keeps one of each for as long as it is loaded: a command may leave one behind where there was none, put
/// another in its place, or give it up.
constexpr bool isKeptByModule(ModelKind kind) {
  return kind == ModelKind::RoadwayApplication || kind == ModelKind::RoadwayDocument;
}

/// What a module may hold while a command runs and has to have given back at its end.
struct Held {
  std::array<std::size_t, kModelKindCount> objects{};
  std::size_t locks = 0;
  std::size_t openObjects = 0;
  std::size_t selectionSets = 0;
  std::size_t filterLists = 0;
  bool connected = false;
  framework::ResourceHandle resources = nullptr;
};

Held heldNow(StandinHost& host) {
  Held held;
  if (host.openDrawing())
    for (std::size_t kind = 0; kind < kModelKindCount; ++kind)
      held.objects[kind] = host.openDrawing()->liveObjects().count(static_cast<ModelKind>(kind));
  held.locks = host.documents().lockCount();
  held.openObjects = host.standinRunTime().openObjectCount();
  held.selectionSets = host.standinRunTime().selectionSetCount();
  held.filterLists = host.standinRunTime().filterListCount();
  held.connected = host.isConnected();
  held.resources = host.moduleState().resourceHandle();
  return held;
}

void tellCount(std::vector<std::string>& misuse, std::size_t before, std::size_t after, const std::string& what) {
  if (after > before) misuse.push_back(what + ": " + std::to_string(after - before) + " left over");
  if (after < before) misuse.push_back(what + ": " + std::to_string(before - after) + " given back too often");
}

std::vector<std::string> difference(const Held& before, const Held& after) {
  std::vector<std::string> misuse;
  for (std::size_t i = 0; i < kModelKindCount; ++i) {
    const auto kind = static_cast<ModelKind>(i);
    const std::size_t allowed = isKeptByModule(kind) ? std::min<std::size_t>(after.objects[i], 1) : before.objects[i];
    tellCount(misuse, allowed, after.objects[i], std::string("references of ") + modelKindName(kind));
  }
  tellCount(misuse, before.locks, after.locks, "document locks");
  tellCount(misuse, before.openObjects, after.openObjects, "open objects");
  tellCount(misuse, before.selectionSets, after.selectionSets, "selection sets");
  tellCount(misuse, before.filterLists, after.filterLists, "filter lists");
  if (after.connected && !before.connected) misuse.emplace_back("companion library: its references were not given up");
  if (after.resources != before.resources) misuse.emplace_back("resources: the former ones were not put back");
  return misuse;
}

}  // namespace

std::string wordsOf(const CommandOutcome& outcome) {
  if (outcome.raisedByHost) std::rethrow_exception(outcome.raisedByHost);
  if (!outcome.exception) return {};
  return outcome.exception->words.empty() ? "an exception of unknown kind" : outcome.exception->words;
}

CommandRunner::CommandRunner(StandinHost& host, bool checks) : host_(host), checks_(checks) {
  if (!checks_) return;
  host_.standinRunTime().callObserver = [this](const char* function) {
    if (!running_) outsideCalls_.push_back(std::string("call outside a command: ") + function);
  };
}

CommandRunner::~CommandRunner() {
  if (checks_) host_.standinRunTime().callObserver = nullptr;
}

CommandOutcome CommandRunner::run(const host::CString& name) {
  CommandOutcome outcome;
  const RegisteredCommand* command = host_.commands().find(name);
  if (command == nullptr) return outcome;
  outcome.found = true;
  const host::CommandFunction function = command->function;
  const Held before = checks_ ? heldNow(host_) : Held();
  running_ = true;
  try {
    function();
  } catch (const RaisedByHost&) {
    outcome.raisedByHost = std::current_exception();
  } catch (const std::exception& exception) {
    // Whatever a command raises ends that command and nothing else; the caller tells the user.
    outcome.exception = ModuleException{exception.what()};
  } catch (...) {
    outcome.exception = ModuleException{};
  }
  running_ = false;
  if (checks_) outcome.misuse = difference(before, heldNow(host_));
  return outcome;
}

std::vector<std::string> CommandRunner::takeOutsideCalls() { return std::exchange(outsideCalls_, {}); }

}  // namespace lvx::runtime
