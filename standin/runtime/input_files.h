#pragma once

#include <string>
#include <vector>

namespace lvx::civil {
struct Drawing;
}

namespace lvx::runtime {

/// The files that a run reads. None of them is ever written as an output: a report or a saved drawing in its place would be
/// its end. Command line, batch, scripts and windows ask the same question.
class InputFiles {
 public:
  /// `what` says what the file is, behind "it is": "the message file".
  void add(std::string path, std::string what);
  void add(const InputFiles& others);
  /// All files of a drawing.
  void add(const civil::Drawing& drawing);

  /// Why `path` can't be an output, as a sentence behind its name: "it is the message file that is read". Empty where it
  /// can. A file is known under any of its names, links included. A name with a zero character can't be one either: the
  /// system would end it there and take another file.
  [[nodiscard]] std::string whyNoOutput(const std::string& path) const;

 private:
  struct File {
    std::string path;
    std::string what;
  };
  std::vector<File> files_;
};

}  // namespace lvx::runtime
