#include "desktop/shell/drawing_sources.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "standin_platform/file_stamp.h"

namespace lvx::desktop {

namespace {

// Names under which settings are kept.
constexpr QLatin1String kFiles("files");
constexpr QLatin1String kPath("path");
constexpr QLatin1String kSwapAxes("swapAxes");
constexpr QLatin1String kConvertUnits("convertUnits");

bool leadToOneFile(const QString& a, const QString& b) {
  return standin_platform::leadToOneFile(a.toStdString(), b.toStdString());
}

}  // namespace

DrawingSources::DrawingSources(const QStringList& paths) {
  for (const QString& path : paths) files.append({QFileInfo(path).absoluteFilePath(), false});
}

QString DrawingSources::title() const {
  if (files.isEmpty()) return {};
  const QString first = QFileInfo(files.front().path).fileName();
  return files.size() == 1 ? first : tr("%1 + %n file(s)", nullptr, static_cast<int>(files.size()) - 1).arg(first);
}

QStringList DrawingSources::paths() const {
  QStringList paths;
  for (const SourceFile& file : files) paths << file.path;
  return paths;
}

SourceFile* DrawingSources::find(const QString& path) {
  const auto found =
      std::find_if(files.begin(), files.end(), [&](const SourceFile& file) { return leadToOneFile(file.path, path); });
  return found == files.end() ? nullptr : &*found;
}

bool DrawingSources::has(const QString& path) const {
  return std::any_of(files.begin(), files.end(),
                     [&](const SourceFile& file) { return leadToOneFile(file.path, path); });
}

QString DrawingSources::toSetting() const {
  if (files.size() == 1 && !files.front().swapAxes) return files.front().path;
  QJsonArray list;
  for (const SourceFile& file : files) {
    QJsonObject entry{{kPath, file.path}};
    if (file.swapAxes) entry[kSwapAxes] = true;
    list.append(entry);
  }
  QJsonObject all{{kFiles, list}};
  if (convertUnits) all[kConvertUnits] = true;
  return QString::fromUtf8(QJsonDocument(all).toJson(QJsonDocument::Compact));
}

DrawingSources DrawingSources::fromSetting(const QString& text) {
  DrawingSources sources;
  if (!text.startsWith(QLatin1Char('{'))) {
    if (!text.isEmpty()) sources.files.append({text, false});
    return sources;
  }
  const QJsonObject all = QJsonDocument::fromJson(text.toUtf8()).object();
  for (const QJsonValue& entry : all[kFiles].toArray())
    if (const QString path = entry[kPath].toString(); !path.isEmpty())
      sources.files.append({path, entry[kSwapAxes].toBool()});
  sources.convertUnits = all[kConvertUnits].toBool();
  return sources;
}

}  // namespace lvx::desktop
