#include "ormel/map_export.h"

#include <QApplication>
#include <QClipboard>
#include <QPageLayout>
#include <QPainter>
#include <QPixmap>
#include <QPrintDialog>
#include <QPrinter>
#include <algorithm>
#include <utility>

#include "core/ormel.h"
#include "core/settings.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "ormel/main_window.h"
#include "ormel/output_forms.h"
#include "qtdevice/painter_device.h"
#include "qtdevice/write_picture.h"
#include "text/files.h"
#include "text/numbers.h"
#include "view/map_output.h"

namespace ormel {
namespace {

MapSheet OutputOf(const MapExtras& extras) {
  MapSheet output;
  output.title = extras.title;
  output.legend = extras.legend;
  output.legend_corner = extras.legend_corner;
  output.scale_bar = extras.scale_bar;
  output.north_arrow = extras.north_arrow;
  return output;
}

}  // namespace

MapExport::MapExport(Ormel& ormel, MainWindow& window) : ormel_(ormel), window_(window) {}

void MapExport::ReadChoices() {
  if (choices_read_ || ormel_.ports.settings == nullptr) return;
  choices_read_ = true;
  const auto read = [this](const char* key, int otherwise) {
    return static_cast<int>(Val(ormel_.settings().GetSetting(key, std::to_string(otherwise))));
  };
  extras_.legend = read("MapLegend", 1) != 0;
  extras_.legend_corner = static_cast<LegendCorner>(std::clamp(read("MapLegendAt", 0), 0, 5));
  extras_.scale_bar = read("MapScaleBar", 1) != 0;
  extras_.north_arrow = read("MapNorthArrow", 1) != 0;
  landscape_ = read("PaperLandscape", 1) != 0;
  width_ = read("PictureWidth", width_);
  dpi_ = read("PictureDpi", dpi_);
}

void MapExport::SaveChoices() {
  const std::pair<const char*, int> choices[] = {{"MapLegend", extras_.legend ? 1 : 0},
                                                 {"MapLegendAt", static_cast<int>(extras_.legend_corner)},
                                                 {"MapScaleBar", extras_.scale_bar ? 1 : 0},
                                                 {"MapNorthArrow", extras_.north_arrow ? 1 : 0},
                                                 {"PaperLandscape", landscape_ ? 1 : 0},
                                                 {"PictureWidth", width_},
                                                 {"PictureDpi", dpi_}};
  try {
    for (const auto& [key, value] : choices) ormel_.settings().SaveSetting(key, std::to_string(value));
  } catch (const std::exception&) {
    // A memory that cannot be written is no reason to refuse the output.
  }
}

MapExport::~MapExport() = default;

QPrinter& MapExport::Printer() {
  if (printer_ == nullptr) {
    printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
    ReadChoices();
    printer_->setPageOrientation(landscape_ ? QPageLayout::Landscape : QPageLayout::Portrait);
    printer_->setFullPage(true);
  }
  return *printer_;
}

void MapExport::PrintSetup() {
  const bool landscape = Printer().pageLayout().orientation() == QPageLayout::Landscape;
  ormel::PrintSetup form(ormel_, extras_, landscape);
  ormel_.ui().ShowForm(form);
  if (form.Result != ormel::PrintSetup::kOk) return;
  extras_ = form.Extras();
  landscape_ = form.Landscape();
  SaveChoices();
  Printer().setPageOrientation(form.Landscape() ? QPageLayout::Landscape : QPageLayout::Portrait);
}

void MapExport::Print() {
  QPrintDialog dialog(&Printer(), &window_);
  dialog.setWindowTitle(QStringLiteral("Print"));
  if (dialog.exec() != QDialog::Accepted) return;
  const PleaseWait wait(ormel_, "Printing...");
  if (!PrintOn(Printer()))
    Inform(ormel_, "Print", "The printer did not take the page.\nChoose another printer, or print to a file.",
           Icon::kWarning);
}

bool MapExport::PrintOn(QPrinter& printer) {
  printer.setFullPage(true);
  printer.setCreator(QString::fromLatin1(kProgramTitle));
  printer.setDocName(QString::fromStdString(extras_.title.empty() ? BaseName(FileTitle(ormel_.project.DBName))
                                                                  : extras_.title));
  QPainter painter;
  if (!painter.begin(&printer)) return false;
  const int dpi = printer.resolution();
  QPainterDevice page(painter, printer.pageLayout().fullRectPixels(dpi).size(), dpi, dpi);
  MapSheet output = OutputOf(extras_);
  const MapWindow& window = ormel_.window;
  output.margins = {window.margin_left, window.margin_right, window.margin_top, window.margin_bottom};
  output.box = window.margin_box;
  const bool drawn = DrawMapOutput(ormel_, window_.view().state(), page, output);
  return painter.end() && drawn;
}

bool MapExport::MayWrite(const std::string& path) {
  if (!FileExists(path)) return true;
  return AskOkCancel(ormel_, "File Exists", path + " already exists -- should I overwrite it?",
                     Icon::kWarning);
}

void MapExport::SaveAs() {
  ReadChoices();
  SaveMap form(ormel_, extras_, width_, dpi_);
  ormel_.ui().ShowForm(form);
  if (form.Result != SaveMap::kOk) return;
  extras_ = form.Extras();
  width_ = form.Width();
  dpi_ = form.Dpi();
  SaveChoices();
  const auto path =
      ormel_.ui().Ask(FileDialog{true, "Save Map As", "png", PictureFilter(), ormel_.project.folder,
                                 BaseName(FileTitle(ormel_.project.DBName)) + ".png"});
  if (!path || !MayWrite(*path)) return;
  const PleaseWait wait(ormel_, "Writing the picture...");
  const double shape = static_cast<double>(window_.map().height()) / std::max(1, window_.map().width());
  const PictureSize size{width_, std::max(1, static_cast<int>(width_ * shape)), dpi_};
  const std::string failure = WritePicture(*path, size, [this](DrawingDevice& device) {
    DrawMapOutput(ormel_, window_.view().state(), device, OutputOf(extras_));
  });
  if (failure.empty())
    Feedback(ormel_, "The map is in " + *path);
  else
    Inform(ormel_, "Save Map As", failure, Icon::kWarning);
}

void MapExport::Copy() {
  QApplication::clipboard()->setPixmap(window_.map().grab());
  Feedback(ormel_, "The map is on the clipboard");
}

}  // namespace ormel
