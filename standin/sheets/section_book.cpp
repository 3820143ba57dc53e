#include "sheets/section_book.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include "civil/drawing_files.h"
#include "sheets/paper.h"
#include "sheets/sheet_error.h"
#include "sheets/sheet_frame.h"
#include "text/number_text.h"

namespace lvx::sheets {

namespace {

/// One section on each for the longest roads.
constexpr std::size_t kMostSheets = 50'000;
constexpr double kColumnGap = 8.0;
constexpr double kRowGap = 5.0;

std::size_t columnsOf(double width, double room) {
  if (width > room) return 0;
  return 1 + static_cast<std::size_t>(std::floor((room - width) / (width + kColumnGap)));
}

}  // namespace

SectionBook::SectionBook(const civil::Drawing& drawing, const SectionChoice& choice, SheetSettings settings,
                         canvas::TextMeasure& measure, const Progress& progress)
    : drawing_(drawing), choice_(choice), settings_(std::move(settings)), measure_(measure) {
  constexpr double kMillimetres = 1000.0;
  millimetres_ = civil::metresPerUnit(drawing.linearUnit).value_or(1.0) * kMillimetres;
  for (const civil::SampleLine& line : choice_.group->lines) {
    constexpr double kSameStation = 1e-6;
    if (choice_.from && line.station < *choice_.from - kSameStation) continue;
    if (choice_.to && line.station > *choice_.to + kSameStation) continue;
    lines_.push_back(&line);
  }
  std::stable_sort(lines_.begin(), lines_.end(), [](const auto* a, const auto* b) { return a->station < b->station; });
  if (lines_.empty())
    throw SheetError(SheetError::Problem::NothingToDraw,
                     choice_.group->lines.empty()
                         ? "sample line group '" + choice_.group->name + "' holds no sample lines"
                         : "sample line group '" + choice_.group->name + "' has no sample line in that range");
  std::size_t empty = 0;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (progress && !progress(i, lines_.size()))
      throw SheetError(SheetError::Problem::Stopped, "the book was stopped; nothing was written");
    const view::SectionModel model = modelOf(i);
    extents_.push_back(extentOf(model, measure_));
    const SectionExtent& extent = extents_.back();
    empty += extent.isEmpty ? 1U : 0U;
    mostLeft_ = std::min(mostLeft_, extent.left);
    mostRight_ = std::max(mostRight_, extent.right);
  }
  if (empty == lines_.size())
    throw SheetError(SheetError::Problem::NothingToDraw,
                     "no section of sample line group '" + choice_.group->name + "' meets a surface or a corridor");
  if (empty > 0)
    notes_.push_back("sections that meet no surface and no corridor: " + std::to_string(empty) + " of " +
                     std::to_string(lines_.size()));
  const std::size_t surfaces = choice_.surfaces.empty() ? drawing.surfaces.size() : choice_.surfaces.size();
  if (surfaces > kMostGroundBands)
    notes_.push_back(std::to_string(surfaces) + " surfaces are drawn; of each section the first " +
                     std::to_string(kMostGroundBands) + " that it meets have a band of values");
  chooseScale();
  place();
}

view::SectionModel SectionBook::modelOf(std::size_t line) const {
  view::SectionModel model = view::sectionOf(drawing_, lines_[line]->handle).value();
  if (!choice_.surfaces.empty())
    std::erase_if(model.grounds, [&](const view::SectionGround& ground) {
      return std::find(choice_.surfaces.begin(), choice_.surfaces.end(), ground.surface) == choice_.surfaces.end();
    });
  return model;
}

SectionCell SectionBook::cellAt(double scale) const {
  SectionCell cell;
  cell.left = mostLeft_;
  cell.right = mostRight_;
  cell.perOffset = millimetres_ / scale;
  cell.perElevation = cell.perOffset * settings_.exaggeration;
  return cell;
}

std::optional<std::size_t> SectionBook::tooLarge(double scale, canvas::Size paper) const {
  const SectionCell cell = cellAt(scale);
  const Area area = drawingArea(paper);
  if (cell.width() > area.width()) {
    std::size_t widest = 0;
    for (std::size_t i = 0; i < extents_.size(); ++i)
      if (extents_[i].right - extents_[i].left > extents_[widest].right - extents_[widest].left) widest = i;
    return widest;
  }
  for (std::size_t i = 0; i < extents_.size(); ++i)
    if (cell.height(extents_[i]) > area.height()) return i;
  return std::nullopt;
}

bool SectionBook::fitsTogether(double scale) const {
  if (settings_.perSheet < 2) return true;
  const SectionCell cell = cellAt(scale);
  const Area area = drawingArea(settings_.paper);
  double highest = 0.0;
  for (const SectionExtent& extent : extents_) highest = std::max(highest, cell.height(extent));
  const auto rows = static_cast<std::size_t>(std::floor((area.height() + kRowGap) / (highest + kRowGap)));
  return rows * columnsOf(cell.width(), area.width()) >= std::min(settings_.perSheet, lines_.size());
}

