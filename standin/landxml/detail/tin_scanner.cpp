#include "landxml/detail/tin_scanner.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "landxml/detail/entities.h"

namespace lvx::landxml::detail {

namespace {

/// Text of one P or F beyond this is no point.
constexpr std::size_t kLongestPoint = std::size_t{1} << 16;
/// Bytes that a thread reads at a time.
constexpr std::size_t kPart = std::size_t{1} << 18;
constexpr bool isNameEnd(char c) { return isBlank(c) || c == '>' || c == '/'; }

inline const char* skipBlanks(const char* at) {
  while (isBlank(*at)) ++at;
  return at;
}

/// A non-negative integer of at most 18 digits; null where none stands.
inline const char* readId(const char* at, std::int64_t& id) {
  const char* const first = at;
  std::int64_t value = 0;
  while (*at >= '0' && *at <= '9') {
    if (at - first == 18) return nullptr;
    value = value * 10 + (*at - '0');
    ++at;
  }
  id = value;
  return at == first ? nullptr : at;
}

/// How the plain form of an element went.
enum class Step : std::uint8_t { Done, NeedMore, Odd };

/// Reads P and F in their plain form, `<P id="7">north east elevation</P>` and `<F>1 2 3</F>`, at one glance; other forms
/// are left to TinScanner::slowElement. The NUL behind the window ends every loop. What it reads it gives to a sink.
class PlainForms {
 public:
  PlainForms(std::string_view childName, const char* windowEnd) : childName_(childName), end_(windowEnd) {}

  /// Whether an element of the name begins at `p`, which isn't blank.
  [[nodiscard]] Step begins(const char* p) const {
    const std::size_t size = childName_.size();
    if (static_cast<std::size_t>(end_ - p) < size + 2) return Step::NeedMore;
    if (*p != '<' || std::memcmp(p + 1, childName_.data(), size) != 0 || !isNameEnd(p[1 + size])) return Step::Odd;
    return Step::Done;
  }
  /// The point or face at `at`; moves behind it.
  template <class Sink>
  Step take(const char*& at, Sink& sink) const {
    const Step start = begins(at);
    if (start != Step::Done) return start;
    if constexpr (Sink::kTakesPoints)
      return point(at, sink);
    else
      return face(at, sink);
  }

 private:
  template <class Sink>
  Step point(const char*& at, Sink& sink) const;
  template <class Sink>
  Step face(const char*& at, Sink& sink) const;
  Step close(const char*& at) const;

