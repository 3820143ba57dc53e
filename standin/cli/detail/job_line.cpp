#include "cli/detail/job_line.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <nlohmann/json.hpp>

#include "script/script.h"
#include "standin_platform/c_locale_scope.h"

namespace lvx::cli {

namespace {

using Json = nlohmann::json;
using Kind = JobValue::Kind;

/// Takes the members as they come.
class MemberReader final : public nlohmann::json_sax<Json> {
 public:
  [[nodiscard]] std::vector<JobMember> take() {
    if (!isObject_) throw JobLineError("no JSON object");
    return std::move(members_);
  }

  bool null() override { return add({}); }
  bool boolean(bool value) override { return add({value ? Kind::True : Kind::False, {}, {}}); }
  bool number_integer(number_integer_t value) override { return add({Kind::Number, std::to_string(value), {}}); }
  bool number_unsigned(number_unsigned_t value) override { return add({Kind::Number, std::to_string(value), {}}); }
  bool number_float(number_float_t /*value*/, const string_t& text) override { return add({Kind::Number, text, {}}); }
  bool string(string_t& value) override { return add({Kind::Text, std::move(value), {}}); }
  bool binary(binary_t& /*value*/) override { return false; }

  bool start_object(std::size_t /*size*/) override {
    if (depth_ == 0)
      isObject_ = true;
    else
      add({});
    ++depth_;
    return true;
  }
  bool key(string_t& name) override {
    if (depth_ == 1) {
      if (std::any_of(members_.begin(), members_.end(), [&](const JobMember& other) { return other.name == name; }))
        throw JobLineError("\"" + name + "\" is given twice");
      members_.push_back({std::move(name), {}});
    }
    return true;
  }
  bool end_object() override {
    --depth_;
    return true;
  }
  bool start_array(std::size_t /*size*/) override {
    if (depth_ == 1 && isObject_)
      members_.back().value = {Kind::List, {}, {}};
    else
      add({});
    ++depth_;
    return true;
  }
  bool end_array() override {
    --depth_;
    return true;
  }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const Json::exception& error) override {
    throw JobLineError("no JSON object: " + script::jsonProblem(error.what()));
  }

 private:
  bool add(JobValue value) {
    if (!isObject_) return true;
    JobValue& member = members_.back().value;
    if (depth_ == 1)
      member = std::move(value);
    else if (depth_ == 2 && member.kind == Kind::List && value.kind == Kind::Text)
      member.list.push_back(std::move(value.text));
    else
      member = {};
    return true;
  }

  std::vector<JobMember> members_;
  bool isObject_ = false;
  int depth_ = 0;
};

}  // namespace

std::vector<JobMember> jobMembers(std::string_view line) {
  MemberReader reader;
  // The text of a number would have the locale's decimal sign.
  const standin_platform::CLocaleScope scope;
  Json::sax_parse(line.begin(), line.end(), &reader);
  return reader.take();
}

}  // namespace lvx::cli
