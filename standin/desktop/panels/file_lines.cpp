#include "desktop/panels/file_lines.h"

#include <QFile>
#include <QStringDecoder>
#include <algorithm>
#include <cstring>
#include <vector>

namespace lvx::desktop {

namespace {

constexpr qint64 kBlock = 1 << 18;

/// Gathers the lines asked for as the file passes by.
class Gatherer {
 public:
  Gatherer(std::uint64_t first, int count) : first_(first), count_(static_cast<std::size_t>(count)) {}

  /// False once enough was seen.
  bool take(const char* data, qint64 size) {
    const char* const end = data + size;
    while (data < end) {
      const auto* const mark = static_cast<const char*>(std::memchr(data, '\n', static_cast<std::size_t>(end - data)));
      if (number_ >= first_ && !addToLine(data, mark == nullptr ? end : mark)) return false;
      open_ = mark == nullptr;
      if (mark == nullptr) return true;
      finishLine();
      data = mark + 1;
    }
    return true;
  }
  void takeEnd() {
    if (open_) finishLine();
  }
  /// How many lines passed by.
  [[nodiscard]] std::uint64_t lineCount() const { return number_ - 1; }
  [[nodiscard]] FileLines result(const Decode& decode) const {
    FileLines found;
    found.first = first_;
    found.more = more_;
    for (const QByteArray& line : kept_) found.lines << decode(line);
    return found;
  }

 private:
  bool addToLine(const char* begin, const char* end) {
    if (kept_.size() == count_) {
      more_ = true;
      return false;
    }
    const qsizetype room = kLongestShown - line_.size();
    const auto length = static_cast<qsizetype>(end - begin);
    line_.append(begin, std::min(room, length));
    if (length > room) cut_ = true;
    return true;
  }
  void finishLine() {
    if (number_ >= first_) {
      if (cut_)
        line_.append("\xe2\x80\xa6");
      else if (line_.endsWith('\r'))
        line_.chop(1);
      kept_.push_back(line_);
      line_.clear();
      cut_ = false;
    }
    ++number_;
  }

  std::uint64_t first_;
  std::size_t count_;
  std::uint64_t number_ = 1;  ///< of the line that is being read
  std::vector<QByteArray> kept_;
  QByteArray line_;
  bool cut_ = false;
  bool open_ = false;
  bool more_ = false;
};

}  // namespace

QString decodeUtf8OrLatin1(const QByteArray& bytes) {
  QStringDecoder utf8(QStringDecoder::Utf8);
  const QString text = utf8.decode(bytes);
  return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

std::vector<FoundText> findInFile(const QString& path, const QString& text, const Decode& decode, std::size_t most) {
  std::vector<FoundText> found;
  QFile file(path);
  if (text.isEmpty() || !file.open(QIODevice::ReadOnly)) return found;
  std::uint64_t number = 1;
  QByteArray piece;  // whole lines
  const auto look = [&](const QByteArray& bytes) {
    const QString lines = decode(bytes);
    qsizetype from = 0;
    while (from <= lines.size()) {
      qsizetype end = lines.indexOf(QLatin1Char('\n'), from);
      if (end < 0) end = lines.size();
      const QStringView line =
          QStringView(lines).sliced(from, end - from).first(std::min<qsizetype>(end - from, kLongestShown));
      for (qsizetype at = line.indexOf(text, 0, Qt::CaseInsensitive); at >= 0;
           at = line.indexOf(text, at + text.size(), Qt::CaseInsensitive)) {
        if (found.size() == most) return false;
        found.push_back({number, static_cast<int>(at)});
      }
      if (end == lines.size()) break;
      ++number;
      from = end + 1;
    }
    return true;
  };
  while (!file.atEnd()) {
    const QByteArray block = file.read(kBlock);
    if (block.isEmpty()) break;
    piece += block;
    const qsizetype end = piece.lastIndexOf('\n') + 1;
    if (end == 0) continue;
    // Without the last line's end, behind which the next piece begins.
    if (!look(piece.first(end - 1))) return found;
    ++number;
    piece = piece.sliced(end);
  }
  if (!piece.isEmpty()) look(piece);
  return found;
}

FileLines readLines(const QString& path, std::uint64_t first, int count, const Decode& decode) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    FileLines none;
    none.problem = file.errorString();
    return none;
  }
  Gatherer gatherer(std::max<std::uint64_t>(first, 1), std::max(count, 1));
  QByteArray block(kBlock, Qt::Uninitialized);
  while (true) {
    const qint64 size = file.read(block.data(), kBlock);
    if (size < 0) {
      FileLines none;
      none.problem = file.errorString();
      return none;
    }
    if (size == 0) break;
    if (!gatherer.take(block.constData(), size)) return gatherer.result(decode);
  }
  gatherer.takeEnd();
  const std::uint64_t total = gatherer.lineCount();
  if (total == 0 || total >= first) return gatherer.result(decode);
  const auto window = static_cast<std::uint64_t>(std::max(count, 1));
  return readLines(path, total > window ? total - window + 1 : 1, count, decode);
}

}  // namespace lvx::desktop
