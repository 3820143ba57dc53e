#include "desktop/shell/sample_lines_maker.h"

#include <QElapsedTimer>
#include <algorithm>
#include <chrono>
#include <span>
#include <utility>

#include "text/number_text.h"

namespace lvx::desktop {

namespace {
/// How long a piece may take.
constexpr std::chrono::milliseconds kPiece{15};
constexpr std::size_t kLinesAtOnce = 64;
constexpr std::chrono::milliseconds kTold{100};
/// More lines than a window has pixels across show nothing more, and cost every picture their drawing.
constexpr std::size_t kMostShown = 4000;
}  // namespace

SampleLinesMaker::SampleLinesMaker(QObject* parent) : QObject(parent) {
  timer_.setInterval(0);
  connect(&timer_, &QTimer::timeout, this, &SampleLinesMaker::makePiece);
}

void SampleLinesMaker::start(runtime::OpenDrawingRef drawing, const civil::Alignment& axis,
                             const civil::TinSurface* border, const civil::SampleLineRules& rules,
                             std::vector<civil::SampleLineStation> stations) {
  stop();
  drawing_ = std::move(drawing);
  axis_ = &axis;
  border_ = border;
  rules_ = rules;
  stations_ = std::move(stations);
  lines_.reserve(stations_.size());
  growing_ = {};
  shownOf_ = (stations_.size() + kMostShown - 1) / kMostShown;
  sinceTold_.start();
  makePiece();
}

void SampleLinesMaker::stop() {
  timer_.stop();
  drawing_.reset();
  stations_.clear();
  done_ = 0;
  lines_.clear();
  shape_.reset();
}

void SampleLinesMaker::makePiece() {
  const civil::SampleLineGround ground{
      .axis = *axis_, .profile = nullptr, .border = border_, .stationText = [](double s) {
        return text::stationText(s);
      }};
  QElapsedTimer time;
  time.start();
  while (done_ < stations_.size() && !time.hasExpired(kPiece.count())) {
    const std::size_t count = std::min(kLinesAtOnce, stations_.size() - done_);
    for (civil::MadeSampleLine& line :
         makeSampleLines(rules_, ground, std::span(stations_).subspan(done_, count), lines_.size() + 1)) {
      if (lines_.size() % shownOf_ == 0) growing_.add(line.vertices());
      lines_.push_back(std::move(line));
    }
    done_ += count;
  }
  if (done_ < stations_.size())
    timer_.start();
  else
    timer_.stop();
  if (timer_.isActive() && !sinceTold_.hasExpired(kTold.count())) return;
  sinceTold_.start();
  shape_ = std::make_shared<view::LineSet>(growing_);
  Q_EMIT progressed();
}

}  // namespace lvx::desktop
