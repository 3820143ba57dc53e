#pragma once

#include <array>
#include <cstdint>

#include "framework/tpt3list.h"
#include "host/site_tree.h"

/// The companion library LVX_MIRELLIB.vmx: a module of its own that hands out the civil object model and what the model
/// has no operation for. Six functions of C linkage; the records cross as they stand, on one shared heap.
namespace lvx::host {

/// One horizontal element of an alignment.
struct taxel {
  /// 0 line, 1 arc, 2 a clothoid that tightens, 3 one that relaxes.
  std::int32_t type = 0;
  std::array<double, 4> unread{};
  /// Radians counter-clockwise from east.
  double startDirection = 0.0;
  double endDirection = 0.0;
  /// An arc's radius; of a clothoid the finite or sharper one. Positive to the left, negative to the right.
  double startRadius = 0.0;
  double length = 0.0;
  /// Of a clothoid the other radius; 0.0 for infinite.
  double endRadius = 0.0;
};

/// One intersection point of a profile; its start and end are the first and last records.
struct tvert {
  std::array<double, 2> unreadBefore{};
  double station = 0.0;
  double elevation = 0.0;
  std::array<double, 8> unreadBetween{};
  /// Of the vertical curve, positive; 0.0 for none.
  double radius = 0.0;
  /// Station distance from the point to either end of the curve.
  double halfLength = 0.0;
  /// Ratios of the tangents that arrive and leave.
  double gradeIn = 0.0;
  double gradeOut = 0.0;
};

}  // namespace lvx::host

extern "C" {
#pragma GCC diagnostic push
#if defined(__clang__)
#pragma GCC diagnostic ignored "-Wreturn-type-c-linkage"
#endif

/// Above 0 on success: both references are then set.
std::int32_t pvsa_lvx_getQmtObject(lvx::host::Ref<lvx::host::QmtDocument>& document,
                                   lvx::host::Ref<lvx::host::QmtDatabase>& database);
/// The library gives up the references; called once its caller has forgotten both.
std::int32_t pvsa_lvx_releaseQmtObject();
/// Fills the empty tree; needs a successful pvsa_lvx_getQmtObject before.
std::int32_t pvsa_lvx_getsites(lvx::host::SiteTree& sites);
/// Frees the tree with all its records.
std::int32_t pvsa_lvx_relsites(lvx::host::SiteTree& sites);
/// Horizontal elements of `alignment`, which may be empty; then nothing is filled. The caller destroys the records.
std::int32_t pvsa_lvx_gethelemp(const lvx::host::Ref<lvx::host::QmtAlignment>& alignment, double& startStation,
                                lvx::host::RecordList<lvx::host::taxel>& elements, lvx::framework::tpt3list& points);
/// Intersection points of a profile, ascending by station; an empty `siteName` means the alignments outside any site.
/// The caller destroys the records.
std::int32_t pvsa_lvx_getvelem(const lvx::framework::CString& siteName, const lvx::framework::CString& alignmentName,
                               const lvx::framework::CString& profileName, double& value,
                               lvx::host::RecordList<lvx::host::tvert>& records);

#pragma GCC diagnostic pop
}
