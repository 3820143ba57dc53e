#pragma once

#include <QCoreApplication>
#include <QString>
#include <cstddef>

#include "canvas/canvas.h"
#include "sheets/sheet_error.h"

namespace lvx::desktop {

/// Words about books, in the language of the windows.
class BookWords {
  Q_DECLARE_TR_FUNCTIONS(lvx::desktop::BookWords)
 public:
  /// Why a book can't be made, and what can be done about it; empty where the user stopped it.
  [[nodiscard]] static QString reason(const sheets::SheetError& error);
  /// "12 sheets, A3, 1:200"
  [[nodiscard]] static QString outcome(std::size_t sheets, canvas::Size paper, double scale);
};

}  // namespace lvx::desktop
