#pragma once

#include <filesystem>

#include "generator/scaled_drawing.h"
#include "generator/text_output.h"

namespace lvx::test {

/// A drawing that takes long enough to read for somebody to do something meanwhile.
inline void writeLargeDrawing(const std::filesystem::path& path, std::uint64_t triangles = 2'000'000) {
  generator::TextOutput out(path.string());
  generator::DrawingSize size;
  size.triangles = triangles;
  generator::writeScaledDrawing(out, size);
  out.finish();
}

}  // namespace lvx::test
