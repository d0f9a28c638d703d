#include "ormel/layer_panel.h"

#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>
#include <cmath>

#include "core/ormel.h"
#include "ormel/qt_text.h"
#include "qtdevice/painter_device.h"
#include "view/map_legend.h"

namespace ormel {
namespace {

constexpr QSize kSymbol(28, 18);
constexpr int kLayerRole = Qt::UserRole;

}  // namespace

LayerPanel::LayerPanel(const PanelHost& host, QWidget* parent)
    : PanelWidget(host, parent), tree_(new QTreeWidget(this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(6, 6, 6, 6);
  column->addWidget(tree_);
  tree_->setAccessibleName(tr("Layers"));
  tree_->setHeaderHidden(true);
  tree_->setIconSize(kSymbol);
  tree_->setUniformRowHeights(true);
  connect(tree_, &QTreeWidget::itemChanged, this, [this](const QTreeWidgetItem* item) {
    if (showing_) return;
    const auto layer = static_cast<Layer>(item->data(0, kLayerRole).toInt());
    if (Idle() && ormel().layers.On(layer) != (item->checkState(0) == Qt::Checked))
      SwitchLayer(ormel(), layer);
    Touched();
    Refresh();
  });
}

/// As it is on the map, on the map's paper.
QIcon LayerPanel::SymbolOf(StyleId id) {
  const double ratio = devicePixelRatioF();
  const QSize size = (QSizeF(kSymbol) * ratio).toSize();
  QPixmap picture(size);
  picture.fill(Qt::white);
  {
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const int dpi = static_cast<int>(std::lround(logicalDpiX() * ratio));
    QPainterDevice device(painter, size, dpi, dpi);
    DrawSample(ormel(), device, id);
  }
  picture.setDevicePixelRatio(ratio);
  QIcon icon;
  for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled, QIcon::Selected})
    icon.addPixmap(picture, mode);
  return icon;
}

void LayerPanel::Build(const std::vector<ListedLayer>& layers) {
  tree_->clear();
  items_.clear();
  std::vector<QTreeWidgetItem*> above;
  for (const ListedLayer& layer : layers) {
    above.resize(static_cast<std::size_t>(layer.depth));
    auto* item = above.empty() ? new QTreeWidgetItem(tree_) : new QTreeWidgetItem(above.back());
    item->setText(0, ToQString(layer.caption));
    item->setData(0, kLayerRole, static_cast<int>(layer.layer));
    if (layer.symbol) item->setIcon(0, SymbolOf(*layer.symbol));
    above.push_back(item);
    items_.push_back(item);
  }
  tree_->expandAll();
}

void LayerPanel::Show(QTreeWidgetItem& item, const ListedLayer& layer) const {
  const Qt::CheckState state = layer.on ? Qt::Checked : Qt::Unchecked;
  if (item.data(0, Qt::CheckStateRole).isNull() || item.checkState(0) != state) item.setCheckState(0, state);
  // A part of a layer that rests can still be looked at: only its own switch rests.
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (layer.offered) flags |= Qt::ItemIsUserCheckable;
  if (item.flags() != flags) item.setFlags(flags);
  item.setToolTip(0, layer.offered ? QString() : ToQString(layer.why));
  item.setForeground(
      0, tree_->palette().brush(layer.offered ? QPalette::Active : QPalette::Disabled, QPalette::Text));
}

void LayerPanel::Refresh() {
  if (showing_) return;
  showing_ = true;
  const std::vector<ListedLayer> layers = LayerList(ormel());
  if (items_.size() != layers.size()) Build(layers);
  for (std::size_t i = 0; i < layers.size(); ++i) Show(*items_[i], layers[i]);
  showing_ = false;
}

}  // namespace ormel
