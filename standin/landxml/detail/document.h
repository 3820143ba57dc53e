#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// A drawing's elements in memory, but for the points and faces of surfaces: written once while the file streams past,
/// then read as a tree. All of it stands in one array of bytes in the order of the file, an element as its name's number,
/// its line, its attributes and its text, with numbers at half a byte a digit and a value that stood shortly before as a
/// reference to that place. That is a third of the markup, where a tree of nodes and pointers needs three times as much
/// beside the text itself; sections and survey points come by the million.
namespace lvx::landxml::detail {

class Document;
class Node;

/// The value of an attribute; empty for one that isn't there. Valid as long as its document.
class Attribute {
 public:
  Attribute() = default;
  explicit Attribute(const char* value) : value_(value) {}
  explicit operator bool() const { return value_ != nullptr; }
  /// "" where there is none.
  [[nodiscard]] const char* value() const { return value_ == nullptr ? "" : value_; }

 private:
  const char* value_ = nullptr;
};

/// An element of a document; cheap to copy, valid as long as the document. All functions may be called on an empty one.
class Node {
 public:
  Node() = default;
  explicit operator bool() const { return document_ != nullptr; }
  friend bool operator==(const Node&, const Node&) = default;

  /// With its prefix; "" for an empty node.
  [[nodiscard]] const std::string& name() const;
  /// Without.
  [[nodiscard]] std::string_view localName() const;
  /// The first attribute of that name. O(attributes).
  [[nodiscard]] Attribute attribute(std::string_view name) const;
  /// All text directly inside the element, joined; what is blank between two tags isn't text. Of more than some thousand
  /// blanks in a row those behind are left out.
  [[nodiscard]] std::string text() const;
  /// The same in pieces of some kilobytes at most, in order.
  void eachText(const std::function<void(std::string_view)>& use) const;
  /// Child elements, in order. A step is O(attributes) or, over an element that holds others, O(1).
  class Children;
  [[nodiscard]] Children children() const;
  /// In a document that keeps parents (Document::keepParents); empty for the root. O(log n).
  [[nodiscard]] Node parent() const;
  /// Place in the document: unique, ascending in the order of the file; -1 for an empty node.
  [[nodiscard]] std::ptrdiff_t place() const { return document_ == nullptr ? -1 : static_cast<std::ptrdiff_t>(at_); }

 private:
  friend class Document;
  template <class Use>
  void eachTextPlace(Use use) const;
  Node(const Document* document, std::size_t at) : document_(document), at_(at) {}

  const Document* document_ = nullptr;
  std::size_t at_ = 0;
};

/// Bytes that grow without being copied where the system can move their pages.
class GrowingBytes {
 public:
  [[nodiscard]] const char* data() const { return bytes_.get(); }
  [[nodiscard]] char* data() { return bytes_.get(); }
  [[nodiscard]] std::size_t size() const { return size_; }
  void push(char byte) {
    if (size_ == capacity_) grow(1);
    bytes_.get()[size_++] = byte;
  }
  void append(std::string_view bytes);

 private:
  struct Free {
    void operator()(char* bytes) const { std::free(bytes); }
  };
  void grow(std::size_t count);

  std::unique_ptr<char, Free> bytes_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

/// See above. First it is written, tag by tag; nodes are asked for when it is complete.
class Document {
 public:
  Document();
  Document(Document&&) = default;
  Document& operator=(Document&&) = default;

  // ---------------------------------------------------------------- writing
  /// An element begins at this line; lines don't fall. Gives its place. UTF-8, as all texts here.
  std::size_t open(std::string_view name, std::size_t line);
  /// Of the element that was just opened. Entities stand for their characters; line ends and tabs become blanks.
  void attribute(std::string_view name, std::string_view value);
  /// A piece of text, entities in place. Line ends become "\n".
  void text(std::string_view piece) { addText(piece, true); }
  /// A piece of a CDATA section: the same without entities.
  void rawText(std::string_view piece) { addText(piece, false); }
  /// The element that was opened last and not closed yet ends.
  void close();
  /// What began like an entity of XML and is none: the first one of the texts so far, with its place in the piece or value
  /// that it came in.
  struct BadEntity {
    std::string shown;
    std::size_t at = 0;
  };
  [[nodiscard]] const std::optional<BadEntity>& badEntity() const { return badEntity_; }
  /// From here on, which is before the first element: lets `Node::parent` answer.
  void keepParents() { keepsParents_ = true; }

