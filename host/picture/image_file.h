// Image files by name (UTF-8).
#pragma once

#include <string>

#include "host/picture/bitmap.h"

namespace vela::host {

// The first image of a PNG, JPEG, BMP, GIF or TIFF file over white; empty when the file cannot be
// read, is damaged or ends early, or holds more than IsImageSize allows.
Bitmap ReadImageFile(const std::string& name);

// Writes the bitmap as a PNG file. False when that fails; no part of a file is left then.
bool WritePngFile(const std::string& name, const Bitmap& bitmap);

}  // namespace vela::host
