#include "sheets/profile_book.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include "civil/drawing_files.h"
#include "sheets/paper.h"
#include "sheets/section_figure.h"
#include "sheets/sheet_error.h"
#include "sheets/sheet_frame.h"
#include "text/number_text.h"
#include "view/contours.h"

namespace lvx::sheets {

namespace {

using Problem = SheetError::Problem;

/// Two hundred kilometres at 1:100 on A3.
constexpr std::size_t kMostSheets = 5000;

bool isDrawn(const view::ProfileLine& profile) {
  return std::any_of(profile.lines.begin(), profile.lines.end(),
                     [](const view::Line& line) { return line.size() > 1; });
}

}  // namespace

ProfileBook::ProfileBook(const civil::Drawing& drawing, const ProfileChoice& choice, SheetSettings settings,
                         canvas::TextMeasure& measure, const Progress& progress)
    : drawingName_(std::filesystem::path(drawing.path).filename().string()),
      settings_(std::move(settings)),
      measure_(measure),
      model_(view::profilesOf(drawing, choice.alignment->handle).value()) {
  constexpr double kMillimetres = 1000.0;
  millimetres_ = civil::metresPerUnit(drawing.linearUnit).value_or(1.0) * kMillimetres;
  start_ = std::max(model_.startStation, choice.from.value_or(model_.startStation));
  end_ = std::min(model_.endStation, choice.to.value_or(model_.endStation));
  const std::string of = "alignment '" + model_.alignmentName + "' ";
  if (choice.alignment->geometry.isEmpty()) throw SheetError(Problem::NothingToDraw, of + "has no elements");
  if (!(end_ > start_))
    throw SheetError(Problem::NothingToDraw, of + "runs from " + text::stationText(model_.startStation) + " to " +
                                                 text::stationText(model_.endStation) +
                                                 ", which lies beside the wanted range");
  gather(drawing, choice, progress);
  if (!rangeBetween(content_, start_, end_))
    throw SheetError(Problem::NothingToDraw, of + "has no profile there and meets no surface");
  bandHeights_ = profileBandHeights(content_, measure_, start_, end_);
  if (content_.grounds.size() > kMostGroundBands)
    notes_.push_back(std::to_string(content_.grounds.size()) + " grounds are drawn, of which the first " +
                     std::to_string(kMostGroundBands) + " have a band of values");
  chooseScale();
}

void ProfileBook::gather(const civil::Drawing& drawing, const ProfileChoice& choice, const Progress& progress) {
  content_.model = &model_;
  std::size_t designs = 0;
  for (const view::ProfileLine& profile : model_.profiles) {
    const bool isWanted =
        choice.design != nullptr ? profile.handle == choice.design->handle : !profile.isGround && isDrawn(profile);
    if (!profile.isGround && isDrawn(profile)) ++designs;
    if (isWanted && content_.design == nullptr) content_.design = &profile;
  }
  if (choice.design == nullptr && designs > 1)
    notes_.push_back("profile '" + content_.design->name + "', the first of " + std::to_string(designs) +
                     " design profiles");
  const auto sample = [&](const civil::SurfaceObject& surface) {
    view::Lines lines = view::groundAlong(choice.alignment->geometry, surface.surface);
    std::erase_if(lines, [](const view::Line& line) { return line.size() < 2; });
    if (!lines.empty()) content_.grounds.push_back({surface.name, std::move(lines)});
  };
  if (choice.ground != nullptr) {
    sample(*choice.ground);
    if (content_.grounds.empty()) notes_.push_back("the alignment doesn't meet surface '" + choice.ground->name + "'");
    return;
  }
  for (const view::ProfileLine& profile : model_.profiles)
    if (profile.isGround && isDrawn(profile) && &profile != content_.design)
      content_.grounds.push_back({profile.name, profile.lines});
  if (!content_.grounds.empty()) return;
  for (std::size_t i = 0; i < drawing.surfaces.size(); ++i) {
    if (progress && !progress(i, drawing.surfaces.size()))
      throw SheetError(Problem::Stopped, "the book was stopped; nothing was written");
    sample(drawing.surfaces[i]);
  }
}

ProfileLayout ProfileBook::layoutAt(double scale, canvas::Size paper) const {
  ProfileLayout layout;
  layout.area = drawingArea(paper);
  layout.perStation = millimetres_ / scale;
  layout.perElevation = layout.perStation * settings_.exaggeration;
  layout.bandHeights = bandHeights_;
  return layout;
}

std::optional<std::vector<ProfileStrip>> ProfileBook::stripsAt(double scale, canvas::Size paper) const {
  constexpr double kLeastOnPaper = 20.0;
  const ProfileLayout layout = layoutAt(scale, paper);
  const double least = kLeastOnPaper / layout.perStation;
  if (!layout.takes({0.0, 0.0}) || layout.length() < least) return std::nullopt;
  const auto fits = [&](double from, double to) {
    const auto range = rangeBetween(content_, from, to);
    return !range || layout.takes(*range);
  };
  std::vector<ProfileStrip> strips;
  for (double from = start_; from < end_;) {
    double to = std::min(end_, from + layout.length());
    const bool isAll = to >= end_;
    if (!fits(from, to)) {
      double good = from;
      double bad = to;
      while (bad - good > least / 20.0) {
        const double middle = (good + bad) / 2.0;
        (fits(from, middle) ? good : bad) = middle;
      }
      if (good - from < least) return std::nullopt;
      const double step = view::roundInterval(kLeastOnPaper / 4.0 / layout.perStation);
      const double round = std::floor(good / step) * step;
      to = round > from + least / 2.0 ? round : good;
    } else if (!isAll) {
      // Sheets begin at round stations.
      const double step = view::roundInterval(kLeastOnPaper / 2.0 / layout.perStation);
      const double round = std::floor(to / step) * step;
      if (round > from + least) to = round;
    }
    const ElevationRange range = rangeBetween(content_, from, to).value_or(ElevationRange{});
    strips.push_back({from, to, range});
    if (strips.size() > kMostSheets) break;  // nobody wants the rest
    from = to;
  }
  return strips;
}

void ProfileBook::chooseScale() {
  constexpr double kLargest = 100.0;
  constexpr double kUsual = 1000.0;
  const auto fits = [this](double scale) {
    const auto strips = stripsAt(scale, settings_.paper);
    return strips && strips->size() <= kMostSheets;
  };
  if (settings_.scale) {
    scale_ = *settings_.scale;
  } else {
    for (const double scale : kUsualScales) {
      if (scale < kLargest || scale > kUsual) continue;
      const auto strips = stripsAt(scale, settings_.paper);
      if (strips && strips->size() == 1) {
        scale_ = scale;
        break;
      }
    }
    if (scale_ == 0.0) scale_ = firstFitting(kUsual, fits);
    if (scale_ == 0.0)
      throw SheetError(Problem::NoScaleFits,
                       "the long section fits the paper (" + paperText(settings_.paper) + ") at no scale up to " +
                           scaleText(kUsualScales.back()) + " with heights exaggerated " +
                           text::shortText(settings_.exaggeration) +
                           " times; take a larger paper, less exaggeration or fewer surfaces",
                       text::stationText(start_));
  }
  auto strips = stripsAt(scale_, settings_.paper);
  if (!strips) {
    const double fitting = firstFitting(scale_, fits);
    std::string paper;
    for (const NamedPaper& named : namedPapers()) {
      const canvas::Size across{named.upright.height, named.upright.width};
      if (paper.empty() && stripsAt(scale_, across)) paper = named.name;
    }
    std::string words = "the heights of the long section are larger than the paper (" + paperText(settings_.paper) +
                        ") at " + scaleText(scale_) + " with heights exaggerated " +
                        text::shortText(settings_.exaggeration) + " times";
    if (fitting > 0.0) words += "; " + scaleText(fitting) + " fits";
    if (!paper.empty()) words += (fitting > 0.0 ? ", or " : "; ") + paper + " across";
    words += ", or less exaggeration";
    throw SheetError(Problem::TooLarge, words, text::stationText(start_), fitting, paper);
  }
  if (strips->size() > kMostSheets) {
    const double fitting = firstFitting(scale_, fits);
    std::string words = "at " + scaleText(scale_) + " the long section takes more than " + std::to_string(kMostSheets) +
                        " sheets (" + paperText(settings_.paper) + ")";
    if (fitting > 0.0) words += "; " + scaleText(fitting) + " takes fewer";
    words += fitting > 0.0 ? ", or" : "; take a smaller scale, or";
    throw SheetError(Problem::TooManySheets, words + " a larger paper or a shorter range", std::to_string(kMostSheets),
                     fitting);
  }
  strips_ = std::move(*strips);
  layout_ = layoutAt(scale_, settings_.paper);
  // Not at the foot of a sheet that stays empty above; bands stand at one height through the book.
  double highest = 0.0;
  for (const ProfileStrip& strip : strips_) highest = std::max(highest, layout_.height(strip.range));
  constexpr double kShareBelow = 0.4;
  layout_.area.bottom -= (layout_.area.height() - highest) * kShareBelow;
}

std::string ProfileBook::title() const {
  return std::string(wordsOf(settings_.language).longSection) + " - " + model_.alignmentName;
}

void ProfileBook::draw(std::size_t index, canvas::Canvas& canvas) {
  const Words& words = wordsOf(settings_.language);
  const ProfileStrip& strip = strips_[index];
  TitleTexts texts;
  texts.drawing = drawingName_;
  texts.alignment = model_.alignmentName;
  texts.kind = std::string(words.longSection);
  if (content_.design != nullptr) texts.kind += ": " + content_.design->name;
  texts.stations = text::stationText(strip.start) + " - " + text::stationText(strip.end);
  texts.scale = scaleText(scale_);
  texts.hasTwoScales = settings_.exaggeration != 1.0;
  if (texts.hasTwoScales) texts.scale += " / " + scaleText(scale_ / settings_.exaggeration);
  texts.date = settings_.date;
  texts.sheet = index + 1;
  texts.sheets = strips_.size();
  drawFrame(canvas, measure_, settings_.paper, texts, words);
  drawStrip(canvas, measure_, layout_, content_, strip, settings_.hasGrid, words);
}

}  // namespace lvx::sheets
