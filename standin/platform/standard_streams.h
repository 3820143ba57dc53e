#pragma once

namespace lvx::standin_platform {

enum class StandardStream { Input, Output, Errors };

/// Puts something behind standard streams that are closed, so that no file of ours gets their place. Using one stays an
/// error.
void guardStandardStreams();

/// A pipe without a reader and a file that grows beyond the system's limit for it become errors of writing, where they
/// would end the process otherwise.
void turnSignalsOfWritingIntoErrors();

/// True where a person sits behind the stream. A terminal understands "\r\x1b[K": back to the begin of the line, and
/// clear it.
[[nodiscard]] bool isTerminal(StandardStream stream);

}  // namespace lvx::standin_platform
