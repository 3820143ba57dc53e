// record_icons FOLDER FILE.svg…: records how each picture is painted, for a build whose Qt draws no SVG. Two files a picture,
// each in a square of 24: NAME.coloured has what has colours of its own, NAME.plain what takes the colour of texts, in black.
#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QPicture>
#include <QSvgRenderer>
#include <cstdio>

namespace {

constexpr int kSide = 24;

// Attributes of colours: those that keep theirs, or those that have the text's.
QByteArray onlyColours(const QByteArray& text, bool ofText) {
  QByteArray changed;
  qsizetype at = 0;
  for (;;) {
    qsizetype next = -1;
    qsizetype begin = 0;
    for (const char* const attribute : {" fill=\"", " stroke=\""}) {
      const qsizetype found = text.indexOf(attribute, at);
      if (found >= 0 && (next < 0 || found < next)) {
        next = found;
        begin = found + static_cast<qsizetype>(qstrlen(attribute));
      }
    }
    if (next < 0) return changed + text.mid(at);
    const qsizetype end = text.indexOf('"', begin);
    if (end < 0) return changed + text.mid(at);
    QByteArray value = text.mid(begin, end - begin);
    if (value == "currentColor")
      value = ofText ? "black" : "none";
    else if (ofText)
      value = "none";
    changed += text.mid(at, begin - at) + value;
    at = end;
  }
}

bool record(const QByteArray& text, const QString& path) {
  QSvgRenderer renderer(text);
  if (!renderer.isValid()) return false;
  QPicture picture;
  picture.setBoundingRect(QRect(0, 0, kSide, kSide));
  QPainter painter(&picture);
  renderer.render(&painter, QRectF(0, 0, kSide, kSide));
  painter.end();
  QFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(picture.data(), picture.size()) == picture.size() &&
         file.flush();
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 2; i < argc; ++i) {
    QFile file(QString::fromLocal8Bit(argv[i]));
    const QString stem = QString::fromLocal8Bit(argv[1]) + QLatin1Char('/') + QFileInfo(file.fileName()).baseName();
    const bool isRead = file.open(QIODevice::ReadOnly);
    const QByteArray text = isRead ? file.readAll() : QByteArray();
    if (!isRead || !record(onlyColours(text, true), stem + QLatin1String(".plain")) ||
        !record(onlyColours(text, false), stem + QLatin1String(".coloured"))) {
      std::fprintf(stderr, "record_icons: %s can't be recorded\n", argv[i]);
      return 1;
    }
  }
  return 0;
}
