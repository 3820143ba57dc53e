#pragma once

#include <QByteArray>
#include <QFont>
#include <QImage>
#include <QRectF>
#include <QSize>
#include <functional>

#include "desktop/charts/chart.h"
#include "desktop/charts/chart_look.h"

class QPainter;

namespace lvx::desktop {

class ChartPage;

/// Whether this program's Qt writes SVG.
[[nodiscard]] bool canWriteSvg();
/// Only where `canWriteSvg`. A page as an SVG file's bytes, a hundredth of a millimetre to a unit, so that the sheet's size and scale are true.
[[nodiscard]] QByteArray svgOf(const ChartPage& page, const Chart& chart);
/// A page as a PDF file's bytes: A4, or A3 where the page asks for it, across, 1200 dots an inch.
[[nodiscard]] QByteArray pdfOf(const ChartPage& page, const Chart& chart);

/// Paints the lines into an area in a look.
using PaintCanvas = std::function<void(QPainter& painter, const QRectF& area, const ChartLook& look)>;
/// Title, legend of the lines that show, and below them what `paintCanvas` paints into an area of `canvas`, in print
/// colours; two pixels to a unit.
[[nodiscard]] QImage pictureOf(const Chart& chart, const QFont& text, const QSize& canvas,
                               const PaintCanvas& paintCanvas);

}  // namespace lvx::desktop
