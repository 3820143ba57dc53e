#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>

namespace lvx::desktop {

/// Some lines of a text file, however large it is.
struct FileLines {
  /// 1-based number of the first of `lines`.
  std::uint64_t first = 1;
  QStringList lines;
  /// Whether lines follow behind the last one.
  bool more = false;
  /// Why nothing could be read; empty otherwise.
  QString problem;
};

/// Turns the file's bytes into text; the default reads UTF-8 and takes what isn't that as Latin-1.
using Decode = std::function<QString(const QByteArray&)>;
[[nodiscard]] QString decodeUtf8OrLatin1(const QByteArray& bytes);

/// Reads up to `count` lines from line `first` on; where the file has fewer lines, its last ones. Lines end with LF or CR
/// LF; beyond `kLongestShown` bytes a line is cut and ends in an ellipsis. Memory is that of the lines that are given.
inline constexpr int kLongestShown = 4000;
[[nodiscard]] FileLines readLines(const QString& path, std::uint64_t first, int count,
                                  const Decode& decode = decodeUtf8OrLatin1);

}  // namespace lvx::desktop
