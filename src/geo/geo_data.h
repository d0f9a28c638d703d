// The tables of coordinate reference systems that the library reads.
#pragma once

#include <string>

namespace ormel {

/// Where a program brings its own, behind its folder.
inline constexpr const char* kGeoData = "/geodata";

/// Takes the tables in this folder ("proj" and "gdal" in it) in place of the system's, where they are there:
/// a program that was not installed brings its own.  Before anything else of this folder.
void UseGeoData(const std::string& folder);

}  // namespace ormel
