#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "civil/drawing.h"
#include "framework/exceptions.h"

namespace lvx::runtime {

/// Kinds of model objects that the host hands out, for counting those that are still held.
enum class ModelKind : std::uint8_t {
  Document,
  Database,
  SiteList,
  Site,
  AlignmentList,
  Alignment,
  SampleLineGroupList,
  SampleLineGroup,
  SampleLineList,
  SampleLine,
  SampleLineVertexList,
  SampleLineVertex,
  SurfaceList,
  Surface,
  PointList,
  Point,
  PointGroupList,
  PointGroup,
  Profile,
};
inline constexpr std::size_t kModelKindCount = static_cast<std::size_t>(ModelKind::Profile) + 1;

/// The model object's own name: "QmtAlignment".
[[nodiscard]] const char* modelKindName(ModelKind kind);

/// How many model objects of each kind somebody still holds.
class LiveObjects {
 public:
  void add(ModelKind kind) noexcept { ++counts_[static_cast<std::size_t>(kind)]; }
  void remove(ModelKind kind) noexcept { --counts_[static_cast<std::size_t>(kind)]; }
  [[nodiscard]] std::size_t count(ModelKind kind) const { return counts_[static_cast<std::size_t>(kind)]; }
  [[nodiscard]] std::size_t total() const;
  /// "QmtAlignment 2, QmtSurface 1"; empty when nothing is held.
  [[nodiscard]] std::string description() const;

 private:
  std::array<std::size_t, kModelKindCount> counts_{};
};

/// The user asked to stop. Raised from the host's own operations, it unwinds whatever ran, the module included, so that
/// no half-written file stays.
class __attribute__((visibility("default"))) Interrupted : public framework::Exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "interrupted"; }
};

/// A drawing while it is open: its data, the look-ups over it, the count of the model objects handed out. Shared by the
/// host and by every model object, so that an object that somebody keeps too long still answers.
class OpenDrawing {
 public:
  explicit OpenDrawing(civil::Drawing drawing);
  OpenDrawing(const OpenDrawing&) = delete;
  OpenDrawing& operator=(const OpenDrawing&) = delete;

  [[nodiscard]] const civil::Drawing& drawing() const { return drawing_; }
  [[nodiscard]] const civil::DrawingIndex& index() const { return index_; }
  [[nodiscard]] LiveObjects& liveObjects() { return liveObjects_; }
  [[nodiscard]] const LiveObjects& liveObjects() const { return liveObjects_; }

  /// Asked during long work; true once the user wants to stop.
  std::function<bool()> isInterrupted;
  /// Throws Interrupted once the user wants to stop.
  void checkInterrupted() const {
    if (isInterrupted && isInterrupted()) throw Interrupted();
  }

 private:
  civil::Drawing drawing_;
  civil::DrawingIndex index_;
  LiveObjects liveObjects_;
};

using OpenDrawingRef = std::shared_ptr<OpenDrawing>;

}  // namespace lvx::runtime