  std::string_view childName_;  // "P" or "F" with the prefix in use
  const char* end_;
};

/// `</P>` at `at`; moves behind it.
inline Step PlainForms::close(const char*& at) const {
  const char* p = at;
  if (*p != '<') return *p == '\0' ? Step::NeedMore : Step::Odd;
  const std::size_t size = childName_.size();
  if (static_cast<std::size_t>(end_ - p) < size + 3) return Step::NeedMore;
  if (p[1] != '/') return Step::Odd;
  for (std::size_t i = 0; i < size; ++i) {
    if (p[2 + i] != childName_[i]) return Step::Odd;
  }
  if (p[2 + size] != '>') return Step::Odd;
  at = p + size + 3;
  return Step::Done;
}

template <class Sink>
Step PlainForms::point(const char*& at, Sink& sink) const {
  const char* p = at + 1 + childName_.size();
  std::int64_t id = -1;
  for (;;) {
    const char* const before = p;
    p = skipBlanks(p);
    if (*p == '>') break;
    if (p == before) return *p == '\0' ? Step::NeedMore : Step::Odd;
    if (p[0] == 'i' && p[1] == 'd' && p[2] == '=' && (p[3] == '"' || p[3] == '\'')) {
      const char quote = p[3];
      if (id >= 0) return Step::Odd;
      p = readId(p + 4, id);
      if (p == nullptr) return Step::Odd;  // or the window ends here: slowElement copes with both
      if (*p != quote) return *p == '\0' ? Step::NeedMore : Step::Odd;
      ++p;
      continue;
    }
    return Step::Odd;
  }
  if (id < 0) return Step::Odd;
  ++p;
  double north = 0.0;
  double east = 0.0;
  double elevation = 0.0;
  for (double* const value : {&north, &east, &elevation}) {
    p = skipBlanks(p);
    const char* next = readPlainNumber(p, *value);
    if (next == nullptr) next = readNumber(p, end_, *value);
    if (next == nullptr) return *p == '\0' ? Step::NeedMore : Step::Odd;
    p = next;
    if (*p == '\0') return Step::NeedMore;
    if (!isBlank(*p) && *p != '<') return Step::Odd;
  }
  p = skipBlanks(p);
  const Step closed = close(p);
  if (closed != Step::Done) return closed;
  sink.addPoint(id, north, east, elevation);
  at = p;
  return Step::Done;
}

/// With any plain attributes.
template <class Sink>
Step PlainForms::face(const char*& at, Sink& sink) const {
  const char* p = at + 1 + childName_.size();
  RawFace face;
  std::uint32_t firstLetters = 0;  // of the attributes so far: one bit each
  for (;;) {
    const char* const before = p;
    p = skipBlanks(p);
    if (*p == '>') break;
    if (p == before) return *p == '\0' ? Step::NeedMore : Step::Odd;
    const char* const name = p;
    while (*p >= 'a' && *p <= 'z') ++p;
    if (*p != '=') return *p == '\0' ? Step::NeedMore : Step::Odd;
    // Two that begin alike may be one twice, which slowElement tells apart.
    const std::uint32_t letter = p == name ? 0U : 1U << static_cast<unsigned>(*name - 'a');
    if ((firstLetters & letter) != 0) return Step::Odd;
    firstLetters |= letter;
    const bool isFlag = p - name == 1 && *name == 'i';
    const char quote = *++p;
    if (quote != '"' && quote != '\'') return quote == '\0' ? Step::NeedMore : Step::Odd;
    const char* const value = ++p;
    while (*p != quote) {
      if (*p == '\0') return Step::NeedMore;
      if (*p == '<' || *p == '&') return Step::Odd;
      ++p;
    }
    if (isFlag && p - value == 1)
      face.invisible = *value == '1';
    else if (isFlag)
      return Step::Odd;
    ++p;
  }
  ++p;
  for (;;) {
    p = skipBlanks(p);
    if (*p == '<') break;
    if (face.count == 4) return *p == '\0' ? Step::NeedMore : Step::Odd;
    if (*p == '-') ++p;
    const char* const next = readId(p, face.ids[face.count]);
    if (next == nullptr) return *p == '\0' ? Step::NeedMore : Step::Odd;
    ++face.count;
    p = next;
    if (!isBlank(*p) && *p != '<') return *p == '\0' ? Step::NeedMore : Step::Odd;
  }
  if (face.count < 3) return Step::Odd;
  const char* const text = p;
  const Step closed = close(p);
  if (closed != Step::Done) return closed;
  sink.addFace(face, text);
  at = p;
  return Step::Done;
}

// ---------------------------------------------------------------- in order

/// Puts points straight into the collector.
struct PointSink {
  static constexpr bool kTakesPoints = true;
  TinCollector& tin;
  void addPoint(std::int64_t id, double north, double east, double elevation) const {
    tin.addPoint(id, north, east, elevation);
  }
};

/// Puts faces straight into the collector.
struct FaceSink {
  static constexpr bool kTakesPoints = false;
  TinCollector& tin;
  Input& in;
  void addFace(const RawFace& face, const char* place) const {
    if (!tin.addFace(face)) tin.defer(face, in.lineAt(place));
  }
};

// ---------------------------------------------------------------- several threads

/// A stretch of the window between two ends of elements, and what stands in it. It counts only once all before it turned
/// out to be plain, so that its begin is where an element ended indeed; until then nothing but the part has it.
struct Part {
  const char* begin = nullptr;
  const char* end = nullptr;
  const char* stop = nullptr;  ///< where the plain forms end, as a rule at `end`
  std::size_t lines = 0;       ///< line ends before `stop`

  // Of points
  std::int64_t firstId = 0;
  std::vector<std::int64_t> ids;  ///< empty as long as they run on from the first
  std::vector<civil::Vec3> points;

  // Of faces
  struct Deferred {
    RawFace face;
    const char* place = nullptr;
  };
  FaceList faces;
  std::vector<Deferred> deferred;

