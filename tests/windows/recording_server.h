#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "doubles/recording_excel.h"

/// A spreadsheet program that other programs work by the system's own automation and that keeps nothing but a record.
namespace lvx::test {

/// What a server saw of the protocol itself, beside what its record holds.
struct ServerLog {
  /// A line for each call, arguments as they came: the last one first.
  ///     get 197: BSTR "A1", BSTR "A1"
  ///     put 6 named -3: BSTR "Road"
  std::vector<std::string> calls;
  /// References that somebody holds to the server's objects.
  std::atomic<long> references = 0;
  /// What every call answers where it isn't 0: an error without words, before anything is done.
  long plainError = 0;
  /// Told after each reference that was given back.
  std::function<void()> onRelease;
};

/// A program identifier in the registry, with a class of its own; taken off again at the end.
class RegisteredServer {
 public:
  /// `localServer` is the command line of a server's program, which gets the class identifier as a further argument; empty:
  /// a RunningServer of this process.
  explicit RegisteredServer(CString programId, const CString& localServer = {});
  RegisteredServer(const RegisteredServer&) = delete;
  RegisteredServer& operator=(const RegisteredServer&) = delete;
  ~RegisteredServer();

  [[nodiscard]] const CString& classId() const { return classId_; }

 private:
  CString programId_;
  CString classId_;
};

enum class Visibility : std::uint8_t { ThisProcess, OtherProcesses };

/// Answers whoever creates an object of the class, for as long as it lives. Each creation starts a program of `record`; its
/// objects outlive this one where somebody holds them.
class RunningServer {
 public:
  RunningServer(const CString& classId, std::shared_ptr<ExcelRecord> record, std::shared_ptr<ServerLog> log,
                Visibility visibility = Visibility::ThisProcess);
  RunningServer(const RunningServer&) = delete;
  RunningServer& operator=(const RunningServer&) = delete;
  ~RunningServer();

 private:
  unsigned long registration_ = 0;
};

}  // namespace lvx::test
