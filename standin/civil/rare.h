#pragma once

#include <memory>
#include <optional>
#include <utility>

namespace lvx::civil {

/// A value that few objects have: like std::optional, but it takes no more than a pointer where there is none, since
/// drawings hold objects by the hundred thousand. Copies share nothing.
///     Rare<std::string> nameInFile;
///     if (nameInFile) print(*nameInFile);
template <class Value>
class Rare {
 public:
  Rare() = default;
  Rare(std::nullopt_t) {}
  Rare(Value value) : value_(std::make_unique<Value>(std::move(value))) {}
  Rare(const Rare& other) : value_(other.value_ ? std::make_unique<Value>(*other.value_) : nullptr) {}
  Rare(Rare&&) noexcept = default;
  Rare& operator=(Rare other) noexcept {
    value_.swap(other.value_);
    return *this;
  }
  ~Rare() = default;

  [[nodiscard]] explicit operator bool() const { return value_ != nullptr; }
  [[nodiscard]] bool has_value() const { return value_ != nullptr; }
  /// Only where there is one.
  [[nodiscard]] const Value& operator*() const { return *value_; }
  [[nodiscard]] Value& operator*() { return *value_; }
  [[nodiscard]] const Value* operator->() const { return value_.get(); }
  [[nodiscard]] Value* operator->() { return value_.get(); }
  /// The value, made where there is none.
  [[nodiscard]] Value& made() {
    if (!value_) value_ = std::make_unique<Value>();
    return *value_;
  }
  /// The value, or one that was made by default, which all share.
  [[nodiscard]] const Value& orNone() const {
    static const Value kNone{};
    return value_ ? *value_ : kNone;
  }
  void reset() { value_.reset(); }

  friend bool operator==(const Rare& a, const Rare& b) {
    return a.has_value() == b.has_value() && (!a.has_value() || *a == *b);
  }
  template <class Other>
  friend bool operator==(const Rare& a, const Other& b) {
    return a.has_value() && *a == b;
  }

 private:
  std::unique_ptr<Value> value_;
};

}  // namespace lvx::civil
