// The windows' words: whether every one is translated, whether the translations fit their places, and which of them show.
#include "desktop/common/language.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFile>
#include <QKeySequence>
#include <QListView>
#include <QMessageBox>
#include <QRegularExpression>
#include <QScreen>
#include <QSet>
#include <QTabBar>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>
#include <QXmlStreamReader>
#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <vector>

#include "program_window.h"
#include "services/messages.h"
#include "support/places.h"

namespace lvx::test {
namespace {

constexpr const char* kLanguages[] = {"en", "de"};

std::filesystem::path wordsOf(const std::string& language) {
  return std::filesystem::path(test::inSource("/standin/desktop/translations")) /
         ("lvxhost-desktop_" + language + ".ts");
}

/// A text of the sources with what a translator made of it.
struct Text {
  QString context;
  QString source;
  QString comment;
  bool counts = false;
  /// "unfinished", "vanished", "obsolete"; empty: done.
  QString state;
  /// One, or those of each plural.
  QStringList translations;
  bool hasPlaceInSources = false;

  [[nodiscard]] std::string name() const { return (context + QStringLiteral(": ") + source).toStdString(); }
};

std::vector<Text> readWords(const std::filesystem::path& path) {
  QFile file(QString::fromStdString(path.string()));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
  QXmlStreamReader xml(&file);
  std::vector<Text> texts;
  QString context;
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    const QString element = xml.name().toString();
    if (element == QStringLiteral("name")) {
      context = xml.readElementText();
    } else if (element == QStringLiteral("message")) {
      texts.emplace_back().context = context;
      texts.back().counts = xml.attributes().value(QStringLiteral("numerus")) == QStringLiteral("yes");
    } else if (element == QStringLiteral("location")) {
      texts.back().hasPlaceInSources = true;
    } else if (element == QStringLiteral("source")) {
      texts.back().source = xml.readElementText();
    } else if (element == QStringLiteral("comment")) {
      texts.back().comment = xml.readElementText();
    } else if (element == QStringLiteral("translation")) {
      texts.back().state = xml.attributes().value(QStringLiteral("type")).toString();
      if (!texts.back().counts) texts.back().translations << xml.readElementText();
    } else if (element == QStringLiteral("numerusform")) {
      texts.back().translations << xml.readElementText();
    }
  }
  EXPECT_FALSE(xml.hasError()) << path << ": " << xml.errorString().toStdString();
  return texts;
}

/// What a pattern finds in a text, sorted.
QStringList partsOf(const QString& text, const char* pattern) {
  QStringList parts;
  for (auto found = QRegularExpression(QString::fromLatin1(pattern)).globalMatch(text); found.hasNext();)
    parts << found.next().captured();
  parts.sort();
  return parts;
}

int accessKeysOf(const QString& text) {
  return static_cast<int>(QString(text).remove(QStringLiteral("&&")).count(QLatin1Char('&')));
}

std::set<std::tuple<QString, QString, QString, bool>> namesOf(const std::vector<Text>& texts) {
  std::set<std::tuple<QString, QString, QString, bool>> names;
  for (const Text& text : texts) names.emplace(text.context, text.source, text.comment, text.counts);
  return names;
}

TEST(Translation, HoldsTheTextsOfTheSourcesAndNoOther) {
  for (const std::string language : kLanguages) {
    const TemporaryFolder folder;
    const std::filesystem::path fresh = folder / wordsOf(language).filename().string();
    std::filesystem::copy_file(wordsOf(language), fresh);
    RunRequest request;
    request.program = LVX_LUPDATE;
    request.arguments = {
        "-locations", "none", "-no-obsolete", "-I", test::inSource("/standin"), test::inSource("/standin/desktop")};
    if (language == "en") request.arguments.emplace_back("-pluralonly");
    request.arguments.insert(request.arguments.end(), {"-ts", fresh.string()});
    const RunResult result = runProgram(request);
    ASSERT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "") << "a class that isn't found has its texts elsewhere than where windows look for them";

    const auto kept = namesOf(readWords(wordsOf(language)));
    const auto wanted = namesOf(readWords(fresh));
    ASSERT_FALSE(wanted.empty());
    for (const auto& name : wanted)
      EXPECT_TRUE(kept.contains(name)) << language << " lacks '" << std::get<1>(name).toStdString()
                                       << "': build update_translations, then translate it";
    for (const auto& name : kept)
      EXPECT_TRUE(wanted.contains(name)) << language << " still has '" << std::get<1>(name).toStdString()
                                         << "': build update_translations";
  }
}

