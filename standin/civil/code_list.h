#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lvx::civil {

/// The codes of a part or a point of corridor sections, in order. A road has millions of points and a few dozen lists of
/// codes, so copies share one list, which never changes.
///     point.codes = {"ETW", "Crown"};
class CodeList {
 public:
  using value_type = std::string;
  using const_iterator = std::vector<std::string>::const_iterator;

  CodeList() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a list of codes where one is asked for
  CodeList(std::vector<std::string> codes) {
    if (!codes.empty()) codes_ = std::make_shared<const std::vector<std::string>>(std::move(codes));
  }
  CodeList(std::initializer_list<std::string> codes) : CodeList(std::vector<std::string>(codes)) {}

  /// Valid as long as a list that shares it.
  [[nodiscard]] const std::vector<std::string>& list() const {
    static const std::vector<std::string> kNone;
    return codes_ == nullptr ? kNone : *codes_;
  }
  // NOLINTNEXTLINE(google-explicit-constructor)
  operator const std::vector<std::string>&() const { return list(); }
  [[nodiscard]] bool empty() const { return codes_ == nullptr; }
  [[nodiscard]] std::size_t size() const { return list().size(); }
  [[nodiscard]] const_iterator begin() const { return list().begin(); }
  [[nodiscard]] const_iterator end() const { return list().end(); }
  [[nodiscard]] const std::string& operator[](std::size_t index) const { return list()[index]; }

  friend bool operator==(const CodeList& a, const CodeList& b) { return a.codes_ == b.codes_ || a.list() == b.list(); }

 private:
  std::shared_ptr<const std::vector<std::string>> codes_;
};

}  // namespace lvx::civil
