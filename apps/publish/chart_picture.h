// Any chart as Qt draws it: for the chart control of forms, and for pictures.
#pragma once

#include <QChart>
#include <QImage>
#include <QSize>

#include "core/chart.h"

class QPainter;

namespace ormel {

/// Puts axes and series of `from` into a new chart: one that had others would go on to show their axes.  Of
/// the ticks those are left out whose texts would not find room in a chart of this size.
void FillChart(QChart& chart, const Chart& from, QSize size);

/// Draws a chart of `size` device-independent pixels.  Needs a QApplication.
void PaintChart(QPainter& painter, const Chart& chart, QSize size);

/// With `fineness` image pixels for each of `size`; null when there is not enough memory.
QImage ChartImage(const Chart& chart, QSize size, double fineness);

}  // namespace ormel
