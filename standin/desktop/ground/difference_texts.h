#pragma once

#include <QCoreApplication>
#include <QString>
#include <vector>

#include "civil/surface_difference.h"

namespace lvx::desktop {

/// The figures of a difference in words.
class DifferenceTexts {
  Q_DECLARE_TR_FUNCTIONS(lvx::desktop::DifferenceTexts)
 public:
  struct Row {
    QString label;
    QString volume;  ///< empty where it has none
    QString area;
  };
  [[nodiscard]] static std::vector<Row> rows(const civil::SurfaceDifference& difference);
  /// What heads a column of volumes and one of areas, with the drawing's unit of length where it names one.
  [[nodiscard]] static QString volume(const QString& unit);
  [[nodiscard]] static QString area(const QString& unit);
  /// The rows with tabs between their cells, as spreadsheets take them.
  [[nodiscard]] static QString table(const QString& title, const QString& unit,
                                     const civil::SurfaceDifference& difference);
  /// "Design less existing ground from -1.200 to 3.400"
  [[nodiscard]] static QString extremes(const civil::SurfaceDifference& difference);
};

}  // namespace lvx::desktop
