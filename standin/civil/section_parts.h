#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "civil/code_list.h"

/// What a corridor's section is made of, in few pieces of memory: a corridor has hundreds of thousands of sections, and who
/// reads them waits for memory more than for anything else.
namespace lvx::civil {

struct SectionPoint {
  double offset = 0.0;
  /// Relative to the baseline's profile (a baseline without one: to 0).
  double elevation = 0.0;
  CodeList codes;
};

/// The points of a part, in order; a vector of them but for where they lie: those of a SectionParts that was copied lie behind
/// its parts.
class SectionPoints {
 public:
  using value_type = SectionPoint;
  using iterator = SectionPoint*;
  using const_iterator = const SectionPoint*;

  SectionPoints() = default;
  SectionPoints(std::initializer_list<SectionPoint> points);
  SectionPoints(const SectionPoints& other);
  /// Takes the memory of `other` where it has some of its own, else copies. Leaves it empty.
  SectionPoints(SectionPoints&& other);  // NOLINT(performance-noexcept-move-constructor)
  SectionPoints& operator=(SectionPoints other) noexcept;
  ~SectionPoints();

  void push_back(SectionPoint point);
  void reserve(std::size_t count);

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] SectionPoint* data() { return first_; }
  [[nodiscard]] const SectionPoint* data() const { return first_; }
  [[nodiscard]] SectionPoint* begin() { return first_; }
  [[nodiscard]] SectionPoint* end() { return first_ + size_; }
  [[nodiscard]] const SectionPoint* begin() const { return first_; }
  [[nodiscard]] const SectionPoint* end() const { return first_ + size_; }
  [[nodiscard]] SectionPoint& operator[](std::size_t index) { return first_[index]; }
  [[nodiscard]] const SectionPoint& operator[](std::size_t index) const { return first_[index]; }
  [[nodiscard]] const SectionPoint& front() const { return first_[0]; }
  [[nodiscard]] const SectionPoint& back() const { return first_[size_ - 1]; }

 private:
  friend class SectionParts;
  /// Copies of `points` in memory that somebody else frees, and that lasts longer.
  SectionPoints(const SectionPoints& points, void* memory);
  void grow(std::size_t capacity);

  SectionPoint* first_ = nullptr;
  std::uint32_t size_ = 0;
  std::uint32_t capacity_ = 0;  ///< 0 with points: the memory isn't this one's to free
};

struct SectionPart {
  CodeList codes;
  SectionPoints points;
  /// The last point leads back to the first: an area, such as a layer of the road. Drawn so; reports list points alone.
  bool isClosed = false;
};

/// Memory for the parts of many sections, one behind the other in the order of their making. It is freed with the last of
/// them, wherever they are then; they may end on any threads.
class SectionMemory {
 public:
  SectionMemory() = default;
  SectionMemory(const SectionMemory&) = delete;
  SectionMemory& operator=(const SectionMemory&) = delete;
  ~SectionMemory();

 private:
  friend class SectionParts;
  struct Slab;
  void* take(std::size_t bytes);
  static void release(Slab* slab) noexcept;

  Slab* slab_ = nullptr;
  std::size_t used_ = 0;
  std::size_t size_ = 0;
};

/// The parts of a section, in order; a vector of them that takes a pointer, and whose copies lie in one piece, points included.
/// Moving it leaves parts and points where they are.
class SectionParts {
 public:
  using value_type = SectionPart;
  using iterator = SectionPart*;
  using const_iterator = const SectionPart*;

  SectionParts() = default;
  SectionParts(std::initializer_list<SectionPart> parts);
  SectionParts(const SectionParts& other) : SectionParts(other, nullptr) {}
  /// A copy that lies in `memory`, behind what was put there before.
  SectionParts(const SectionParts& other, SectionMemory& memory) : SectionParts(other, &memory) {}
  SectionParts(SectionParts&& other) noexcept;
  SectionParts& operator=(SectionParts other) noexcept;
  ~SectionParts();

  void push_back(SectionPart part);
  void reserve(std::size_t count);

  [[nodiscard]] std::size_t size() const { return head_ == nullptr ? 0 : head_->size; }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] SectionPart* data() { return first(); }
  [[nodiscard]] const SectionPart* data() const { return first(); }
  [[nodiscard]] SectionPart* begin() { return first(); }
  [[nodiscard]] SectionPart* end() { return first() + size(); }
  [[nodiscard]] const SectionPart* begin() const { return first(); }
  [[nodiscard]] const SectionPart* end() const { return first() + size(); }
  [[nodiscard]] SectionPart& operator[](std::size_t index) { return first()[index]; }
  [[nodiscard]] const SectionPart& operator[](std::size_t index) const { return first()[index]; }
  [[nodiscard]] SectionPart& front() { return first()[0]; }
  [[nodiscard]] const SectionPart& front() const { return first()[0]; }
  [[nodiscard]] SectionPart& back() { return first()[size() - 1]; }
  [[nodiscard]] const SectionPart& back() const { return first()[size() - 1]; }

 private:
  /// Stands before the parts.
  struct Head {
    SectionMemory::Slab* slab = nullptr;  ///< null: the piece is this section's alone
    std::uint32_t size = 0;
    std::uint32_t capacity = 0;
  };
  SectionParts(const SectionParts& other, SectionMemory* memory);
  [[nodiscard]] SectionPart* first() const {
    return head_ == nullptr ? nullptr : static_cast<SectionPart*>(static_cast<void*>(head_ + 1));
  }

  Head* head_ = nullptr;
};

}  // namespace lvx::civil
