#include "geo/gdal_room.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_vsi.h>
#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>
#include <algorithm>
#include <array>
#include <filesystem>
#include <mutex>
#include <utility>

#include "geo/geo_error.h"

namespace ormel {

GeoError::GeoError(const std::string& reason, std::string file, std::string layer)
    : std::runtime_error((file.empty() ? "" : file + (layer.empty() ? ": " : ", layer " + layer + ": ")) +
                         reason),
      file_(std::move(file)),
      layer_(std::move(layer)),
      reason_(reason) {}

namespace geo_detail {
namespace {

// No driver here follows a reference to another file or address, runs a server's protocol or a script.
constexpr std::array kVectorDrivers = {
    "ESRI Shapefile", "GPKG",       "GeoJSON",     "GeoJSONSeq", "TopoJSON",
    "LIBKML",         "KML",        "GPX",         "DXF",        "CSV",
    "OpenFileGDB",    "FlatGeobuf", "MapInfo File"};
constexpr std::array kRasterDrivers = {
    "GTiff", "PNG",  "JPEG",  "BMP",  "GIF",  "WEBP", "GPKG",    "MBTiles", "AAIGrid",     "GRASSASCIIGrid",
    "GSAG",  "GSBG", "GS7BG", "EHdr", "ENVI", "HFA",  "USGSDEM", "SRTMHGT", "JP2OpenJPEG", "XYZ"};
// Used by drivers above for work in memory.
constexpr std::array kHelpers = {"MEM", "Memory"};

// Prefixes of file names that lead out of this machine.  A handler that opens nothing takes their place.
constexpr std::array kNetworkPrefixes = {"/vsicurl/",
                                         "/vsicurl?",
                                         "/vsicurl_streaming/",
                                         "/vsis3/",
                                         "/vsis3_streaming/",
                                         "/vsigs/",
                                         "/vsigs_streaming/",
                                         "/vsiaz/",
                                         "/vsiaz_streaming/",
                                         "/vsiadls/",
                                         "/vsioss/",
                                         "/vsioss_streaming/",
                                         "/vsiswift/",
                                         "/vsiswift_streaming/",
                                         "/vsihdfs/",
                                         "/vsiwebhdfs/",
                                         "/vsistdin/"};

constexpr int kCacheBytes = 64 * 1024 * 1024;

void* OpensNothing(void* /*user*/, const char* /*name*/, const char* /*access*/) {
  return nullptr;
}

void ShutNetwork() {
  for (const char* prefix : kNetworkPrefixes) {
    VSIFilesystemPluginCallbacksStruct* handler = VSIAllocFilesystemPluginCallbacksStruct();
    handler->open = OpensNothing;
    VSIInstallPluginHandler(prefix, handler);
    VSIFreeFilesystemPluginCallbacksStruct(handler);
  }
  OSRSetPROJEnableNetwork(0);
  CPLSetConfigOption("PROJ_NETWORK", "OFF");
  CPLSetConfigOption("CPL_VSIL_CURL_ALLOWED_FILENAME", "none");
  CPLSetConfigOption("OGR_SQLITE_LIST_VIRTUAL_OGR", "NO");
}

template <std::size_t N>
bool Holds(const std::array<const char*, N>& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(), [&](const char* each) { return name == each; });
}

void KeepAllowedDrivers() {
  std::vector<GDALDriverH> others;
  for (int i = 0; i < GDALGetDriverCount(); ++i) {
    GDALDriverH driver = GDALGetDriver(i);
    const std::string name = GDALGetDriverShortName(driver);
    if (!Holds(kVectorDrivers, name) && !Holds(kRasterDrivers, name) && !Holds(kHelpers, name)) {
      others.push_back(driver);
    }
  }
  for (GDALDriverH driver : others) {
    GDALDeregisterDriver(driver);
    GDALDestroyDriver(driver);
  }
}

void CPL_STDCALL Hear(CPLErr level, CPLErrorNum /*number*/, const char* text) {
  auto* messages = static_cast<Messages*>(CPLGetErrorHandlerUserData());
  if (messages != nullptr && level >= CE_Warning) messages->Note(level >= CE_Failure, text);
}

}  // namespace

std::vector<std::string> VectorDrivers() {
  return {kVectorDrivers.begin(), kVectorDrivers.end()};
}
std::vector<std::string> RasterDrivers() {
  return {kRasterDrivers.begin(), kRasterDrivers.end()};
}

void Start() {
  static std::once_flag once;
  std::call_once(once, [] {
    const Messages quiet;
    CPLSetConfigOption("GDAL_DRIVER_PATH", "disable");  // no plug-ins from the user's environment
    GDALAllRegister();
    KeepAllowedDrivers();
    ShutNetwork();
    GDALSetCacheMax(kCacheBytes);
    CPLSetConfigOption("OGR_GEOJSON_MAX_OBJ_SIZE", "200");  // megabytes of one feature
  });
}

unsigned long long CheckedSize(const std::string& path, unsigned long long limit) {
  namespace fs = std::filesystem;
  if (path.rfind("/vsi", 0) == 0 || path.find("://") != std::string::npos) {
    throw GeoError("Only files on a disk of this computer can be read.", path);
  }
  std::error_code failed;
  const fs::path name = fs::u8path(path);
  unsigned long long size = 0;
  if (fs::is_directory(name, failed)) {
    for (const auto& entry : fs::directory_iterator(name, failed)) {
      if (entry.is_regular_file(failed)) size += entry.file_size(failed);
    }
  } else if (fs::is_regular_file(name, failed)) {
    size = fs::file_size(name, failed);
    if (size == 0 && !failed) throw GeoError("The file is empty.", path);
  } else {
    throw GeoError("There is no file of this name.", path);
  }
  if (failed) throw GeoError("The file cannot be read: " + failed.message() + ".", path);
  if (size > limit) {
    throw GeoError("The file holds " + std::to_string(size >> 20U) + " MB; at most " +
                       std::to_string(limit >> 20U) + " MB are read.",
                   path);
  }
  return size;
}

Messages::Messages() {
  CPLPushErrorHandlerEx(Hear, this);
}
Messages::~Messages() {
  CPLPopErrorHandler();
  CPLErrorReset();
}

void Messages::Note(bool failure, const char* text) {
  std::string& kept = failure ? failure_ : warning_;
  if (kept.empty()) kept = text;
}

std::string Messages::Reason(const std::string& otherwise) const {
  std::string text = !failure_.empty() ? failure_ : !warning_.empty() ? warning_ : otherwise;
  std::replace(text.begin(), text.end(), '\n', ' ');
  while (!text.empty() && (text.back() == ' ' || text.back() == '\r')) text.pop_back();
  return text;
}

}  // namespace geo_detail
}  // namespace ormel
