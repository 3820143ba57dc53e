#pragma once

#include <string_view>

#include "peer.h"

/// Reading the numbers of a surface out of LandXML: what the programs that do it share. Numbers are read by std::from_chars
/// in all of them; one run a process, so that the peak memory is the reader's own.
namespace lvx::peers {

/// The surface as it was read, and the text of the `P` or `F` that is open.
class SurfaceNumbers {
 public:
  void begin(std::string_view element) {
    sections_ += element == "CrossSect" ? 1U : 0U;
    if (element.size() != 1 || (element[0] != 'P' && element[0] != 'F')) return;
    open_ = element[0];
    isHidden_ = false;
    text_.clear();
  }
  [[nodiscard]] bool isOpen() const { return open_ != 0; }
  void attribute(std::string_view name, std::string_view value) {
    if (name == "id") id_ = value;
    if (name == "i") isHidden_ = value == "1";
  }
  void characters(std::string_view text) {
    if (isOpen()) text_ += text;
  }
  void end() {
    if (open_ == 'P') addPoint(id_, text_);
    if (open_ == 'F') addFace(isHidden_, text_);
    open_ = 0;
  }

  void addPoint(std::string_view id, std::string_view text) {
    Point point;
    take(id, point.id);
    take(text, point.north);
    take(text, point.east);
    take(text, point.z);
    points_.push_back(point);
  }
  void addFace(bool isHidden, std::string_view text) {
    Face face{};
    for (std::int32_t& corner : face) take(text, corner);
    faces_.push_back(face);
    hidden_ += isHidden ? 1U : 0U;
  }

  void print(const std::string& reader, double seconds) const {
    double north = 0.0, east = 0.0, z = 0.0;
    std::int64_t ids = 0, corners = 0;
    for (const Point& point : points_) north += point.north, east += point.east, z += point.z, ids += point.id;
    for (const auto& [a, b, c] : faces_) corners += std::int64_t{a} + b + c;
    Line line(reader, "xml_extract");
    line.add("points", points_.size()).add("faces", faces_.size()).add("hidden", hidden_);
    line.add("sum_north", north).add("sum_east", east).add("sum_z", z).add("sum_id", ids).add("sum_corner", corners);
    line.add("sections", sections_).addTimes({seconds}).print();
  }

 private:
  struct Point {
    std::int64_t id = 0;
    double north = 0.0;
    double east = 0.0;
    double z = 0.0;
  };
  template <class Number>
  static void take(std::string_view& text, Number& number) {
    while (!text.empty() && (text[0] == ' ' || text[0] == '\n' || text[0] == '\t' || text[0] == '\r'))
      text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) throw std::runtime_error("not a number: " + std::string(text.substr(0, 20)));
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  }

  std::vector<Point> points_;
  std::vector<Face> faces_;
  std::size_t hidden_ = 0;
  std::size_t sections_ = 0;
  char open_ = 0;
  bool isHidden_ = false;
  std::string id_;
  std::string text_;
};

/// Times `read(path, numbers)` and prints the line.
template <class Read>
int runReader(int argc, char** argv, const std::string& reader, Read read) {
  return run(argc, argv, [&](const Arguments& arguments) {
    SurfaceNumbers numbers;
    const Stopwatch watch;
    read(arguments.text("file"), numbers);
    numbers.print(reader, watch.seconds());
  });
}

}  // namespace lvx::peers
