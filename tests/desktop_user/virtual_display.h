#pragma once

#include <string>

#include <sys/types.h>

namespace lvx::test {

/// A display of its own without a screen: Xvfb with a small window manager, both gone with this object. Sets DISPLAY of
/// the process. Throws std::runtime_error where they can't be started.
class VirtualDisplay {
 public:
  /// `size`: "1600x1000". LVX_TEST_SCREEN in the environment takes its place: a finer screen has more pixels.
  explicit VirtualDisplay(const std::string& size = "1600x1000");
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;
  ~VirtualDisplay();
  /// ":99"
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  std::string name_;
  pid_t server_ = -1;
  pid_t manager_ = -1;
};

}  // namespace lvx::test
