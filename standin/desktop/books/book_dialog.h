#pragma once

#include <QDialog>
#include <QString>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

#include "civil/drawing.h"
#include "sheets/book_making.h"
#include "sheets/profile_book.h"
#include "sheets/section_book.h"
#include "sheets/settings.h"

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QSpinBox;

namespace lvx::desktop {

/// What a user wants of a book.
struct BookWish {
  bool isProfile = false;
  sheets::SectionChoice sections;
  sheets::ProfileChoice profile;
  /// Without date and language.
  sheets::SheetSettings settings;
};

/// Plans the book of a wish, or throws sheets::SheetError.
using BookPlanner = std::function<sheets::BookFacts(const BookWish& wish, const sheets::Progress& progress)>;

/// Asks for a section book: cross sections or the long section, of what, on which paper, at which scale. How many sheets
/// would come of it stands below.
///
///     BookDialog dialog(drawing, selected, plan, &window);
///     if (dialog.exec() == QDialog::Accepted) make(dialog.wish());
class BookDialog : public QDialog {
  Q_OBJECT
 public:
  /// Begins with the objects that are `chosen` already, if they are of use. The drawing stays as it is meanwhile.
  BookDialog(const civil::Drawing& drawing, const std::vector<civil::Handle>& chosen, BookPlanner plan,
             QWidget* parent);

  [[nodiscard]] BookWish wish() const;

 private:
  void fillAlignments(const std::vector<civil::Handle>& chosen);
  void fillOfAlignment();
  void build();
  void follow();
  void showRows();
  void later();
  void look();
  [[nodiscard]] bool isProfile() const;
  [[nodiscard]] const civil::AlignmentObject* alignment() const;
  [[nodiscard]] canvas::Size paper() const;
  /// What stands against the book before it is tried; empty where nothing does.
  [[nodiscard]] QString problem() const;

  const civil::Drawing& drawing_;
  BookPlanner plan_;
  std::vector<civil::Handle> chosen_;
  std::vector<const civil::AlignmentObject*> alignments_;
  /// Design profiles of the chosen alignment.
  std::vector<const civil::ProfileObject*> designs_;
  QFormLayout* form_;
  QComboBox* kind_;
  QComboBox* alignment_;
  QComboBox* group_;
  QComboBox* design_;
  QComboBox* ground_;
  QLineEdit* from_;
  QLineEdit* to_;
  QComboBox* paper_;
  QDoubleSpinBox* width_;
  QDoubleSpinBox* height_;
  QWidget* ownSize_;
  QComboBox* orientation_;
  QComboBox* scale_;
  QDoubleSpinBox* exaggeration_;
  QSpinBox* perSheet_;
  QCheckBox* grid_;
  QLabel* outcome_;
  QDialogButtonBox* buttons_;
  QTimer settle_;
};

}  // namespace lvx::desktop
