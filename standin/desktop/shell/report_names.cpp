#include "desktop/shell/report_names.h"

namespace lvx::desktop {

namespace {

struct KnownReport {
  const char* command;
  const char* title;
  const char* icon;
  const char* tip;
};
constexpr KnownReport kReports[] = {
    {"lvx_Report_Que", QT_TRANSLATE_NOOP("ReportNames", "Profile &projection…"), "report_projection",
     QT_TRANSLATE_NOOP("ReportNames", "The ground across an alignment at its sample lines")},
    {"lvx_Report_Points", QT_TRANSLATE_NOOP("ReportNames", "P&oints…"), "report_points",
     QT_TRANSLATE_NOOP("ReportNames", "Points with station and offset against an alignment")},
    {"lvx_Report_GLS", QT_TRANSLATE_NOOP("ReportNames", "&GLS…"), "report_gls",
     QT_TRANSLATE_NOOP("ReportNames", "An alignment with its profile and corridors in one table")},
};

const KnownReport* findReport(const QString& command) {
  for (const KnownReport& report : kReports)
    if (command == QLatin1String(report.command)) return &report;
  return nullptr;
}

}  // namespace

QString ReportNames::action(const QString& command) {
  const KnownReport* const known = findReport(command);
  return known == nullptr ? command : tr(known->title);
}

QString ReportNames::title(const QString& command) {
  const KnownReport* const known = findReport(command);
  return known == nullptr ? command : tr(known->title).remove(QLatin1Char('&')).remove(QChar(0x2026));
}

QString ReportNames::tip(const QString& command) {
  const KnownReport* const known = findReport(command);
  return known == nullptr ? tr("A command of the module") : tr(known->tip);
}

QString ReportNames::icon(const QString& command) {
  const KnownReport* const known = findReport(command);
  return known == nullptr ? QStringLiteral("report") : QString::fromLatin1(known->icon);
}

}  // namespace lvx::desktop
