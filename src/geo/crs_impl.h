// The library's handle of a coordinate reference system.  Only for files of this folder.
#pragma once

#include <ogr_srs_api.h>

#include "geo/crs.h"

namespace ormel {

struct Crs::Impl {
  OGRSpatialReferenceH handle = nullptr;
  Impl() : handle(OSRNewSpatialReference(nullptr)) {
    OSRSetAxisMappingStrategy(handle, OAMS_TRADITIONAL_GIS_ORDER);
  }
  ~Impl() { OSRRelease(handle); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
};

}  // namespace ormel
