#pragma once

#include <QString>
#include <optional>

#include "desktop/common/scheme.h"
#include "desktop/shell/drawing_sources.h"
#include "runtime/host_choices.h"

namespace lvx::desktop {

/// How the desktop is started; what isn't given here stands in the user's settings.
struct DesktopOptions {
  runtime::HostChoices choices;
  std::optional<Scheme> scheme;
  /// Opened at the start; without a file: none.
  DrawingSources drawing;
  /// Where the settings are kept (ini); empty: the user's own place.
  QString settingsFile;
};

}  // namespace lvx::desktop
