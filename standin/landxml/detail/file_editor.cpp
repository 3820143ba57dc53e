#include "landxml/detail/file_editor.h"

#include <algorithm>
#include <utility>

#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
constexpr std::string_view kBlanks = " \t";

Node lastElement(Node parent) {
  Node last;
  for (const Node node : parent.children()) last = node;
  return last;
}

}  // namespace

FileEditor::FileEditor(const SourceFile& source, const Trace& trace, const std::string& path,
                       std::function<void()> lookUp)
    : source_(source, trace.scanned, path), trace_(trace), path_(path), lookUp_(std::move(lookUp)) {
  if (trace_.scanned.upperHalf == nullptr) return;
  const auto& upperHalf = *trace_.scanned.upperHalf;
  for (std::size_t i = 0; i < upperHalf.size(); ++i) {
    bytes_.emplace(upperHalf[i], static_cast<char>(static_cast<unsigned char>(i + 128)));
  }
}

std::string FileEditor::nameLike(Node like, std::string_view local) {
  const std::string_view name = like.name();
  const auto colon = name.find(':');
  return std::string(colon == std::string_view::npos ? std::string_view() : name.substr(0, colon + 1)) +
         std::string(local);
}

const ElementSpan& FileEditor::span(Node node) const {
  const auto place = static_cast<std::size_t>(node.place());
  const auto& spans = trace_.scanned.spans;
  const auto found = std::lower_bound(spans.begin(), spans.end(), place,
                                      [](const ElementSpan& s, std::size_t p) { return s.node < p; });
  if (found == spans.end() || found->node != place) failSaving("an element's place in the file isn't known", path_);
  return *found;
}

std::size_t FileEditor::placeOf(Node parent) {
  const auto place = static_cast<std::size_t>(parent.place());
  appends_[place].parent = parent;
  return place;
}

std::string FileEditor::encoded(const std::string& text) const {
  if (bytes_.empty()) return source_.inFile(text);
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = std::min(letterLength(text[i]), text.size() - i);
    const std::string character = text.substr(i, length);
    i += length;
    if (length == 1)
      result += character;
    else if (const auto found = bytes_.find(character); found != bytes_.end())
      result += found->second;
    else
      result += letterReference(character);
  }
  return result;
}

void FileEditor::edit(std::uint64_t at, std::uint64_t removed, const std::string& text) {
  lookUp();
  edits_.push_back({at, removed, encoded(text)});
}

// ---------------------------------------------------------------- layout

std::string FileEditor::leadBefore(std::uint64_t offset) const {
  constexpr std::uint64_t kLongest = 1024;
  const std::uint64_t from = offset > kLongest ? offset - kLongest : 0;
  const std::string before = source_.text(from, static_cast<std::size_t>(offset - from));
  const auto lastText = before.find_last_not_of(kBlanks);
  if (lastText == std::string::npos || before[lastText] != '\n') return {};
  std::size_t start = lastText;
  // Some programs end their lines with CR CR LF.
  while (start > 0 && before[start - 1] == '\r') --start;
  return before.substr(start);
}

Layout FileEditor::layoutOf(Node node) const {
  Layout layout{leadBefore(span(node).start), "  "};
  if (layout.lead.empty()) return layout;
  const Node parent = node.parent();
  if (parent) {
    std::string outer = leadBefore(span(parent).start);
    // Nothing need stand in front of the root, and whatever does doesn't indent it.
    if (outer.empty() && parent == trace_.scanned.document.root())
      outer = layout.lead.substr(0, layout.lead.find('\n') + 1);
    if (layout.lead.size() > outer.size() && !outer.empty() && layout.lead.starts_with(outer)) {
      layout.unit = layout.lead.substr(outer.size());
    }
  }
  return layout;
}

Layout FileEditor::layoutInside(Node parent) const {
  if (const auto last = lastElement(parent)) return layoutOf(last);
  return layoutOf(parent).inner();
}

std::string FileEditor::closeLead(Node node) const {
  const std::uint64_t place = span(node).closeStart;
  return place == 0 ? std::string() : leadBefore(place);
}

// ---------------------------------------------------------------- attributes and content

FileEditor::AttributePlace FileEditor::attributePlace(Node node, std::string_view name) const {
  const ElementSpan& place = span(node);
  const std::string tag = source_.text(place.start, static_cast<std::size_t>(place.tagEnd - place.start));
  // The reader has seen that the tag is well-formed: name="value" with either quote, blanks around the equals sign.
  std::size_t at = tag.find_first_of(" \t\r\n/>");
  for (;;) {
    const std::size_t before = at;
    while (at < tag.size() && isBlank(tag[at])) ++at;
    const std::size_t equals = tag.find('=', at);
    if (at >= tag.size() || tag[at] == '/' || tag[at] == '>' || equals == std::string::npos) {
      return {place.start + before, 0, 0};
    }
    const std::size_t open = tag.find_first_of("\"'", equals);
    const std::size_t close = open == std::string::npos ? open : tag.find(tag[open], open + 1);
    if (close == std::string::npos) failSaving("an attribute's place in the file isn't known", path_);
    if (trimmed(std::string_view(tag).substr(at, equals - at)) == name) {
      return {place.start + before, place.start + open, place.start + close + 1};
    }
    at = close + 1;
  }
}