TEST(Translation, IsWholeAndTiedToNoPlaceInTheSources) {
  for (const std::string language : kLanguages) {
    const std::vector<Text> texts = readWords(wordsOf(language));
    ASSERT_FALSE(texts.empty());
    for (const Text& text : texts) {
      EXPECT_EQ(text.state.toStdString(), "") << language << ", " << text.name();
      EXPECT_EQ(text.translations.size(), text.counts ? 2 : 1) << language << ", " << text.name();
      for (const QString& translation : text.translations)
        EXPECT_FALSE(translation.trimmed().isEmpty()) << language << ", " << text.name();
      EXPECT_FALSE(text.hasPlaceInSources) << "line numbers change with every change of the sources: " << text.name();
    }
  }
}

TEST(Translation, KeepsPlacesAccessKeysTagsAndPatterns) {
  for (const std::string language : kLanguages) {
    for (const Text& text : readWords(wordsOf(language))) {
      for (const QString& translation : text.translations) {
        const std::string what = text.name() + "\n  " + translation.toStdString();
        for (const char* pattern : {"%L?[1-9]", "%n", "\\[\\*\\]", "</?[a-z0-9]+>", "\\(\\*[^)]*\\)", ";;", "\n", "…$",
                                    "^ | $", "\\.(svg|pdf)\\b", "lvx\\w+", "\\b(OPEN|ZOOM|HELP)\\b"})
          EXPECT_EQ(partsOf(translation, pattern), partsOf(text.source, pattern)) << pattern << " in " << what;
        EXPECT_EQ(accessKeysOf(translation), accessKeysOf(text.source)) << what;
        EXPECT_LE(accessKeysOf(translation), 1) << what;
      }
    }
  }
}

/// The words of a message file by their numbers.
std::map<int, QString> messagesOf(const std::filesystem::path& path) {
  std::map<int, QString> messages;
  for (const QString& line : QString::fromLatin1(QByteArray::fromStdString(fileBytes(path))).split(QLatin1Char('\n'))) {
    bool isNumber = false;
    const int number = line.section(QLatin1Char(' '), 0, 0).toInt(&isNumber);
    if (isNumber) messages[number] = line.section(QLatin1Char(' '), 1).trimmed();
  }
  return messages;
}

TEST(Translation, NamesThingsAsTheReportsDo) {
  using services::Message;
  const auto messages = messagesOf(test::inSource("/messages/de/LVX_MIRELREPORT.txt"));
  std::map<QString, QString> words;
  for (const Text& text : readWords(wordsOf("de"))) words[text.source] = text.translations.value(0);
  const auto message = [&](Message wanted) {
    const auto found = messages.find(static_cast<int>(wanted));
    return found == messages.end() ? std::string() : QString(found->second).remove(QLatin1Char(':')).toStdString();
  };
  const std::pair<const char*, Message> names[] = {
      {"Site", Message::SiteLabel},
      {"Alignment", Message::AlignmentLabel},
      {"Sample line group", Message::SampleLineGroupLabel},
      {"Surface", Message::SurfaceLabel},
      {"Sample line", Message::SampleLineName},
      {"Profile", Message::ProfileLabel},
      {"Corridor", Message::CorridorLabel},
      {"Point groups", Message::PointGroupLabel},
      {"Height", Message::ProjectionElevation},
      {"left", Message::GlsLeft},
      {"right", Message::GlsRight},
  };
  for (const auto& [source, wanted] : names)
    EXPECT_EQ(words[QString::fromLatin1(source)].toStdString(), message(wanted)) << source;
  // Menus name the reports by their titles.
  const std::pair<const char*, Message> reports[] = {{"Profile &projection…", Message::ProjectionTitle},
                                                     {"P&oints…", Message::PointsTitle},
                                                     {"&GLS…", Message::GlsTitle}};
  for (const auto& [source, wanted] : reports)
    EXPECT_EQ(words[QString::fromUtf8(source)].remove(QLatin1Char('&')).remove(QChar(0x2026)).toStdString(),
              message(wanted));
}

