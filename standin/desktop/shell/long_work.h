#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <string>

namespace lvx::desktop {

class ProgressStrip;

/// Keeps the windows alive while work runs in their own thread: the work asks check() now and then, which lets the windows
/// paint about 20 times a second. Meanwhile no mouse click and no key reaches any window; only the strip's Cancel, Escape
/// and closing the main window act, so nothing can begin inside the work.
///
///     LongWork::Run run(work, tr("Saving"));
///     while (...) if (work.check()) break;      // true: the user wants to stop
class LongWork : public QObject {
  Q_OBJECT
 public:
  explicit LongWork(ProgressStrip& strip);

  /// Work runs for the length of its life. Runs don't stand inside one another.
  class Run {
   public:
    Run(LongWork& work, const QString& name) : work_(work) { work_.begin(name); }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { work_.end(); }

   private:
    LongWork& work_;
  };

  /// The user is asked something inside the work: windows take everything again, and the time doesn't count.
  class Question {
   public:
    explicit Question(LongWork& work) : work_(work) { work_.pause(); }
    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;
    ~Question() { work_.resume(); }

   private:
    LongWork& work_;
  };

  /// True once the user wants to stop. Cheap: it looks at the clock, and lets the windows live when their time has come.
  [[nodiscard]] bool check();
  void setProgress(const QString& step, quint64 done, quint64 total);
  /// As runtime::HostOptions wants it.
  [[nodiscard]] std::function<void(std::uint64_t, std::uint64_t)> startProgress(const std::string& step);
  /// Ends the run at its next check; without one nothing happens.
  void cancel();
  [[nodiscard]] bool isRunning() const { return running_; }

 protected:
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  void begin(const QString& name);
  void end();
  void pause();
  void resume();
  [[nodiscard]] bool letThrough(QObject* target, QEvent* event);

  ProgressStrip& strip_;
  QString name_;
  QString step_;
  quint64 done_ = 0;
  quint64 total_ = 0;
  QElapsedTimer sinceStart_;
  QElapsedTimer sinceBreath_;
  int questions_ = 0;
  bool running_ = false;
  bool cancelled_ = false;
  bool shown_ = false;
  bool breathing_ = false;
};

}  // namespace lvx::desktop