  void read(const PlainForms& forms, bool takesPoints, const TinCollector& tin);
  /// Whether nothing of it needs the window any more.
  [[nodiscard]] bool isPlain() const { return stop == end && deferred.empty(); }
  void giveTo(TinCollector& tin, Input& in, bool takesPoints) const;

 private:
  struct Points {
    static constexpr bool kTakesPoints = true;
    Part& part;
    void addPoint(std::int64_t id, double north, double east, double elevation) const {
      if (part.points.empty()) part.firstId = id;
      const auto count = static_cast<std::int64_t>(part.points.size());
      if (part.ids.empty() && id != part.firstId + count) {
        for (std::int64_t i = 0; i < count; ++i) part.ids.push_back(part.firstId + i);
      }
      if (!part.ids.empty()) part.ids.push_back(id);
      part.points.push_back({east, north, elevation});
    }
  };
  struct Faces {
    static constexpr bool kTakesPoints = false;
    Part& part;
    const TinCollector& tin;
    void addFace(const RawFace& face, const char* place) const {
      if (!tin.addFace(face, part.faces)) part.deferred.push_back({face, place});
    }
  };

  template <class Sink>
  void readInto(const PlainForms& forms, const Sink& sink) {
    for (stop = begin; stop < end;) {
      const char* at = skipBlanks(stop);
      if (at >= end || forms.take(at, sink) != Step::Done) break;
      stop = at;
    }
    lines = lineEnds({begin, static_cast<std::size_t>(stop - begin)});
  }
};

void Part::read(const PlainForms& forms, bool takesPoints, const TinCollector& tin) {
  ids.clear();
  points.clear();
  faces.clear();
  deferred.clear();
  if (takesPoints)
    readInto(forms, Points{*this});
  else
    readInto(forms, Faces{*this, tin});
}

void Part::giveTo(TinCollector& tin, Input& in, bool takesPoints) const {
  if (!takesPoints) {
    for (const Deferred& face : deferred) tin.defer(face.face, in.lineAt(face.place));
    tin.addFaces(faces);
  } else if (ids.empty()) {
    tin.addPoints(firstId, points);
  } else {
    for (std::size_t i = 0; i < points.size(); ++i) tin.addPoint(ids[i], points[i].y, points[i].x, points[i].z);
  }
}

/// Inside this file alone, so that the compiler can put the plain forms into the one loop that calls them.
class TinScanner {
 public:
  TinScanner(Input& in, Tokenizer& tokens, OpenElements& open, TinCollector& tin, standin_platform::Crew& crew)
      : in_(in), tokens_(tokens), open_(open), tin_(tin), crew_(crew) {}
  void scan(const std::string& name, bool points);

 private:
  enum class Progress : std::uint8_t { GoesOn, ListEnded };
  template <class Sink>
  Progress scanTo(const char* limit, const std::string& name, const Sink& sink);
  Progress scanInOrder(const char* limit, const std::string& name, bool points);
  Progress scanParts(const std::string& name, bool points);
  void takeOverRead(bool points);
  [[nodiscard]] std::size_t cutWindow(std::size_t most);
  void expect(bool points);
  void slowElement(const Token& token, bool points);
  void takePoint(std::string_view id, std::string_view pointRef, std::string_view text, std::size_t line);
  void takeFace(bool invisible, std::string_view text, std::size_t line);
  void readChildText(std::string_view name, std::string& text);
  void skipElement(const Token& token);

