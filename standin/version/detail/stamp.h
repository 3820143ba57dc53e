#pragma once

/// Alone in a source that the build writes anew when the history moves on: nothing else is compiled for that.
namespace lvx::version::detail {

/// First twelve digits of the commit; empty where it isn't known.
extern const char* const kCommit;
/// Day that the commit was made, "2026-11-22".
extern const char* const kCommitDate;

}  // namespace lvx::version::detail