// ---------------------------------------------------------------- windows

desktop::DesktopOptions inLanguage(const std::string& language) {
  desktop::DesktopOptions options;
  options.choices.language = language;
  return options;
}

QStringList titlesOf(const ProgramWindow& program) {
  return onGui([&] {
    QStringList titles;
    for (const QAction* const menu : program.window->menuBar()->actions())
      titles << menu->text().remove(QLatin1Char('&'));
    for (const QDockWidget* const dock : program.window->findChildren<QDockWidget*>()) titles << dock->windowTitle();
    titles.sort();
    return titles;
  });
}

bool hasQtWords(const std::string& language) {
  return onGui([&] { return desktop::Language(language).hasQtWords(); });
}

/// The texts of a window's buttons, without the marks of their access keys.
QStringList buttonsOf(const QWidget* window) {
  return onGui([&] {
    QStringList texts;
    for (const auto* const button : window->findChildren<QPushButton*>())
      texts << button->text().remove(QLatin1Char('&'));
    return texts;
  });
}

TEST(Language, AGermanWindowSpeaksGermanAndTheNextOneEnglish) {
  {
    const ProgramWindow german(kExample, inLanguage("de"));
    for (const char* title :
         {"Datei", "Ansicht", "Berichte", "Hilfe", "Zeichnung", "Konsole", "Längsschnitt", "Querprofil"})
      EXPECT_TRUE(titlesOf(german).contains(QString::fromUtf8(title))) << title;
    EXPECT_TRUE(german.waitUntilSaid("valley-road.xml ist geöffnet."));
    EXPECT_EQ(onGui([&] { return german.window->findChild<QLabel*>(QStringLiteral("consolePrompt"))->text(); }),
              QStringLiteral("Befehl:"));
    const QTreeView* const tree = german.part<QTreeView>("treeView");
    EXPECT_TRUE(
        onGui([&] { return tree->model()->index(0, 0).data().toString(); }).startsWith(QStringLiteral("Gebiete (")));
  }
  const ProgramWindow english(kExample, inLanguage("en"));
  for (const char* title : {"File", "View", "Reports", "Help", "Drawing", "Console", "Profile", "Cross section"})
    EXPECT_TRUE(titlesOf(english).contains(QString::fromUtf8(title))) << title;
  EXPECT_TRUE(english.waitUntilSaid("valley-road.xml is open."));
}

TEST(Language, GermanStationsAndPlacesHaveTheirOwnWordsAndTheSameNumbers) {
  ProgramWindow program(kExample, inLanguage("de"));
  program.user.moveTo(program.part("plan"), QPoint(200, 200));
  ASSERT_TRUE(program.user.waitFor([&] {
    return program.window->findChild<QLabel*>(QStringLiteral("station"))->text().contains(QStringLiteral("Station"));
  }));
  const auto text = [&](const char* label) {
    return onGui([&] { return program.window->findChild<QLabel*>(QLatin1String(label))->text(); });
  };
  EXPECT_TRUE(
      QRegularExpression(QStringLiteral("^R \\d+\\.\\d{3}   H \\d+\\.\\d{3}$")).match(text("coordinates")).hasMatch())
      << text("coordinates").toStdString();
  EXPECT_TRUE(
      QRegularExpression(QStringLiteral("Station -?\\d+\\+\\d{3}\\.\\d{3}   Abstand -?\\d+\\.\\d{3} (links|rechts)$"))
          .match(text("station"))
          .hasMatch())
      << text("station").toStdString();
}

TEST(Language, GermanBoxesAndFileDialogsAreGerman) {
  const bool qtSpeaksGerman = hasQtWords("de");
  ProgramWindow program(kExample, inLanguage("de"));
  program.user.key(Qt::Key_D, Qt::AltModifier);
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activePopupWidget() != nullptr; }));
  program.user.key(Qt::Key_F);
  QWidget* const open = program.user.waitForActiveWindow(QStringLiteral("Zeichnung öffnen"));
  ASSERT_NE(open, nullptr);
  EXPECT_TRUE(buttonsOf(open).contains(qtSpeaksGerman ? QStringLiteral("Abbrechen") : QStringLiteral("Cancel")))
      << buttonsOf(open).join(QLatin1Char(' ')).toStdString();
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));

  program.enter("open " + program.path("nothing.xml").toStdString());
  QWidget* const box = program.waitForNamed("openFailed");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(onGui([&] { return qobject_cast<QMessageBox*>(box)->text(); }),
            QStringLiteral("nothing.xml kann nicht geöffnet werden."));
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));

  program.enter("unsinn");
  EXPECT_TRUE(program.waitUntilSaid("Den Befehl „unsinn“ gibt es nicht."));
}

