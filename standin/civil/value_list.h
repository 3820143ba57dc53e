#pragma once

#include <compare>
#include <cstddef>
#include <iterator>

namespace lvx::civil {

/// A list whose values are made when they are asked for, since its owner keeps them in less memory than they take. Cheap
/// to copy; valid as long as its owner stays where it is and unchanged. A value costs what `At` costs.
///     for (const Element& element : alignment.elements()) use(element);
template <class Owner, class Value, Value (Owner::*At)(std::size_t) const>
class ValueList {
 public:
  class Iterator {
   public:
    using value_type = Value;
    using reference = Value;
    using pointer = void;
    using difference_type = std::ptrdiff_t;
    using iterator_category = std::input_iterator_tag;
    using iterator_concept = std::random_access_iterator_tag;

    Iterator() = default;
    Iterator(const Owner* owner, std::size_t index) : owner_(owner), index_(index) {}
    Value operator*() const { return (owner_->*At)(index_); }
    Value operator[](difference_type by) const { return *(*this + by); }
    Iterator& operator++() { return *this += 1; }
    Iterator& operator--() { return *this -= 1; }
    Iterator operator++(int) {
      const Iterator old = *this;
      ++*this;
      return old;
    }
    Iterator operator--(int) {
      const Iterator old = *this;
      --*this;
      return old;
    }
    Iterator& operator+=(difference_type by) {
      index_ = static_cast<std::size_t>(static_cast<difference_type>(index_) + by);
      return *this;
    }
    Iterator& operator-=(difference_type by) { return *this += -by; }
    friend Iterator operator+(Iterator a, difference_type by) { return a += by; }
    friend Iterator operator+(difference_type by, Iterator a) { return a += by; }
    friend Iterator operator-(Iterator a, difference_type by) { return a -= by; }
    friend difference_type operator-(Iterator a, Iterator b) {
      return static_cast<difference_type>(a.index_) - static_cast<difference_type>(b.index_);
    }
    friend bool operator==(Iterator a, Iterator b) { return a.index_ == b.index_; }
    friend std::strong_ordering operator<=>(Iterator a, Iterator b) { return a.index_ <=> b.index_; }

   private:
    const Owner* owner_ = nullptr;
    std::size_t index_ = 0;
  };

  ValueList(const Owner& owner, std::size_t size) : owner_(&owner), size_(size) {}
  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size_ == 0; }
  [[nodiscard]] Value operator[](std::size_t index) const { return (owner_->*At)(index); }
  [[nodiscard]] Value front() const { return (*this)[0]; }
  [[nodiscard]] Value back() const { return (*this)[size_ - 1]; }
  [[nodiscard]] Iterator begin() const { return {owner_, 0}; }
  [[nodiscard]] Iterator end() const { return {owner_, size_}; }

 private:
  const Owner* owner_;
  std::size_t size_;
};

}  // namespace lvx::civil
