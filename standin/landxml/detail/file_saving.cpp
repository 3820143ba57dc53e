#include "landxml/detail/file_saving.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "civil/each_object.h"
#include "civil/sibling_names.h"
#include "landxml/detail/change_writer.h"
#include "landxml/detail/content_hash.h"
#include "landxml/detail/file_editor.h"
#include "landxml/detail/point_group_writer.h"
#include "landxml/detail/trace.h"

namespace lvx::landxml::detail {

namespace {

/// The opened source from its begin to its end, with its hash.
class SourceBytes : public ByteSource {
 public:
  SourceBytes(const SourceFile& file, ContentHash& hash) : file_(file), hash_(hash) {}
  std::size_t read(char* to, std::size_t size) override {
    const std::size_t count = file_.read(at_, to, size);
    hash_.add({to, count});
    at_ += count;
    return count;
  }
  [[nodiscard]] std::uint64_t totalBytes() const override { return file_.size(); }

 private:
  const SourceFile& file_;
  ContentHash& hash_;
  std::uint64_t at_ = 0;
};

/// Of all that the file holds now.
civil::FileMark markOf(const SourceFile& file) {
  if (const auto packed = file.packedMark()) return *packed;
  constexpr std::size_t kPiece = std::size_t{1} << 18;
  ContentHash hash;
  for (std::uint64_t at = 0;;) {
    const std::string piece = file.text(at, kPiece);
    if (piece.empty()) return hash.mark();
    hash.add(piece);
    at += piece.size();
  }
}

/// Told every value of a drawing's content in turn.
class ContentSum {
 public:
  void add(std::uint64_t value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    hash_.add({bytes, sizeof bytes});
  }
  void add(double value) { add(std::bit_cast<std::uint64_t>(value)); }
  void add(std::string_view text) {
    add(std::uint64_t{text.size()});
    hash_.add(text);
  }
  [[nodiscard]] std::uint64_t sum() const {
    const std::uint64_t hash = hash_.mark().hash;
    return hash == 0 ? 1 : hash;
  }

 private:
  ContentHash hash_;
};

void addAlignment(ContentSum& sum, const civil::AlignmentObject& alignment) {
  sum.add(alignment.handle);
  for (const civil::ProfileObject& profile : alignment.profiles) {
    sum.add(profile.handle);
    sum.add(civil::savedName(profile));
    sum.add(profile.description);
    sum.add(std::uint64_t{profile.profile.points().size()});
    for (const civil::VerticalPoint& point : profile.profile.points()) {
      for (const double value : {point.station, point.elevation, point.length, point.lengthOut, point.radius})
        sum.add(value);
    }
    for (const civil::ProfileGap& gap : profile.profile.gaps()) sum.add(gap.startStation);
  }
  for (const civil::SampleLineGroup& group : alignment.sampleLineGroups) {
    sum.add(group.handle);
    sum.add(civil::savedName(group));
    sum.add(group.description);
    sum.add(std::uint64_t{group.lines.size()});
    for (const civil::SampleLine& line : group.lines) {
      sum.add(line.handle);
      sum.add(line.name);
      sum.add(line.station);
      sum.add(std::uint64_t{line.vertices.size()});
      for (const civil::Vec2 vertex : line.vertices) {
        sum.add(vertex.x);
        sum.add(vertex.y);
      }
    }
  }
}

void addRegion(ContentSum& sum, const civil::Region& region) {
  sum.add(std::uint64_t{region.stations.size()});
  for (const double station : region.stations) sum.add(station);
  for (const auto& [station, label] : region.pendingLabels) {
    sum.add(station);
    sum.add(label);
  }
  sum.add(std::uint64_t{region.sections.size()});
  for (const civil::CorridorSection& section : region.sections) {
    sum.add(section.station);
    sum.add(section.label);
    sum.add(std::uint64_t{static_cast<std::uint8_t>(section.origin)});
    for (const civil::SectionPart& part : section.parts) {
      sum.add(std::uint64_t{part.points.size()});
      for (const auto& code : part.codes) sum.add(std::string_view(code));
      for (const civil::SectionPoint& point : part.points) {
        sum.add(point.offset);
        sum.add(point.elevation);
        for (const auto& code : point.codes) sum.add(std::string_view(code));
      }
    }
  }
}

}  // namespace

std::uint64_t contentOf(const civil::Drawing& drawing, civil::FileNumber file) {
  ContentSum sum;
  const auto site = [&](const civil::Site& s) {
    for (const auto& alignment : s.alignments) {
      if (alignment->file == file) addAlignment(sum, *alignment);
    }
  };
  site(drawing.siteless);
  for (const civil::Site& s : drawing.sites) site(s);
  const std::vector<civil::FileNumber> files = filesOfPointGroups(drawing);
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files[i] != file) continue;
    const civil::PointGroup& group = drawing.pointGroups[i];
    sum.add(group.handle);
    sum.add(civil::savedName(group));
    sum.add(group.description);
    // Members in files that are added later join the others: together they are always the same, whatever their order.
    std::uint64_t members = 0;
    const auto member = [&](std::int32_t number) {
      ContentSum one;
      one.add(std::uint64_t{static_cast<std::uint32_t>(number)});
      members += one.sum();
    };
    for (const std::int32_t number : group.numbers) member(number);
    for (const std::int32_t number : group.numbersElsewhere) member(number);
    sum.add(members);
  }
  for (const civil::Corridor& corridor : drawing.corridors) {
    if (corridor.file != file) continue;
    for (const civil::Baseline& baseline : corridor.baselines) {
      for (const civil::Region& region : baseline.regions) addRegion(sum, region);
    }
  }
  return sum.sum();
}

