#pragma once

/// The one list of the module's dialogs and of the numbers of their controls: templates and behaviours are made of it,
/// the command line and tests work the dialogs by it, `docs/scripts.md` tells it to authors of scripts.
///     steps.expect(host::kProjectionDialog, {{{Kind::SelectRow, host::kIdSurfaces, 0, L"Ground"}}});
///
/// Scripts and transcripts of users hold these names and numbers, so none of them ever changes. A number means the same
/// in every dialog that has it but for 232 and 273, which have a name for each dialog.
namespace lvx::host {

// ---- dialogs, by the names of their classes
inline constexpr const char* kProjectionDialog = "CMyDialog1";
inline constexpr const char* kPointsDialog = "CExportPointsDlg";
inline constexpr const char* kGlsDialog = "CMyDialog3";
/// The question of the GLS report before it adds sections to corridors.
inline constexpr const char* kAddSectionsDialog = "CMyDialog4";

// ---- buttons of all dialogs, which close them with these codes but for Help; Escape and the close mark are Cancel
inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;
inline constexpr int kIdHelp = 9;

// ---- all report dialogs
inline constexpr int kIdFrameSelection = 228;
inline constexpr int kIdLabelSite = 264;
inline constexpr int kIdPictureSite = 270;
inline constexpr int kIdSites = 261;
inline constexpr int kIdLabelAlignment = 265;
inline constexpr int kIdPictureAlignment = 271;
inline constexpr int kIdAlignments = 263;
inline constexpr int kIdPickAlignment = 126;
inline constexpr int kIdFrameOutput = 230;
inline constexpr int kIdCheckAscii = 274;
inline constexpr int kIdCheckExcel = 275;
inline constexpr int kIdCheckHtml = 276;
inline constexpr int kIdOutputFileBox = 233;
/// Path of the report's files without extension.
inline constexpr int kIdOutputStem = 100;

// ---- projection and GLS dialog
inline constexpr int kIdLabelSampleLineGroup = 266;
inline constexpr int kIdPictureSampleLineGroup = 101;
inline constexpr int kIdSampleLineGroups = 262;

// ---- projection dialog
inline constexpr int kIdLabelSurface = 267;
inline constexpr int kIdPictureSurface = 273;
inline constexpr int kIdSurfaces = 268;
inline constexpr int kIdPickSurface = 232;

// ---- points dialog
inline constexpr int kIdLabelPointGroup = 103;
inline constexpr int kIdPicturePointGroup = 273;
inline constexpr int kIdPointGroups = 102;
inline constexpr int kIdPickPoints = 232;
inline constexpr int kIdLabelPointCount = 104;
inline constexpr int kIdPicturePointCount = 278;
inline constexpr int kIdPointCount = 105;

// ---- GLS dialog
inline constexpr int kIdLabelProfile = 118;
inline constexpr int kIdPictureProfile = 108;
inline constexpr int kIdProfiles = 112;
inline constexpr int kIdPickProfile = 125;
inline constexpr int kIdLabelCorridor = 119;
inline constexpr int kIdPictureCorridor = 109;
inline constexpr int kIdCorridors = 113;

// ---- question about sections
inline constexpr int kIdQuestion = -1;
/// Answers that close it too, should a front end give them: no control sends them.
inline constexpr int kIdYes = 6;
inline constexpr int kIdNo = 7;

}  // namespace lvx::host