  Input& in_;
  Tokenizer& tokens_;
  OpenElements& open_;
  TinCollector& tin_;
  standin_platform::Crew& crew_;
  std::string childName_;  // "P" or "F" with the prefix in use
  std::vector<Part> parts_;
  /// Plain parts of the window before, which go into the collector while the next window is being read.
  std::vector<Part> read_;
  std::size_t readCount_ = 0;
};

/// The elements that begin before `limit` (null: anywhere), until the window moves.
template <class Sink>
TinScanner::Progress TinScanner::scanTo(const char* limit, const std::string& name, const Sink& sink) {
  const std::size_t moves = in_.moves();
  for (;;) {
    // The plain forms, as many as the window holds.
    const char* p = in_.at;
    Step step = Step::Done;
    const PlainForms forms(childName_, in_.end);
    while (step == Step::Done) {
      if (limit != nullptr && p >= limit) {
        in_.at = p;
        return Progress::GoesOn;
      }
      p = skipBlanks(p);
      in_.at = p;
      step = forms.take(p, sink);
    }
    // A plain form that the window cuts begins again; one too long for that goes the slow way.
    if (step == Step::NeedMore && static_cast<std::size_t>(in_.end - in_.at) < kLongestPoint && in_.more())
      return Progress::GoesOn;

    const Token token = tokens_.next();
    switch (token.kind) {
      case Token::Kind::Start:
        if (localName(token.name) == (Sink::kTakesPoints ? "P" : "F")) {
          slowElement(token, Sink::kTakesPoints);
        } else {
          tin_.note(&TinCollector::Faults::unknownElements, in_.lineAt(token.raw.data()),
                    "<" + shown(token.name) + "> isn't read");
          skipElement(token);
        }
        break;
      case Token::Kind::Close:
        if (token.name != name) {
          fail("</" + shown(token.name) + "> stands where </" + name + "> is due", in_.file(),
               in_.lineAt(token.raw.data()));
        }
        return Progress::ListEnded;
      case Token::Kind::Text:
      case Token::Kind::RawText:
        if (!trimmed(token.raw).empty()) {
          tin_.note(&TinCollector::Faults::unknownElements, in_.lineAt(token.raw.data()),
                    "text '" + shown(trimmed(token.raw)) + "' stands among them");
        }
        break;
      case Token::Kind::End:
        fail("the file ends inside <" + name + ">", in_.file(), in_.line());
    }
    if (in_.moves() != moves) return Progress::GoesOn;
  }
}

TinScanner::Progress TinScanner::scanInOrder(const char* limit, const std::string& name, bool points) {
  return points ? scanTo(limit, name, PointSink{tin_}) : scanTo(limit, name, FaceSink{tin_, in_});
}

/// Cuts the window into at most so many parts, each behind the end of an element; gives how many there are.
std::size_t TinScanner::cutWindow(std::size_t most) {
  const std::string endTag = "</" + childName_ + ">";
  std::size_t count = 0;
  const char* begin = in_.at;
  while (count < most) {
    const auto left = static_cast<std::size_t>(in_.end - begin);
    // Beyond that the elements are odd ones, or none of the list.
    constexpr std::size_t kSearched = 4096;
    if (left < kPart + kSearched) break;
    const std::string_view here(begin + kPart, kSearched);
    const auto found = here.find(endTag);
    if (found == std::string_view::npos) break;
    const char* const end = here.data() + found + endTag.size();
    if (count == parts_.size()) parts_.emplace_back();
    parts_[count].begin = begin;
    parts_[count].end = end;
    ++count;
    begin = end;
  }
  return count;
}

/// Makes room for what the parts hold, and for as much of the rest of the file as seems good: arrays that grow are copied.
void TinScanner::expect(bool points) {
  std::size_t items = 0;
  std::size_t bytes = 0;
  for (const Part& part : parts_) {
    items += points ? part.points.size() : part.faces.triangles.size();
    bytes += static_cast<std::size_t>(part.stop - part.begin);
  }
  const std::size_t size = (points ? tin_.points.size() : tin_.faces.triangles.size()) + items;
  const std::size_t room = points ? tin_.points.capacity() : tin_.faces.triangles.capacity();
  if (size <= room) return;
  // All that the file may still hold, unless it holds much else.
  constexpr double kMargin = 1.02;
  constexpr std::size_t kMostGrowth = 16;
  const double perByte = static_cast<double>(items) / static_cast<double>(bytes);
  const auto left = static_cast<std::size_t>(kMargin * perByte * static_cast<double>(in_.bytesLeft()));
  const std::size_t wanted = size + std::min(left, (kMostGrowth - 1) * size);
  if (points)
    tin_.expectPoints(wanted);
  else
    tin_.expectFaces(wanted);
}

/// Nobody else may use the arrays of the collector that grow; whoever reads faces looks at points alone.
void TinScanner::takeOverRead(bool points) {
  for (const Part& part : std::span(read_).first(readCount_)) part.giveTo(tin_, in_, points);
  readCount_ = 0;
}

/// As much of the list as the window holds, in parts that several threads read. What they read is taken over in the order
/// of the file, so it is as if one had read all: a part whose begin turns out to be none is read again.
TinScanner::Progress TinScanner::scanParts(const std::string& name, bool points) {
  // As much as went before at most: behind the list's end stands what is no part of it.
  std::size_t most = 1;
  for (;;) {
    const std::size_t count = cutWindow(most);
    if (count == 0) {
      takeOverRead(points);
      in_.readAhead();
      return Progress::GoesOn;
    }
    most = 4 * most;
    const PlainForms forms(childName_, in_.end);
    const auto meanwhile = [&] {
      in_.readAhead();
      takeOverRead(points);
    };
    crew_.run(meanwhile, count, [&](std::size_t i) { parts_[i].read(forms, points, tin_); });
    parts_.resize(count);
    expect(points);
    const std::size_t moves = in_.moves();
    const auto passBy = [&](const Part& part) {
      in_.skipLines(part.begin, part.stop, part.lines);
      in_.at = part.stop;
    };
    std::size_t next = 0;
    while (next < count && in_.at == parts_[next].begin && parts_[next].isPlain()) passBy(parts_[next++]);
    std::swap(parts_, read_);
    readCount_ = next;
    if (next < count) takeOverRead(points);
    for (; next < count; ++next) {
      const Part& part = read_[next];
      if (in_.at != part.begin) break;
      part.giveTo(tin_, in_, points);
      passBy(part);
      if (part.stop == part.end) continue;
      if (scanInOrder(part.end, name, points) == Progress::ListEnded) return Progress::ListEnded;
      if (in_.moves() != moves) break;
    }
  }
}

void TinScanner::scan(const std::string& name, bool points) {
  const auto colon = name.find(':');
  childName_ = (colon == std::string::npos ? std::string() : name.substr(0, colon + 1)) + (points ? "P" : "F");
  while (scanParts(name, points) == Progress::GoesOn) {
    // The rest of the window.
    const std::size_t moves = in_.moves();
    while (in_.moves() == moves)
      if (scanInOrder(nullptr, name, points) == Progress::ListEnded) return;
  }
}

/// Text of the element whose start tag was just taken, up to and with its end tag; child elements are passed over.
void TinScanner::readChildText(std::string_view name, std::string& text) {
  const std::string due(name);
  const std::size_t depth = open_.depth();
  for (;;) {
    const Token token = tokens_.next();
    switch (token.kind) {
      case Token::Kind::Text:
      case Token::Kind::RawText:
        if (open_.depth() > depth) break;
        if (text.size() + token.raw.size() > kLongestPoint) {
          fail("the text of <" + shown(due) + "> is longer than any point or face", in_.file(),
               in_.lineAt(token.raw.data()));
        }
        if (token.kind == Token::Kind::RawText) {
          text += token.raw;
        } else {
          for (std::size_t i = 0; i < token.raw.size(); ++i) {
            if (token.raw[i] != '&') {
              text += token.raw[i];
              continue;
            }
            std::size_t length = 0;
            const std::string bytes = entityText(token.raw.substr(i + 1), length);
            if (bytes.empty()) {
              fail("'" + shown(token.raw.substr(i, 12)) + "' isn't an entity of XML", in_.file(),
                   in_.lineAt(token.raw.data() + i));
            }
            text += bytes;
            i += length;
          }
        }
        break;
      case Token::Kind::Start:
        if (!token.selfClosing) open_.push(token.name, in_);
        break;
      case Token::Kind::Close:
        if (open_.depth() > depth) {
          if (open_.name() != token.name) {
            fail("</" + shown(token.name) + "> stands where </" + shown(open_.name()) + "> is due", in_.file(),
                 in_.lineAt(token.raw.data()));
          }
          open_.pop();
          break;
        }
        if (token.name != due) {
          fail("</" + shown(token.name) + "> stands where </" + shown(due) + "> is due", in_.file(),
               in_.lineAt(token.raw.data()));
        }
        return;
      case Token::Kind::End:
        fail("the file ends inside <" + shown(due) + ">", in_.file(), in_.line());
    }
  }
}

void TinScanner::skipElement(const Token& token) {
  if (token.selfClosing) return;
  const std::string name(token.name);
  open_.push(name, in_);
  const std::size_t depth = open_.depth();
  while (open_.depth() >= depth) {
    const Token inner = tokens_.next();
    if (inner.kind == Token::Kind::Start && !inner.selfClosing) open_.push(inner.name, in_);
    if (inner.kind == Token::Kind::End)
      fail("the file ends inside <" + shown(open_.name()) + ">", in_.file(), in_.line());
    if (inner.kind != Token::Kind::Close) continue;
    if (open_.name() != inner.name) {
      fail("</" + shown(inner.name) + "> stands where </" + shown(open_.name()) + "> is due", in_.file(),
           in_.lineAt(inner.raw.data()));
    }
    open_.pop();
  }
}

void TinScanner::slowElement(const Token& token, bool points) {
  const std::size_t line = in_.lineAt(token.raw.data());
  std::string id;
  std::string reference;
  bool invisible = false;
  eachAttribute(token, in_.file(), line, [&](std::string_view name, std::string_view value) {
    if (name == "id") id = value;
    if (name == "pntRef") reference = value;
    if (name == "i") invisible = trimmed(value) == "1";
  });
  std::string text;
  if (!token.selfClosing) readChildText(token.name, text);
  if (points)
    takePoint(id, reference, text, line);
  else
    takeFace(invisible, text, line);
}

void TinScanner::takePoint(std::string_view idText, std::string_view pointRef, std::string_view text,
                           std::size_t line) {
  using Faults = TinCollector::Faults;
  idText = trimmed(idText);
  std::int64_t id = 0;
  const char* const idEnd = idText.data() + idText.size();
  const auto [next, error] = std::from_chars(idText.data(), idEnd, id);
  if (error != std::errc() || next != idEnd || id < 0) {
    tin_.note(&Faults::pointsWithoutId, line, "P has no usable id ('" + shown(idText) + "')");
    return;
  }
  const NumberList numbers = readNumbers(text);
  const std::string speaker = "P " + std::to_string(id) + ": ";
  if (!numbers.problem.empty()) {
    tin_.note(&Faults::unreadablePoints, line, speaker + numbers.problem);
  } else if (numbers.values.size() >= 3) {
    if (numbers.repairedSigns > 0) {
      tin_.note(&Faults::repairedSigns, line, speaker + "a sign stood apart from its number");
    }
    tin_.addPoint(id, numbers.values[0], numbers.values[1], numbers.values[2]);
  } else if (numbers.values.size() == 2) {
    tin_.note(&Faults::pointsWithoutElevation, line, speaker + "no elevation");
  } else if (numbers.values.empty() && !pointRef.empty()) {
    tin_.references.emplace_back(id, pointRef);
  } else {
    tin_.note(&Faults::unreadablePoints, line, speaker + "no coordinates");
  }
}

void TinScanner::takeFace(bool invisible, std::string_view text, std::size_t line) {
  RawFace face;
  face.invisible = invisible;
  const char* at = text.data();
  const char* const end = at + text.size();
  bool good = true;
  for (;;) {
    while (at != end && isBlank(*at)) ++at;
    if (at == end) break;
    std::int64_t id = 0;
    const auto [next, error] = std::from_chars(at, end, id);
    good = error == std::errc() && (next == end || isBlank(*next)) && id > std::numeric_limits<std::int64_t>::min() &&
           face.count < 4;
    if (!good) break;
    face.ids[face.count++] = id < 0 ? -id : id;
    at = next;
  }
  if (!good || face.count < 3) {
    tin_.note(&TinCollector::Faults::unreadableFaces, line,
              "F '" + shown(trimmed(text)) + "' doesn't hold three or four point ids");
  } else if (!tin_.addFace(face)) {
    tin_.defer(face, line);
  }
}

}  // namespace

void scanTin(Input& in, Tokenizer& tokens, OpenElements& open, TinCollector& tin, standin_platform::Crew& crew,
             const std::string& name, bool points) {
  TinScanner(in, tokens, open, tin, crew).scan(name, points);
}

}  // namespace lvx::landxml::detail