TEST(Language, PluralsAreTheirLanguages) {
  for (const auto& [language, one, many] :
       {std::tuple{"de", "%n Abschnitt", "%n Abschnitte"}, std::tuple{"en", "%n region", "%n regions"}}) {
    const auto counted = [language = std::string(language)](int count) {
      return onGui([&] {
        const desktop::Language words(language);
        return QCoreApplication::translate("lvx::desktop::DrawingTreeModel", "%n region(s)", nullptr, count);
      });
    };
    EXPECT_EQ(counted(1), QString::fromUtf8(one).replace(QStringLiteral("%n"), QStringLiteral("1")));
    EXPECT_EQ(counted(2), QString::fromUtf8(many).replace(QStringLiteral("%n"), QStringLiteral("2")));
  }
}

TEST(Language, OneThatIsNotThereGivesEnglish) {
  const ProgramWindow program(kExample, inLanguage("tlh"));
  EXPECT_TRUE(titlesOf(program).contains(QStringLiteral("Reports")));
}

// ---------------------------------------------------------------- keys

/// Tells which of `texts` share an access key.
void expectUniqueAccessKeys(const QStringList& texts, const std::string& where) {
  std::map<QString, QString> owners;
  for (const QString& text : texts) {
    const QKeySequence key = QKeySequence::mnemonic(text);
    if (key.isEmpty()) continue;
    const auto [owner, isFirst] = owners.emplace(key.toString(), text);
    EXPECT_TRUE(isFirst) << where << ": '" << owner->second.toStdString() << "' and '" << text.toStdString() << "'";
  }
}

TEST(Language, NoTwoEntriesOfAMenuShareAKey) {
  for (const std::string language : kLanguages) {
    ProgramWindow program(kExample, inLanguage(language));
    const auto textsOf = [](const QWidget* menu) {
      QStringList texts;
      for (const QAction* const action : menu->actions())
        if (!action->isSeparator()) texts << action->text();
      return texts;
    };
    const auto menus = onGui([&] {
      std::map<QString, QStringList> found;
      for (const QMenu* const menu : program.window->findChildren<QMenu*>())
        if (!menu->title().isEmpty()) found[menu->title()] = textsOf(menu);
      return found;
    });
    EXPECT_GE(menus.size(), 9U) << "four menus and those in them";
    for (const auto& [title, texts] : menus) expectUniqueAccessKeys(texts, language + ", " + title.toStdString());

    // What Alt reaches in the window: the menus, and the labels and buttons of the parts that show.
    const QStringList reached = onGui([&] {
      QStringList texts = textsOf(program.window->menuBar());
      for (const auto* const label : program.window->findChildren<QLabel*>())
        if (label->isVisible() && label->buddy() != nullptr) texts << label->text();
      for (const auto* const button : program.window->findChildren<QPushButton*>())
        if (button->isVisible()) texts << button->text();
      return texts;
    });
    expectUniqueAccessKeys(reached, language + ", the window");

    const QStringList shortcuts = onGui([&] {
      QStringList keys;
      for (const QAction* const action : program.window->findChildren<QAction*>())
        if (action->shortcutContext() == Qt::WindowShortcut)
          for (const QKeySequence& sequence : action->shortcuts()) keys << sequence.toString();
      return keys;
    });
    EXPECT_GE(shortcuts.size(), 12);
    EXPECT_EQ(QSet<QString>(shortcuts.begin(), shortcuts.end()).size(), shortcuts.size())
        << shortcuts.join(QLatin1Char(' ')).toStdString();

    // The chart's own menu is made when it opens.
    auto* const canvas = onGui([&] {
      return program.window->findChild<QWidget*>(QStringLiteral("profile"))
          ->findChild<QWidget*>(QStringLiteral("canvas"));
    });
    program.user.click(canvas, onGui([&] { return canvas->rect().center(); }), Qt::RightButton);
    ASSERT_TRUE(program.user.waitFor([] { return QApplication::activePopupWidget() != nullptr; }));
    expectUniqueAccessKeys(onGui([&] { return textsOf(QApplication::activePopupWidget()); }), language + ", the chart");
    program.user.key(Qt::Key_Escape);
    ASSERT_TRUE(program.user.waitFor([] { return QApplication::activePopupWidget() == nullptr; }));
  }
}