namespace {

constexpr const char* kChanged =
    "the drawing's file was changed by another program since it was opened; open it again and repeat the work, "
    "or the other changes would be lost";

/// What was made in the open drawing stands in a file now.
void settleFiles(civil::Drawing& drawing, civil::FileNumber file) {
  const auto site = [&](civil::Site& s) {
    for (auto& alignment : s.alignments) {
      if (alignment->file != file) continue;
      for (auto& profile : alignment->profiles) profile.file = file;
      for (auto& group : alignment->sampleLineGroups) group.file = file;
    }
  };
  site(drawing.siteless);
  for (civil::Site& s : drawing.sites) site(s);
  const std::vector<civil::FileNumber> files = filesOfPointGroups(drawing);
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files[i] == file) drawing.pointGroups[i].file = file;
  }
}

/// As they are, whatever they mean.
void copyBytes(const SourceFile& from, SafeFile& to, ContentHash& hash,
               const std::function<void(std::uint64_t)>& tell) {
  constexpr std::size_t kPiece = std::size_t{1} << 18;
  for (std::uint64_t at = 0;;) {
    const std::string piece = from.text(at, kPiece);
    if (piece.empty()) return;
    hash.add(piece);
    to.write(piece);
    tell(at += piece.size());
  }
}

/// Calls `work` at most some twenty times a second, however often it is called itself.
std::function<void()> nowAndThen(std::function<void()> work) {
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kPause{50};
  return [work = std::move(work), next = Clock::now()]() mutable {
    const auto now = Clock::now();
    if (now < next) return;
    next = now + kPause;
    work();
  };
}

}  // namespace

FileSaving::FileSaving(civil::Drawing& drawing, civil::FileNumber file, const std::string& source,
                       const std::string& target)
    : drawing_(drawing),
      terms_(FileTerms::of(drawing, file)),
      sourcePath_(source),
      target_(target),
      source_(source),
      isOwnFile_(SafeFile::leadsTo(target, source_.stamp())) {}

civil::FileMark& FileSaving::ownMark() {
  return terms_.file == 0 ? drawing_.file : drawing_.addedFiles[terms_.file - 1].mark;
}

