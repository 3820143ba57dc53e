#include "framework/tpt3list.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "framework/exceptions.h"

namespace lvx::framework {

namespace {
constexpr std::int64_t kElementBytes = 24;
constexpr std::int64_t kLargeListBytes = 65536;
constexpr std::int32_t kLargeListStep = 2730;
}  // namespace

tpt3list::tpt3list(const tpt3list& other)
    : items_(other.capacity_ > 0 ? std::make_unique<tpt3[]>(static_cast<std::size_t>(other.capacity_)) : nullptr),
      capacity_(other.capacity_),
      count_(other.count_),
      growthStep_(other.growthStep_) {
  std::copy_n(other.items_.get(), other.capacity_, items_.get());
}

tpt3list::tpt3list(tpt3list&& other) noexcept
    : items_(std::move(other.items_)),
      capacity_(std::exchange(other.capacity_, 0)),
      count_(std::exchange(other.count_, 0)),
      growthStep_(other.growthStep_) {}

tpt3list& tpt3list::operator=(tpt3list other) noexcept {
  std::swap(items_, other.items_);
  std::swap(capacity_, other.capacity_);
  std::swap(count_, other.count_);
  std::swap(growthStep_, other.growthStep_);
  return *this;
}

const tpt3& tpt3list::at(std::int32_t index) const {
  if (index < 0 || index >= count_) throw InvalidArgumentException();
  return items_[static_cast<std::size_t>(index)];
}

tpt3& tpt3list::at(std::int32_t index) {
  if (index < 0 || index >= count_) throw InvalidArgumentException();
  return items_[static_cast<std::size_t>(index)];
}

tpt3 tpt3list::stored(std::int32_t index) const noexcept {
  return index >= 0 && index < capacity_ ? items_[static_cast<std::size_t>(index)] : tpt3{};
}

void tpt3list::insert(std::int32_t index, const tpt3& value) {
  if (index < 0 || index > count_) return;
  const tpt3 copy = value;  // `value` may lie in the storage that moves
  if (count_ == std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
  if (count_ >= capacity_) moveToCapacity(grownCapacity(capacity_, std::int64_t{count_} + 1));
  std::move_backward(items_.get() + index, items_.get() + count_, items_.get() + count_ + 1);
  items_[static_cast<std::size_t>(index)] = copy;
  ++count_;
}

void tpt3list::remove(std::int32_t from, std::int32_t to) {
  if (from < 0 || to < from || to >= count_) return;
  std::move(items_.get() + to + 1, items_.get() + count_, items_.get() + from);
  count_ -= to - from + 1;
}

void tpt3list::reverse() noexcept { std::reverse(items_.get(), items_.get() + count_); }

void tpt3list::reserveForAppending(std::int32_t additional) {
  const std::int64_t needed = std::int64_t{count_} + additional;
  if (needed > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
  std::int64_t wanted = capacity_;
  while (wanted < needed) wanted = grownCapacity(wanted, wanted + 1);
  if (wanted > capacity_) moveToCapacity(wanted);
}

std::int64_t tpt3list::grownCapacity(std::int64_t capacity, std::int64_t needed) const noexcept {
  std::int64_t extra = capacity * kElementBytes < kLargeListBytes ? capacity : kLargeListStep;
  extra = std::max<std::int64_t>(extra, growthStep_);
  return std::max(needed, capacity + extra);
}

void tpt3list::moveToCapacity(std::int64_t newCapacity) {
  newCapacity = std::min<std::int64_t>(newCapacity, std::numeric_limits<std::int32_t>::max());
  auto grown = std::make_unique<tpt3[]>(static_cast<std::size_t>(newCapacity));
  std::copy_n(items_.get(), count_, grown.get());
  items_ = std::move(grown);
  capacity_ = static_cast<std::int32_t>(newCapacity);
}

}  // namespace lvx::framework
