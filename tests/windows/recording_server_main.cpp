#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

// clang-format off
#include <windows.h>
#include <objbase.h>
// clang-format on

#include "platform/utf8.h"
#include "recording_server.h"

// recording-server LOG WISH CLASS: a spreadsheet program that the system starts in a process of its own. It ends when nobody
// holds any of its objects any more and writes what happened into LOG. WISH is normal, quit-at-once, or vanish=N or fail=N
// with the number of a call.
namespace {

using lvx::test::ExcelRecord;
using lvx::test::RunningServer;
using lvx::test::ServerLog;

void write(const char* path, const ExcelRecord& record, const ServerLog& log) {
  std::ofstream file(path, std::ios::binary);
  for (const std::string& call : record.calls) file << call << '\n';
  file << "objects " << record.liveObjects << ", references " << log.references << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::cerr << "usage: recording-server LOG normal|quit-at-once|vanish=N|fail=N CLASS\n";
    return 2;
  }
  const std::string wish = argv[2];
  if (wish == "quit-at-once") return 0;
  const auto number = [&](const std::string& name) {
    return wish.starts_with(name) ? static_cast<std::size_t>(std::atoi(wish.c_str() + name.size()))
                                  : ExcelRecord::kNever;
  };
  const auto record = std::make_shared<ExcelRecord>();
  record->failAtCall = number("fail=");
  const std::size_t vanishAt = number("vanish=");
  record->onCall = [&](const std::string& line) {
    if (record->callCount == vanishAt) TerminateProcess(GetCurrentProcess(), 1);
    // Whoever asked looks whether a file stands there.
    const std::string saving = "sheet.SaveAs(\"";
    if (record->callCount != record->failAtCall && line.starts_with(saving))
      std::ofstream(line.substr(saving.size(), line.find('"', saving.size()) - saving.size())) << "a workbook\n";
  };
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 3;
  const auto log = std::make_shared<ServerLog>();
  bool wasUsed = false;
  log->onRelease = [&] {
    wasUsed = true;
    if (log->references == 0) PostQuitMessage(0);
  };
  {
    const RunningServer server(lvx::platform::fromUtf8(argv[3]), record, log, lvx::test::Visibility::OtherProcesses);
    // Nobody came: a start that was given up on its way.
    SetTimer(nullptr, 0, 20000, nullptr);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
      if (message.message == WM_TIMER && message.hwnd == nullptr && !wasUsed && log->references == 0) break;
      DispatchMessageW(&message);
    }
  }
  CoUninitialize();
  write(argv[1], *record, *log);
  return 0;
}
