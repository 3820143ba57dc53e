#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "framework/exceptions.h"
#include "framework/text.h"
#include "host/model.h"

/// Another program's objects, worked from outside: properties and methods by their numbers. Behind it stands the
/// spreadsheet program, a server that writes workbook files, or a double that records every call.
///
///     Ref<AutomationObject> app = vnrxHost()->createAutomationObject(L"Excel.Application");
///     Ref<AutomationObject> books = app->get(excel::kApplicationWorkbooks, {}).takeObject();
///
/// For all of it:
/// - An operation that fails raises framework::AutomationException.
/// - Arguments stand in their natural order, first argument first.
/// - A reference lasts for as long as it is held; the program's own life is the program's business.
/// - All calls come from the host's main thread and return when the program has answered. Each may cross to another
///   process.
namespace lvx::host {

class AutomationObject;

/// The number of a property or method in its object's own model.
using DispatchId = std::int32_t;

/// One argument or result. It owns its text and its share in an object.
class AutomationValue {
 public:
  enum class Kind : std::uint8_t {
    Empty,
    Missing,  ///< an argument that is left out: the program takes its own default
    Integer,  ///< 16 bits
    Text,
    Object,
  };

  AutomationValue() = default;
  [[nodiscard]] static AutomationValue missing() { return AutomationValue(Kind::Missing); }
  [[nodiscard]] static AutomationValue ofInteger(std::int16_t integer) {
    AutomationValue value(Kind::Integer);
    value.integer_ = integer;
    return value;
  }
  [[nodiscard]] static AutomationValue ofText(CString text) {
    AutomationValue value(Kind::Text);
    value.text_ = std::move(text);
    return value;
  }
  /// An empty reference is a value too: an operation that had no object to give.
  [[nodiscard]] static AutomationValue ofObject(Ref<AutomationObject> object) {
    AutomationValue value(Kind::Object);
    value.object_ = std::move(object);
    return value;
  }

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  [[nodiscard]] bool isMissing() const noexcept { return kind_ == Kind::Missing; }
  // Each raises framework::AutomationException where the value is of another kind.
  [[nodiscard]] std::int16_t integer() const {
    require(Kind::Integer);
    return integer_;
  }
  [[nodiscard]] const CString& text() const {
    require(Kind::Text);
    return text_;
  }
  [[nodiscard]] const Ref<AutomationObject>& object() const {
    require(Kind::Object);
    return object_;
  }
  /// Hands the reference over and leaves the value empty. Raises where there is no object, an empty reference included.
  [[nodiscard]] Ref<AutomationObject> takeObject() {
    if (!object()) throw framework::AutomationException("automation: an operation gave no object");
    kind_ = Kind::Empty;
    return std::move(object_);
  }

  /// Becomes that text. A text of no more than the former one's length costs no memory, be the value cleared between.
  void setText(std::wstring_view text) {
    object_.reset();
    text_.assign(text);
    kind_ = Kind::Text;
  }
  /// Becomes empty and gives up a reference.
  void clear() noexcept {
    kind_ = Kind::Empty;
    text_.clear();
    object_.reset();
  }

  bool operator==(const AutomationValue& other) const {
    if (kind_ != other.kind_) return false;
    return kind_ == Kind::Integer ? integer_ == other.integer_ : text_ == other.text_ && object_ == other.object_;
  }

 private:
  explicit AutomationValue(Kind kind) : kind_(kind) {}
  void require(Kind kind) const {
    if (kind_ != kind) throw framework::AutomationException("automation: a value of another kind than expected");
  }

  Kind kind_ = Kind::Empty;
  std::int16_t integer_ = 0;
  CString text_;
  Ref<AutomationObject> object_;
};

using AutomationArguments = std::span<const AutomationValue>;

/// An object of another program. Its operations are those of its own model; any other number fails.
class AutomationObject {
 public:
  AutomationObject() = default;
  AutomationObject(const AutomationObject&) = delete;
  AutomationObject& operator=(const AutomationObject&) = delete;
  virtual ~AutomationObject() = default;

  /// Reads a property, which may take arguments.
  [[nodiscard]] virtual AutomationValue get(DispatchId property, AutomationArguments arguments) = 0;
  /// Sets a property. The value belongs to the caller, who may change it after the call.
  virtual void put(DispatchId property, const AutomationValue& value) = 0;
  /// Calls a method; empty where it gives nothing.
  virtual AutomationValue call(DispatchId method, AutomationArguments arguments) = 0;
};

}  // namespace lvx::host
