#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "standin_platform/crew.h"

/// A long text packed by several threads.
namespace lvx::workbook::detail {

/// Appends the next piece of a text, of about SheetPacker::kPiece bytes. False where nothing is left.
using NextPiece = std::function<bool(std::string&)>;

/// Packs a text piece by piece into one stream of deflate, the same bytes for any number of threads: each piece by its own
/// packer, which knows the 32 KB before it. While the pieces of one batch are packed, the caller's thread makes the next ones.
/// Texts of less than a piece start no thread.
class SheetPacker {
 public:
  static constexpr std::size_t kPiece = std::size_t{1} << 19;

  explicit SheetPacker(standin_platform::Crew& crew);
  ~SheetPacker();

  struct Packed {
    std::uint64_t size = 0;  ///< of the text
    unsigned long checksum = 0;
  };
  /// Gives the packed bytes to `write`, in their order. What `next` and `write` throw comes through; std::bad_alloc where
  /// memory is short.
  Packed pack(const NextPiece& next, const std::function<void(std::string_view)>& write);

 private:
  struct Piece;
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::workbook::detail
