#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "host/picture_bits.h"

namespace lvx::dialogs {

using host::Colour;
using host::kPictureSide;
using host::PictureBits;

/// Names of the module's pictures.
inline constexpr std::string_view kPictureSite = "IDB_PVSLVX_SITE";
inline constexpr std::string_view kPictureAlignment = "IDB_PVSLVX_ALIGNMENT";
inline constexpr std::string_view kPictureSampleLineGroup = "IDB_PVSLVX_SAMPLE_LINE_GROUP";
inline constexpr std::string_view kPictureSurface = "IDB_PVSLVX_SURFACE";
inline constexpr std::string_view kPicturePointGroup = "IDB_PVSLVX_POINT_GROUP";
inline constexpr std::string_view kPicturePoint = "IDB_PVSLVX_POINT";
inline constexpr std::string_view kPictureProfile = "IDB_PVSLVX_PROFILE";
inline constexpr std::string_view kPictureCorridor = "IDB_PVSLVX_CORRIDOR";
inline constexpr std::string_view kPicturePick = "IDB_PVS_PICK";
inline constexpr std::string_view kPictureSave = "IDB_PVS_SAVE";

/// The module's pictures by name, each once; null where there is none of that name.
[[nodiscard]] const PictureBits* findPicture(std::string_view name);
[[nodiscard]] std::span<const PictureBits> allPictures();

/// Gives every white pixel (all three colour bytes 255) of the first 2048 bytes `face`, so that white looks transparent
/// on the dialog whatever the colour scheme.
void replaceWhite(std::span<std::uint8_t> bits, Colour face);

}  // namespace lvx::dialogs
