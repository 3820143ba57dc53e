#include "sheets/words.h"

namespace lvx::sheets {

namespace {

constexpr Words kEnglish{.drawing = "Drawing",
                         .alignment = "Alignment",
                         .crossSections = "Cross sections",
                         .longSection = "Long section",
                         .station = "Station",
                         .stations = "Stations",
                         .scale = "Scale",
                         .scaleBoth = "Scale, length / height",
                         .date = "Date",
                         .sheet = "Sheet",
                         .of = "of",
                         .datum = "Datum",
                         .offset = "Offset",
                         .elevation = "Elevation",
                         .design = "Design",
                         .difference = "Difference",
                         .curvature = "Curvature",
                         .cut = "Cut",
                         .fill = "Fill",
                         .nothingHere = "nothing to draw at this station"};

constexpr Words kGerman{.drawing = "Zeichnung",
                        .alignment = "Achse",
                        .crossSections = "Querprofile",
                        .longSection = "Längsschnitt",
                        .station = "Station",
                        .stations = "Stationen",
                        .scale = "Maßstab",
                        .scaleBoth = "Maßstab, Länge / Höhe",
                        .date = "Datum",
                        .sheet = "Blatt",
                        .of = "von",
                        .datum = "Horizont",
                        .offset = "Abstand",
                        .elevation = "Höhe",
                        .design = "Entwurf",
                        .difference = "Differenz",
                        .curvature = "Krümmung",
                        .cut = "Abtrag",
                        .fill = "Auftrag",
                        .nothingHere = "an dieser Station ist nichts zu zeichnen"};

}  // namespace

const Words& wordsOf(std::string_view language) { return language == "de" ? kGerman : kEnglish; }

}  // namespace lvx::sheets