void FileEditor::setAttribute(Node node, std::string_view name, const std::string& value) {
  const AttributePlace place = attributePlace(node, name);
  const std::string quoted = '"' + escapedAttribute(value) + '"';
  if (place.end > 0)
    edit(place.valueStart, place.end - place.valueStart, quoted);
  else
    edit(place.start, 0, ' ' + std::string(name) + '=' + quoted);
}

void FileEditor::removeAttribute(Node node, std::string_view name) {
  const AttributePlace place = attributePlace(node, name);
  if (place.end > 0) edit(place.start, place.end - place.start, {});
}

void FileEditor::setContent(Node node, const std::string& text) {
  const ElementSpan& place = span(node);
  if (place.closeStart == 0) failSaving("an element that closes itself has no content", path_);
  edit(place.tagEnd, place.closeStart - place.tagEnd, text);
}

void FileEditor::remove(Node node) {
  const ElementSpan& place = span(node);
  const std::uint64_t start = place.start - leadBefore(place.start).size();
  edit(start, place.end - start, {});
}

void FileEditor::replace(Node first, Node last, const std::string& text) {
  edit(span(first).start, span(last).end - span(first).start, text);
}

// ---------------------------------------------------------------- new elements

void FileEditor::insertBefore(Node sibling, const std::string& text) {
  const std::uint64_t start = span(sibling).start;
  const std::string lead = leadBefore(start);
  edit(start - lead.size(), 0, lead + text);
}

void FileEditor::insertAfter(Node sibling, const std::string& text) {
  const ElementSpan& place = span(sibling);
  edit(place.end, 0, leadBefore(place.start) + text);
}

void FileEditor::insertAfter(Node sibling, const Markup& markup) {
  insertAfter(sibling, printed({markup, {}}, layoutOf(sibling)));
}

void FileEditor::addProperty(Node feature, const std::string& label, const std::string& value) {
  Markup property{nameLike(feature, "Property"), {{"label", label}, {"value", value}}, {}, true};
  appends_[placeOf(feature)].properties.push_back({std::move(property), {}});
}

std::string FileEditor::printed(const New& item, const Layout& layout) const {
  if (!item.text.empty()) return item.text;
  std::string text;
  item.markup.print(layout, text);
  return text;
}

void FileEditor::settleAppends() {
  for (const auto& [unused, appends] : appends_) {
    const Node parent = appends.parent;
    const ElementSpan& place = span(parent);
    const Layout inside = layoutInside(parent);
    std::string first;
    for (const New& item : appends.first) first += printed(item, inside);
    Node lastProperty;
    eachChild(parent, "Property", [&](Node node) { lastProperty = node; });
    std::string properties;
    const std::string propertyLead = lastProperty ? leadBefore(span(lastProperty).start) : std::string();
    for (const New& item : appends.properties) properties += propertyLead + printed(item, {propertyLead, inside.unit});
    std::string last;
    for (const New& item : appends.last) {
      if (item.text.empty()) last += inside.lead;
      last += printed(item, inside);
    }

    if (place.closeStart == 0) {
      const std::string close = last.empty() ? std::string() : layoutOf(parent).lead;
      const std::string tag = source_.text(place.start, static_cast<std::size_t>(place.tagEnd - place.start));
      const std::size_t end = tag.find_last_not_of(" \t\r\n", tag.size() - 3) + 1;
      edit(place.start + end, tag.size() - end,
           ">" + first + properties + last + close + "</" + std::string(parent.name()) + ">");
      continue;
    }
    if (!first.empty()) edit(place.tagEnd, 0, first);
    if (!properties.empty()) edit(lastProperty ? span(lastProperty).end : place.tagEnd, 0, properties);
    if (last.empty()) continue;
    if (const Node sibling = lastElement(parent)) {
      edit(span(sibling).end, 0, last);
    } else {
      const bool hasLine = !closeLead(parent).empty();
      edit(hasLine ? place.closeStart - closeLead(parent).size() : place.closeStart, 0,
           last + (hasLine ? std::string() : layoutOf(parent).lead));
    }
  }
  appends_.clear();
}

// ---------------------------------------------------------------- writing

void FileEditor::write(SafeFile& to, ContentHash& check, const std::function<void(std::uint64_t)>& progress) {
  settleAppends();
  // What is new comes in front of what goes from there.
  std::stable_sort(edits_.begin(), edits_.end(), [](const Edit& a, const Edit& b) {
    return a.at != b.at ? a.at < b.at : a.removed == 0 && b.removed > 0;
  });
  check.add(source_.head());
  to.write(source_.head());
  std::uint64_t done = 0;
  const auto pass = [&](std::uint64_t until, bool copies) {
    while (done < until) {
      const std::string piece =
          source_.letters(done, static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, until - done)));
      if (piece.empty()) failSaving("the drawing's file became shorter while it was being saved", path_);
      done += piece.size();
      const std::string bytes = source_.inFile(piece);
      check.add(bytes);
      if (copies) to.write(bytes);
      progress(done);
    }
  };
  for (const Edit& e : edits_) {
    if (e.at < done) failSaving("two changes meet in one place of the file", path_);
    pass(e.at, true);
    for (std::string_view text = e.text; !text.empty();) {
      const std::string_view piece = text.substr(0, kBlock);
      to.write(piece);
      text.remove_prefix(piece.size());
      lookUp();
    }
    pass(e.at + e.removed, false);
  }
  pass(source_.size(), true);
}

}  // namespace lvx::landxml::detail