// ---------------------------------------------------------------- room

/// Parts of a window that are too narrow for their text, with it.
QStringList cutParts(const QWidget* window) {
  QStringList cut;
  const auto tell = [&cut](const QWidget* widget, const QString& text, int has, int needs) {
    if (has < needs) cut << QStringLiteral("%1 '%2': %3 of %4").arg(widget->objectName(), text).arg(has).arg(needs);
  };
  for (const auto* const widget : window->findChildren<QWidget*>()) {
    // What lies behind another tab is visible to Qt, and has no room yet.
    if (widget->visibleRegion().isEmpty()) continue;
    if (const auto* const label = qobject_cast<const QLabel*>(widget)) {
      // What has no claim of its own on room shows its whole text elsewhere.
      if (label->text().isEmpty() || label->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored) continue;
      tell(label, label->text(), label->width(),
           label->wordWrap() ? label->minimumSizeHint().width() : label->sizeHint().width());
      tell(label, label->text(), label->height(),
           label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height());
    } else if (qobject_cast<const QAbstractButton*>(widget) != nullptr ||
               qobject_cast<const QComboBox*>(widget) != nullptr) {
      // Qt's own small buttons (close a panel, more of a tool bar) have no text.
      const auto* const button = qobject_cast<const QAbstractButton*>(widget);
      if (button != nullptr && button->text().isEmpty()) continue;
      if (const auto* const tool = qobject_cast<const QToolButton*>(widget);
          tool != nullptr && tool->toolButtonStyle() == Qt::ToolButtonIconOnly && !tool->icon().isNull())
        continue;
      const auto* const box = qobject_cast<const QComboBox*>(widget);
      tell(widget, button != nullptr ? button->text() : box->currentText(), widget->width(),
           box != nullptr ? box->minimumSizeHint().width() : widget->sizeHint().width());
    } else if (const auto* const edit = qobject_cast<const QLineEdit*>(widget)) {
      tell(edit, edit->placeholderText(), edit->width(),
           edit->fontMetrics().horizontalAdvance(edit->placeholderText()));
    } else if (const auto* const tabs = qobject_cast<const QTabBar*>(widget)) {
      for (int tab = 0; tab < tabs->count(); ++tab)
        tell(tabs, tabs->tabText(tab), tabs->tabRect(tab).width(),
             tabs->fontMetrics().size(Qt::TextShowMnemonic, tabs->tabText(tab)).width());
    } else if (const auto* const dock = qobject_cast<const QDockWidget*>(widget)) {
      int room = dock->width();
      for (const auto* const button : dock->findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly))
        if (button->isVisible()) room = std::min(room, button->x());
      tell(dock, dock->windowTitle(), room, dock->fontMetrics().horizontalAdvance(dock->windowTitle()));
    } else if (const auto* const bar = qobject_cast<const QToolBar*>(widget)) {
      const auto* const more = bar->findChild<QWidget*>(QStringLiteral("qt_toolbar_ext_button"));
      if (more != nullptr && more->isVisible())
        cut << QStringLiteral("%1 has more than it shows").arg(bar->objectName());
    }
  }
  return cut;
}

/// Entries of an open menu that stand out of it or over the screen's edge.
QStringList cutEntries(QMenu* menu) {
  QStringList cut;
  if (!menu->screen()->availableGeometry().contains(menu->geometry()))
    cut << QStringLiteral("%1 leaves the screen").arg(menu->title());
  for (const QAction* const action : menu->actions()) {
    const QRect place = menu->actionGeometry(const_cast<QAction*>(action));
    const QString words =
        QString(action->text()).remove(QLatin1Char('&')) + action->shortcut().toString(QKeySequence::NativeText);
    if (!menu->rect().contains(place) || place.width() < menu->fontMetrics().horizontalAdvance(words))
      cut << QStringLiteral("%1 > %2").arg(menu->title(), action->text());
  }
  return cut;
}

