#include "ormel/results_panel.h"

#include <QHeaderView>
#include <QStyle>
#include <QVBoxLayout>
#include <set>

#include "core/ormel.h"
#include "ormel/qt_text.h"

namespace ormel {
namespace {

constexpr int kPlaceRole = Qt::UserRole;

}  // namespace

ResultsPanel::ResultsPanel(const PanelHost& host, QWidget* parent)
    : PanelWidget(host, parent), tree_(new QTreeWidget(this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(6, 6, 6, 6);
  column->addWidget(tree_);
  tree_->setAccessibleName(tr("Results and Log"));
  tree_->setColumnCount(2);
  tree_->setHeaderHidden(true);
  tree_->setRootIsDecorated(true);
  tree_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  const auto show = [this](const QTreeWidgetItem* item) {
    const QVariant place = item->data(0, kPlaceRole);
    if (!place.isValid() || !Idle()) return;
    ShowNamed(ormel(), places_.at(static_cast<std::size_t>(place.toInt())));
    Touched();
  };
  connect(tree_, &QTreeWidget::itemClicked, this, show);
  connect(tree_, &QTreeWidget::itemActivated, this, show);
}

void ResultsPanel::AddSection(const LogSection& section) {
  auto* top = new QTreeWidgetItem(tree_, {ToQString(section.title)});
  QFont bold = tree_->font();
  bold.setBold(true);
  top->setFont(0, bold);
  top->setFirstColumnSpanned(true);
  for (const LogLine& line : section.lines) {
    auto* item = new QTreeWidgetItem(top, {ToQString(line.text), ToQString(line.value)});
    item->setToolTip(0, ToQString(line.text));
    if (line.value.empty()) item->setFirstColumnSpanned(true);
    if (line.warning) item->setIcon(0, style()->standardIcon(QStyle::SP_MessageBoxWarning));
    if (!line.place) continue;
    item->setData(0, kPlaceRole, static_cast<int>(places_.size()));
    item->setForeground(0, palette().brush(QPalette::Link));
    item->setToolTip(
        0, tr("%1\nClick to show %2 on the map.").arg(ToQString(line.text), ToQString(line.place->label)));
    places_.push_back(*line.place);
  }
}

void ResultsPanel::Refresh() {
  if (!outdated_) return;
  outdated_ = false;
  std::set<QString> folded;
  for (int i = 0; i < tree_->topLevelItemCount(); ++i)
    if (!tree_->topLevelItem(i)->isExpanded()) folded.insert(tree_->topLevelItem(i)->text(0));
  tree_->clear();
  places_.clear();
  for (const LogSection& section : ResultsLog(ormel())) AddSection(section);
  for (int i = 0; i < tree_->topLevelItemCount(); ++i)
    tree_->topLevelItem(i)->setExpanded(folded.count(tree_->topLevelItem(i)->text(0)) == 0);
}

}  // namespace ormel
