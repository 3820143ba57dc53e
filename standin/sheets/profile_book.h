#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "sheets/book.h"
#include "sheets/profile_figure.h"
#include "sheets/settings.h"
#include "view/profile_model.h"

namespace lvx::sheets {

/// What a long section is of.
struct ProfileChoice {
  const civil::AlignmentObject* alignment = nullptr;
  /// The design; null: the first design profile of the alignment, if it has one.
  const civil::ProfileObject* design = nullptr;
  /// The ground; null: the alignment's ground profiles, without any all surfaces that it meets.
  const civil::SurfaceObject* ground = nullptr;
  std::optional<double> from{};
  std::optional<double> to{};
};

/// The long section of an alignment, cut into as many sheets as it takes. The drawing outlives the book and doesn't change.
class ProfileBook final : public Book {
 public:
  /// Throws SheetError; `progress` is told of each surface sampled.
  ProfileBook(const civil::Drawing& drawing, const ProfileChoice& choice, SheetSettings settings,
              canvas::TextMeasure& measure, const Progress& progress = {});

  [[nodiscard]] std::size_t sheetCount() const override { return strips_.size(); }
  [[nodiscard]] const std::vector<ProfileStrip>& strips() const { return strips_; }
  [[nodiscard]] canvas::Size paper() const override { return settings_.paper; }
  [[nodiscard]] std::string title() const override;
  [[nodiscard]] double scale() const override { return scale_; }
  [[nodiscard]] const std::vector<std::string>& notes() const override { return notes_; }
  void draw(std::size_t index, canvas::Canvas& canvas) override;

 private:
  void gather(const civil::Drawing& drawing, const ProfileChoice& choice, const Progress& progress);
  [[nodiscard]] ProfileLayout layoutAt(double scale, canvas::Size paper) const;
  /// None where a sheet would show next to nothing, since the heights don't fit. Ends where they are too many.
  [[nodiscard]] std::optional<std::vector<ProfileStrip>> stripsAt(double scale, canvas::Size paper) const;
  void chooseScale();

  std::string drawingName_;
  SheetSettings settings_;
  canvas::TextMeasure& measure_;
  double millimetres_ = 1000.0;  ///< of a drawing unit
  double scale_ = 0.0;
  double start_ = 0.0;
  double end_ = 0.0;
  view::ProfileModel model_;
  ProfileContent content_;
  std::vector<double> bandHeights_;
  ProfileLayout layout_;
  std::vector<ProfileStrip> strips_;
  std::vector<std::string> notes_;
};

}  // namespace lvx::sheets
