#pragma once

namespace lvx::cli {

/// From here on Ctrl-C and a polite kill only raise a flag, once: what runs gives up at its next chance and takes its
/// unfinished files with it. A second one ends the process at once. A closed pipe becomes a write error.
void watchSignals();
[[nodiscard]] bool isInterrupted();

}  // namespace lvx::cli
