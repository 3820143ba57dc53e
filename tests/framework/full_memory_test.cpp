// What becomes of records where memory runs out while a list takes them.
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

#include <gtest/gtest.h>

#include "framework/arrays.h"

namespace {

/// Allocations that still succeed; below 0: all of them.
int allocationsLeft = -1;

void* allocate(std::size_t size) {
  if (allocationsLeft == 0) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace lvx::framework {
namespace {

struct Counted {
  explicit Counted(int* alive) : alive_(alive) { ++*alive_; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() { --*alive_; }
  int* alive_;
};

TEST(FullMemory, DestroysTheRecordThatAListCannotTakeAndKeepsTheOthers) {
  int alive = 0;
  OwnedList<Counted> owned;
  int refusals = 0;
  for (int i = 0; i < 100; ++i) {
    auto record = std::make_unique<Counted>(&alive);
    const ArrayIndex before = owned.get().size();
    // Every list that is full has to ask for memory, and gets none.
    allocationsLeft = 0;
    bool refused = false;
    try {
      owned.get().append(std::move(record));
    } catch (const std::bad_alloc&) {
      refused = true;
    }
    allocationsLeft = -1;
    ASSERT_EQ(owned.get().size(), refused ? before : before + 1);
    ASSERT_EQ(alive, owned.get().size());
    if (!refused) continue;
    ++refusals;
    owned.get().append(std::make_unique<Counted>(&alive));
  }
  EXPECT_GE(refusals, 1);
  EXPECT_EQ(owned.get().size(), 100);
  EXPECT_EQ(alive, 100);
}

}  // namespace
}  // namespace lvx::framework