  // ---------------------------------------------------------------- reading
  /// The root; empty in a document without elements.
  [[nodiscard]] Node root() const { return bytes_.size() == 0 ? Node() : Node(this, 0); }
  /// The element at a place that `Node::place` gave.
  [[nodiscard]] Node at(std::size_t place) const { return {this, place}; }
  /// Line in which an element begins; 0 for a place that is none. O(1), some microseconds.
  [[nodiscard]] std::size_t lineAt(std::size_t place) const;
  /// Calls `use(node)` for every element in the order of the file.
  template <class Use>
  void eachElement(Use use) const {
    for (std::size_t at = 0; at < bytes_.size();) {
      const Head head = headAt(at);
      if (head.kind != Kind::Text) use(Node(this, at));
      at = head.kind == Kind::Container ? skipAttributes(head.attributes) : endOf(at, head);
    }
  }
  [[nodiscard]] std::size_t byteCount() const { return bytes_.size(); }

 private:
  friend class Node;
  friend class Node::Children;

  /// What stands at a place. An element with others inside, or with very long text, is a Container.
  enum class Kind : std::uint8_t { Text, Leaf, LeafWithText, Container };
  struct Head {
    Kind kind = Kind::Text;
    std::size_t name = 0;        // number in names_
    std::size_t lines = 0;       // since the element before
    std::size_t attributes = 0;  // place of their count; of a text: of its length
    std::size_t end = 0;         // of a container
  };
  struct Name {
    std::string full;
    std::size_t local = 0;  // where the local name begins
  };
  struct Pending {
    std::size_t name = 0;
    std::size_t line = 0;
    std::vector<std::pair<std::size_t, std::string>> attributes;  // those up to `count`; the rest is spare
    std::size_t count = 0;
    bool isOpen = false;
  };
  struct TextPlace {
    std::size_t bytes = 0;
    std::size_t length = 0;
    bool isPacked = false;
  };

  std::size_t nameNumber(std::string_view name);
  void addText(std::string_view piece, bool hasEntities);
  bool takeEntity(std::string_view piece, std::size_t& at, std::string& to);
  void writeElement(Kind kind);
  void writeContainer();
  void writeAttributes();
  void writeText();
  void putTextBytes(std::string_view text);
  void putNumber(std::size_t value);

  [[nodiscard]] std::size_t numberAt(std::size_t& at) const {
    std::size_t value = 0;
    for (unsigned shift = 0;; shift += 7) {
      const auto byte = static_cast<unsigned char>(bytes_.data()[at++]);
      value |= static_cast<std::size_t>(byte & 0x7FU) << shift;
      if (byte < 0x80U) return value;
    }
  }
  [[nodiscard]] Head headAt(std::size_t at) const;
  [[nodiscard]] std::size_t skipAttributes(std::size_t at) const;
  [[nodiscard]] TextPlace textPlaceAt(std::size_t at) const;
  [[nodiscard]] std::size_t endOf(std::size_t at, const Head& head) const;
  void appendText(const TextPlace& place, std::string& to) const;

  GrowingBytes bytes_;
  std::vector<Name> names_;
  std::unordered_map<std::string, std::size_t> nameNumbers_;
  /// Line of an element here and there: (place, line), ascending.
  std::vector<std::pair<std::size_t, std::size_t>> lineMarks_;
  /// In a document that keeps them: (place, parent's place), ascending.
  std::vector<std::pair<std::size_t, std::size_t>> parents_;
  bool keepsParents_ = false;

  // While it is written.
  Pending pending_;
  std::string text_;
  bool textCounts_ = false;          // it isn't blank alone
  std::size_t blanks_ = 0;           // in a row, up to its end
  bool endsWithReturn_ = false;      // a line feed behind it belongs to the same line end
  std::size_t lastLine_ = 0;         // of the last element that was written
  std::vector<std::size_t> open_;    // places of the open containers
  std::vector<std::size_t> seenAt_;  // places of values, by their hashes
  std::string scratch_;
  std::optional<BadEntity> badEntity_;
};

class Node::Children {
 public:
  class Iterator {
   public:
    Iterator(const Document* document, std::size_t at, std::size_t end) : document_(document), at_(at), end_(end) {
      toElement();
    }
    Node operator*() const { return {document_, at_}; }
    Iterator& operator++() {
      at_ = document_->endOf(at_, document_->headAt(at_));
      toElement();
      return *this;
    }
    bool operator!=(const Iterator& other) const { return at_ != other.at_; }

   private:
    void toElement() {
      while (at_ < end_) {
        const Document::Head head = document_->headAt(at_);
        if (head.kind != Document::Kind::Text) return;
        at_ = document_->endOf(at_, head);
      }
    }
    const Document* document_;
    std::size_t at_;
    std::size_t end_;
  };
  Children(const Document* document, std::size_t first, std::size_t end)
      : document_(document), first_(first), end_(end) {}
  [[nodiscard]] Iterator begin() const { return {document_, first_, end_}; }
  [[nodiscard]] Iterator end() const { return {document_, end_, end_}; }

 private:
  const Document* document_;
  std::size_t first_;
  std::size_t end_;
};

}  // namespace lvx::landxml::detail
