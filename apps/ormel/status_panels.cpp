#include "ormel/status_panels.h"

#include <QFontMetrics>
#include <QLabel>

namespace ormel {
namespace {

struct PanelRow {
  const char* name;
  int characters;  ///< width; 0 takes what is left
  const char* tip;
};
constexpr std::array kPanels = {PanelRow{"Activity", 22, "What you are doing"},
                                PanelRow{"Feedback", 0, "What to do next"},
                                PanelRow{"Note", 12, "State of the solution"},
                                PanelRow{"XPosition", 20, "East coordinate of the pointer"},
                                PanelRow{"YPosition", 20, "North coordinate of the pointer"}};

/// A label that may be narrower than its text, so that a long feedback never widens the window.
class PanelLabel : public QLabel {
 public:
  using QLabel::QLabel;
  QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }
};

}  // namespace

StatusPanels::StatusPanels(QWidget* parent) : QStatusBar(parent) {
  for (std::size_t i = 0; i < kPanels.size(); ++i) {
    const PanelRow& row = kPanels[i];
    auto* label = new PanelLabel(this);
    label->setObjectName(QString::fromLatin1(row.name));
    label->setToolTip(tr(row.tip));
    label->setStyleSheet(i == 0 ? QStringLiteral("padding: 1px 6px;")
                                : QStringLiteral("padding: 1px 6px; border-left: 1px solid palette(mid);"));
    label->setTextFormat(Qt::PlainText);
    if (row.characters > 0) label->setFixedWidth(fontMetrics().averageCharWidth() * row.characters);
    addPermanentWidget(label, row.characters > 0 ? 0 : 1);
    labels_[i] = label;
  }
}

void StatusPanels::SetPanel(int panel, const QString& text) {
  if (panel < 1 || panel > static_cast<int>(labels_.size())) return;
  QLabel* label = labels_[static_cast<std::size_t>(panel - 1)];
  if (label->text() == text) return;
  label->setText(text);
  // A command that runs long says what it does before it lets the window breathe.
  if (label->isVisible()) label->repaint();
}

QString StatusPanels::Text(int panel) const {
  return labels_.at(static_cast<std::size_t>(panel - 1))->text();
}

}  // namespace ormel
