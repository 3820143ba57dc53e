#include "civil/point_texts.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace lvx::civil {

/// In front of the letters of name, description and full description.
struct PointTexts::Block {
  std::atomic<std::uint32_t> users{1};
  std::uint32_t name = 0;  // sizes
  std::uint32_t description = 0;
  std::uint32_t fullDescription = 0;
};

PointTexts::PointTexts(std::string_view name, std::string_view description, std::string_view fullDescription) {
  const std::size_t size = name.size() + description.size() + fullDescription.size();
  if (size == 0) return;
  if (size > UINT32_MAX) throw std::bad_alloc();
  block_ = new (::operator new(sizeof(Block) + size)) Block;
  block_->name = static_cast<std::uint32_t>(name.size());
  block_->description = static_cast<std::uint32_t>(description.size());
  block_->fullDescription = static_cast<std::uint32_t>(fullDescription.size());
  char* to = reinterpret_cast<char*>(block_ + 1);
  for (const std::string_view text : {name, description, fullDescription}) {
    if (!text.empty()) std::memcpy(to, text.data(), text.size());
    to += text.size();
  }
}

PointTexts::PointTexts(const PointTexts& other) noexcept : block_(other.block_) {
  if (block_ != nullptr) block_->users.fetch_add(1, std::memory_order_relaxed);
}

PointTexts& PointTexts::operator=(PointTexts other) noexcept {
  std::swap(block_, other.block_);
  return *this;
}

PointTexts::~PointTexts() {
  if (block_ == nullptr || block_->users.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
  block_->~Block();
  ::operator delete(block_);
}

const char* PointTexts::letters() const { return reinterpret_cast<const char*>(block_ + 1); }

std::string_view PointTexts::name() const {
  return block_ == nullptr ? std::string_view() : std::string_view(letters(), block_->name);
}

std::string_view PointTexts::description() const {
  return block_ == nullptr ? std::string_view() : std::string_view(letters() + block_->name, block_->description);
}

std::string_view PointTexts::fullDescription() const {
  return block_ == nullptr ? std::string_view()
                           : std::string_view(letters() + block_->name + block_->description, block_->fullDescription);
}

}  // namespace lvx::civil
