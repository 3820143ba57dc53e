#include "points/point_list.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <stdexcept>
#include <type_traits>

#include "framework/exceptions.h"

namespace lvx::points {

namespace {

/// Places hold the block above these bits and the byte in it below them.
constexpr unsigned kByteBits = 16;
/// A block holds this much, or one text that is larger: no block grows, so nothing is copied as the pool does.
constexpr std::size_t kBlockSize = std::size_t{1} << kByteBits;
constexpr std::size_t kLately = 4096;

constexpr unsigned kDigitBits = 7;
constexpr std::uint64_t kDigits = (1U << kDigitBits) - 1;

/// Seven bits a byte, lowest first; the top bit says that more follow.
void pack(std::uint64_t value, std::string& bytes) {
  for (; value > kDigits; value >>= kDigitBits) bytes += static_cast<char>((value & kDigits) | (kDigits + 1));
  bytes += static_cast<char>(value);
}

std::uint64_t unpack(const char*& at) {
  std::uint64_t value = 0;
  for (unsigned shift = 0;; shift += kDigitBits) {
    const auto byte = static_cast<unsigned char>(*at++);
    value |= (byte & kDigits) << shift;
    if (byte <= kDigits) return value;
  }
}

using Texts = std::array<CString tpoint::*, 5>;
constexpr Texts kTexts{&tpoint::name, &tpoint::description, &tpoint::fullDescription, &tpoint::alignmentName,
                       &tpoint::spareText};

}  // namespace

TextPool::Place TextPool::keepPacked() {
  if (lately_.empty()) lately_.resize(kLately);
  Place& last = lately_[std::hash<std::string_view>()(packed_) % kLately];
  if (last != 0) {
    const std::string& block = blocks_[(last - 1) >> kByteBits];
    if (block.compare((last - 1) % kBlockSize, packed_.size(), packed_) == 0) return last - 1;
  }
  // A capacity may be larger than what was reserved, and a place in it than what fits below the block's number.
  if (blocks_.empty() || blocks_.back().size() + packed_.size() > kBlockSize) {
    blocks_.emplace_back();
    blocks_.back().reserve(std::max(kBlockSize, packed_.size()));
  }
  std::string& block = blocks_.back();
  const Place place = (Place{blocks_.size() - 1} << kByteBits) | block.size();
  block += packed_;
  last = place + 1;
  return place;
}

TextPool::Place TextPool::keep(std::wstring_view text) {
  packed_.clear();
  pack(text.size(), packed_);
  for (const wchar_t letter : text) pack(static_cast<std::make_unsigned_t<wchar_t>>(letter), packed_);
  return keepPacked();
}

const char* TextPool::packedAt(Place place) const { return blocks_[place >> kByteBits].data() + place % kBlockSize; }

void TextPool::read(Place place, CString& text) const {
  const char* at = packedAt(place);
  text.resize(unpack(at));
  for (wchar_t& letter : text) letter = static_cast<wchar_t>(unpack(at));
}

TextPool::Place TextPool::keepPlaces(std::span<const Place> places) {
  packed_.clear();
  pack(places.size(), packed_);
  for (const Place place : places) pack(place, packed_);
  return keepPacked();
}

void TextPool::readPlaces(Place place, std::span<Place> places) const {
  const char* at = packedAt(place);
  unpack(at);
  for (Place& held : places) held = unpack(at);
}

void PointList::reserve(framework::ArrayIndex count) {
  if (count <= 0) return;
  entries_.reserve(static_cast<std::size_t>(count));
  contents_.reserve(static_cast<std::size_t>(count));
}

void PointList::add(const tpoint& row) {
  if (entries_.size() == std::numeric_limits<std::uint32_t>::max()) throw std::length_error("points: too many rows");
  std::array<TextPool::Place, kTexts.size()> places{};
  for (std::size_t k = 0; k < kTexts.size(); ++k) places[k] = texts_.keep(row.*kTexts[k]);
  contents_.push_back({row.easting, row.northing, row.elevation, row.offset, texts_.keepPlaces(places)});
  entries_.push_back({row.station, static_cast<std::uint32_t>(contents_.size() - 1), row.number});
}

void PointList::read(framework::ArrayIndex index, tpoint& row) const {
  if (index < 0 || index >= size()) throw framework::InvalidArgumentException();
  const Entry& entry = entries_[static_cast<std::size_t>(index)];
  const Contents& contents = contents_[entry.added];
  row.number = entry.number;
  row.easting = contents.easting;
  row.northing = contents.northing;
  row.elevation = contents.elevation;
  row.station = entry.station;
  row.offset = contents.offset;
  std::array<TextPool::Place, kTexts.size()> places{};
  texts_.readPlaces(contents.texts, places);
  for (std::size_t k = 0; k < kTexts.size(); ++k) texts_.read(places[k], row.*kTexts[k]);
}

tpoint PointList::operator[](framework::ArrayIndex index) const {
  tpoint row;
  read(index, row);
  return row;
}

}  // namespace lvx::points
