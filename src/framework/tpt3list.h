#pragma once

#include <cstdint>
#include <memory>

namespace lvx::framework {

/// Three numbers. What they are depends on the list: x, y and signed offset in a vertex list; x, y and elevation in a
/// point list; the offset and two zeros in an offset list; station, offset and elevation in a section.
struct tpt3 {
  double first = 0.0;
  double second = 0.0;
  double third = 0.0;

  bool operator==(const tpt3&) const = default;
};

/// A growable array of tpt3 whose capacity follows one fixed rule, so that both sides of the companion boundary grow it
/// alike: the extra room is the present capacity while that takes less than 64 KiB, else 2730 elements (64 KiB); the
/// growth step replaces it where larger.
///
/// An index outside leaves a changing operation without effect; reading outside raises InvalidArgumentException. The
/// storage keeps its content when the list is emptied, which `stored` lets a caller read on purpose.
class tpt3list {
 public:
  tpt3list() = default;
  tpt3list(const tpt3list& other);
  tpt3list(tpt3list&& other) noexcept;
  tpt3list& operator=(tpt3list other) noexcept;
  ~tpt3list() = default;

  [[nodiscard]] std::int32_t count() const noexcept { return count_; }
  [[nodiscard]] std::int32_t capacity() const noexcept { return capacity_; }
  [[nodiscard]] const tpt3& at(std::int32_t index) const;
  [[nodiscard]] tpt3& at(std::int32_t index);
  [[nodiscard]] const tpt3& operator[](std::int32_t index) const { return at(index); }
  [[nodiscard]] tpt3& operator[](std::int32_t index) { return at(index); }

  /// The element that the storage holds at `index`, even beyond the count: what an earlier, longer content left there,
  /// and zeros where nothing was ever written.
  [[nodiscard]] tpt3 stored(std::int32_t index) const noexcept;

  /// Inserts before `index`; below 0 or above the count it does nothing. O(n).
  void insert(std::int32_t index, const tpt3& value);
  /// O(1) amortised while the capacity doubles.
  void append(const tpt3& value) { insert(count_, value); }
  /// Makes room for `additional` appended elements in one move, with the capacity that appending them one by one would
  /// reach. Long lists are built with it: the fixed step of large lists would move them once every 2730 elements.
  void reserveForAppending(std::int32_t additional);
  /// Removes `from` to `to`, both included; a range that leaves the list does nothing.
  void remove(std::int32_t from, std::int32_t to);
  /// The count drops to 0, the capacity stays.
  void empty() noexcept { count_ = 0; }
  /// Gives the elements the opposite order. O(n).
  void reverse() noexcept;

  [[nodiscard]] const tpt3* begin() const noexcept { return items_.get(); }
  [[nodiscard]] const tpt3* end() const noexcept { return items_.get() + count_; }

 private:
  [[nodiscard]] std::int64_t grownCapacity(std::int64_t capacity, std::int64_t needed) const noexcept;
  void moveToCapacity(std::int64_t newCapacity);

  std::unique_ptr<tpt3[]> items_;
  std::int32_t capacity_ = 0;
  std::int32_t count_ = 0;
  std::int32_t growthStep_ = 8;
};

}  // namespace lvx::framework
