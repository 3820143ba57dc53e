#include "sheets/book_making.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include "sheets/detail/book_message.h"
#include "sheets/sheet_error.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/isolated_work.h"

namespace lvx::sheets {

namespace fs = std::filesystem;
using detail::BookWord;
using detail::MessageReader;
using detail::MessageWriter;
using standin_platform::AtomicFile;
using standin_platform::AtomicFileError;
using standin_platform::IsolatedOutcome;
using standin_platform::Tell;

namespace {

[[noreturn]] void failWriting(const fs::path& path, const std::string& reason) {
  throw SheetError(SheetError::Problem::CantWrite, "can't write '" + path.string() + "': " + reason, reason);
}

[[noreturn]] void failWriting(const fs::path& path, const AtomicFileError& error) {
  failWriting(path, error.reason() ? error.reason().message() : std::string(error.what()));
}

[[noreturn]] void failNoMemory() {
  throw SheetError(SheetError::Problem::NoMemory, "there is not enough memory for the book");
}

[[noreturn]] void stop() {
  throw SheetError(SheetError::Problem::Stopped, "the book was stopped; nothing was written");
}

// ---- in the copy -------------------------------------------------------------------------------------------------------

/// Tells how far the work is, at most a few hundred times. Who wants it stopped ends the copy.
Progress progressTo(const Tell& tell, BookWord word) {
  return [&tell, word, last = std::size_t{0}](std::size_t done, std::size_t total) mutable {
    constexpr std::size_t kMost = 200;
    const std::size_t now = 1 + done * kMost / std::max<std::size_t>(1, total);
    if (now != std::exchange(last, now)) tell(MessageWriter(word).put(done).put(total).bytes());
    return true;
  };
}

/// Tries now and then whether there is memory and whether the work goes on, and tells where that isn't so: where an
/// allocation failed, what finds letters may look for them for ever, or wait for a lock that it forgot to open.
class MemoryTrial {
 public:
  /// `isTelling`: the work waits for who hears it.
  MemoryTrial(const Tell& tell, const std::atomic<bool>& isTelling)
      : isTelling_(isTelling), thread_([this, &tell] { tryUntilEnd(tell); }) {}
  MemoryTrial(const MemoryTrial&) = delete;
  MemoryTrial& operator=(const MemoryTrial&) = delete;
  ~MemoryTrial() {
    {
      const std::lock_guard lock(mutex_);
      isEnded_ = true;
    }
    changed_.notify_all();
    thread_.join();
  }

 private:
  void tryUntilEnd(const Tell& tell) {
    constexpr std::chrono::milliseconds kPause{500};
    constexpr std::size_t kBytes = 4096;
    std::unique_lock lock(mutex_);
    while (!changed_.wait_for(lock, kPause, [this] { return isEnded_; })) {
      void* const memory = std::malloc(kBytes);
      const bool isShort = memory == nullptr;
      std::free(memory);
      if (!isShort && !isStuck()) continue;
      const char word = static_cast<char>(BookWord::NoMemory);
      try {
        tell({&word, 1});
      } catch (...) {
        return;  // nobody waits any more
      }
      return;
    }
  }

  /// For ten seconds the process has done nothing but these trials.
  bool isStuck() {
    constexpr int kRounds = 20;
    constexpr std::clock_t kTrial = CLOCKS_PER_SEC / 500;
    const std::clock_t now = std::clock();
    const bool isIdle = !isTelling_ && now - std::exchange(used_, now) < kTrial;
    idleRounds_ = isIdle ? idleRounds_ + 1 : 0;
    return idleRounds_ >= kRounds;
  }

  const std::atomic<bool>& isTelling_;
  std::clock_t used_ = 0;
  int idleRounds_ = 0;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isEnded_ = false;
  std::thread thread_;
};

/// Gathers the small pieces of a library.
class ToldFile final : public canvas::ByteTarget {
 public:
  explicit ToldFile(const Tell& tell) : tell_(tell) { empty(); }
  bool write(std::string_view bytes) noexcept override {
    constexpr std::size_t kPiece = std::size_t{1} << 18;
    try {
      waiting_.append(bytes);
      if (waiting_.size() >= kPiece) flush();
    } catch (...) {
      failure_ = std::current_exception();
    }
    return failure_ == nullptr;
  }
  /// Throws what went wrong in a `write` too.
  void flush() {
    rethrow();
    tell_(waiting_);
    empty();
  }
  void rethrow() const {
    if (failure_ != nullptr) std::rethrow_exception(failure_);
  }

