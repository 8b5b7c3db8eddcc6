// SPDX-License-Identifier: Apache-2.0
#include "LoadCurve.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace Sysmon {

namespace {

constexpr std::size_t mostPoints = 60;

}  // namespace

void LoadCurve::Add(double share) {
  points.push_back(std::clamp(share, 0.0, 1.0));
  if (points.size() > mostPoints) points.pop_front();
  update();
}

void LoadCurve::Clear() {
  points.clear();
  update();
}

void LoadCurve::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(rect(), palette().base());
  const double step = width() / static_cast<double>(mostPoints - 1);
  double x = width() - step * static_cast<double>(points.size() - 1);
  QPainterPath line(QPointF(x, height()));
  for (const double point : points) {
    line.lineTo(x, height() - 2 - point * (height() - 4));
    x += step;
  }
  line.lineTo(width(), height());
  QColor area = palette().color(QPalette::Highlight);
  painter.setPen(QPen(area, 1.5));
  area.setAlphaF(0.25F);
  painter.setBrush(area);
  if (!points.empty()) painter.drawPath(line);
}

}  // namespace Sysmon