void SectionBook::chooseScale() {
  const auto fits = [&](double scale, canvas::Size paper) { return !tooLarge(scale, paper); };
  if (settings_.scale) {
    scale_ = *settings_.scale;
    const auto culprit = tooLarge(scale_, settings_.paper);
    if (!culprit) return;
    const double fitting = firstFitting(scale_, [&](double scale) { return fits(scale, settings_.paper); });
    std::string paper;
    for (const NamedPaper& named : namedPapers()) {
      const canvas::Size across{named.upright.height, named.upright.width};
      if (!paper.empty() || !fits(scale_, across)) continue;
      paper = named.name;
    }
    const std::string station = text::stationText(lines_[*culprit]->station);
    std::string words = "the section at " + station + " is larger than the paper (" + paperText(settings_.paper) +
                        ") at " + scaleText(scale_);
    if (fitting > 0.0) words += "; " + scaleText(fitting) + " fits";
    if (!paper.empty()) words += (fitting > 0.0 ? ", or " : "; ") + paper + " across";
    if (settings_.exaggeration > 1.0) words += ", or less exaggeration";
    throw SheetError(SheetError::Problem::TooLarge, words, station, fitting, paper);
  }
  for (const double scale : kUsualScales) {
    if (!fits(scale, settings_.paper)) continue;
    if (scale_ == 0.0) scale_ = scale;
    if (!fitsTogether(scale)) continue;
    scale_ = scale;
    return;
  }
  if (scale_ > 0.0) {
    // Bands and titles alone leave no room for so many.
    return;
  }
  const auto culprit = tooLarge(kUsualScales.back(), settings_.paper);
  throw SheetError(SheetError::Problem::NoScaleFits,
                   "the section at " + text::stationText(lines_[culprit.value_or(0)]->station) + " fits the paper (" +
                       paperText(settings_.paper) + ") at no scale up to " + scaleText(kUsualScales.back()) +
                       "; take a larger paper or fewer surfaces",
                   text::stationText(lines_[culprit.value_or(0)]->station));
}

void SectionBook::place() {
  cell_ = cellAt(scale_);
  const Area area = drawingArea(settings_.paper);
  const std::size_t columns = std::max<std::size_t>(1, columnsOf(cell_.width(), area.width()));
  const std::size_t most = settings_.perSheet == 0 ? lines_.size() : settings_.perSheet;
  bool isCrowded = false;
  for (std::size_t next = 0; next < lines_.size();) {
    // Column by column, each from the top; what a column has left is spread between its sections.
    std::vector<std::vector<std::size_t>> stacks;
    std::size_t count = 0;
    while (stacks.size() < columns && next < lines_.size() && count < most) {
      std::vector<std::size_t>& stack = stacks.emplace_back();
      double used = 0.0;
      while (next < lines_.size() && count < most) {
        const double height = cell_.height(extents_[next]);
        const double gap = stack.empty() ? 0.0 : kRowGap;
        if (used + gap + height > area.height()) break;
        used += gap + height;
        stack.push_back(next++);
        ++count;
      }
    }
    isCrowded = isCrowded || (settings_.perSheet > 0 && count < most && next < lines_.size());
    if (sheets_.size() == kMostSheets)
      throw SheetError(SheetError::Problem::TooManySheets,
                       "at " + scaleText(scale_) + " the book has more than " + std::to_string(kMostSheets) +
                           " sheets (" + paperText(settings_.paper) +
                           "); take a smaller scale, a larger paper or more sections on a sheet, or a shorter range",
                       std::to_string(kMostSheets));
    std::vector<Placed>& sheet = sheets_.emplace_back();
    const double spare = area.width() - static_cast<double>(stacks.size()) * cell_.width();
    const double between = spare / static_cast<double>(stacks.size() + 1);
    double x = area.left + between;
    for (const std::vector<std::size_t>& stack : stacks) {
      double used = 0.0;
      for (const std::size_t line : stack) used += cell_.height(extents_[line]);
      constexpr double kMostSpread = 40.0;
      const double spread = std::min(kMostSpread, (area.height() - used) / static_cast<double>(stack.size() + 1));
      double y = area.top + std::max(0.0, spread);
      const bool isTight = stack.size() > 1 && spread < kRowGap;
      if (isTight) y = area.top;
      const double step = isTight ? (area.height() - used) / static_cast<double>(stack.size() - 1) : spread;
      for (const std::size_t line : stack) {
        sheet.push_back({line, {x, y}});
        y += cell_.height(extents_[line]) + step;
      }
      x += cell_.width() + between;
    }
  }
  if (isCrowded)
    notes_.push_back("not " + std::to_string(settings_.perSheet) + " sections fit on every sheet at " +
                     scaleText(scale_) + "; sheets have as many as fit");
}

std::string SectionBook::title() const {
  return std::string(wordsOf(settings_.language).crossSections) + " - " + choice_.alignment->name;
}

void SectionBook::draw(std::size_t index, canvas::Canvas& canvas) {
  const Words& words = wordsOf(settings_.language);
  const std::vector<Placed>& sheet = sheets_[index];
  TitleTexts texts;
  texts.drawing = std::filesystem::path(drawing_.path).filename().string();
  texts.alignment = choice_.alignment->name;
  texts.kind = std::string(words.crossSections) + ": " + choice_.group->name;
  const std::string first = text::stationText(lines_[sheet.front().line]->station);
  const std::string last = text::stationText(lines_[sheet.back().line]->station);
  texts.stations = first == last ? first : first + " - " + last;
  texts.scale = scaleText(scale_);
  texts.hasTwoScales = settings_.exaggeration != 1.0;
  if (texts.hasTwoScales) texts.scale += " / " + scaleText(scale_ / settings_.exaggeration);
  texts.date = settings_.date;
  texts.sheet = index + 1;
  texts.sheets = sheets_.size();
  drawFrame(canvas, measure_, settings_.paper, texts, words);
  for (const Placed& placed : sheet)
    drawSection(canvas, measure_, placed.corner, cell_, modelOf(placed.line), settings_.hasGrid, words);
}

}  // namespace lvx::sheets
