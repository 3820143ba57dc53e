#include "desktop/ground/difference_work.h"

#include <QString>
#include <exception>
#include <functional>

#include "standin_platform/crew.h"

namespace lvx::desktop {

void DifferenceWork::start(const civil::TinSurface& existing, const civil::TinSurface& next) {
  stop();
  isStopped_ = false;
  isRunning_ = true;
  const int run = ++run_;
  thread_ = std::thread([this, run, &existing, &next] {
    // On the windows' thread, if this run is still wanted there.
    const auto post = [this, run](const std::function<void()>& message) {
      QMetaObject::invokeMethod(
          this,
          [this, run, message] {
            if (run == run_ && isRunning_) message();
          },
          Qt::QueuedConnection);
    };
    try {
      standin_platform::Crew crew;
      int told = -1;
      const auto difference = civil::surfaceDifference(
          existing, next,
          [&crew](std::size_t count, const std::function<void(std::size_t)>& piece) { crew.run(count, piece); },
          [&](double done) {
            constexpr double kAll = 100.0;
            if (const int percent = static_cast<int>(kAll * done); percent != told) {
              told = percent;
              post([this, percent] { Q_EMIT progressed(percent); });
            }
            return !isStopped_;
          });
      if (!difference) return;
      post([this, result = *difference] {
        isRunning_ = false;
        Q_EMIT done(result);
      });
    } catch (const std::exception& error) {
      post([this, reason = QString::fromUtf8(error.what())] {
        isRunning_ = false;
        Q_EMIT failed(reason);
      });
    }
  });
}

void DifferenceWork::stop() {
  isStopped_ = true;
  isRunning_ = false;
  if (thread_.joinable()) thread_.join();
}

}  // namespace lvx::desktop
