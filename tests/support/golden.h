#pragma once

#include <string>

#include <gtest/gtest.h>

namespace lvx::test {

/// The whole file as bytes; a missing file gives an empty text and a test failure.
[[nodiscard]] std::string readBytes(const std::string& path);

/// Compares two byte texts. A failure names the first byte that differs, its line, and shows both sides around it with
/// control characters and bytes beyond ASCII written as escapes.
[[nodiscard]] testing::AssertionResult sameBytes(const std::string& actual, const std::string& expected);

/// Compares `actual` with the file tests/golden/<name>. With LVX_UPDATE_GOLDEN=1 in the environment the file is written
/// instead, for a human to read the difference before it is committed.
[[nodiscard]] testing::AssertionResult matchesGolden(const std::string& actual, const std::string& name);

/// tests/golden of the source tree.
[[nodiscard]] std::string goldenFolder();

}  // namespace lvx::test
