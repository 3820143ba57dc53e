#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "civil/corridor.h"
#include "civil/drawing.h"
#include "framework/exceptions.h"
#include "runtime/raised_by_host.h"

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
  Application,
  RoadwayApplication,
  RoadwayDocument,
  Corridors,
  Corridor,
  Baselines,
  Baseline,
  BaselineRegions,
  BaselineRegion,
  StationSet,
  Section,
  SectionParts,
  SectionPart,
  SectionPoints,
  SectionPoint,
  Codes,
};
inline constexpr std::size_t kModelKindCount = static_cast<std::size_t>(ModelKind::Codes) + 1;

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
class __attribute__((visibility("default"))) Interrupted : public framework::Exception, public RaisedByHost {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "interrupted"; }
};

/// Starts a long piece of work named in words; what it gives is told how far the work is and goes when that ends.
using StartProgress =
    std::function<std::function<void(std::uint64_t done, std::uint64_t total)>(const std::string& work)>;

/// A drawing while it is open: its data, the look-ups over it, the count of the model objects handed out. Shared by the
/// host and by every model object, so that an object that somebody keeps too long still answers.
///
/// Its corridors are all that a module can change; everything else stays as it was opened, but for what a person edits
/// between commands.
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

  /// The corridors, for changing them through the two operations below; the lists themselves stay what they are.
  [[nodiscard]] std::vector<civil::Corridor>& corridors() { return drawing_.corridors; }
  /// Adds a station to a region of one of the corridors, as civil::addStation does.
  void addStation(civil::Region& region, double station, std::string_view label);
  /// Rebuilds one of the corridors. Reports progress and throws Interrupted once the user wants to stop, which leaves
  /// every region as it was or finished. Sections that somebody still looks at stay in memory.
  void rebuild(civil::Corridor& corridor);
  /// Whether the drawing differs from what was opened, or saved last.
  [[nodiscard]] bool isChanged() const { return corridorChanges() != savedChanges_ || editState_ != savedState_; }
  /// To be called when the drawing has been saved.
  void setSaved() {
    savedChanges_ = corridorChanges();
    savedState_ = editState_;
  }
  /// Lets `change` change any list of the drawing. Nobody may hold a model object or a pointer into the drawing: no
  /// command runs. Where `change` throws, it has left the drawing as it was.
  template <class Change>
  void edit(Change change) {
    edit(std::move(change), lastState_ + 1);
    ++lastState_;
  }
  /// The same for a change that leads back, or on, to an earlier state of edits (see EditHistory).
  template <class Change>
  void edit(Change change, std::size_t state) {
    try {
      change(drawing_);
    } catch (...) {
      index_ = civil::DrawingIndex(drawing_);
      throw;
    }
    index_ = civil::DrawingIndex(drawing_);
    editState_ = state;
  }
  /// Whether some of that are edits.
  [[nodiscard]] bool isEdited() const { return editState_ != savedState_; }
  /// Which of the states that edits led to the drawing is in; 0 as it was opened.
  [[nodiscard]] std::size_t editState() const { return editState_; }
  /// Lets `write` save the drawing, which it may note in it; what it throws leaves the drawing changed.
  template <class Write>
  void save(Write write) {
    write(drawing_);
    setSaved();
  }

  /// Asked at the start of a rebuild that has something to do; may be empty.
  StartProgress startProgress;

 private:
  [[nodiscard]] std::size_t corridorChanges() const { return addedStations_ + rebuilt_.computed; }

  civil::Drawing drawing_;
  civil::DrawingIndex index_;
  LiveObjects liveObjects_;
  std::size_t addedStations_ = 0;
  std::size_t savedChanges_ = 0;
  std::size_t editState_ = 0;
  std::size_t lastState_ = 0;
  std::size_t savedState_ = 0;
  civil::Rebuilt rebuilt_;
};

using OpenDrawingRef = std::shared_ptr<OpenDrawing>;

}  // namespace lvx::runtime
