#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "civil/tin_surface.h"

namespace lvx::landxml::detail {

/// One F as the file gives it.
struct RawFace {
  /// Absolute values: a minus sign marks a hidden edge in some programs' files.
  std::array<std::int64_t, 4> ids{};
  std::uint8_t count = 0;
  bool invisible = false;
};

/// Faces by the places of their points, in the order of the file.
struct FaceList {
  std::vector<civil::Triangle> triangles;
  /// Those that the file marks as invisible.
  std::vector<civil::Triangle> invisible;
  /// Faces left out since they name a point twice.
  std::size_t repeating = 0;

  void clear() {
    triangles.clear();
    invisible.clear();
    repeating = 0;
  }
};

/// The points and faces of one surface as they stream past. Ids may be any; as long as they run on without a gap, no
/// map is kept.
class TinCollector {
 public:
  struct Faults {
    std::size_t pointsWithoutId = 0;
    std::size_t repeatedIds = 0;
    std::size_t pointsWithoutElevation = 0;
    std::size_t unreadablePoints = 0;
    std::size_t facesWithMissingPoints = 0;
    std::size_t unreadableFaces = 0;
    std::size_t repairedSigns = 0;
    std::size_t unknownElements = 0;
    /// Line of the first of them; 0 for none.
    std::size_t firstLine = 0;
    std::string firstText;
  };

  void addPoint(std::int64_t id, double north, double east, double elevation) {
    if (points.size() == static_cast<std::size_t>(id - firstId_) && contiguous_) {
      points.push_back({east, north, elevation});
      return;
    }
    addPointOutOfOrder(id, north, east, elevation);
  }

  /// Points with ids that run on from `firstId`.
  void addPoints(std::int64_t firstId, std::span<const civil::Vec3> run);

  /// False where a point of the face isn't known (yet): the caller gives it to `defer`.
  [[nodiscard]] bool addFace(const RawFace& face) { return addFace(face, faces); }
  /// The same into another list. May be called from several threads while nothing else is.
  [[nodiscard]] bool addFace(const RawFace& face, FaceList& to) const {
    std::array<std::int32_t, 4> at{};
    for (std::size_t i = 0; i < face.count; ++i) {
      at[i] = indexOf(face.ids[i]);
      if (at[i] < 0) return false;
    }
    if (at[0] == at[1] || at[1] == at[2] || at[2] == at[0]) {
      addRepeating(face, at, to);
    } else {
      (face.invisible ? to.invisible : to.triangles).push_back({at[0], at[1], at[2]});
      if (face.count == 4) addFourth(face, at, to);
    }
    return true;
  }
  /// Faces that were put into a list, behind those that there are.
  void addFaces(const FaceList& list);
  /// Makes room for so many, where memory has it.
  void expectPoints(std::size_t count) { expect(points, count); }
  void expectFaces(std::size_t count) { expect(faces.triangles, count); }

  /// Keeps a face until all points are known.
  void defer(const RawFace& face, std::size_t line) { deferred_.push_back({face, line}); }
  /// Adds the deferred faces; those whose points aren't there are counted.
  void addDeferred();

  [[nodiscard]] std::int32_t indexOf(std::int64_t id) const {
    if (contiguous_) {
      const auto index = static_cast<std::uint64_t>(id) - static_cast<std::uint64_t>(firstId_);
      return index < points.size() ? static_cast<std::int32_t>(index) : -1;
    }
    return mappedIndexOf(id);
  }

  /// Calls `use(id, index)` for every point, in no order, before `addDeferred`.
  template <class Use>
  void eachId(Use use) const {
    if (contiguous_) {
      for (std::size_t i = 0; i < points.size(); ++i) use(firstId_ + static_cast<std::int64_t>(i), i);
      return;
    }
    for (std::size_t id = 0; id < dense_.size(); ++id) {
      if (dense_[id] >= 0) use(static_cast<std::int64_t>(id), static_cast<std::size_t>(dense_[id]));
    }
    for (const auto& [id, index] : sparse_) use(id, static_cast<std::size_t>(index));
  }

  /// Notes a fault: counts it in `counter` and keeps line and text of the first.
  void note(std::size_t Faults::*counter, std::size_t line, const std::string& text);

  std::vector<civil::Vec3> points;
  FaceList faces;
  /// Points that stand by reference: id and name of the point they refer to.
  std::vector<std::pair<std::int64_t, std::string>> references;
  Faults faults;

 private:
  struct Deferred {
    RawFace face;
    std::size_t line = 0;
  };

  void addPointOutOfOrder(std::int64_t id, double north, double east, double elevation);
  template <class Item>
  static void expect(std::vector<Item>& items, std::size_t count);
  static void addRepeating(const RawFace& face, const std::array<std::int32_t, 4>& at, FaceList& to);
  static void addFourth(const RawFace& face, const std::array<std::int32_t, 4>& at, FaceList& to);
  void map(std::int64_t id, std::int32_t index);
  [[nodiscard]] std::int32_t mappedIndexOf(std::int64_t id) const;

  bool contiguous_ = true;
  std::int64_t firstId_ = 1;
  std::vector<std::int32_t> dense_;
  std::unordered_map<std::int64_t, std::int32_t> sparse_;
  std::vector<Deferred> deferred_;
};

}  // namespace lvx::landxml::detail
