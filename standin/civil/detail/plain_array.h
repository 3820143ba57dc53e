#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "standin_platform/large_pages.h"

namespace lvx::civil::detail {

/// A large array whose items are written before they are read: it begins without the zeros of a std::vector, in large
/// pages of memory where the system has them.
template <class Item>
class PlainArray {
  static_assert(std::is_trivially_copyable_v<Item> && std::is_trivially_destructible_v<Item>);

 public:
  PlainArray() = default;
  explicit PlainArray(std::size_t size)
      : memory_(std::allocator<Item>().allocate(size),
                [size](Item* items) { std::allocator<Item>().deallocate(items, size); }),
        items_(static_cast<Item*>(memory_.get())),
        size_(size) {
    standin_platform::preferLargePages(items_, size * sizeof(Item));
  }
  /// In memory that somebody else has made.
  PlainArray(std::shared_ptr<void> memory, Item* items, std::size_t size)
      : memory_(std::move(memory)), items_(items), size_(size) {}
  PlainArray(PlainArray&& other) noexcept
      : memory_(std::move(other.memory_)),
        items_(std::exchange(other.items_, nullptr)),
        size_(std::exchange(other.size_, 0)) {}
  PlainArray& operator=(PlainArray&& other) noexcept {
    memory_ = std::move(other.memory_);
    items_ = std::exchange(other.items_, nullptr);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] Item& operator[](std::size_t i) { return items_[i]; }
  [[nodiscard]] const Item& operator[](std::size_t i) const { return items_[i]; }
  [[nodiscard]] std::span<Item> all() { return {items_, size_}; }
  [[nodiscard]] std::span<const Item> all() const { return {items_, size_}; }

 private:
  std::shared_ptr<void> memory_;
  Item* items_ = nullptr;
  std::size_t size_ = 0;
};

/// Memory of an array that has been used up. Arrays are made of it as long as it lasts: memory that the system has given
/// already costs nothing, fresh pages cost more than what is done with them.
class SpareMemory {
 public:
  SpareMemory() = default;
  template <class Item>
  explicit SpareMemory(std::vector<Item>&& used) {
    auto held = std::make_shared<std::vector<Item>>(std::move(used));
    next_ = reinterpret_cast<std::byte*>(held->data());
    left_ = held->size() * sizeof(Item);
    memory_ = std::move(held);
  }
  SpareMemory(SpareMemory&& other) noexcept { *this = std::move(other); }
  SpareMemory& operator=(SpareMemory&& other) noexcept {
    shrinkTo(0);
    memory_ = std::move(other.memory_);
    next_ = std::exchange(other.next_, nullptr);
    left_ = std::exchange(other.left_, 0);
    return *this;
  }
  /// What is left goes back to the system, also while arrays still lie beside it.
  ~SpareMemory() { shrinkTo(0); }
  /// Keeps so many bytes for arrays to come; the rest goes back to the system.
  void shrinkTo(std::size_t bytes) {
    if (!memory_ || bytes >= left_) return;
    standin_platform::giveBackPages(next_ + bytes, left_ - bytes);
    left_ = bytes;
  }

  /// An array whose items are to be written first; of fresh memory where none is left.
  template <class Item>
  [[nodiscard]] PlainArray<Item> array(std::size_t size) {
    // Every item of ours is aligned by that.
    constexpr std::size_t kAlignment = 16;
    const std::size_t wanted = (size * sizeof(Item) + kAlignment - 1) / kAlignment * kAlignment;
    if (wanted > left_ || reinterpret_cast<std::uintptr_t>(next_) % kAlignment != 0) return PlainArray<Item>(size);
    std::byte* const place = std::exchange(next_, next_ + wanted);
    left_ -= wanted;
    return PlainArray<Item>(memory_, reinterpret_cast<Item*>(place), size);
  }

 private:
  std::shared_ptr<void> memory_;
  std::byte* next_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace lvx::civil::detail
