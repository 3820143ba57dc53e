#include "cairo/cairo_text.h"

#include <cstddef>
#include <cstdint>

namespace lvx::cairo {

namespace {

constexpr const char* kFamily = "DejaVu Sans";
/// Letters are drawn narrower, as on drawings, so that numbers stand closer.
constexpr double kNarrow = 0.88;

cairo_font_options_t* newOptions() {
  cairo_font_options_t* const options = cairo_font_options_create();
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
  return options;
}

cairo_matrix_t matrixOf(double size) {
  cairo_matrix_t matrix;
  cairo_matrix_init_scale(&matrix, size * kNarrow, size);
  return matrix;
}

cairo_scaled_font_t* newScaledFont(cairo_font_face_t* face, double size) {
  cairo_matrix_t same;
  cairo_matrix_init_identity(&same);
  const cairo_matrix_t matrix = matrixOf(size);
  cairo_font_options_t* const options = newOptions();
  cairo_scaled_font_t* const font = cairo_scaled_font_create(face, &matrix, &same, options);
  cairo_font_options_destroy(options);
  return font;
}

cairo_font_face_t* newFace(bool isBold) {
  return cairo_toy_font_face_create(kFamily, CAIRO_FONT_SLANT_NORMAL,
                                    isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
}

/// Bytes of the UTF-8 sequence at the begin; 0 where there is none.
std::size_t sequenceAt(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  if (byte(0) < 0x80) return 1;
  const std::size_t count = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
  if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < count) return 0;
  for (std::size_t i = 1; i < count; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  const bool isTooLong = (byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xF0 && byte(1) < 0x90);
  const bool isNoCharacter = (byte(0) == 0xED && byte(1) > 0x9F) || (byte(0) == 0xF4 && byte(1) > 0x8F);
  return isTooLong || isNoCharacter ? 0 : count;
}

}  // namespace

std::string shownText(std::string_view text) {
  constexpr std::string_view kUnknown = "\xEF\xBF\xBD";
  std::string shown;
  shown.reserve(text.size());
  while (!text.empty()) {
    const std::size_t count = sequenceAt(text);
    const bool isControl = count == 1 && static_cast<std::uint8_t>(text[0]) < 0x20;
    shown += count == 0 || isControl ? kUnknown : text.substr(0, count);
    text.remove_prefix(count == 0 ? 1 : count);
  }
  return shown;
}

CairoText::~CairoText() {
  for (const auto& [key, font] : fonts_) {
    cairo_scaled_font_destroy(font.scaled);
    cairo_font_face_destroy(font.face);
  }
}

double CairoText::capitalHeight(bool isBold) {
  double& height = capitalHeights_[isBold ? 1 : 0];
  if (height > 0.0) return height;
  constexpr double kLarge = 100.0;
  cairo_font_face_t* const face = newFace(isBold);
  cairo_scaled_font_t* const font = newScaledFont(face, kLarge);
  cairo_text_extents_t extents{};
  cairo_scaled_font_text_extents(font, "H", &extents);
  note(cairo_scaled_font_status(font));
  cairo_scaled_font_destroy(font);
  cairo_font_face_destroy(face);
  constexpr double kUsual = 0.729;
  height = extents.height > 0.0 ? extents.height / kLarge : kUsual;
  return height;
}

const CairoText::Font& CairoText::fontFor(const canvas::TextStyle& style) {
  const auto [at, isNew] = fonts_.try_emplace({style.height, style.isBold});
  Font& font = at->second;
  if (isNew) {
    font.size = style.height / capitalHeight(style.isBold);
    font.face = newFace(style.isBold);
    font.scaled = newScaledFont(font.face, font.size);
  }
  return font;
}

double CairoText::widthOf(std::string_view text, const canvas::TextStyle& style) noexcept {
  const MemoryWatch watch(status_);
  cairo_text_extents_t extents{};
  cairo_scaled_font_text_extents(fontFor(style).scaled, shownText(text).c_str(), &extents);
  note(cairo_scaled_font_status(fontFor(style).scaled));
  return extents.x_advance;
}

void CairoText::show(cairo_t* context, std::string_view text, const canvas::TextStyle& style) noexcept {
  const MemoryWatch watch(status_);
  const Font& font = fontFor(style);
  const std::string shown = shownText(text);
  cairo_glyph_t* glyphs = nullptr;
  cairo_text_cluster_t* clusters = nullptr;
  int glyphCount = 0;
  int clusterCount = 0;
  cairo_text_cluster_flags_t flags{};
  const cairo_status_t status =
      cairo_scaled_font_text_to_glyphs(font.scaled, 0.0, 0.0, shown.data(), static_cast<int>(shown.size()), &glyphs,
                                       &glyphCount, &clusters, &clusterCount, &flags);
  note(status);
  if (status != CAIRO_STATUS_SUCCESS) return;
  cairo_set_font_face(context, font.face);
  const cairo_matrix_t matrix = matrixOf(font.size);
  cairo_set_font_matrix(context, &matrix);
  cairo_font_options_t* const options = newOptions();
  cairo_set_font_options(context, options);
  cairo_font_options_destroy(options);
  // With the text beside its letters, so that it can be searched for and copied.
  cairo_show_text_glyphs(context, shown.data(), static_cast<int>(shown.size()), glyphs, glyphCount, clusters,
                         clusterCount, flags);
  cairo_glyph_free(glyphs);
  cairo_text_cluster_free(clusters);
}

}  // namespace lvx::cairo
