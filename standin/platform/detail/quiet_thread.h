#pragma once

#include <functional>
#include <thread>

namespace lvx::standin_platform::detail {

/// A thread that hears no signals: they are for those that wait for users. Throws as std::thread does.
[[nodiscard]] std::thread startQuietThread(std::function<void()> work);

}  // namespace lvx::standin_platform::detail
