#pragma once

#include <QObject>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class QWidget;

namespace lvx::canvas {
class CanvasLibrary;
}

namespace lvx::desktop {

struct BookWish;
class Document;
class LeaveWish;
class LongWork;
class ReportOutcome;
class Selection;
class Session;

/// What a book maker works with.
struct BookMakerSurroundings {
  QWidget& window;
  const Session& session;
  const Document& document;
  const Selection& selection;
  LongWork& work;
  ReportOutcome& outcome;
  LeaveWish& leave;
  /// Folder of the running program, and the language of the sheets.
  std::filesystem::path bin;
  std::string language;
};

/// Makes books of cross sections and long sections, as `lvxhost sections` and `lvxhost profile` do, to the byte.
class BookMaker : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it.
  explicit BookMaker(BookMakerSurroundings surroundings);
  ~BookMaker() override;

  /// Asks for a book and a file and writes it. Nothing happens where no drawing is open, or something runs.
  void ask();

 private:
  void write(const BookWish& wish, const QString& path);
  /// Why it failed; empty where the book is there, or the user gave it up.
  QString tryToWrite(const BookWish& wish, const QString& path);
  /// Asks about the first sheet's file that is there, which the box for files didn't know of.
  bool mayReplace(const std::filesystem::path& asked, const std::vector<std::filesystem::path>& files);
  void tellProblem(const QString& words);

  BookMakerSurroundings at_;
  /// Since the first book.
  std::unique_ptr<canvas::CanvasLibrary> library_;
};

}  // namespace lvx::desktop
