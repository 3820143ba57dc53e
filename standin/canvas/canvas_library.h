#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "canvas/canvas.h"

namespace lvx::canvas {

/// Files can't be made; the text says why.
class LibraryError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The library of code that writes PDF and SVG. Programs load it when they first write a sheet, since it brings others
/// along whose start takes longer than many a report.
///
///     const CanvasLibrary library(programFolder());
///     auto file = library.maker().open({.title = "Valley road"}, target);
class CanvasLibrary {
 public:
  /// `bin` is the folder of the running program: the library lies beside it or in `../lib/lvxhost`. Throws LibraryError
  /// where it isn't there, can't be loaded or finds no memory.
  explicit CanvasLibrary(const std::filesystem::path& bin);
  CanvasLibrary(const CanvasLibrary&) = delete;
  CanvasLibrary& operator=(const CanvasLibrary&) = delete;
  ~CanvasLibrary();

  [[nodiscard]] FileMaker& maker() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::canvas
