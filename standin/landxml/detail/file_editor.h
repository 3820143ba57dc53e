#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "landxml/detail/document.h"
#include "landxml/detail/edited_source.h"
#include "landxml/detail/markup.h"
#include "landxml/detail/safe_file.h"
#include "landxml/detail/trace.h"

namespace lvx::landxml::detail {

/// Collects edits of a drawing's bytes by its elements, and writes the edited file. New elements take over the prefix,
/// line ends and indentation around them; texts are given in UTF-8 and written in the file's encoding.
class FileEditor {
 public:
  /// All must outlive the editor. `lookUp` throws where the user wants to stop.
  FileEditor(const SourceFile& source, const Trace& trace, const std::string& path, std::function<void()> lookUp = {});

  /// To be called now and then by who works long between two edits.
  void lookUp() const {
    if (lookUp_) lookUp_();
  }

  [[nodiscard]] bool isUnchanged() const { return edits_.empty() && appends_.empty(); }
  /// An element's name with the prefix of `like`.
  [[nodiscard]] static std::string nameLike(Node like, std::string_view local);

  /// Sets an attribute of the file's start tag, or adds it behind the others.
  void setAttribute(Node node, std::string_view name, const std::string& value);
  void removeAttribute(Node node, std::string_view name);
  /// Replaces all that stands between start and end tag.
  void setContent(Node node, const std::string& text);
  /// Removes the element with the blanks that indent it.
  void remove(Node node);
  /// New text in place of the elements from `first` to `last` and what stands between them.
  void replace(Node first, Node last, const std::string& text);

  /// New elements, in the order of the calls where they meet at one place.
  void insertBefore(Node sibling, const std::string& text);
  void insertAfter(Node sibling, const std::string& text);
  void insertAfter(Node sibling, const Markup& markup);
  /// As the last child.
  void append(Node parent, Markup markup) { appends_[placeOf(parent)].last.push_back({std::move(markup), {}}); }
  /// The same with text of the caller's own layout, lead included.
  void append(Node parent, std::string text) { appends_[placeOf(parent)].last.push_back({{}, std::move(text)}); }
  /// In front of all other children but those of the same kind.
  void prepend(Node parent, std::string text) { appends_[placeOf(parent)].first.push_back({{}, std::move(text)}); }
  /// A Property of a Feature: behind its other ones, in front of its Features.
  void addProperty(Node feature, const std::string& label, const std::string& value);

  /// Layout of an existing element, and of the elements inside it.
  [[nodiscard]] Layout layoutOf(Node node) const;
  [[nodiscard]] Layout layoutInside(Node parent) const;
  /// What stands in front of the element's end tag, if it is a line end and blanks.
  [[nodiscard]] std::string closeLead(Node node) const;

  /// Copies the source with all edits. `check` sees the source's bytes as they go by, those of a converted text as they
  /// are written again; `progress` is told the count of source bytes done.
  void write(SafeFile& to, ContentHash& check, const std::function<void(std::uint64_t)>& progress);

 private:
  struct Edit {
    std::uint64_t at = 0;
    std::uint64_t removed = 0;
    std::string text;
  };
  struct New {
    Markup markup;
    std::string text;  // instead of the markup
  };
  struct Appends {
    Node parent;
    std::vector<New> first;
    std::vector<New> properties;
    std::vector<New> last;
  };
  struct AttributePlace {
    std::uint64_t start = 0;  // of the blanks in front of the name; where it isn't there, where it would stand
    std::uint64_t valueStart = 0;
    std::uint64_t end = 0;  // behind the closing quote; 0: no such attribute
  };

  [[nodiscard]] const ElementSpan& span(Node node) const;
  [[nodiscard]] std::size_t placeOf(Node parent);
  [[nodiscard]] AttributePlace attributePlace(Node node, std::string_view name) const;
  [[nodiscard]] std::string leadBefore(std::uint64_t offset) const;
  [[nodiscard]] std::string encoded(const std::string& text) const;
  [[nodiscard]] std::string printed(const New& item, const Layout& layout) const;
  void edit(std::uint64_t at, std::uint64_t removed, const std::string& text);
  void settleAppends();

  EditedSource source_;
  const Trace& trace_;
  std::string path_;
  std::function<void()> lookUp_;
  std::vector<Edit> edits_;
  std::map<std::size_t, Appends> appends_;  // by the parent's place
  std::map<std::string, char> bytes_;       // of the characters beyond ASCII, in a one-byte encoding
};

}  // namespace lvx::landxml::detail
