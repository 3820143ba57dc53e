#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringList>

namespace lvx::desktop {

/// One of the files that a drawing is read from.
struct SourceFile {
  /// Absolute.
  QString path;
  /// Northing and easting of its coordinates stand the other way round.
  bool swapAxes = false;

  friend bool operator==(const SourceFile&, const SourceFile&) = default;
};

/// What a drawing is read from, as its user put it together. The first file is the one that the drawing has its unit and
/// its name from.
struct DrawingSources {
  Q_DECLARE_TR_FUNCTIONS(DrawingSources)

 public:
  QList<SourceFile> files;
  /// Files in another unit than the first one's are converted; else they can't be added.
  bool convertUnits = false;

  DrawingSources() = default;
  /// One file; `path` may be relative.
  explicit DrawingSources(const QString& path) : DrawingSources(QStringList{path}) {}
  explicit DrawingSources(const QStringList& paths);

  /// "road.xml", "road.xml + 2 files"; empty without a file.
  [[nodiscard]] QString title() const;
  [[nodiscard]] QStringList paths() const;
  /// The file that a path leads to, by whatever name; null where it is none of them.
  [[nodiscard]] SourceFile* find(const QString& path);
  [[nodiscard]] bool has(const QString& path) const;

  /// A text for the settings: the path alone where that says all.
  [[nodiscard]] QString toSetting() const;
  /// The one of such a text; without a file where it can't be read.
  [[nodiscard]] static DrawingSources fromSetting(const QString& text);

  friend bool operator==(const DrawingSources&, const DrawingSources&) = default;
};

}  // namespace lvx::desktop
