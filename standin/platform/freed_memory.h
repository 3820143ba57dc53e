#pragma once

namespace lvx::standin_platform {

/// From here on memory that this process frees is taken again before the system is asked for more: what was freed stays up to
/// 8 MB, and only arrays of more than 2 MB are given back at once. A page that the system gives costs 2 microseconds, which
/// is a sixth of the time of a small report. Call it first; where the C library has no such settings nothing happens.
void keepFreedMemory();

}  // namespace lvx::standin_platform
