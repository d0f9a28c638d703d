#include "ormel/map_output.h"

#include <QApplication>
#include <QClipboard>
#include <QPageLayout>
#include <QPixmap>
#include <QPrintDialog>
#include <QPrinter>

#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "ormel/main_window.h"
#include "ormel/print_setup_form.h"

namespace ormel {

MapOutput::MapOutput(Ormel& ormel, MainWindow& window) : ormel_(ormel), window_(window) {}

MapOutput::~MapOutput() = default;

QPrinter& MapOutput::Printer() {
  if (printer_ == nullptr) {
    printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer_->setPageOrientation(QPageLayout::Landscape);
    printer_->setFullPage(true);
  }
  return *printer_;
}

void MapOutput::PrintSetup() {
  const bool landscape = Printer().pageLayout().orientation() == QPageLayout::Landscape;
  ormel::PrintSetup form(ormel_, landscape);
  ormel_.ui().ShowForm(form);
  if (form.Result != ormel::PrintSetup::kOk) return;
  Printer().setPageOrientation(form.Landscape() ? QPageLayout::Landscape : QPageLayout::Portrait);
}

void MapOutput::Print() {}
void MapOutput::SaveAs() {}

void MapOutput::Copy() {
  QApplication::clipboard()->setPixmap(window_.map().grab());
  Feedback(ormel_, "The map is on the clipboard");
}

}  // namespace ormel
