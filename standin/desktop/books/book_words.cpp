#include "desktop/books/book_words.h"

#include "desktop/common/qt_text.h"
#include "sheets/book.h"
#include "sheets/paper.h"
#include "sheets/settings.h"

namespace lvx::desktop {

QString BookWords::reason(const sheets::SheetError& error) {
  using Problem = sheets::SheetError::Problem;
  switch (error.problem()) {
    case Problem::NothingToDraw:
      return tr("There is nothing to draw: no surface, corridor or profile in this range.");
    case Problem::TooLarge: {
      QString words = tr("What is at station %1 is larger than the paper at this scale.").arg(toQt(error.subject()));
      if (error.fittingScale() > 0.0)
        words += QLatin1Char(' ') + tr("%1 fits.").arg(toQt(sheets::scaleText(error.fittingScale())));
      if (!error.fittingPaper().empty())
        words += QLatin1Char(' ') + tr("%1 in landscape fits too.").arg(toQt(error.fittingPaper()));
      return words;
    }
    case Problem::NoScaleFits:
      return tr("What is at station %1 fits this paper at no scale. Take a larger paper or less exaggeration.")
          .arg(toQt(error.subject()));
    case Problem::TooManySheets: {
      QString words = tr("At this scale the book has more than %1 sheets. Take a smaller scale, a larger paper or a "
                         "shorter range.")
                          .arg(toQt(error.subject()));
      if (error.fittingScale() > 0.0)
        words += QLatin1Char(' ') + tr("%1 fits.").arg(toQt(sheets::scaleText(error.fittingScale())));
      return words;
    }
    case Problem::TooManyFiles:
      return tr("The book has %1 sheets, and at most %2 SVG pictures are written. Save it as PDF, or take a smaller "
                "scale, a larger paper or a shorter range.")
          .arg(toQt(error.subject()))
          .arg(sheets::kMostPictures);
    case Problem::Stopped:
      return {};
    case Problem::CantWrite:
      return tr("The book can't be written: %1").arg(toQt(error.subject()));
    case Problem::NoMemory:
      return tr("There is not enough memory for the book.");
    case Problem::BrokeOff:
      return tr("The drawing of the book broke off (%1). Memory may be short.").arg(toQt(error.subject()));
  }
  return toQt(error.what());
}

QString BookWords::outcome(std::size_t sheets, canvas::Size paper, double scale) {
  return tr("%n sheet(s), %1, %2", nullptr, static_cast<int>(sheets))
      .arg(toQt(sheets::paperText(paper)), toQt(sheets::scaleText(scale)));
}

}  // namespace lvx::desktop
