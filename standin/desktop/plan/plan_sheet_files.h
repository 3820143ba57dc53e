#pragma once

#include <QByteArray>
#include <QString>

namespace lvx::desktop {

class PlanSheet;

/// Whether this program's Qt writes plans as SVG.
[[nodiscard]] bool canWritePlanSvg();
/// Only where `canWritePlanSvg`. A hundredth of a millimetre to a unit, so that the sheet's size and scale are true.
[[nodiscard]] QByteArray planSvg(const PlanSheet& sheet);
[[nodiscard]] QByteArray planPdf(const PlanSheet& sheet);
/// 200 dots an inch, less where the paper is so large that it would take more than 40 million.
[[nodiscard]] QByteArray planPng(const PlanSheet& sheet);

/// Writes the sheet to a file whose ending tells the form, beside it first and then in its place: whoever has the old one
/// keeps it until the new one is whole. False: `whyNot` tells.
bool writePlan(const PlanSheet& sheet, const QString& path, QString& whyNot);

}  // namespace lvx::desktop
