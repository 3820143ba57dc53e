#include "civil/section_parts.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace lvx::civil {

namespace {

constexpr std::size_t kFewest = 4;  // points or parts for which there is room at first

std::uint32_t asCount(std::size_t count) {
  if (count > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
  return static_cast<std::uint32_t>(count);
}

}  // namespace

// ---------------------------------------------------------------- points

SectionPoints::SectionPoints(std::initializer_list<SectionPoint> points) : SectionPoints() {
  reserve(points.size());
  for (const SectionPoint& point : points) push_back(point);
}

SectionPoints::SectionPoints(const SectionPoints& other) : SectionPoints() {
  reserve(other.size());
  std::uninitialized_copy(other.begin(), other.end(), first_);
  size_ = other.size_;
}

SectionPoints::SectionPoints(SectionPoints&& other) {  // NOLINT(performance-noexcept-move-constructor)
  if (other.capacity_ > 0) {
    std::swap(first_, other.first_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
    return;
  }
  reserve(other.size());
  std::uninitialized_move(other.begin(), other.end(), first_);
  size_ = other.size_;
}

SectionPoints::SectionPoints(const SectionPoints& points, void* memory)
    : first_(static_cast<SectionPoint*>(memory)), size_(points.size_) {
  std::uninitialized_copy(points.begin(), points.end(), first_);
}

SectionPoints& SectionPoints::operator=(SectionPoints other) noexcept {
  std::swap(first_, other.first_);
  std::swap(size_, other.size_);
  std::swap(capacity_, other.capacity_);
  return *this;
}

SectionPoints::~SectionPoints() {
  std::destroy(begin(), end());
  if (capacity_ > 0) ::operator delete(first_);
}

void SectionPoints::push_back(SectionPoint point) {
  if (size_ >= capacity_) grow(std::max(kFewest, std::size_t{2} * size_));
  new (first_ + size_) SectionPoint(std::move(point));
  ++size_;
}

void SectionPoints::reserve(std::size_t count) {
  if (count > capacity_ && count > size_) grow(count);
}

void SectionPoints::grow(std::size_t capacity) {
  const std::uint32_t count = asCount(capacity);
  auto* const memory = static_cast<SectionPoint*>(::operator new(capacity * sizeof(SectionPoint)));
  std::uninitialized_move(begin(), end(), memory);
  std::destroy(begin(), end());
  if (capacity_ > 0) ::operator delete(first_);
  first_ = memory;
  capacity_ = count;
}

// ---------------------------------------------------------------- memory of many

struct SectionMemory::Slab {
  std::atomic<std::uint32_t> users{1};  ///< pieces within it, and the memory that still gives some
};

namespace {
// A slab is twice as large as the one before it.
constexpr std::size_t kLeastSlab = std::size_t{1} << 10;
constexpr std::size_t kLargestSlab = std::size_t{1} << 16;
}  // namespace

SectionMemory::~SectionMemory() {
  if (slab_ != nullptr) release(slab_);
}

void SectionMemory::release(Slab* slab) noexcept {
  if (slab->users.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
  slab->~Slab();
  ::operator delete(slab);
}

/// What was taken is a user of the slab from then on.
void* SectionMemory::take(std::size_t bytes) {
  constexpr std::size_t kHead = alignof(std::max_align_t);
  static_assert(sizeof(Slab) <= kHead);
  if (slab_ == nullptr || size_ - used_ < bytes) {
    const std::size_t size = std::max(std::clamp(2 * size_, kLeastSlab, kLargestSlab), kHead + bytes);
    auto* const fresh = new (::operator new(size)) Slab;
    if (slab_ != nullptr) release(slab_);
    slab_ = fresh;
    size_ = size;
    used_ = kHead;
  }
  void* const taken = static_cast<std::byte*>(static_cast<void*>(slab_)) + used_;
  used_ += bytes;
  slab_->users.fetch_add(1, std::memory_order_relaxed);
  return taken;
}

// ---------------------------------------------------------------- parts

SectionParts::SectionParts(std::initializer_list<SectionPart> parts) : SectionParts() {
  reserve(parts.size());
  for (const SectionPart& part : parts) push_back(part);
}

SectionParts::SectionParts(const SectionParts& other, SectionMemory* memory) {
  if (other.empty()) return;
  static_assert(alignof(SectionPart) == alignof(SectionPoint) && sizeof(Head) % alignof(SectionPart) == 0 &&
                sizeof(SectionPart) % alignof(SectionPoint) == 0);
  std::size_t points = 0;
  for (const SectionPart& part : other) points += part.points.size();
  const std::size_t bytes = sizeof(Head) + other.size() * sizeof(SectionPart) + points * sizeof(SectionPoint);
  void* const piece = memory != nullptr ? memory->take(bytes) : ::operator new(bytes);
  // Nothing fails from here on: codes are shared.
  head_ = new (piece) Head{memory != nullptr ? memory->slab_ : nullptr, 0, other.head_->size};
  auto* behind = static_cast<void*>(first() + other.size());
  for (const SectionPart& part : other) {
    new (first() + head_->size) SectionPart{part.codes, SectionPoints(part.points, behind), part.isClosed};
    ++head_->size;
    behind = static_cast<SectionPoint*>(behind) + part.points.size();
  }
}

SectionParts::SectionParts(SectionParts&& other) noexcept : head_(std::exchange(other.head_, nullptr)) {}

SectionParts& SectionParts::operator=(SectionParts other) noexcept {
  std::swap(head_, other.head_);
  return *this;
}

SectionParts::~SectionParts() {
  if (head_ == nullptr) return;
  std::destroy(begin(), end());
  SectionMemory::Slab* const slab = head_->slab;
  if (slab != nullptr)
    SectionMemory::release(slab);
  else
    ::operator delete(head_);
}

void SectionParts::push_back(SectionPart part) {
  if (head_ == nullptr || head_->size == head_->capacity) reserve(std::max(kFewest / 2, 2 * size()));
  new (first() + head_->size) SectionPart(std::move(part));
  ++head_->size;
}

void SectionParts::reserve(std::size_t count) {
  if (count <= (head_ == nullptr ? 0 : head_->capacity)) return;
  const std::uint32_t capacity = asCount(count);
  SectionParts larger;
  larger.head_ = new (::operator new(sizeof(Head) + count * sizeof(SectionPart))) Head{nullptr, 0, capacity};
  for (SectionPart& part : *this) larger.push_back(std::move(part));
  std::swap(head_, larger.head_);
}

}  // namespace lvx::civil
