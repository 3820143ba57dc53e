#pragma once

#include <QTranslator>
#include <string>

namespace lvx::desktop {

/// The language of the windows' words, ours and Qt's own, for as long as this lives. Windows take their words when they
/// are built, so it has to be there before them.
///
///     const Language language("de");
///     MainWindow window(options);      // "Datei", "Ansicht", "Berichte"
///
/// Languages are named as those of the reports ("en", "de"); one that isn't there gives English. Where the system has no
/// words of Qt's in a language, the few that are Qt's (buttons of boxes, the file dialog) are English. Needs the
/// application; belongs to the windows' thread.
class Language {
 public:
  explicit Language(const std::string& language);
  Language(const Language&) = delete;
  Language& operator=(const Language&) = delete;
  ~Language();

  /// True where Qt's own words were found too. English always has them.
  [[nodiscard]] bool hasQtWords() const { return hasQtWords_; }

 private:
  QTranslator own_;
  QTranslator qt_;
  bool hasQtWords_ = true;
};

}  // namespace lvx::desktop
