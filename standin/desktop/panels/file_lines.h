#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <vector>

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

/// A place in a text file.
struct FoundText {
  std::uint64_t line = 1;  ///< 1-based
  int column = 0;          ///< letters before it
};
/// All places where a text stands, in any case, up to `most`; a line beyond `kLongestShown` bytes is looked through as far
/// as it is shown. None where the file can't be read. O(file), memory of a piece of it.
inline constexpr std::size_t kMostFound = 1'000'000;
[[nodiscard]] std::vector<FoundText> findInFile(const QString& path, const QString& text,
                                                const Decode& decode = decodeUtf8OrLatin1,
                                                std::size_t most = kMostFound);

}  // namespace lvx::desktop
