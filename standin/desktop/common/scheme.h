#pragma once

#include <QString>
#include <cstdint>
#include <optional>

class QPainter;
class QPalette;
class QRect;

/// Light and dark: one drawn style with two palettes, the same on every desktop.
namespace lvx::desktop {

enum class Scheme : std::uint8_t { System, Light, Dark };

/// Puts the style and the palette of `scheme` on the application; windows that stand follow at once. System: what the
/// user's desktop shows.
void applyScheme(Scheme scheme);
/// Whether the application is dark now, whatever the reason.
[[nodiscard]] bool isDark();

/// Marks an area of our own drawing that has the keyboard.
void paintFocus(QPainter& painter, const QRect& area, const QPalette& palette);

/// "system", "light", "dark", as options and settings name them.
[[nodiscard]] QString schemeName(Scheme scheme);
[[nodiscard]] std::optional<Scheme> schemeOf(const QString& name);

}  // namespace lvx::desktop