 private:
  void empty() { waiting_.assign(1, static_cast<char>(BookWord::Bytes)); }

  const Tell& tell_;
  std::string waiting_;
  std::exception_ptr failure_;
};

void tellFailure(const Tell& tell, const SheetError& error) {
  tell(MessageWriter(BookWord::Failed)
           .put(static_cast<int>(error.problem()))
           .put(std::string_view(error.what()))
           .put(std::string_view(error.subject()))
           .put(error.fittingScale())
           .put(std::string_view(error.fittingPaper()))
           .bytes());
}

void tellFacts(const Tell& tell, const Book& book) {
  MessageWriter message(BookWord::Planned);
  message.put(book.sheetCount()).put(book.paper().width).put(book.paper().height).put(book.scale());
  message.put(book.notes().size());
  for (const std::string& note : book.notes()) message.put(std::string_view(note));
  tell(message.bytes());
}

/// One file of a book.
void drawFile(Book& book, const fs::path& path, std::size_t first, std::size_t last, canvas::FileMaker& maker,
              const canvas::FileFacts& facts, const Progress& progress, const Tell& tell) {
  tell(MessageWriter(BookWord::File).bytes());
  ToldFile file(tell);
  const std::unique_ptr<canvas::FileCanvas> canvas = maker.open(facts, file);
  if (!canvas) throw std::bad_alloc();
  for (std::size_t i = first; i < last && !canvas->hasFailed(); ++i) {
    (void)progress(i, book.sheetCount());
    canvas->beginSheet(book.paper());
    book.draw(i, *canvas);
    canvas->endSheet();
  }
  const char* const failure = canvas->finish();
  file.rethrow();
  if (failure != nullptr) failWriting(path, failure);
  file.flush();
  tell(MessageWriter(BookWord::Whole).bytes());
}

void drawFiles(Book& book, const fs::path& target, const std::string& moment, canvas::FileMaker& maker,
               const Tell& tell) {
  const std::vector<fs::path> files = bookFiles(target, book.sheetCount());
  const std::string title = book.title();
  const bool isPdf = formatOf(target) == canvas::FileFormat::Pdf;
  const canvas::FileFacts facts{.format = formatOf(target), .size = book.paper(), .title = title, .moment = moment};
  const Progress progress = progressTo(tell, BookWord::Drawing);
  for (std::size_t i = 0; i < files.size(); ++i)
    drawFile(book, files[i], isPdf ? 0 : i, isPdf ? book.sheetCount() : i + 1, maker, facts, progress, tell);
}

/// `further` gets the planned book.
template <class Further>
void workInCopy(const BookPlan& plan, const Tell& line, const Further& further) {
  std::mutex mutex;
  std::atomic<bool> isTelling = false;
  const Tell tell = [&](std::string_view message) {
    const std::lock_guard lock(mutex);
    isTelling = true;
    line(message);
    isTelling = false;
  };
  try {
    const MemoryTrial trial(tell, isTelling);
    canvas::FileMaker& maker = plan.maker();
    const std::unique_ptr<Book> book = plan.book(maker.measure(), progressTo(tell, BookWord::Planning));
    tellFacts(tell, *book);
    further(*book, maker, tell);
  } catch (const SheetError& error) {
    tellFailure(tell, error);
  }
}

// ---- in the process that waits -----------------------------------------------------------------------------------------

SheetError failureOf(MessageReader& message) {
  const auto problem = static_cast<SheetError::Problem>(message.number<int>());
  const std::string words = message.text();
  const std::string subject = message.text();
  const auto scale = message.number<double>();
  return {problem, words, subject, scale, message.text()};
}

BookFacts factsOf(MessageReader& message) {
  BookFacts facts;
  facts.sheets = message.number<std::size_t>();
  facts.paper.width = message.number<double>();
  facts.paper.height = message.number<double>();
  facts.scale = message.number<double>();
  for (auto notes = message.number<std::size_t>(); notes > 0; --notes) facts.notes.push_back(message.text());
  return facts;
}

void requireFewFiles(const fs::path& target, const BookFacts& facts) {
  if (formatOf(target) != canvas::FileFormat::Svg || facts.sheets <= kMostPictures) return;
  const std::string sheets = std::to_string(facts.sheets);
  throw SheetError(
      SheetError::Problem::TooManyFiles,
      "the book has " + sheets + " sheets, and at most " + std::to_string(kMostPictures) +
          " SVG files are written; write a PDF, or take a smaller scale, a larger paper or a shorter range",
      sheets);
}

/// Asks again while nothing comes, so that what stops a work needn't wait for its next step.
class Asking {
 public:
  void ask(const Progress& progress, MessageReader& message) {
    progress_ = progress ? &progress : nullptr;
    done_ = message.number<std::size_t>();
    total_ = message.number<std::size_t>();
    again();
  }
  void again() const {
    if (progress_ != nullptr && !(*progress_)(done_, total_)) stop();
  }

