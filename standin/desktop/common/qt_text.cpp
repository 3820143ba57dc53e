#include "desktop/common/qt_text.h"

namespace lvx::desktop {

QString toQt(const framework::CString& text) {
  return QString::fromWCharArray(text.data(), static_cast<qsizetype>(text.size()));
}

QString toQt(const std::string& text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

framework::CString toWide(const QString& text) { return framework::CString(text.toStdWString()); }

std::string toUtf8(const QString& text) { return text.toStdString(); }

}  // namespace lvx::desktop
