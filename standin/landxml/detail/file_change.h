#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "civil/drawing.h"
#include "landxml/detail/document.h"
#include "landxml/detail/file_editor.h"
#include "landxml/detail/file_terms.h"
#include "landxml/detail/object_places.h"
#include "landxml/detail/section_markup.h"
#include "landxml/detail/trace.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

/// What all writers of one file's changes share.
class FileChange {
 public:
  /// All must outlive it. `path` is the target, for messages.
  FileChange(const civil::Drawing& drawing, const civil::Drawing& stored, const Trace& trace, const FileTerms& terms,
             FileEditor& editor, const std::string& path);

  /// An item of a list of elements: one of the file that stays, or the text of a new one.
  struct Item {
    Node kept;
    std::string text;
  };

  /// To be called before anything is written.
  void begin();
  [[nodiscard]] bool hasBegun() const { return hasBegun_; }
  [[nodiscard]] bool hasRemoved() const { return hasRemoved_; }
  /// Removes an element for good.
  void remove(Node node);
  /// Takes note that a CrossSects is no sample line group any more, and only the sections of corridors.
  void setSeparated(Node crossSects) { separated_.insert(crossSects.place()); }
  [[nodiscard]] bool isSeparated(Node crossSects) const { return separated_.count(crossSects.place()) > 0; }
  /// Sets an attribute, or removes it for an empty text.
  void setText(Node node, const char* name, const std::string& text);
  /// Sets a Property of our Feature of that code in `node`, which the file has.
  void setProperty(Node ours, const std::string& label, const std::string& value);
  /// Writes the new items of a list between those that stay. What goes was removed by the caller.
  void insertNew(Node parent, const std::vector<Item>& items);
  /// Layout of the next child of that name.
  [[nodiscard]] Layout layoutOfChildren(Node parent, std::string_view name) const;
  /// Writes a new child behind the last one of its name, else in front of our Features, else as the last one.
  template <class MakeText>
  void addChild(Node parent, std::string_view name, MakeText makeText);

  const civil::Drawing& drawing;
  const civil::Drawing& stored;
  const Trace& trace;
  const FileTerms& terms;
  FileEditor& editor;
  const std::string& path;
  const Node root;
  const SectionMarkup markup;
  ObjectPlaces places;

 private:
  [[nodiscard]] static Node lastChildNamed(Node parent, std::string_view name);

  std::unordered_set<std::ptrdiff_t> separated_;
  bool hasBegun_ = false;
  bool hasRemoved_ = false;
};

[[nodiscard]] Node propertyNode(Node feature, std::string_view label);

template <class MakeText>
void FileChange::addChild(Node parent, std::string_view name, MakeText makeText) {
  begin();
  if (const Node last = lastChildNamed(parent, name)) {
    editor.insertAfter(last, makeText(editor.layoutOf(last)));
  } else if (const Node feature = child(parent, "Feature")) {
    editor.insertBefore(feature, makeText(editor.layoutOf(feature)));
  } else {
    const Layout layout = editor.layoutInside(parent);
    editor.append(parent, layout.lead + makeText(layout));
  }
}

}  // namespace lvx::landxml::detail
