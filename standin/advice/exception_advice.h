#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "advice/report_advice.h"
#include "framework/text.h"

namespace lvx::host {
class Host;
}

namespace lvx::advice {

/// The text of a message by its number, as the module reads it; the number between stars where the file lacks it.
using MessageText = std::function<framework::CString(std::uint32_t number)>;

/// Those of the message file that `host` gives a module, read when this is called.
[[nodiscard]] MessageText messagesOf(host::Host& host);

/// A report's command ended by an exception: what in the drawing or in the message file is known to lead to that, and what
/// its user can change, a sentence each. Empty where nothing of the kind is found.
/// O(sample lines of the group).
[[nodiscard]] std::vector<std::string> whatToChange(const ReportObjects& objects, const MessageText& message);

}  // namespace lvx::advice
