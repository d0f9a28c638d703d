#include "ormel/status_panels.h"

#include <QFontMetrics>
#include <QLabel>
#include <QPainter>

namespace ormel {
namespace {

struct PanelRow {
  const char* name;
  int characters;  ///< width; 0 takes what is left
  const char* tip;
};
constexpr std::array kPanels = {
    PanelRow{"Activity", 22, "What you are doing"}, PanelRow{"Feedback", 0, "What to do next"},
    PanelRow{"Note", 26, "State of the solution"},
    PanelRow{"XPosition", 30, "East coordinate of the pointer, and its longitude where known"},
    PanelRow{"YPosition", 30, "North coordinate of the pointer, and its latitude where known"}};

constexpr int kPadding = 8;  ///< pixels beside the text

/// A label that may be narrower than its text, so that a long feedback never widens the window; what does not
/// fit ends in dots.  A line parts it from its neighbour.
class PanelLabel : public QLabel {
 public:
  PanelLabel(bool first, QWidget* parent) : QLabel(parent), first_(first) {}
  QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height() + 4}; }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    if (!first_) {
      painter.setPen(palette().color(QPalette::Window).darker(130));
      painter.drawLine(0, 2, 0, height() - 3);
    }
    painter.setPen(palette().color(QPalette::WindowText));
    const QRect place = rect().adjusted(kPadding, 0, -kPadding, 0);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(text(), Qt::ElideRight, place.width()));
  }

 private:
  bool first_;
};

}  // namespace

StatusPanels::StatusPanels(QWidget* parent) : QStatusBar(parent) {
  for (std::size_t i = 0; i < kPanels.size(); ++i) {
    const PanelRow& row = kPanels[i];
    auto* label = new PanelLabel(i == 0, this);
    label->setObjectName(QString::fromLatin1(row.name));
    label->setToolTip(tr(row.tip));
    label->setTextFormat(Qt::PlainText);
    if (row.characters > 0)
      label->setFixedWidth(fontMetrics().averageCharWidth() * row.characters + 2 * kPadding);
    addPermanentWidget(label, row.characters > 0 ? 0 : 1);
    labels_[i] = label;
  }
}

void StatusPanels::SetPanel(int panel, const QString& text) {
  if (panel < 1 || panel > static_cast<int>(labels_.size())) return;
  QLabel* label = labels_[static_cast<std::size_t>(panel - 1)];
  if (label->text() == text) return;
  label->setText(text);
  const QString tip = tr(kPanels[static_cast<std::size_t>(panel - 1)].tip);
  label->setToolTip(text.isEmpty() ? tip : tip + QStringLiteral(": ") + text);
  // A command that runs long says what it does before it lets the window breathe.
  if (label->isVisible()) label->repaint();
}

QString StatusPanels::Text(int panel) const {
  return labels_.at(static_cast<std::size_t>(panel - 1))->text();
}

}  // namespace ormel
