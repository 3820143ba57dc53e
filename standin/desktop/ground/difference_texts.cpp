#include "desktop/ground/difference_texts.h"

#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

namespace {

QString number(double value) { return toQt(text::fixedText(value)); }

}  // namespace

std::vector<DifferenceTexts::Row> DifferenceTexts::rows(const civil::SurfaceDifference& difference) {
  return {{tr("Cut"), number(difference.cut), number(difference.cutArea)},
          {tr("Fill"), number(difference.fill), number(difference.fillArea)},
          {tr("Fill less cut"), number(difference.net()), number(difference.commonArea())},
          {tr("Equal"), {}, number(difference.equalArea)},
          {tr("Only the existing surface"), {}, number(difference.onlyExisting)},
          {tr("Only the new surface"), {}, number(difference.onlyNew)}};
}

QString DifferenceTexts::volume(const QString& unit) {
  return unit.isEmpty() ? tr("Volume") : tr("Volume [%1]").arg(unit + QChar(0xB3));
}

QString DifferenceTexts::area(const QString& unit) {
  return unit.isEmpty() ? tr("Area") : tr("Area [%1]").arg(unit + QChar(0xB2));
}

QString DifferenceTexts::table(const QString& title, const QString& unit, const civil::SurfaceDifference& difference) {
  QString text = title + QStringLiteral("\t%1\t%2\n").arg(volume(unit), area(unit));
  for (const Row& row : rows(difference)) text += QStringLiteral("%1\t%2\t%3\n").arg(row.label, row.volume, row.area);
  return text;
}

QString DifferenceTexts::extremes(const civil::SurfaceDifference& difference) {
  return tr("New surface less existing one from %1 to %2").arg(number(difference.lowest), number(difference.highest));
}

}  // namespace lvx::desktop
