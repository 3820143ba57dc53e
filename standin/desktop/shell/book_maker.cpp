#include "desktop/shell/book_maker.h"

#include <QMessageBox>
#include <ctime>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include "canvas/canvas_library.h"
#include "desktop/books/book_dialog.h"
#include "desktop/books/book_words.h"
#include "desktop/common/file_boxes.h"
#include "desktop/common/qt_text.h"
#include "desktop/shell/document.h"
#include "desktop/shell/leave_wish.h"
#include "desktop/shell/long_work.h"
#include "desktop/shell/report_outcome.h"
#include "desktop/shell/selection.h"
#include "desktop/shell/session.h"
#include "runtime/host_choices.h"
#include "sheets/book_making.h"
#include "sheets/profile_book.h"
#include "sheets/section_book.h"
#include "sheets/sheet_error.h"

namespace lvx::desktop {

namespace {

/// Now, or the moment of SOURCE_DATE_EPOCH.
std::int64_t bookMoment() {
  return runtime::hostOptions({}).platform.fixedMoment.value_or(static_cast<std::int64_t>(std::time(nullptr)));
}

/// All that is given outlives the plan.
sheets::BookPlan planOf(const civil::Drawing& drawing, const BookWish& wish, const sheets::SheetSettings& settings,
                        canvas::FileMaker& maker) {
  return {.maker = [&maker]() -> canvas::FileMaker& { return maker; },
          .book = [&](canvas::TextMeasure& measure, const sheets::Progress& progress) -> std::unique_ptr<sheets::Book> {
            if (wish.isProfile)
              return std::make_unique<sheets::ProfileBook>(drawing, wish.profile, settings, measure, progress);
            return std::make_unique<sheets::SectionBook>(drawing, wish.sections, settings, measure, progress);
          }};
}

}  // namespace

BookMaker::BookMaker(BookMakerSurroundings surroundings) : at_(std::move(surroundings)) {}

BookMaker::~BookMaker() = default;

void BookMaker::tellProblem(const QString& words) {
  QMessageBox box(QMessageBox::Warning, tr("Section book"), words, QMessageBox::Ok, &at_.window);
  box.setObjectName(QStringLiteral("bookProblem"));
  box.exec();
}

void BookMaker::ask() {
  if (!at_.document.isOpen() || at_.document.isBusy()) return;
  if (!library_) {
    try {
      library_ = std::make_unique<canvas::CanvasLibrary>(at_.bin);
    } catch (const canvas::LibraryError& error) {
      tellProblem(tr("Books can't be written here: %1.").arg(toQt(error.what())));
      return;
    }
  }
  const civil::Drawing& drawing = at_.session.drawing()->drawing();
  const auto plan = [&](const BookWish& wish, const sheets::Progress& progress) {
    return sheets::planBook(planOf(drawing, wish, wish.settings, library_->maker()), progress);
  };
  std::vector<civil::Handle> chosen{at_.selection.handle()};
  if (const civil::AlignmentObject* const alignment = at_.selection.alignment()) chosen.push_back(alignment->handle);
  BookDialog dialog(drawing, chosen, plan, &at_.window);
  if (dialog.exec() != QDialog::Accepted) return;
  const BookWish wish = dialog.wish();
  const QString name = toQt(wish.sections.alignment->name) + QLatin1Char(' ') +
                       (wish.isProfile ? tr("long section") : tr("cross sections"));
  TargetQuestion question;
  question.title = tr("Save section book");
  question.purpose = FilePurpose::Export;
  question.name = QString(name).replace(QLatin1Char('/'), QLatin1Char('_'));
  question.forms = {{tr("PDF document"), {QStringLiteral("pdf")}}, {tr("SVG picture"), {QStringLiteral("svg")}}};
  if (const auto path = askTarget(&at_.window, question)) write(wish, *path);
}

bool BookMaker::mayReplace(const std::filesystem::path& asked, const std::vector<std::filesystem::path>& files) {
  for (const std::filesystem::path& file : files) {
    std::error_code error;
    if (file == asked || !std::filesystem::exists(file, error)) continue;  // the box has asked
    const LongWork::Question question(at_.work);
    return asksToReplace(&at_.window, toQt(file.string()));
  }
  return true;
}

void BookMaker::write(const BookWish& wish, const QString& path) {
  if (!at_.document.isOpen() || at_.document.isBusy()) return;
  const QString problem = tryToWrite(wish, path);
  if (!problem.isEmpty() && !at_.leave.isThere()) tellProblem(problem);
  at_.leave.follow();
}

QString BookMaker::tryToWrite(const BookWish& wish, const QString& path) {
  const std::int64_t moment = bookMoment();
  sheets::SheetSettings settings = wish.settings;
  settings.language = at_.language;
  settings.date = sheets::dayText(moment);
  const std::filesystem::path target = toUtf8(path);
  std::optional<sheets::SheetError> failure;
  std::vector<std::filesystem::path> files;
  {
    LongWork::Run run(at_.work, tr("Section book"));
    const auto step = [this](const QString& name) {
      return [this, name](std::size_t done, std::size_t total) {
        at_.work.setProgress(name, done, total);
        return !at_.work.check();
      };
    };
    try {
      const auto mayWrite = [&](const sheets::BookFacts& facts) {
        files = sheets::bookFiles(target, facts.sheets);
        return mayReplace(target, files);
      };
      if (!sheets::makeBook(
              planOf(at_.session.drawing()->drawing(), wish, settings, library_->maker()), target,
              sheets::momentText(moment),
              {.planning = step(tr("Placing sections")), .mayWrite = mayWrite, .drawing = step(tr("Drawing sheets"))}))
        return {};
    } catch (const std::bad_alloc&) {
      failure.emplace(sheets::SheetError::Problem::NoMemory, "there is not enough memory for the book");
    } catch (const sheets::SheetError& error) {
      failure = error;
    }
  }
  if (failure) return BookWords::reason(*failure);
  at_.outcome.tellExported(toQt(files.front().string()));
  return {};
}

}  // namespace lvx::desktop
