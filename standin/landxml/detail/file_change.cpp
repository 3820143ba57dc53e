#include "landxml/detail/file_change.h"

#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

Node propertyNode(Node feature, std::string_view label) {
  Node found;
  eachChild(feature, "Property", [&](Node node) {
    if (!found && attribute(node, "label") == label) found = node;
  });
  return found;
}

FileChange::FileChange(const civil::Drawing& d, const civil::Drawing& s, const Trace& t, const FileTerms& fileTerms,
                       FileEditor& e, const std::string& p)
    : drawing(d),
      stored(s),
      trace(t),
      terms(fileTerms),
      editor(e),
      path(p),
      root(t.scanned.document.root()),
      markup(t, e, fileTerms),
      places(t) {}

void FileChange::begin() { hasBegun_ = true; }

void FileChange::remove(Node node) {
  begin();
  editor.remove(node);
  places.setRemoved(node);
  hasRemoved_ = true;
}

void FileChange::setText(Node node, const char* name, const std::string& text) {
  begin();
  if (text.empty())
    editor.removeAttribute(node, name);
  else
    editor.setAttribute(node, name, text);
}

void FileChange::setProperty(Node ours, const std::string& label, const std::string& value) {
  begin();
  if (const Node existing = propertyNode(ours, label))
    editor.setAttribute(existing, "value", value);
  else
    editor.addProperty(ours, label, value);
}

void FileChange::insertNew(Node parent, const std::vector<Item>& items) {
  std::vector<Node> followers(items.size());
  Node next;
  for (std::size_t i = items.size(); i-- > 0;) {
    followers[i] = next;
    if (items[i].kept) next = items[i].kept;
  }
  Node previous;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (items[i].kept) {
      previous = items[i].kept;
      continue;
    }
    begin();
    if (followers[i])
      editor.insertBefore(followers[i], items[i].text);
    else if (previous)
      editor.insertAfter(previous, items[i].text);
    else
      editor.prepend(parent, editor.layoutInside(parent).lead + items[i].text);
  }
}

Layout FileChange::layoutOfChildren(Node parent, std::string_view name) const {
  const Node first = child(parent, name);
  return first ? editor.layoutOf(first) : editor.layoutInside(parent);
}

Node FileChange::lastChildNamed(Node parent, std::string_view name) {
  Node last;
  eachChild(parent, name, [&](Node node) { last = node; });
  return last;
}

}  // namespace lvx::landxml::detail
