#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace lvx::faults {

/// What goes wrong in a run. The first word of a fault's name says what is counted to find its place.
enum class Fault : std::int32_t {
  None,              ///< nothing; the run is counted and recorded
  CallFails,         ///< one system call answers with `error`; a file that it closes is closed all the same
  CallComesShort,    ///< one system call reads or writes half of what it was asked for
  CallKilledBefore,  ///< the whole process group ends at a system call that isn't done any more
  CallKilledWithin,  ///< it ends when half of the bytes are written
  AllocationFails,   ///< one allocation finds no memory
  AllocationsFail,   ///< that one and all that come after it, `lasting` of them
  DiskFills,         ///< files take `at` bytes altogether
};

/// One system call of a run. Calls that nobody can fail in a sensible way (futex, signals) aren't among them.
struct Call {
  std::int32_t number = 0;      ///< as the system counts them
  std::int32_t descriptor = 0;  ///< of the file that it works on; -1 where it names one by a path
  std::uint64_t size = 0;       ///< bytes to read or to write; 0 for others
};

/// Memory that a test shares with the program that it runs, and with that one's children: the plan of what fails, and the
/// record of what happened. Its file's path stands in the environment variable LVX_FAULT_PLAN.
struct Plan {
  // Written by the test before the run.
  Fault fault = Fault::None;
  std::int32_t error = 0;  ///< errno of the call that fails
  std::uint64_t at = 0;    ///< which call or allocation, counted from 1; the bytes of DiskFills
  std::uint64_t lasting = 1;

  // Written during the run.
  std::atomic<std::uint64_t> processes;    ///< that have the plan in force
  std::atomic<std::uint64_t> calls;        ///< so far
  std::atomic<std::uint64_t> allocations;  ///< so far
  std::atomic<std::uint64_t> bytes;        ///< written to files so far
  std::atomic<std::int32_t> isDone;        ///< the fault came to pass
  Call done;                               ///< where it did, for the faults of calls
  char path[256] = {};                     ///< and on which name, for calls that have one

  static constexpr std::size_t kMostCalls = 1U << 16U;
  Call record[kMostCalls];
};

inline constexpr const char* kPlanVariable = "LVX_FAULT_PLAN";

}  // namespace lvx::faults
