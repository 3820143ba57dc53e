#include "desktop/common/language.h"

#include <QCoreApplication>
#include <QLibraryInfo>

// Resources of a static library are taken into a program only where they are asked for, and outside of any namespace.
static void initWords() { Q_INIT_RESOURCE(desktop_words); }

namespace lvx::desktop {

Language::Language(const std::string& language) {
  initWords();
  const auto loadOwn = [this](const QString& name) {
    return own_.load(QStringLiteral(":/translations/lvxhost-desktop_%1.qm").arg(name));
  };
  const QString wanted = QString::fromStdString(language);
  // English has a file too, for "1 file" and "2 files".
  const bool isThere = loadOwn(wanted);
  if (isThere || loadOwn(QStringLiteral("en"))) QCoreApplication::installTranslator(&own_);
  if (!isThere || wanted == QLatin1String("en")) return;
  hasQtWords_ = qt_.load(QStringLiteral("qtbase_%1").arg(wanted), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
  if (hasQtWords_) QCoreApplication::installTranslator(&qt_);
}

Language::~Language() {
  QCoreApplication::removeTranslator(&qt_);
  QCoreApplication::removeTranslator(&own_);
}

}  // namespace lvx::desktop
