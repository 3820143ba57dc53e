#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "framework/exceptions.h"

namespace lvx::framework {

/// Index and size of the arrays: signed, so that a search can answer -1 and an index below 0 can be refused.
using ArrayIndex = std::ptrdiff_t;

/// A growing array of plain values. Every index outside [0, size) raises InvalidArgumentException; nothing is read or
/// written there. Appending costs O(1) amortised, inserting O(n).
template <class T>
class CArray {
 public:
  [[nodiscard]] ArrayIndex size() const noexcept { return static_cast<ArrayIndex>(items_.size()); }
  [[nodiscard]] bool isEmpty() const noexcept { return items_.empty(); }

  [[nodiscard]] const T& at(ArrayIndex index) const { return items_[checked(index)]; }
  [[nodiscard]] T& at(ArrayIndex index) { return items_[checked(index)]; }
  [[nodiscard]] const T& operator[](ArrayIndex index) const { return at(index); }
  [[nodiscard]] T& operator[](ArrayIndex index) { return at(index); }

  void setAt(ArrayIndex index, T value) { at(index) = std::move(value); }

  /// Appends and gives the index of the new element.
  ArrayIndex add(T value) {
    items_.push_back(std::move(value));
    return size() - 1;
  }

  /// Inserts before `index`. An index beyond the end first fills up with default values; one below 0 raises.
  void insertAt(ArrayIndex index, T value) {
    if (index < 0) throw InvalidArgumentException();
    if (index > size()) setSize(index);
    items_.insert(items_.begin() + index, std::move(value));
  }

  /// Removes `count` elements from `index` on; a range that leaves the array raises and removes nothing.
  void removeAt(ArrayIndex index, ArrayIndex count = 1) {
    if (index < 0 || count < 0 || index > size() || count > size() - index) throw InvalidArgumentException();
    items_.erase(items_.begin() + index, items_.begin() + index + count);
  }

  /// New elements are value-initialised. A size below 0 raises.
  void setSize(ArrayIndex newSize) {
    if (newSize < 0) throw InvalidArgumentException();
    items_.resize(static_cast<std::size_t>(newSize));
  }

  /// Makes room for `capacity` elements in all, so that appending them moves nothing.
  void reserve(ArrayIndex capacity) {
    if (capacity > 0) items_.reserve(static_cast<std::size_t>(capacity));
  }

  /// Frees the array's own storage.
  void removeAll() noexcept { std::vector<T>().swap(items_); }

  [[nodiscard]] auto begin() const noexcept { return items_.begin(); }
  [[nodiscard]] auto end() const noexcept { return items_.end(); }
  [[nodiscard]] auto begin() noexcept { return items_.begin(); }
  [[nodiscard]] auto end() noexcept { return items_.end(); }

 private:
  [[nodiscard]] std::size_t checked(ArrayIndex index) const {
    if (index < 0 || index >= size()) throw InvalidArgumentException();
    return static_cast<std::size_t>(index);
  }

  std::vector<T> items_;
};

/// An array of pointers that frees only its own storage: what it points to belongs to whoever put it there.
class CPtrArray : public CArray<void*> {};

/// The same, with the pointers' own type. `Base` is CPtrArray everywhere; the parameter keeps the records' declarations
/// as their users on both sides of the companion boundary write them.
template <class Base, class T>
class CTypedPtrArray : private Base {
  static_assert(std::is_base_of_v<CPtrArray, Base> && std::is_pointer_v<T>);

 public:
  using Base::isEmpty;
  using Base::removeAll;
  using Base::removeAt;
  using Base::reserve;
  using Base::setSize;
  using Base::size;

  [[nodiscard]] T at(ArrayIndex index) const { return static_cast<T>(Base::at(index)); }
  [[nodiscard]] T operator[](ArrayIndex index) const { return at(index); }
  void setAt(ArrayIndex index, T pointer) { Base::setAt(index, pointer); }
  ArrayIndex add(T pointer) { return Base::add(pointer); }
  /// Appends a record that belongs to the array's owner from here on. Where the array can't grow, the record is destroyed
  /// and the array is as it was.
  T append(std::unique_ptr<std::remove_pointer_t<T>> record) {
    Base::add(record.get());
    return record.release();
  }
  void insertAt(ArrayIndex index, T pointer) { Base::insertAt(index, pointer); }

  class Iterator {
   public:
    explicit Iterator(std::vector<void*>::const_iterator position) : position_(position) {}
    T operator*() const { return static_cast<T>(*position_); }
    Iterator& operator++() {
      ++position_;
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    std::vector<void*>::const_iterator position_;
  };
  [[nodiscard]] Iterator begin() const noexcept { return Iterator(static_cast<const CPtrArray&>(*this).begin()); }
  [[nodiscard]] Iterator end() const noexcept { return Iterator(static_cast<const CPtrArray&>(*this).end()); }
};

/// Deletes every record of `list`, then empties it: what the owner of such a list does at the end.
template <class Base, class T>
void destroyAll(CTypedPtrArray<Base, T>& list) noexcept {
  for (T record : list) delete record;
  list.removeAll();
}

/// A list that owns its records for the length of a scope, whatever way the scope is left.
template <class T>
class OwnedList {
 public:
  OwnedList() = default;
  OwnedList(const OwnedList&) = delete;
  OwnedList& operator=(const OwnedList&) = delete;
  ~OwnedList() { destroyAll(list_); }

  [[nodiscard]] CTypedPtrArray<CPtrArray, T*>& get() noexcept { return list_; }
  [[nodiscard]] const CTypedPtrArray<CPtrArray, T*>& get() const noexcept { return list_; }

 private:
  CTypedPtrArray<CPtrArray, T*> list_;
};

}  // namespace lvx::framework