 private:
  const Progress* progress_ = nullptr;
  std::size_t done_ = 0;
  std::size_t total_ = 0;
};

/// The files of a book as they come.
class ComingFiles {
 public:
  explicit ComingFiles(std::vector<fs::path> names) : names_(std::move(names)) {}

  void hear(BookWord word, std::string_view bytes) {
    try {
      if (word == BookWord::File) {
        path_ = names_.at(files_.size());
        files_.push_back(std::make_unique<AtomicFile>(path_));
      }
      if (word == BookWord::Bytes) files_.back()->write(bytes);
      if (word == BookWord::Whole) files_.back()->settle();
    } catch (const AtomicFileError& error) {
      failWriting(path_, error);
    }
  }
  void commit() {
    for (std::size_t i = 0; i < files_.size(); ++i) {
      try {
        files_[i]->commit();
      } catch (const AtomicFileError& error) {
        failWriting(names_[i], error);
      }
    }
  }

 private:
  std::vector<fs::path> names_;
  std::vector<std::unique_ptr<AtomicFile>> files_;
  fs::path path_;  ///< of the last
};

/// The book isn't to be written.
struct NotWanted {};

void requireDone(const IsolatedOutcome& outcome) {
  using Problem = SheetError::Problem;
  switch (outcome.end) {
    case IsolatedOutcome::End::Done:
      return;
    case IsolatedOutcome::End::Failed:
      throw SheetError(Problem::CantWrite, outcome.words, outcome.words);
    case IsolatedOutcome::End::ShortMemory:
      failNoMemory();
    case IsolatedOutcome::End::Crashed:
      throw SheetError(Problem::BrokeOff,
                       "the drawing of the book broke off (" + outcome.words + "); memory may be short", outcome.words);
    case IsolatedOutcome::End::NotStarted:
      throw SheetError(Problem::CantWrite, "no process can be started to draw the book: " + outcome.words,
                       outcome.words);
  }
}

/// Runs the copy. `hear` gets what isn't common to all work on books.
template <class Further, class Hear>
void run(const BookPlan& plan, const BookSteps& steps, const Further& further, const Hear& hear) {
  Asking asking;
  std::optional<SheetError> failure;
  const IsolatedOutcome outcome =
      standin_platform::runIsolated([&](const Tell& tell) { workInCopy(plan, tell, further); },
                                    [&](std::string_view bytes) {
                                      MessageReader message(bytes);
                                      switch (message.word()) {
                                        case BookWord::Planning:
                                          return asking.ask(steps.planning, message);
                                        case BookWord::Drawing:
                                          return asking.ask(steps.drawing, message);
                                        case BookWord::NoMemory:
                                          failNoMemory();
                                        case BookWord::Failed:
                                          failure = failureOf(message);
                                          return;
                                        default:
                                          return hear(message);
                                      }
                                    },
                                    [&] { asking.again(); });
  if (failure) throw *failure;
  requireDone(outcome);
}

}  // namespace

BookFacts planBook(const BookPlan& plan, const Progress& progress) {
  BookFacts facts;
  run(
      plan, {.planning = progress}, [](Book&, canvas::FileMaker&, const Tell&) {},
      [&](MessageReader& message) { facts = factsOf(message); });
  return facts;
}

bool makeBook(const BookPlan& plan, const fs::path& target, const std::string& moment, const BookSteps& steps) {
  std::optional<ComingFiles> files;
  try {
    run(
        plan, steps,
        [&](Book& book, canvas::FileMaker& maker, const Tell& tell) { drawFiles(book, target, moment, maker, tell); },
        [&](MessageReader& message) {
          if (message.word() != BookWord::Planned) return files->hear(message.word(), message.rest());
          const BookFacts facts = factsOf(message);
          requireFewFiles(target, facts);
          if (steps.mayWrite && !steps.mayWrite(facts)) throw NotWanted();
          files.emplace(bookFiles(target, facts.sheets));
        });
  } catch (const NotWanted&) {
    return false;
  }
  files->commit();
  return true;
}

}  // namespace lvx::sheets
