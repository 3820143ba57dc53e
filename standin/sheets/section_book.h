#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "sheets/book.h"
#include "sheets/section_figure.h"
#include "sheets/settings.h"
#include "view/section_model.h"

namespace lvx::sheets {

/// Which sections a book has.
struct SectionChoice {
  const civil::AlignmentObject* alignment = nullptr;
  const civil::SampleLineGroup* group = nullptr;
  /// The range of stations, both ends included; none: all.
  std::optional<double> from{};
  std::optional<double> to{};
  /// Handles of the surfaces to be drawn; empty: all.
  std::vector<civil::Handle> surfaces{};
};

/// The cross sections of a sample line group, by ascending station, some on each sheet. The drawing outlives the book and
/// doesn't change. Looks at each section once to place it and once to draw it, and keeps some 60 bytes of each between.
class SectionBook final : public Book {
 public:
  /// Throws SheetError; `progress` is told of each section looked at.
  SectionBook(const civil::Drawing& drawing, const SectionChoice& choice, SheetSettings settings,
              canvas::TextMeasure& measure, const Progress& progress = {});

  [[nodiscard]] std::size_t sheetCount() const override { return sheets_.size(); }
  [[nodiscard]] std::size_t sectionCount() const { return lines_.size(); }
  [[nodiscard]] canvas::Size paper() const override { return settings_.paper; }
  [[nodiscard]] std::string title() const override;
  [[nodiscard]] double scale() const override { return scale_; }
  [[nodiscard]] const std::vector<std::string>& notes() const override { return notes_; }
  void draw(std::size_t index, canvas::Canvas& canvas) override;

 private:
  /// A section with its place on its sheet.
  struct Placed {
    std::size_t line = 0;
    canvas::Place corner;
  };
  [[nodiscard]] view::SectionModel modelOf(std::size_t line) const;
  [[nodiscard]] SectionCell cellAt(double scale) const;
  /// The section that doesn't fit; none where all do.
  [[nodiscard]] std::optional<std::size_t> tooLarge(double scale, canvas::Size paper) const;
  [[nodiscard]] bool fitsTogether(double scale) const;
  void chooseScale();
  void place();

  const civil::Drawing& drawing_;
  SectionChoice choice_;
  SheetSettings settings_;
  canvas::TextMeasure& measure_;
  double millimetres_ = 1000.0;  ///< of a drawing unit
  double scale_ = 0.0;
  SectionCell cell_;
  std::vector<const civil::SampleLine*> lines_;
  std::vector<SectionExtent> extents_;
  double mostLeft_ = 0.0;
  double mostRight_ = 0.0;
  /// Of each sheet its sections.
  std::vector<std::vector<Placed>> sheets_;
  std::vector<std::string> notes_;
};

}  // namespace lvx::sheets
