#pragma once

#include <string_view>

namespace lvx::civil {

/// The texts of a survey point. A drawing has millions of points and most of their texts stand many times, so all three
/// stand in one piece of memory, which copies share; without a text there is none. 8 bytes besides.
///     point.texts = {"", "TR", "Oak"};
///     point.texts.description();  // "TR"
class PointTexts {
 public:
  PointTexts() = default;
  PointTexts(std::string_view name, std::string_view description, std::string_view fullDescription);
  PointTexts(const PointTexts& other) noexcept;
  PointTexts(PointTexts&& other) noexcept : block_(other.block_) { other.block_ = nullptr; }
  PointTexts& operator=(PointTexts other) noexcept;
  ~PointTexts();

  // Valid as long as texts that share the memory.
  [[nodiscard]] std::string_view name() const;
  [[nodiscard]] std::string_view description() const;
  [[nodiscard]] std::string_view fullDescription() const;
  /// Of this point alone: copies keep theirs. O(length of all texts).
  void setName(std::string_view name) { *this = {name, description(), fullDescription()}; }
  void setDescription(std::string_view text) { *this = {name(), text, fullDescription()}; }
  void setFullDescription(std::string_view text) { *this = {name(), description(), text}; }

  friend bool operator==(const PointTexts& a, const PointTexts& b) {
    return a.block_ == b.block_ ||
           (a.name() == b.name() && a.description() == b.description() && a.fullDescription() == b.fullDescription());
  }

 private:
  struct Block;
  [[nodiscard]] const char* letters() const;

  Block* block_ = nullptr;
};

}  // namespace lvx::civil
