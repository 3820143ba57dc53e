// The bound of a workbook: the text of its sheet made by std::to_chars and deflated by zlib at level 6, on one thread, into
// nowhere.
//
//   peer_workbook_bound [rows=100000]
#include <zlib.h>

#include "peer.h"

namespace lvx::peers {
namespace {

void append(std::string& text, auto number) {
  std::array<char, 32> digits{};
  text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

void write(const Arguments& arguments) {
  const auto rows = static_cast<std::uint32_t>(arguments.count("rows", 100000));
  const Stopwatch watch;
  z_stream stream{};
  if (deflateInit(&stream, 6) != Z_OK) throw std::bad_alloc();
  std::vector<Bytef> out(1 << 16);
  double sum = 0.0;
  std::string text;
  const auto deflateText = [&](int flush) {
    stream.next_in = reinterpret_cast<Bytef*>(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    do {
      stream.next_out = out.data();
      stream.avail_out = static_cast<uInt>(out.size());
      deflate(&stream, flush);
    } while (stream.avail_out == 0);
    text.clear();
  };
  for (std::uint32_t number = 0; number < rows; ++number) {
    const TableRow row = tableRow(number);
    const auto beginCell = [&](std::size_t column) {
      text += "<c r=\"";
      text += static_cast<char>('A' + column);
      append(text, number + 1);
    };
    text += "<row r=\"";
    append(text, number + 1);
    text += "\">";
    for (std::size_t i = 0; i < row.texts.size(); ++i) {
      beginCell(i);
      ((text += "\" t=\"inlineStr\"><is><t>") += row.texts[i]) += "</t></is></c>";
    }
    for (std::size_t i = 0; i < row.numbers.size(); ++i) {
      beginCell(row.texts.size() + i);
      text += "\"><v>";
      append(text, row.numbers[i]);
      text += "</v></c>";
      sum += row.numbers[i];
    }
    text += "</row>";
    if (text.size() > out.size()) deflateText(Z_NO_FLUSH);
  }
  deflateText(Z_FINISH);
  deflateEnd(&stream);
  Line line("text and zlib alone", "xlsx");
  line.add("rows", rows).add("sum_numbers", sum).addTimes({watch.seconds()}).print();
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::run(argc, argv, lvx::peers::write); }
