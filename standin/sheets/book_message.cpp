#include "sheets/detail/book_message.h"

#include <stdexcept>

namespace lvx::sheets::detail {

std::string_view MessageReader::take(std::size_t size) {
  if (rest_.size() < size) throw std::out_of_range("a message about a book is too short");
  const std::string_view taken = rest_.substr(0, size);
  rest_.remove_prefix(size);
  return taken;
}

}  // namespace lvx::sheets::detail