void FileSaving::write(const std::function<void(std::uint64_t)>& progress) {
  // The file's own words, read as they were when the drawing was opened. Half of the work.
  ContentHash readHash;
  Trace trace;
  civil::Drawing stored;
  ReadOptions readOptions;
  readOptions.progress = [&](const Progress& done) {
    progress(done.bytesDone);
    return true;
  };
  readOptions.swapAxes = terms_.areAxesSwapped;
  readOptions.lengthFactor = [&](const std::string&) { return terms_.lengthFactor; };
  const civil::FileMark& known = ownMark();
  try {
    stored = readTraced(std::make_unique<SourceBytes>(source_, readHash), sourcePath_, readOptions, trace);
  } catch (const ReadError& error) {
    // Short memory ends the reading too, with the file as it was.
    if (known.isKnown && known != markOf(source_)) failSaving(kChanged, sourcePath_);
    throw SaveError(error.reason(), error.file(), error.line());
  }
  read_ = readHash.mark();
  onDisk_ = source_.packedMark().value_or(read_);
  if (known.isKnown && known != onDisk_) failSaving(kChanged, sourcePath_);
  if (terms_.handleBase != 0) {
    civil::eachHandle(stored, [&](civil::Handle& handle) {
      if (handle != 0) handle += terms_.handleBase;
    });
    for (ObjectTrace& object : trace.objects) object.handle += terms_.handleBase;
  }

  FileEditor editor(source_, trace, target_, nowAndThen([&] { progress(source_.size()); }));
  writeChanges(drawing_, stored, trace, terms_, editor, target_);
  if (editor.isUnchanged() && isOwnFile_) return;
  if (!source_.compression().empty()) refuseCompressed();
  // An added file stays where it is: what took its name in the meantime isn't ours.
  if (terms_.file != 0 && !isOwnFile_ && SafeFile::isThere(target_)) failSaving(kChanged, target_);
  written_.emplace(target_);
  ContentHash copied;
  const auto tell = [&](std::uint64_t done) { progress(source_.size() + std::min(done, source_.size())); };
  if (editor.isUnchanged())
    copyBytes(source_, *written_, copied, tell);
  else
    editor.write(*written_, copied, tell);
  if (copied.mark() != read_ && trace.scanned.converted.text)
    failSaving("the file's bytes aren't those that its text has in the encoding " + trace.scanned.converted.encoding +
                   ", so that saving would change more than was changed in the drawing; save it as UTF-8 first",
               sourcePath_);
  if (copied.mark() != read_) failSaving(kChanged, sourcePath_);
  written_->settle();
}

/// Unpacked text under a name that says otherwise would be found out by the next program.
void FileSaving::refuseCompressed() const {
  const auto endsWith = [&](std::string_view ending) {
    const std::size_t from = target_.size() - std::min(ending.size(), target_.size());
    return std::equal(ending.begin(), ending.end(), target_.begin() + static_cast<std::ptrdiff_t>(from), target_.end(),
                      [](char p, char q) { return p == q || p == q + ('a' - 'A'); });
  };
  if (!isOwnFile_ && !endsWith(".gz") && !endsWith(".zip")) return;
  const std::string what =
      "the drawing was read from a compressed file (" + std::string(source_.compression()) + "), and ";
  if (terms_.file != 0) failSaving(what + "such a file isn't written: unpack it and open the unpacked one", target_);
  failSaving(what + "it is saved unpacked: save it under another name, one that ends with .xml", target_);
}

std::string FileSaving::newFile() const { return written_ ? written_->path() : std::string(); }

civil::FileMark FileSaving::replace() {
  if (written_) written_->replace();
  settleFiles(drawing_, terms_.file);
  civil::FileMark mark = written_ ? written_->mark() : onDisk_;
  mark.content = contentOf(drawing_, terms_.file);
  if (ownMark().isKnown && (isOwnFile_ || terms_.file != 0)) ownMark() = mark;
  return mark;
}

}  // namespace lvx::landxml::detail
