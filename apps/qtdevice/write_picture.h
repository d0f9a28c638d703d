// A drawing as a file: PNG, SVG or PDF.
#pragma once

#include <functional>
#include <string>

#include "core/types.h"

class QByteArray;
class QPainter;

namespace ormel {

class DrawingDevice;

struct PictureSize {
  int width = 1600;   ///< pixels
  int height = 1200;  ///< pixels
  int dpi = 96;       ///< pixels per inch: sets the size on paper and the weight of pens and labels
};

/// Draws into a file whose extension (.png, .svg, .pdf) tells the kind.  The file appears under its name only
/// when all of it is written; a file that stood there before survives a failure.  SVG and PDF get finer
/// device pixels than asked for, so that their lines do not show a raster.
///
/// Needs a QGuiApplication, for its fonts.  Returns an empty text, or the sentence that tells the user what
/// failed with which file, and what to do.
std::string WritePicture(const std::string& path, const PictureSize& size,
                         const std::function<void(DrawingDevice&)>& draw);

/// The same for what a painter draws in `size.width` by `size.height` pixels, already scaled to the file's
/// own.
std::string WritePainting(const std::string& path, const PictureSize& size, const char* title,
                          const std::function<void(QPainter&)>& paint);

/// All of the bytes under the name, or the old file as it was.  Gives an empty text, or what failed.
std::string SaveDocument(const std::string& path, const QByteArray& bytes);

/// "Picture Files (*.png)|*.png|..." as a file dialog takes it.
const char* PictureFilter();

}  // namespace ormel
