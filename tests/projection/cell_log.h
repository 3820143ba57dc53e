#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "host/sheet.h"
#include "platform/posix/posix_platform.h"

namespace lvx::projection {

/// A sheet that writes down what comes to it, one line a call, control characters as escapes:
///     A1 text "* Profiles"
///     B11 number "-5.000"
///     save "report.xls"
class CellLog final : public host::Sheet {
 public:
  explicit CellLog(std::string& log) : log_(log) {}

  [[nodiscard]] static std::function<std::unique_ptr<host::Sheet>()> factory(std::string& log) {
    return [&log] { return std::make_unique<CellLog>(log); };
  }

  [[nodiscard]] bool start() override { return true; }
  void writeCell(const host::CString& cellName, const host::CString& text) override { add(cellName, " text ", text); }
  void writeNumberCell(const host::CString& cellName, const host::CString& text) override {
    add(cellName, " number ", text);
  }
  void finish(const host::CString& path) override { add(L"save", " ", path); }

 private:
  void add(const host::CString& cellName, const char* kind, const host::CString& text) {
    log_ += platform::toUtf8(cellName) + kind + '"';
    for (const char c : platform::toUtf8(text)) {
      if (c == '\r') {
        log_ += "\\r";
      } else if (c == '\n') {
        log_ += "\\n";
      } else {
        log_ += c;
      }
    }
    log_ += "\"\n";
  }

  std::string& log_;
};

}  // namespace lvx::projection
