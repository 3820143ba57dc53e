#include "cairo/cairo_file.h"

#include <cmath>
#include <new>
#include <string>

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include "cairo/cairo_text.h"
#include "cairo/svg_bytes.h"

namespace lvx::cairo {

using canvas::Place;

namespace {

constexpr double kPoints = 72.0 / 25.4;  ///< of a millimetre

class CairoFile final : public canvas::FileCanvas {
 public:
  CairoFile(const canvas::FileFacts& facts, canvas::ByteTarget& target, CairoText& texts)
      : target_(target), texts_(texts), format_(facts.format) {
    const MemoryWatch watch(status_);
    if (format_ == canvas::FileFormat::Svg) {
      surface_ = cairo_svg_surface_create_for_stream(&CairoFile::keep, this, facts.size.width, facts.size.height);
      cairo_svg_surface_set_document_unit(surface_, CAIRO_SVG_UNIT_MM);
    } else {
      surface_ = cairo_pdf_surface_create_for_stream(&CairoFile::pass, this, 1.0, 1.0);
      cairo_pdf_surface_set_metadata(surface_, CAIRO_PDF_METADATA_TITLE, shownText(facts.title).c_str());
      cairo_pdf_surface_set_metadata(surface_, CAIRO_PDF_METADATA_CREATE_DATE, std::string(facts.moment).c_str());
      cairo_pdf_surface_set_metadata(surface_, CAIRO_PDF_METADATA_CREATOR, "lvxhost");
    }
  }
  ~CairoFile() override {
    cairo_destroy(context_);
    isClosed_ = true;
    cairo_surface_finish(surface_);
    cairo_surface_destroy(surface_);
  }

  void beginSheet(canvas::Size size) noexcept override {
    const MemoryWatch watch(status_);
    if (format_ == canvas::FileFormat::Pdf)
      cairo_pdf_surface_set_size(surface_, size.width * kPoints, size.height * kPoints);
    cairo_destroy(context_);
    context_ = cairo_create(surface_);
    if (format_ == canvas::FileFormat::Pdf) cairo_scale(context_, kPoints, kPoints);
    cairo_set_line_join(context_, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(context_, CAIRO_LINE_CAP_BUTT);
  }
  void endSheet() noexcept override {
    const MemoryWatch watch(status_);
    cairo_show_page(context_);
    note(cairo_status(context_));
    note(cairo_surface_status(surface_));
    note(texts_.status());
  }
  void line(std::span<const Place> places, const canvas::Pen& pen) noexcept override {
    if (places.size() < 2) return;
    const MemoryWatch watch(status_);
    set(pen.colour);
    cairo_set_line_width(context_, pen.width);
    cairo_set_dash(context_, pen.dashes.data(), static_cast<int>(pen.dashes.size()), 0.0);
    path(places);
    const bool isClosed = places.front().x == places.back().x && places.front().y == places.back().y;
    if (isClosed) cairo_close_path(context_);
    cairo_stroke(context_);
  }
  void area(std::span<const Place> corners, canvas::Colour colour) noexcept override {
    if (corners.size() < 3) return;
    const MemoryWatch watch(status_);
    set(colour);
    path(corners);
    cairo_close_path(context_);
    cairo_fill(context_);
  }
  void text(Place place, std::string_view text, const canvas::TextStyle& style) noexcept override {
    if (text.empty()) return;
    double back = 0.0;
    if (style.anchor == canvas::Anchor::Middle) back = texts_.widthOf(text, style) / 2.0;
    if (style.anchor == canvas::Anchor::Right) back = texts_.widthOf(text, style);
    set(style.colour);
    cairo_save(context_);
    cairo_translate(context_, place.x, place.y);
    if (style.isUpright) cairo_rotate(context_, -std::acos(0.0));
    cairo_translate(context_, -back, 0.0);
    texts_.show(context_, text, style);
    cairo_restore(context_);
  }

  const char* finish() noexcept override {
    {
      const MemoryWatch watch(status_);
      cairo_destroy(context_);
      context_ = nullptr;
      cairo_surface_finish(surface_);
    }
    note(cairo_surface_status(surface_));
    note(texts_.status());
    if (format_ == canvas::FileFormat::Svg && status_ == CAIRO_STATUS_SUCCESS && !isClosed_) {
      try {
        renumberSurfaces(kept_);
      } catch (const std::bad_alloc&) {
        note(CAIRO_STATUS_NO_MEMORY);
      }
      if (status_ == CAIRO_STATUS_SUCCESS && !target_.write(kept_)) note(CAIRO_STATUS_WRITE_ERROR);
    }
    isClosed_ = true;
    return status_ == CAIRO_STATUS_SUCCESS ? nullptr : cairo_status_to_string(status_);
  }
  [[nodiscard]] bool hasFailed() const noexcept override { return status_ != CAIRO_STATUS_SUCCESS; }

 private:
  static cairo_status_t pass(void* file, const unsigned char* bytes, unsigned length) {
    auto& self = *static_cast<CairoFile*>(file);
    if (self.isClosed_) return CAIRO_STATUS_SUCCESS;
    if (self.status_ != CAIRO_STATUS_SUCCESS) return self.status_;
    if (!self.target_.write({reinterpret_cast<const char*>(bytes), length})) self.note(CAIRO_STATUS_WRITE_ERROR);
    return self.status_;
  }
  static cairo_status_t keep(void* file, const unsigned char* bytes, unsigned length) {
    auto& self = *static_cast<CairoFile*>(file);
    if (self.isClosed_) return CAIRO_STATUS_SUCCESS;
    try {
      self.kept_.append(reinterpret_cast<const char*>(bytes), length);
      return CAIRO_STATUS_SUCCESS;
    } catch (const std::bad_alloc&) {
      return CAIRO_STATUS_NO_MEMORY;
    }
  }
  void note(cairo_status_t status) noexcept {
    if (status_ == CAIRO_STATUS_SUCCESS) status_ = status;
  }
  void set(canvas::Colour colour) noexcept { cairo_set_source_rgb(context_, colour.red, colour.green, colour.blue); }
  void path(std::span<const Place> places) noexcept {
    cairo_new_path(context_);
    for (const Place& place : places) cairo_line_to(context_, place.x, place.y);
  }

  canvas::ByteTarget& target_;
  CairoText& texts_;
  canvas::FileFormat format_;
  cairo_surface_t* surface_ = nullptr;
  cairo_t* context_ = nullptr;
  cairo_status_t status_ = CAIRO_STATUS_SUCCESS;
  bool isClosed_ = false;
  std::string kept_;
};

class CairoFileMaker final : public canvas::FileMaker {
 public:
  canvas::TextMeasure& measure() noexcept override { return texts_; }
  std::unique_ptr<canvas::FileCanvas> open(const canvas::FileFacts& facts,
                                           canvas::ByteTarget& target) noexcept override {
    return std::unique_ptr<canvas::FileCanvas>(new (std::nothrow) CairoFile(facts, target, texts_));
  }

 private:
  CairoText texts_;
};

}  // namespace

canvas::FileMaker* newFileMaker() noexcept { return new (std::nothrow) CairoFileMaker(); }

}  // namespace lvx::cairo