std::string lines(const QStringList& list) { return list.join(QLatin1Char('\n')).toStdString(); }

TEST(Language, NoTextOfTheWindowIsCut) {
  for (const std::string language : kLanguages) {
    ProgramWindow program(kExample, inLanguage(language));
    // With a station in the status line and a section in the place of the profile.
    program.user.moveTo(program.part("plan"), QPoint(200, 200));
    ASSERT_TRUE(program.user.waitFor([&] {
      return program.window->findChild<QLabel*>(QStringLiteral("station"))->text().contains(QLatin1Char('+'));
    }));
    EXPECT_EQ(lines(onGui([&] { return cutParts(program.window); })), "") << language;

    // Each tab in front once.
    for (QTabBar* const tabs : onGui([&] { return program.window->findChildren<QTabBar*>(); }))
      for (int tab = 0; tab < onGui([&] { return tabs->count(); }); ++tab) {
        program.user.click(tabs, onGui([&] { return tabs->tabRect(tab).center(); }));
        ASSERT_TRUE(program.user.waitFor([&] { return tabs->currentIndex() == tab; }));
        EXPECT_EQ(lines(onGui([&] { return cutParts(program.window); })), "") << language << ", tab " << tab;
      }
  }
}

TEST(Language, NoEntryOfAMenuIsCut) {
  for (const std::string language : kLanguages) {
    ProgramWindow program(kExample, inLanguage(language));
    QMenuBar* const bar = onGui([&] { return program.window->menuBar(); });
    for (QAction* const title : onGui([&] { return bar->actions(); })) {
      QMenu* const menu = onGui([&] { return title->menu(); });
      program.user.click(bar, onGui([&] { return bar->actionGeometry(title).center(); }));
      ASSERT_TRUE(program.user.waitFor([&] { return menu->isVisible(); }));
      EXPECT_EQ(lines(onGui([&] { return cutEntries(menu); })), "") << language;
      for (QAction* const entry : onGui([&] { return menu->actions(); })) {
        QMenu* const below = onGui([&] { return entry->menu(); });
        if (below == nullptr) continue;
        program.user.click(menu, onGui([&] { return menu->actionGeometry(entry).center(); }));
        ASSERT_TRUE(program.user.waitFor([&] { return below->isVisible(); }));
        EXPECT_EQ(lines(onGui([&] { return cutEntries(below); })), "") << language;
      }
      while (onGui([] { return QApplication::activePopupWidget() != nullptr; })) program.user.key(Qt::Key_Escape);
    }
  }
}

TEST(Language, NoToolTipIsCut) {
  for (const std::string language : kLanguages) {
    ProgramWindow program(kExample, inLanguage(language));
    const auto buttons = onGui([&] {
      QList<QToolButton*> found;
      for (auto* const button :
           program.window->findChild<QToolBar*>(QStringLiteral("tools"))->findChildren<QToolButton*>())
        if (button->isVisible() && !button->toolTip().isEmpty()) found << button;
      return found;
    });
    ASSERT_GE(buttons.size(), 10);
    for (QToolButton* const button : buttons) {
      const QString wanted = onGui([&] { return button->toolTip(); });
      program.user.moveTo(button, onGui([&] { return button->rect().center(); }));
      const QLabel* tip = nullptr;
      EXPECT_TRUE(program.user.waitFor([&] {
        for (QWidget* const top : QApplication::topLevelWidgets()) {
          const auto* const label = qobject_cast<const QLabel*>(top);
          if (label != nullptr && label->isVisible() && label->inherits("QTipLabel") && label->text() == wanted)
            tip = label;
        }
        return tip != nullptr;
      })) << wanted.toStdString();
      if (tip == nullptr) continue;
      EXPECT_TRUE(onGui([&] {
        return tip->width() >= tip->minimumSizeHint().width() && tip->height() >= tip->heightForWidth(tip->width()) &&
               tip->screen()->availableGeometry().contains(tip->geometry());
      })) << language
          << ": " << wanted.toStdString();
    }
  }
}

}  // namespace
}  // namespace lvx::test
