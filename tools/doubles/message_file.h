#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "services/messages.h"

namespace lvx::test {

/// What a message has to heed besides being there.
enum class MessageUse : std::uint8_t {
  Plain,       ///< boxes, prompts
  Caption,     ///< of a dialog's control: an ampersand underlines the next letter
  ReportText,  ///< reaches a text file and a page: no percent sign, no markup, Latin-1
};

/// One message that the module asks for.
struct MessageInUse {
  services::Message message;
  MessageUse use;
  /// Characters that fit where it appears; 0: any number.
  std::size_t room;
};

/// Every message, by ascending numbers; no other number may stand in a message file.
[[nodiscard]] std::span<const MessageInUse> messagesInUse();

/// What is wrong with the bytes of a message file, one complaint a line of the result, each naming its line or its
/// message; empty for a file that can be shipped:
/// - every line ends in CR LF, is at most 2045 bytes long, holds only characters of Windows-1252, and is a message, a
///   comment that begins with ";", or empty;
/// - every message stands there once with a text, and no other;
/// - 1 is a complete filter, 109 begins with a star, 334 has two characters with which no other row name begins, 124 and
///   125 are XML names that differ, 118 to 120 put their colons under each other;
/// - captions fit their controls, with an access key at most once and none twice among buttons and check boxes; table
///   heads fit their columns; report texts hold nothing that a report reads as a conversion or as markup.
[[nodiscard]] std::vector<std::string> messageFileComplaints(std::string_view bytes);

}  // namespace lvx::test
