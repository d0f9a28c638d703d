// The chart control of forms.
#pragma once

#include <QChartView>
#include <memory>
#include <optional>
#include <string_view>

#include "core/chart.h"

class QLabel;

namespace ormel {

class FormDialog;
struct ControlState;

/// Shows the form's chart, tells it which point the pointer stands at, and shows its box about that point.
class ChartControl : public QChartView {
  Q_OBJECT
 public:
  ChartControl(std::string_view name, FormDialog& dialog);
  void Show(const ControlState& state);
  QSize sizeHint() const override { return {560, 440}; }

  /// Between the axes, in the widget's pixels; the form's points stand there.
  PlotArea Plot() const;

 protected:
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void drawForeground(QPainter* painter, const QRectF& rect) override;

 private:
  std::optional<ChartPick> PickAt(QPointF at) const;
  void PointAt(std::optional<ChartPick> pick);
  void PlaceBox();
  void Fill();

  std::string_view name_;  ///< lives in the form's static table
  FormDialog& dialog_;
  std::shared_ptr<const Chart> shown_;
  std::optional<ChartPick> at_;
  QLabel* box_;
};

}  // namespace ormel
