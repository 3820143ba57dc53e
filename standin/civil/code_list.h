#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace lvx::civil {

/// The codes of a part or a point of corridor sections, in order. A road has millions of points and a few dozen lists of
/// codes, so copies share one list, which never changes; on any threads.
///     point.codes = {"ETW", "Crown"};
class CodeList {
 public:
  using value_type = std::string;
  using const_iterator = std::vector<std::string>::const_iterator;

  CodeList() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a list of codes where one is asked for
  CodeList(std::vector<std::string> codes) {
    if (!codes.empty()) held_ = new Held{std::move(codes)};
  }
  CodeList(std::initializer_list<std::string> codes) : CodeList(std::vector<std::string>(codes)) {}
  CodeList(const CodeList& other) noexcept : held_(other.held_) {
    if (held_ != nullptr) held_->sharers.fetch_add(1, std::memory_order_relaxed);
  }
  CodeList(CodeList&& other) noexcept : held_(std::exchange(other.held_, nullptr)) {}
  CodeList& operator=(CodeList other) noexcept {
    std::swap(held_, other.held_);
    return *this;
  }
  ~CodeList() {
    if (held_ != nullptr && held_->sharers.fetch_sub(1, std::memory_order_acq_rel) == 1) delete held_;
  }

  /// Valid as long as a list that shares it.
  [[nodiscard]] const std::vector<std::string>& list() const {
    static const std::vector<std::string> kNone;
    return held_ == nullptr ? kNone : held_->codes;
  }
  // NOLINTNEXTLINE(google-explicit-constructor)
  operator const std::vector<std::string>&() const { return list(); }
  [[nodiscard]] bool empty() const { return held_ == nullptr; }
  [[nodiscard]] std::size_t size() const { return list().size(); }
  [[nodiscard]] const_iterator begin() const { return list().begin(); }
  [[nodiscard]] const_iterator end() const { return list().end(); }
  [[nodiscard]] const std::string& operator[](std::size_t index) const { return list()[index]; }

  friend bool operator==(const CodeList& a, const CodeList& b) { return a.held_ == b.held_ || a.list() == b.list(); }

 private:
  /// Counts its sharers itself: a section's points are many, and a shared pointer is twice as large.
  struct Held {
    explicit Held(std::vector<std::string> list) : codes(std::move(list)) {}
    const std::vector<std::string> codes;
    std::atomic<std::uint64_t> sharers{1};
  };
  Held* held_ = nullptr;
};

}  // namespace lvx::civil
