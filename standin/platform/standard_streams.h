#pragma once

namespace lvx::standin_platform {

enum class StandardStream { Input, Output, Errors };

/// Puts something behind standard streams that are closed, so that no file of ours gets their place. Using one stays an
/// error.
void guardStandardStreams();

/// True where a person sits behind the stream. A terminal understands "\r\x1b[K": back to the begin of the line, and
/// clear it.
[[nodiscard]] bool isTerminal(StandardStream stream);

}  // namespace lvx::standin_platform
