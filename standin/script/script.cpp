#include "script/script.h"

#include <array>
#include <limits>

#include <nlohmann/json.hpp>

namespace lvx::script {

namespace {

using Json = nlohmann::json;
using Kind = ScriptAction::Kind;

struct KindName {
  const char* name;
  Kind kind;
};
constexpr std::array<KindName, 12> kKinds{{
    {"command", Kind::Command},
    {"select", Kind::Select},
    {"type", Kind::Type},
    {"tick", Kind::Tick},
    {"click", Kind::Click},
    {"close", Kind::Close},
    {"pick", Kind::Pick},
    {"pickPoints", Kind::PickPoints},
    {"escape", Kind::Escape},
    {"file", Kind::File},
    {"answer", Kind::Answer},
    {"snapshot", Kind::Snapshot},
}};

struct AnswerName {
  const char* name;
  host::BoxAnswer answer;
};
constexpr std::array<AnswerName, 5> kAnswers{{{"ok", host::BoxAnswer::Ok},
                                              {"cancel", host::BoxAnswer::Cancel},
                                              {"yes", host::BoxAnswer::Yes},
                                              {"no", host::BoxAnswer::No},
                                              {"retry", host::BoxAnswer::Retry}}};

/// Reads one action; says what is wrong with it by its number.
class ActionReader {
 public:
  ActionReader(const Json& json, std::size_t number, const std::string& file)
      : json_(json), file_(file), number_(number) {}

  ScriptAction read() {
    if (!json_.is_object()) fail("isn't an object like {\"click\": 1}");
    ScriptAction action;
    action.number = number_;
    action.kind = findKind();
    readValue(action);
    refuseUnknownKeys();
    return action;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw ScriptError("script: " + file_ + ": action " + std::to_string(number_) + " " + what);
  }

  Kind findKind() {
    std::optional<Kind> found;
    for (const KindName& candidate : kKinds)
      if (json_.contains(candidate.name)) {
        if (found) fail(std::string("has both '") + key_ + "' and '" + candidate.name + "'");
        found = candidate.kind;
        key_ = candidate.name;
      }
    if (found) return *found;
    std::string known;
    for (const KindName& candidate : kKinds) known += (known.empty() ? "" : ", ") + std::string(candidate.name);
    fail("is none of " + known);
  }

  void readValue(ScriptAction& action) {
    const Json& value = use(key_);
    switch (action.kind) {
      case Kind::Command:
        action.text = text(key_, value);
        break;
      case Kind::Select:
        action.id = number(key_, value);
        if (has("row") == has("text")) fail("('select') needs either 'row' or 'text'");
        if (has("row"))
          action.row = number("row", use("row"));
        else
          action.text = text("text", use("text"));
        break;
      case Kind::Type:
        action.id = number(key_, value);
        action.text = text("text", needed("text"));
        break;
      case Kind::Tick:
        action.id = number(key_, value);
        if (has("on")) {
          const Json& on = use("on");
          if (!on.is_boolean()) fail("('tick'): 'on' isn't true or false");
          action.on = on.get<bool>();
        }
        break;
      case Kind::Click:
        action.id = number(key_, value);
        break;
      case Kind::Pick:
        if (value.is_object()) {
          if (!value.contains("name") || !value.contains("class") || value.size() != 2)
            fail("('pick') needs a handle or {\"name\": …, \"class\": …}");
          action.text = text("name", value["name"]);
          action.pickClass = text("class", value["class"]);
        } else {
          action.text = text(key_, value);
        }
        break;
      case Kind::PickPoints:
        if (!value.is_array()) fail("('pickPoints') isn't a list of point numbers");
        for (const Json& point : value) action.points.push_back(number(key_, point));
        break;
      case Kind::File:
        action.cancelled = value.is_null();
        if (!action.cancelled) action.text = text(key_, value);
        break;
      case Kind::Answer:
        action.answer = answer(text(key_, value));
        break;
      case Kind::Close:
      case Kind::Escape:
      case Kind::Snapshot:
        break;  // whatever stands behind the key
    }
  }

  [[nodiscard]] bool has(const char* key) const { return json_.contains(key); }

  const Json& use(const char* key) {
    ++used_;
    return json_[key];
  }

  const Json& needed(const char* key) {
    if (!has(key)) fail(std::string("('") + key_ + "') needs '" + key + "'");
    return use(key);
  }

  int number(const char* key, const Json& value) const {
    if (value.is_number_integer()) {
      const auto wide = value.get<std::int64_t>();
      if (wide >= std::numeric_limits<int>::min() && wide <= std::numeric_limits<int>::max())
        return static_cast<int>(wide);
    }
    fail(std::string("('") + key_ + "'): '" + key + "' isn't a whole number");
  }

  std::string text(const char* key, const Json& value) const {
    if (!value.is_string()) fail(std::string("('") + key_ + "'): '" + key + "' isn't a text");
    auto text = value.get<std::string>();
    // No keyboard types one, and the system ends a file's name there.
    if (text.find('\0') != std::string::npos) fail(std::string("('") + key_ + "'): a zero character stands in a text");
    return text;
  }

  host::BoxAnswer answer(const std::string& name) const {
    for (const AnswerName& candidate : kAnswers)
      if (name == candidate.name) return candidate.answer;
    fail("('answer'): '" + name + "' is none of ok, cancel, yes, no, retry");
  }

  void refuseUnknownKeys() const {
    if (used_ == json_.size()) return;
    fail(std::string("('") + key_ + "') has a key that doesn't belong to it: " + json_.dump());
  }

  const Json& json_;
  const std::string& file_;
  std::size_t number_;
  const char* key_ = "";
  std::size_t used_ = 0;
};

}  // namespace

std::string describe(const ScriptAction& action) {
  for (const KindName& candidate : kKinds)
    if (candidate.kind == action.kind) return "action " + std::to_string(action.number) + " (" + candidate.name + ")";
  return "action " + std::to_string(action.number);
}

std::string jsonProblem(std::string_view words) {
  // "[json.exception.parse_error.101] parse error at line 1, column 2: …"
  if (const std::size_t end = words.find("] "); words.starts_with('[') && end != std::string_view::npos)
    words.remove_prefix(end + 2);
  return std::string(words);
}

std::vector<ScriptAction> parseScript(std::string_view json, const std::string& name) {
  Json script;
  try {
    script = Json::parse(json);
  } catch (const Json::exception& error) {
    throw ScriptError("script: " + name + ": it isn't JSON: " + jsonProblem(error.what()));
  }
  if (!script.is_array()) throw ScriptError("script: " + name + ": it isn't a JSON array of actions");
  std::vector<ScriptAction> actions;
  actions.reserve(script.size());
  for (const Json& action : script) actions.push_back(ActionReader(action, actions.size() + 1, name).read());
  return actions;
}

}  // namespace lvx::script
