<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>ChartPage</name>
    <message>
        <source>Scale 1:%1</source>
        <translation>Maßstab 1:%1</translation>
    </message>
    <message>
        <source>Scale 1:%1, heights 1:%2</source>
        <translation>Maßstab 1:%1, Höhen 1:%2</translation>
    </message>
</context>
<context>
    <name>DockNames</name>
    <message>
        <source>Drawing</source>
        <translation>Zeichnung</translation>
    </message>
    <message>
        <source>Console</source>
        <translation>Konsole</translation>
    </message>
    <message>
        <source>Profile</source>
        <translation>Längsschnitt</translation>
    </message>
    <message>
        <source>Diagnostics</source>
        <translation>Diagnose</translation>
    </message>
    <message>
        <source>Cross section</source>
        <translation>Querprofil</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>Eigenschaften</translation>
    </message>
</context>
<context>
    <name>DrawingSources</name>
    <message numerus="yes">
        <source>%1 + %n file(s)</source>
        <translation>
            <numerusform>%1 + %n Datei</numerusform>
            <numerusform>%1 + %n Dateien</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>FileBoxes</name>
    <message>
        <source>Replace a file?</source>
        <translation>Eine Datei ersetzen?</translation>
    </message>
    <message>
        <source>%1 is there already.</source>
        <translation>%1 gibt es schon.</translation>
    </message>
    <message>
        <source>Its content is lost when it is replaced.</source>
        <translation>Wird sie ersetzt, ist ihr Inhalt verloren.</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>&amp;Ersetzen</translation>
    </message>
    <message>
        <source>LandXML drawings (*.xml *.landxml *.xml.gz *.zip);;All files (*)</source>
        <translation>LandXML-Zeichnungen (*.xml *.landxml *.xml.gz *.zip);;Alle Dateien (*)</translation>
    </message>
</context>
<context>
    <name>ObjectNames</name>
    <message>
        <source>Site</source>
        <translation>Gebiet</translation>
    </message>
    <message>
        <source>Alignment</source>
        <translation>Achse</translation>
    </message>
    <message>
        <source>Profile</source>
        <translation>Längsschnitt</translation>
    </message>
    <message>
        <source>Sample line group</source>
        <translation>Querprofilgruppe</translation>
    </message>
    <message>
        <source>Sample line</source>
        <translation>Querprofil</translation>
    </message>
    <message>
        <source>Surface</source>
        <translation>DGM</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>Punkt</translation>
    </message>
    <message>
        <source>Point group</source>
        <translation>Punktgruppe</translation>
    </message>
    <message>
        <source>Corridor</source>
        <translation>Straßenkörper</translation>
    </message>
</context>
<context>
    <name>PlanFileWords</name>
    <message>
        <source>%1 can&apos;t be written: its name must end in .pdf, .svg or .png.</source>
        <translation>%1 kann nicht geschrieben werden: Der Name muss auf .pdf, .svg oder .png enden.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be written: its name must end in .pdf or .png.</source>
        <translation>%1 kann nicht geschrieben werden: Der Name muss auf .pdf oder .png enden.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be written: %2.</source>
        <translation>%1 kann nicht geschrieben werden: %2.</translation>
    </message>
</context>
<context>
    <name>PlanFurniture</name>
    <message>
        <source>N</source>
        <extracomment>North, above the arrow of a plan.</extracomment>
        <translation>N</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
</context>
<context>
    <name>PlanSheet</name>
    <message>
        <source>Drawing</source>
        <translation>Zeichnung</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Maßstab</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Contours</source>
        <translation>Höhenlinien</translation>
    </message>
    <message>
        <source>Contours every %1 %2</source>
        <translation>Höhenlinien alle %1 %2</translation>
    </message>
    <message>
        <source>Alignment</source>
        <translation>Achse</translation>
    </message>
    <message>
        <source>Sample line</source>
        <translation>Querprofil</translation>
    </message>
    <message>
        <source>Corridor</source>
        <translation>Straßenkörper</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>Punkt</translation>
    </message>
    <message>
        <source>Border of a surface</source>
        <translation>Rand eines DGM</translation>
    </message>
</context>
<context>
    <name>PropertyWords</name>
    <message>
        <source>Alignment</source>
        <translation>Achse</translation>
    </message>
    <message>
        <source>Alignments</source>
        <translation>Achsen</translation>
    </message>
    <message>
        <source>Arc</source>
        <translation>Bogen</translation>
    </message>
    <message>
        <source>Area in plan</source>
        <translation>Fläche im Grundriss</translation>
    </message>
    <message>
        <source>Area of the ground</source>
        <translation>Fläche im Raum</translation>
    </message>
    <message>
        <source>Azimuth</source>
        <translation>Richtungswinkel</translation>
    </message>
    <message>
        <source>Baseline</source>
        <translation>Basislinie</translation>
    </message>
    <message>
        <source>Baselines</source>
        <translation>Basislinien</translation>
    </message>
    <message>
        <source>Biquadratic transition</source>
        <translation>Biquadratischer Übergangsbogen</translation>
    </message>
    <message>
        <source>Bloss transition</source>
        <translation>Blossbogen</translation>
    </message>
    <message>
        <source>Length of the border</source>
        <translation>Randlänge</translation>
    </message>
    <message>
        <source>Circle</source>
        <translation>Kreis</translation>
    </message>
    <message>
        <source>Clothoid</source>
        <translation>Klothoide</translation>
    </message>
    <message>
        <source>A</source>
        <translation>A</translation>
    </message>
    <message>
        <source>Code</source>
        <translation>Code</translation>
    </message>
    <message>
        <source>Codes</source>
        <translation>Codes</translation>
    </message>
    <message>
        <source>Computed</source>
        <translation>Berechnet</translation>
    </message>
    <message>
        <source>Corridor</source>
        <translation>Straßenkörper</translation>
    </message>
    <message>
        <source>Corridors</source>
        <translation>Straßenkörper</translation>
    </message>
    <message>
        <source>Cosine transition</source>
        <translation>Kosinus-Übergangsbogen</translation>
    </message>
    <message>
        <source>Curve</source>
        <translation>Ausrundung</translation>
    </message>
    <message>
        <source>End of curve</source>
        <translation>Ausrundungsende</translation>
    </message>
    <message>
        <source>Start of curve</source>
        <translation>Ausrundungsanfang</translation>
    </message>
    <message>
        <source>Curves</source>
        <translation>Ausrundungen</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>Design</source>
        <translation>Entwurf</translation>
    </message>
    <message>
        <source>Easting at end</source>
        <translation>Rechtswert Ende</translation>
    </message>
    <message>
        <source>Easting at start</source>
        <translation>Rechtswert Anfang</translation>
    </message>
    <message>
        <source>Easting</source>
        <translation>Rechtswert</translation>
    </message>
    <message>
        <source>Edges of more than two triangles</source>
        <translation>Kanten von mehr als zwei Dreiecken</translation>
    </message>
    <message>
        <source>Elements</source>
        <translation>Elemente</translation>
    </message>
    <message>
        <source>Elevation</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>End station</source>
        <translation>Endstation</translation>
    </message>
    <message>
        <source>Station equations</source>
        <translation>Stationsgleichungen</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Full description</source>
        <translation>Volle Beschreibung</translation>
    </message>
    <message>
        <source>Gaps</source>
        <translation>Lücken</translation>
    </message>
    <message>
        <source>Given</source>
        <translation>Gegeben</translation>
    </message>
    <message>
        <source>Grade in</source>
        <translation>Neigung davor</translation>
    </message>
    <message>
        <source>Grade out</source>
        <translation>Neigung danach</translation>
    </message>
    <message>
        <source>Greatest easting</source>
        <translation>Größter Rechtswert</translation>
    </message>
    <message>
        <source>Greatest elevation</source>
        <translation>Größte Höhe</translation>
    </message>
    <message>
        <source>Greatest grade</source>
        <translation>Größte Neigung</translation>
    </message>
    <message>
        <source>Greatest northing</source>
        <translation>Größter Hochwert</translation>
    </message>
    <message>
        <source>Greatest slope</source>
        <translation>Größtes Gefälle</translation>
    </message>
    <message>
        <source>Ground</source>
        <translation>Gelände</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Gruppe</translation>
    </message>
    <message>
        <source>Intersection points</source>
        <translation>Tangentenschnittpunkte</translation>
    </message>
    <message>
        <source>K</source>
        <translation>K</translation>
    </message>
    <message>
        <source>Least easting</source>
        <translation>Kleinster Rechtswert</translation>
    </message>
    <message>
        <source>Least elevation</source>
        <translation>Kleinste Höhe</translation>
    </message>
    <message>
        <source>Least grade</source>
        <translation>Kleinste Neigung</translation>
    </message>
    <message>
        <source>Least northing</source>
        <translation>Kleinster Hochwert</translation>
    </message>
    <message>
        <source>Least slope</source>
        <translation>Kleinstes Gefälle</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Gerade</translation>
    </message>
    <message>
        <source>Made here, not saved</source>
        <translation>Hier angelegt, nicht gespeichert</translation>
    </message>
    <message>
        <source>Mean elevation</source>
        <translation>Mittlere Höhe</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Northing at end</source>
        <translation>Hochwert Ende</translation>
    </message>
    <message>
        <source>Northing at start</source>
        <translation>Hochwert Anfang</translation>
    </message>
    <message>
        <source>Northing</source>
        <translation>Hochwert</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>Members in other files</source>
        <translation>Punkte in anderen Dateien</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>Abstand</translation>
    </message>
    <message>
        <source>Offset on the left</source>
        <translation>Abstand links</translation>
    </message>
    <message>
        <source>Offset on the right</source>
        <translation>Abstand rechts</translation>
    </message>
    <message>
        <source>Origin</source>
        <translation>Herkunft</translation>
    </message>
    <message>
        <source>Parabola</source>
        <translation>Parabel</translation>
    </message>
    <message>
        <source>Part</source>
        <translation>Teil</translation>
    </message>
    <message>
        <source>Parts</source>
        <translation>Teile</translation>
    </message>
    <message>
        <source>Drawing</source>
        <translation>Zeichnung</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>Punkt</translation>
    </message>
    <message>
        <source>Point group</source>
        <translation>Punktgruppe</translation>
    </message>
    <message>
        <source>Point groups</source>
        <translation>Punktgruppen</translation>
    </message>
    <message>
        <source>Points</source>
        <translation>Punkte</translation>
    </message>
    <message>
        <source>Profile</source>
        <translation>Längsschnitt</translation>
    </message>
    <message>
        <source>Profiles</source>
        <translation>Längsschnitte</translation>
    </message>
    <message>
        <source>Radius</source>
        <translation>Radius</translation>
    </message>
    <message>
        <source>Radius in</source>
        <translation>Radius Anfang</translation>
    </message>
    <message>
        <source>Radius out</source>
        <translation>Radius Ende</translation>
    </message>
    <message>
        <source>Raw description</source>
        <translation>Kurzbeschreibung</translation>
    </message>
    <message>
        <source>Region</source>
        <translation>Bereich</translation>
    </message>
    <message>
        <source>Regions</source>
        <translation>Bereiche</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
    <message>
        <source>Sample line</source>
        <translation>Querprofil</translation>
    </message>
    <message>
        <source>Sample line group</source>
        <translation>Querprofilgruppe</translation>
    </message>
    <message>
        <source>Sample line groups</source>
        <translation>Querprofilgruppen</translation>
    </message>
    <message>
        <source>Sample lines</source>
        <translation>Querprofile</translation>
    </message>
    <message>
        <source>Sections</source>
        <translation>Querschnitte</translation>
    </message>
    <message>
        <source>Sine transition</source>
        <translation>Sinus-Übergangsbogen</translation>
    </message>
    <message>
        <source>Site</source>
        <translation>Gebiet</translation>
    </message>
    <message>
        <source>Sites</source>
        <translation>Gebiete</translation>
    </message>
    <message>
        <source>Start station</source>
        <translation>Anfangsstation</translation>
    </message>
    <message>
        <source>Station</source>
        <translation>Station</translation>
    </message>
    <message>
        <source>Station ahead</source>
        <translation>Station danach</translation>
    </message>
    <message>
        <source>Station back</source>
        <translation>Station davor</translation>
    </message>
    <message>
        <source>Surface</source>
        <translation>DGM</translation>
    </message>
    <message>
        <source>Surfaces</source>
        <translation>DGM</translation>
    </message>
    <message>
        <source>Triangles</source>
        <translation>Dreiecke</translation>
    </message>
    <message>
        <source>Triangles without area</source>
        <translation>Dreiecke ohne Fläche</translation>
    </message>
    <message>
        <source>Turn</source>
        <translation>Drehsinn</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Einheit</translation>
    </message>
    <message>
        <source>Unsymmetric parabola</source>
        <translation>Unsymmetrische Parabel</translation>
    </message>
    <message>
        <source>Vertices</source>
        <translation>Stützpunkte</translation>
    </message>
</context>
<context>
    <name>ReportNames</name>
    <message>
        <source>Profile &amp;projection…</source>
        <translation>&amp;Querprofilprojektion…</translation>
    </message>
    <message>
        <source>The ground across an alignment at its sample lines</source>
        <translation>Das Gelände quer zur Achse an ihren Querprofilen</translation>
    </message>
    <message>
        <source>P&amp;oints…</source>
        <translation>&amp;Punktliste…</translation>
    </message>
    <message>
        <source>Points with station and offset against an alignment</source>
        <translation>Punkte mit Station und Abstand zu einer Achse</translation>
    </message>
    <message>
        <source>&amp;GLS…</source>
        <translation>&amp;GLS-Bericht…</translation>
    </message>
    <message>
        <source>An alignment with its profile and corridors in one table</source>
        <translation>Eine Achse mit Gradiente und Straßenkörpern in einer Tabelle</translation>
    </message>
    <message>
        <source>A command of the module</source>
        <translation>Ein Befehl des Moduls</translation>
    </message>
</context>
<context>
    <name>SaveBox</name>
    <message>
        <source>%1
This file doesn&apos;t exist. Create it?</source>
        <translation>%1
Diese Datei gibt es noch nicht. Soll sie angelegt werden?</translation>
    </message>
</context>
<context>
    <name>ZoomRectangle</name>
    <message>
        <source>The opposite corner</source>
        <translation>Die gegenüberliegende Ecke</translation>
    </message>
    <message>
        <source>Zoom: a corner</source>
        <translation>Zoomen: eine Ecke</translation>
    </message>
    <message>
        <source>Drag, or two clicks; Esc: back</source>
        <translation>Ziehen oder zwei Klicks; Esc: zurück</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::AreaMenu</name>
    <message>
        <source>Areas</source>
        <translation>Flächen</translation>
    </message>
    <message>
        <source>Which areas are shaded: cut and fill, parts by their codes</source>
        <translation>Welche Flächen gefüllt sind: Abtrag und Auftrag, Teile nach ihren Codes</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>Auftrag</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>Abtrag</translation>
    </message>
    <message>
        <source>%1 above %2</source>
        <translation>%1 über %2</translation>
    </message>
    <message>
        <source>%1 below %2</source>
        <translation>%1 unter %2</translation>
    </message>
    <message>
        <source>Cut %1</source>
        <translation>Abtrag %1</translation>
    </message>
    <message>
        <source>Fill %1</source>
        <translation>Auftrag %1</translation>
    </message>
    <message>
        <source>&amp;Cut and fill</source>
        <translation>&amp;Abtrag und Auftrag</translation>
    </message>
    <message>
        <source>&amp;Parts by their codes</source>
        <translation>&amp;Teile nach ihren Codes</translation>
    </message>
    <message>
        <source>Automatic: %1</source>
        <translation>Automatisch: %1</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatisch</translation>
    </message>
    <message>
        <source>&amp;Design</source>
        <translation>&amp;Planung</translation>
    </message>
    <message>
        <source>&amp;Ground</source>
        <translation>&amp;Gelände</translation>
    </message>
    <message>
        <source>Parts without a code</source>
        <translation>Teile ohne Code</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::BookDialog</name>
    <message>
        <source>&amp;Grid with elevations</source>
        <translation>&amp;Gitter mit Höhen</translation>
    </message>
    <message>
        <source>Section book</source>
        <translation>Profilheft</translation>
    </message>
    <message>
        <source>Cross sections</source>
        <translation>Querprofile</translation>
    </message>
    <message>
        <source>Long section</source>
        <translation>Längsschnitt</translation>
    </message>
    <message>
        <source>Own size</source>
        <translation>Eigene Größe</translation>
    </message>
    <message>
        <source>Landscape</source>
        <translation>Querformat</translation>
    </message>
    <message>
        <source>Portrait</source>
        <translation>Hochformat</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatisch</translation>
    </message>
    <message>
        <source>As many as fit</source>
        <translation>So viele wie passen</translation>
    </message>
    <message>
        <source> mm</source>
        <translation> mm</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>from the begin</source>
        <translation>vom Anfang</translation>
    </message>
    <message>
        <source>to the end</source>
        <translation>bis zum Ende</translation>
    </message>
    <message>
        <source>&amp;Draw:</source>
        <translation>&amp;Zeichnen:</translation>
    </message>
    <message>
        <source>&amp;Alignment:</source>
        <translation>&amp;Achse:</translation>
    </message>
    <message>
        <source>Sample &amp;lines:</source>
        <translation>&amp;Querprofile:</translation>
    </message>
    <message>
        <source>De&amp;sign:</source>
        <translation>&amp;Entwurf:</translation>
    </message>
    <message>
        <source>Gro&amp;und:</source>
        <translation>Gelän&amp;de:</translation>
    </message>
    <message>
        <source>&amp;From station:</source>
        <translation>&amp;Von Station:</translation>
    </message>
    <message>
        <source>&amp;To station:</source>
        <translation>&amp;Bis Station:</translation>
    </message>
    <message>
        <source>&amp;Paper:</source>
        <translation>&amp;Papier:</translation>
    </message>
    <message>
        <source>Si&amp;ze:</source>
        <translation>G&amp;röße:</translation>
    </message>
    <message>
        <source>&amp;Orientation:</source>
        <translation>A&amp;usrichtung:</translation>
    </message>
    <message>
        <source>S&amp;cale:</source>
        <translation>&amp;Maßstab:</translation>
    </message>
    <message>
        <source>E&amp;xaggeration of heights:</source>
        <translation>Ü&amp;berhöhung:</translation>
    </message>
    <message>
        <source>Sections on a s&amp;heet:</source>
        <translation>Profile je B&amp;latt:</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>Ergebnis</translation>
    </message>
    <message>
        <source>&amp;Save as…</source>
        <translation>&amp;Speichern unter…</translation>
    </message>
    <message>
        <source>What the alignment has</source>
        <translation>Was die Achse hat</translation>
    </message>
    <message>
        <source>The drawing has no alignment.</source>
        <translation>Die Zeichnung hat keine Achse.</translation>
    </message>
    <message>
        <source>The alignment has no sample lines. Sample lines in the menu Edit makes some.</source>
        <translation>Die Achse hat keine Querprofile. Querprofile im Menü Bearbeiten legt welche an.</translation>
    </message>
    <message>
        <source>“%1” is no station such as 1200 or 1+200.</source>
        <translation>„%1“ ist keine Station wie 1200 oder 1+200.</translation>
    </message>
    <message>
        <source>“%1” is no scale such as 200 or 1:200.</source>
        <translation>„%1“ ist kein Maßstab wie 200 oder 1:200.</translation>
    </message>
    <message>
        <source>So many sections that the sheets are counted when the book is made.</source>
        <translation>So viele Querprofile, dass die Blätter erst beim Zeichnen gezählt werden.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::BookMaker</name>
    <message>
        <source>Section book</source>
        <translation>Profilheft</translation>
    </message>
    <message>
        <source>Books can&apos;t be written here: %1.</source>
        <translation>Hier können keine Hefte geschrieben werden: %1.</translation>
    </message>
    <message>
        <source>long section</source>
        <translation>Längsschnitt</translation>
    </message>
    <message>
        <source>cross sections</source>
        <translation>Querprofile</translation>
    </message>
    <message>
        <source>Save section book</source>
        <translation>Profilheft speichern</translation>
    </message>
    <message>
        <source>PDF document</source>
        <translation>PDF-Dokument</translation>
    </message>
    <message>
        <source>SVG picture</source>
        <translation>SVG-Bild</translation>
    </message>
    <message>
        <source>Placing sections</source>
        <translation>Profile anordnen</translation>
    </message>
    <message>
        <source>Drawing sheets</source>
        <translation>Blätter zeichnen</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::BookWords</name>
    <message>
        <source>There is nothing to draw: no surface, corridor or profile in this range.</source>
        <translation>Es gibt nichts zu zeichnen: kein DGM, kein 3D-Profilkörper und kein Längsschnitt in diesem Bereich.</translation>
    </message>
    <message>
        <source>What is at station %1 is larger than the paper at this scale.</source>
        <translation>Was an Station %1 liegt, ist in diesem Maßstab größer als das Papier.</translation>
    </message>
    <message>
        <source>%1 fits.</source>
        <translation>%1 passt.</translation>
    </message>
    <message>
        <source>%1 in landscape fits too.</source>
        <translation>%1 im Querformat passt auch.</translation>
    </message>
    <message>
        <source>What is at station %1 fits this paper at no scale. Take a larger paper or less exaggeration.</source>
        <translation>Was an Station %1 liegt, passt in keinem Maßstab auf dieses Papier. Größeres Papier oder weniger Überhöhung hilft.</translation>
    </message>
    <message>
        <source>The book can&apos;t be written: %1</source>
        <translation>Das Heft kann nicht geschrieben werden: %1</translation>
    </message>
    <message numerus="yes">
        <source>%n sheet(s), %1, %2</source>
        <translation>
            <numerusform>%n Blatt, %1, %2</numerusform>
            <numerusform>%n Blätter, %1, %2</numerusform>
        </translation>
    </message>
    <message>
        <source>There is not enough memory for the book.</source>
        <translation>Für das Profilheft reicht der Speicher nicht.</translation>
    </message>
    <message>
        <source>The drawing of the book broke off (%1). Memory may be short.</source>
        <translation>Das Zeichnen des Profilhefts brach ab (%1). Vielleicht reicht der Speicher nicht.</translation>
    </message>
    <message>
        <source>At this scale the book has more than %1 sheets. Take a smaller scale, a larger paper or a shorter range.</source>
        <translation>In diesem Maßstab hat das Heft mehr als %1 Blätter. Ein kleinerer Maßstab, ein größeres Papier oder ein kürzerer Bereich hilft.</translation>
    </message>
    <message>
        <source>The book has %1 sheets, and at most %2 SVG pictures are written. Save it as PDF, or take a smaller scale, a larger paper or a shorter range.</source>
        <translation>Das Heft hat %1 Blätter, und höchstens %2 SVG-Bilder werden geschrieben. Als PDF sichern, oder ein kleinerer Maßstab, ein größeres Papier oder ein kürzerer Bereich hilft.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ChartLegend</name>
    <message>
        <source>Lines of the chart</source>
        <translation>Linien des Diagramms</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ChartView</name>
    <message>
        <source>How many times larger heights are drawn than widths</source>
        <translation>Wievielmal größer als Breiten Höhen gezeichnet werden</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatisch</translation>
    </message>
    <message>
        <source>%1 ×</source>
        <translation>%1 ×</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>Alles</translation>
    </message>
    <message>
        <source>Show everything (Home)</source>
        <translation>Alles zeigen (Pos1)</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Export…</translation>
    </message>
    <message>
        <source>Write the chart to an SVG or PDF file</source>
        <translation>Das Bild in eine SVG- oder PDF-Datei schreiben</translation>
    </message>
    <message>
        <source>&amp;Show everything</source>
        <translation>&amp;Alles zeigen</translation>
    </message>
    <message>
        <source>&amp;Copy as picture</source>
        <translation>Als &amp;Bild kopieren</translation>
    </message>
    <message>
        <source>&amp;Export…</source>
        <translation>&amp;Exportieren…</translation>
    </message>
    <message>
        <source>There is nothing to export.</source>
        <translation>Es gibt nichts zu exportieren.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be written: its name must end in .svg or .pdf.</source>
        <translation>%1 kann nicht geschrieben werden: Der Name muss auf .svg oder .pdf enden.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be written: its name must end in .pdf.</source>
        <translation>%1 kann nicht geschrieben werden: Der Name muss auf .pdf enden.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be written: %2.</source>
        <translation>%1 kann nicht geschrieben werden: %2.</translation>
    </message>
    <message>
        <source>Export the chart</source>
        <translation>Bild exportieren</translation>
    </message>
    <message>
        <source>Heights:</source>
        <translation>Überhöhung:</translation>
    </message>
    <message>
        <source>Enlargement of heights</source>
        <translation>Überhöhung</translation>
    </message>
    <message>
        <source>PDF document</source>
        <translation>PDF-Dokument</translation>
    </message>
    <message>
        <source>SVG drawing</source>
        <translation>SVG-Zeichnung</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::CommandPrompt</name>
    <message>
        <source>There is no command &apos;%1&apos;. There is %2.</source>
        <translation>Den Befehl „%1“ gibt es nicht. Es gibt %2.</translation>
    </message>
    <message>
        <source>%1 waits for a pick in the drawing or in the tree; Escape ends it.</source>
        <translation>%1 wartet auf eine Auswahl in der Zeichnung oder im Baum; Esc bricht sie ab.</translation>
    </message>
    <message>
        <source>Something else is running; wait for its end or press Escape.</source>
        <translation>Es läuft noch etwas anderes; warten Sie, bis es fertig ist, oder drücken Sie Esc.</translation>
    </message>
    <message>
        <source>No drawing is open. OPEN opens one.</source>
        <translation>Es ist keine Zeichnung geöffnet. OPEN öffnet eine.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ConsoleView</name>
    <message>
        <source>Messages</source>
        <translation>Meldungen</translation>
    </message>
    <message>
        <source>Command line</source>
        <translation>Befehlszeile</translation>
    </message>
    <message>
        <source>Command:</source>
        <translation>Befehl:</translation>
    </message>
    <message>
        <source>such as ZOOM or HELP</source>
        <translation>etwa ZOOM oder HELP</translation>
    </message>
    <message>
        <source>click in the drawing or in the tree; Escape gives up</source>
        <translation>in der Zeichnung oder im Baum anklicken; Escape gibt auf</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DesktopFrontEnd</name>
    <message>
        <source>There is no help page for %1.</source>
        <translation>Zu %1 gibt es keine Hilfeseite.</translation>
    </message>
    <message>
        <source>Picked: %1</source>
        <translation>Gewählt: %1</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DiagnosticsModel</name>
    <message>
        <source>Note</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Severity</source>
        <translation>Stufe</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>Stelle</translation>
    </message>
    <message>
        <source>What was found</source>
        <translation>Befund</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DiagnosticsView</name>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>Warnings and errors</source>
        <translation>Ab Warnung</translation>
    </message>
    <message>
        <source>Errors</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Least severity</source>
        <translation>Niedrigste Stufe</translation>
    </message>
    <message>
        <source>Words to look for</source>
        <translation>Suchwörter</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy the chosen rows, or all that show where none is chosen</source>
        <translation>Die gewählten Zeilen kopieren; ist keine gewählt, alle gezeigten</translation>
    </message>
    <message>
        <source>Diagnostics</source>
        <translation>Diagnose</translation>
    </message>
    <message>
        <source>Diagnostics (%1)</source>
        <translation>Diagnose (%1)</translation>
    </message>
    <message>
        <source>No drawing is open.</source>
        <translation>Es ist keine Zeichnung geöffnet.</translation>
    </message>
    <message>
        <source>The reader found nothing odd in the drawing.</source>
        <translation>Beim Lesen der Zeichnung ist nichts aufgefallen.</translation>
    </message>
    <message>
        <source>What the reader found</source>
        <translation>Was beim Lesen auffiel</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DifferenceDialog</name>
    <message>
        <source>Difference of surfaces</source>
        <translation>Differenz von DGM</translation>
    </message>
    <message>
        <source>That didn&apos;t work: %1</source>
        <translation>Das ging nicht: %1</translation>
    </message>
    <message>
        <source>&amp;Existing surface:</source>
        <translation>&amp;Bestehendes DGM:</translation>
    </message>
    <message>
        <source>&amp;New surface:</source>
        <translation>&amp;Neues DGM:</translation>
    </message>
    <message>
        <source>&amp;Compute</source>
        <translation>Be&amp;rechnen</translation>
    </message>
    <message>
        <source>&amp;Swap</source>
        <translation>&amp;Tauschen</translation>
    </message>
    <message>
        <source>Take each surface for the other one</source>
        <translation>Jedes DGM für das andere nehmen</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Volumes and areas</source>
        <translation>Volumen und Flächen</translation>
    </message>
    <message>
        <source>Colour the &amp;plan by the difference</source>
        <translation>&amp;Lageplan nach der Differenz färben</translation>
    </message>
    <message>
        <source>C&amp;opy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy the figures, for a spreadsheet too</source>
        <translation>Die Werte kopieren, auch für eine Tabellenkalkulation</translation>
    </message>
    <message>
        <source>%1 to %2</source>
        <extracomment>Two surfaces: the existing one and the one that it is to become.</extracomment>
        <translation>%1 zu %2</translation>
    </message>
    <message>
        <source>Stopped.</source>
        <translation>Angehalten.</translation>
    </message>
    <message>
        <source>The drawing has less than two surfaces; File &gt; Add drawing adds those of another file.</source>
        <translation>Die Zeichnung hat weniger als zwei DGM; Datei &gt; Zeichnung hinzufügen holt die einer anderen Datei.</translation>
    </message>
    <message>
        <source>%1: area %2</source>
        <translation>%1: Fläche %2</translation>
    </message>
    <message>
        <source>%1: volume %2, area %3</source>
        <translation>%1: Volumen %2, Fläche %3</translation>
    </message>
    <message>
        <source>The surfaces have no area in common.</source>
        <translation>Die DGM haben keine gemeinsame Fläche.</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>An&amp;halten</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DifferenceLayer</name>
    <message>
        <source>%1 fill</source>
        <translation>%1 Auftrag</translation>
    </message>
    <message>
        <source>%1 cut</source>
        <translation>%1 Abtrag</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DifferenceTexts</name>
    <message>
        <source>Cut</source>
        <translation>Abtrag</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>Auftrag</translation>
    </message>
    <message>
        <source>Fill less cut</source>
        <translation>Auftrag weniger Abtrag</translation>
    </message>
    <message>
        <source>Equal</source>
        <translation>Gleich</translation>
    </message>
    <message>
        <source>Only the existing surface</source>
        <translation>Nur das bestehende DGM</translation>
    </message>
    <message>
        <source>Only the new surface</source>
        <translation>Nur das neue DGM</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volumen</translation>
    </message>
    <message>
        <source>Area</source>
        <translation>Fläche</translation>
    </message>
    <message>
        <source>New surface less existing one from %1 to %2</source>
        <translation>Neues weniger bestehendes DGM von %1 bis %2</translation>
    </message>
    <message>
        <source>Volume [%1]</source>
        <translation>Volumen [%1]</translation>
    </message>
    <message>
        <source>Area [%1]</source>
        <translation>Fläche [%1]</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::Document</name>
    <message>
        <source>%1 %2: %3 of %4</source>
        <translation>%2: %1, %3 von %4</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Opening %1 was cancelled.</source>
        <translation>Das Öffnen von %1 wurde abgebrochen.</translation>
    </message>
    <message>
        <source>%1 was changed by another program.</source>
        <translation>%1 wurde von einem anderen Programm geändert.</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Neu laden</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>%1 isn&apos;t there any more. The drawing stays open; Save as writes it to a new place.</source>
        <translation>%1 gibt es nicht mehr. Die Zeichnung bleibt geöffnet; Speichern unter schreibt sie an einen neuen Ort.</translation>
    </message>
    <message>
        <source>Open a drawing</source>
        <translation>Zeichnung öffnen</translation>
    </message>
    <message>
        <source>Reading %1</source>
        <translation>%1 wird gelesen</translation>
    </message>
    <message>
        <source>%1 is open.</source>
        <translation>%1 ist geöffnet.</translation>
    </message>
    <message numerus="yes">
        <source>The reader found %n odd thing(s) in it; see Diagnostics.</source>
        <translation>
            <numerusform>Beim Lesen ist %n Stelle aufgefallen, siehe Diagnose.</numerusform>
            <numerusform>Beim Lesen sind %n Stellen aufgefallen, siehe Diagnose.</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 can&apos;t be opened: %2</source>
        <translation>%1 kann nicht geöffnet werden: %2</translation>
    </message>
    <message>
        <source>The drawing can&apos;t be opened</source>
        <translation>Die Zeichnung kann nicht geöffnet werden</translation>
    </message>
    <message>
        <source>%1 can&apos;t be opened.</source>
        <translation>%1 kann nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>The drawing that was open stays open.</source>
        <translation>Die bisher geöffnete Zeichnung bleibt geöffnet.</translation>
    </message>
    <message>
        <source>&amp;Show the line</source>
        <translation>&amp;Zeile zeigen</translation>
    </message>
    <message>
        <source>Save the drawing?</source>
        <translation>Zeichnung speichern?</translation>
    </message>
    <message>
        <source>%1 has sections that aren&apos;t saved.</source>
        <translation>%1 enthält Querschnitte, die nicht gespeichert sind.</translation>
    </message>
    <message>
        <source>Without saving, the sections that the GLS report added are lost.</source>
        <translation>Ohne Speichern gehen die Querschnitte verloren, die der GLS-Bericht hinzugefügt hat.</translation>
    </message>
    <message>
        <source>&amp;Don&apos;t save</source>
        <translation>&amp;Nicht speichern</translation>
    </message>
    <message>
        <source>Save other files too?</source>
        <translation>Auch andere Dateien speichern?</translation>
    </message>
    <message>
        <source>What is new belongs into other files than %1.</source>
        <translation>Was neu ist, gehört in andere Dateien als %1.</translation>
    </message>
    <message>
        <source>It is read itself: as a file of the drawing or as the message file.</source>
        <translation>Sie wird selbst gelesen: als Datei der Zeichnung oder als Meldungsdatei.</translation>
    </message>
    <message>
        <source>Saving changes them in their own places:</source>
        <translation>Speichern ändert sie an ihrem Ort:</translation>
    </message>
    <message>
        <source>Save the drawing as</source>
        <translation>Zeichnung speichern unter</translation>
    </message>
    <message>
        <source>Saving %1 was cancelled; the drawing isn&apos;t saved.</source>
        <translation>Das Speichern von %1 wurde abgebrochen; die Zeichnung ist nicht gespeichert.</translation>
    </message>
    <message>
        <source>%1 is saved, %2.</source>
        <translation>%1 ist gespeichert, %2.</translation>
    </message>
    <message>
        <source>Saving %1</source>
        <translation>%1 wird gespeichert</translation>
    </message>
    <message>
        <source>%1 can&apos;t be saved: %2</source>
        <translation>%1 kann nicht gespeichert werden: %2</translation>
    </message>
    <message>
        <source>The drawing can&apos;t be saved</source>
        <translation>Die Zeichnung kann nicht gespeichert werden</translation>
    </message>
    <message>
        <source>%1 can&apos;t be saved.</source>
        <translation>%1 kann nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>The drawing stays open with its changes, and nothing was written. Save it under another name or in another folder, or make room and try again.</source>
        <translation>Die Zeichnung bleibt mit ihren Änderungen geöffnet, und es wurde nichts geschrieben. Speichern Sie sie unter einem anderen Namen oder in einem anderen Ordner, oder schaffen Sie Platz und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Save &amp;as…</source>
        <translation>Speichern &amp;unter…</translation>
    </message>
    <message>
        <source>%1 has changes that aren&apos;t saved.</source>
        <translation>%1 hat Änderungen, die nicht gespeichert sind.</translation>
    </message>
    <message>
        <source>Without saving, what was made and changed in it is lost.</source>
        <translation>Ohne Speichern geht verloren, was darin angelegt und geändert wurde.</translation>
    </message>
    <message>
        <source>%1 isn&apos;t there any more. What was read of it stays open.</source>
        <translation>%1 ist nicht mehr da. Was daraus gelesen wurde, bleibt offen.</translation>
    </message>
    <message>
        <source>%1 is open, with %2.</source>
        <translation>%1 ist offen, mit %2.</translation>
    </message>
    <message>
        <source>no unit, so in meters</source>
        <translation>ohne Einheit, also in Metern</translation>
    </message>
    <message>
        <source>The files are in different units</source>
        <translation>Die Dateien haben verschiedene Einheiten</translation>
    </message>
    <message>
        <source>%1 is in %2, %3 in %4.</source>
        <translation>%1 ist in %2, %3 in %4.</translation>
    </message>
    <message>
        <source>Lengths of the other files can be converted to the unit of %1, exactly by the definitions of the units. The files themselves stay as they are.</source>
        <translation>Die Längen der anderen Dateien können in die Einheit von %1 umgerechnet werden, genau nach den Definitionen der Einheiten. Die Dateien selbst bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>&amp;Convert</source>
        <translation>&amp;Umrechnen</translation>
    </message>
    <message>
        <source>LandXML drawings</source>
        <translation>LandXML-Zeichnungen</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>Alle Dateien</translation>
    </message>
    <message>
        <source>Somebody else changed the file</source>
        <translation>Jemand anders hat die Datei geändert</translation>
    </message>
    <message>
        <source>%1 was changed by another program since it was opened.</source>
        <translation>%1 wurde seit dem Öffnen von einem anderen Programm geändert.</translation>
    </message>
    <message>
        <source>Save as writes the drawing as it is here under another name, and both are kept. Replacing the file loses what the other program wrote.</source>
        <translation>„Speichern unter“ schreibt die Zeichnung, wie sie hier ist, unter einem anderen Namen, und beide bleiben erhalten. Wird die Datei ersetzt, ist verloren, was das andere Programm schrieb.</translation>
    </message>
    <message>
        <source>What is new here belongs into that file. Replacing it loses what the other program wrote; Cancel leaves the drawing open and unsaved.</source>
        <translation>Was hier neu ist, gehört in diese Datei. Wird sie ersetzt, ist verloren, was das andere Programm schrieb; Abbrechen lässt die Zeichnung offen und ungespeichert.</translation>
    </message>
    <message>
        <source>&amp;Replace the file</source>
        <translation>Datei &amp;ersetzen</translation>
    </message>
    <message>
        <source>%1 isn&apos;t saved: it was changed by another program since it was opened.</source>
        <translation>%1 ist nicht gespeichert: Ein anderes Programm hat die Datei seit dem Öffnen geändert.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DrawingComposer</name>
    <message>
        <source>Add to the drawing</source>
        <translation>Zur Zeichnung hinzufügen</translation>
    </message>
    <message>
        <source>In the drawing already</source>
        <translation>Schon in der Zeichnung</translation>
    </message>
    <message>
        <source>The drawing has %1 already.</source>
        <translation>Die Zeichnung enthält %1 schon.</translation>
    </message>
    <message>
        <source>&amp;Add drawing…</source>
        <translation>Zeichnung &amp;hinzufügen…</translation>
    </message>
    <message>
        <source>&amp;Swap northing and easting</source>
        <translation>Hoch- und Rechtswert &amp;vertauschen</translation>
    </message>
    <message>
        <source>&amp;Make it the first file</source>
        <translation>Zur &amp;ersten Datei machen</translation>
    </message>
    <message>
        <source>&amp;Remove from the drawing</source>
        <translation>Aus der Zeichnung &amp;nehmen</translation>
    </message>
    <message>
        <source>Show in &amp;folder</source>
        <translation>Im &amp;Ordner zeigen</translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DrawingLoader</name>
    <message>
        <source>Check the name, and whether the folder or drive is there. A drawing that was moved can be found with Open.</source>
        <translation>Prüfen Sie den Namen und ob der Ordner oder das Laufwerk da ist. Eine verschobene Zeichnung lässt sich mit Öffnen suchen.</translation>
    </message>
    <message>
        <source>Choose a LandXML file in that folder instead.</source>
        <translation>Wählen Sie stattdessen eine LandXML-Datei in diesem Ordner.</translation>
    </message>
    <message>
        <source>Choose a LandXML file instead.</source>
        <translation>Wählen Sie stattdessen eine LandXML-Datei.</translation>
    </message>
    <message>
        <source>Ask for the right to read the file, or open a copy of it.</source>
        <translation>Lassen Sie sich das Recht geben, die Datei zu lesen, oder öffnen Sie eine Kopie.</translation>
    </message>
    <message>
        <source>Look at that line of the file; a file that was cut off has to be copied or exported again by the program that made it.</source>
        <translation>Sehen Sie sich diese Zeile der Datei an. Eine abgeschnittene Datei muss neu kopiert oder von dem Programm, das sie erzeugt hat, neu exportiert werden.</translation>
    </message>
    <message>
        <source>Export the drawing again as LandXML from the program that made it.</source>
        <translation>Exportieren Sie die Zeichnung in dem Programm, das sie erzeugt hat, noch einmal als LandXML.</translation>
    </message>
    <message>
        <source>Reading</source>
        <translation>Lesen</translation>
    </message>
    <message>
        <source>Preparing the view</source>
        <translation>Ansicht vorbereiten</translation>
    </message>
    <message>
        <source>There is not enough memory for this drawing.</source>
        <translation>Für diese Zeichnung reicht der Speicher nicht.</translation>
    </message>
    <message>
        <source>Close other programs, or split the drawing.</source>
        <translation>Schließen Sie andere Programme, oder teilen Sie die Zeichnung.</translation>
    </message>
    <message>
        <source>Making surfaces ready</source>
        <translation>DGMs werden aufbereitet</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DrawingTree</name>
    <message>
        <source>Find by name, points by number</source>
        <translation>Name oder Punktnummer suchen</translation>
    </message>
    <message>
        <source>Objects of the drawing</source>
        <translation>Objekte der Zeichnung</translation>
    </message>
    <message>
        <source>Nothing found</source>
        <translation>Nichts gefunden</translation>
    </message>
    <message>
        <source>Point %1: Enter shows it</source>
        <translation>Punkt %1: Enter zeigt ihn</translation>
    </message>
    <message numerus="yes">
        <source>%n found: Enter goes to the next</source>
        <translation>
            <numerusform>%n gefunden: Enter geht zum nächsten</numerusform>
            <numerusform>%n gefunden: Enter geht zum nächsten</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Point %1 and %n more: Enter goes to the next</source>
        <translation>
            <numerusform>Punkt %1 und %n weiteres: Enter geht zum nächsten</numerusform>
            <numerusform>Punkt %1 und %n weitere: Enter geht zum nächsten</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DrawingTreeModel</name>
    <message>
        <source>(without a name)</source>
        <translation>(ohne Namen)</translation>
    </message>
    <message>
        <source>Profiles</source>
        <translation>Längsschnitte</translation>
    </message>
    <message>
        <source>Ground</source>
        <translation>Gelände</translation>
    </message>
    <message>
        <source>Design</source>
        <translation>Gradiente</translation>
    </message>
    <message>
        <source>Sample line groups</source>
        <translation>Querprofilgruppen</translation>
    </message>
    <message>
        <source>Sites</source>
        <translation>Gebiete</translation>
    </message>
    <message>
        <source>Alignments without a site</source>
        <translation>Achsen ohne Gebiet</translation>
    </message>
    <message>
        <source>Surfaces</source>
        <translation>DGM</translation>
    </message>
    <message>
        <source>%1 triangles</source>
        <translation>%1 Dreiecke</translation>
    </message>
    <message>
        <source>%1 points, %2 triangles, elevations %3 to %4</source>
        <translation>%1 Punkte, %2 Dreiecke, Höhen %3 bis %4</translation>
    </message>
    <message>
        <source>Point groups</source>
        <translation>Punktgruppen</translation>
    </message>
    <message>
        <source>%1 points in the drawing</source>
        <translation>%1 Punkte in der Zeichnung</translation>
    </message>
    <message>
        <source>Corridors</source>
        <translation>Straßenkörper</translation>
    </message>
    <message numerus="yes">
        <source>%n region(s)</source>
        <translation>
            <numerusform>%n Abschnitt</numerusform>
            <numerusform>%n Abschnitte</numerusform>
        </translation>
    </message>
    <message>
        <source>Unit: %1</source>
        <translation>Einheit: %1</translation>
    </message>
    <message>
        <source>converted</source>
        <translation>umgerechnet</translation>
    </message>
    <message>
        <source>Converted to %1: its lengths times %2</source>
        <translation>Umgerechnet in %1: ihre Längen mal %2</translation>
    </message>
    <message>
        <source>swapped</source>
        <translation>vertauscht</translation>
    </message>
    <message>
        <source>Northing and easting are swapped</source>
        <translation>Hoch- und Rechtswert sind vertauscht</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>no unit</source>
        <translation>keine Einheit</translation>
    </message>
    <message>
        <source>Made here, not saved yet</source>
        <translation>Hier erstellt, noch nicht gespeichert</translation>
    </message>
    <message>
        <source>From %1</source>
        <translation>Aus %1</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::Edits</name>
    <message>
        <source>The drawing can&apos;t be changed so</source>
        <translation>Die Zeichnung lässt sich so nicht ändern</translation>
    </message>
    <message>
        <source>“%1” can&apos;t be done.</source>
        <translation>„%1“ ist nicht möglich.</translation>
    </message>
    <message>
        <source>What it is about isn&apos;t there any more, or its name is taken. The drawing is as it was. In detail: %1.</source>
        <translation>Was es betrifft, gibt es nicht mehr, oder der Name ist vergeben. Die Zeichnung ist wie zuvor. Im Einzelnen: %1.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::FindBar</name>
    <message>
        <source>&amp;Find:</source>
        <translation>&amp;Suchen:</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>The one before (Shift+F3)</source>
        <translation>Der Treffer davor (Umschalt+F3)</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>The next one (F3)</source>
        <translation>Der nächste Treffer (F3)</translation>
    </message>
    <message>
        <source>Not found</source>
        <translation>Nicht gefunden</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <extracomment>Which of how many places that were found.</extracomment>
        <translation>%1 von %2</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::FreeSection</name>
    <message>
        <source>First point of the section</source>
        <translation>Erster Punkt des Schnitts</translation>
    </message>
    <message>
        <source>Next point of the section</source>
        <translation>Nächster Punkt des Schnitts</translation>
    </message>
    <message>
        <source>Esc: end</source>
        <translation>Esc: beenden</translation>
    </message>
    <message>
        <source>Enter or double click: end, Backspace: one back</source>
        <translation>Enter oder Doppelklick: beenden, Rücktaste: einer zurück</translation>
    </message>
    <message>
        <source>Make a sample line</source>
        <translation>Querprofil daraus machen</translation>
    </message>
    <message>
        <source>Free sections</source>
        <translation>Freie Schnitte</translation>
    </message>
    <message>
        <source>&amp;Alignment</source>
        <translation>&amp;Achse</translation>
    </message>
    <message>
        <source>&amp;Group</source>
        <translation>&amp;Gruppe</translation>
    </message>
    <message>
        <source>&amp;Name of the new group</source>
        <translation>&amp;Name der neuen Gruppe</translation>
    </message>
    <message>
        <source>The drawing has no alignment.</source>
        <translation>Die Zeichnung hat keine Achse.</translation>
    </message>
    <message>
        <source>The line doesn&apos;t cross alignment %1. A sample line has to.</source>
        <translation>Die Linie kreuzt die Achse %1 nicht. Ein Querprofil muss das.</translation>
    </message>
    <message>
        <source>A name is wanted.</source>
        <translation>Es fehlt ein Name.</translation>
    </message>
    <message>
        <source>It crosses the alignment at %1.</source>
        <translation>Sie kreuzt die Achse bei %1.</translation>
    </message>
    <message>
        <source>The alignment has a group of this name already.</source>
        <translation>Die Achse hat schon eine Gruppe dieses Namens.</translation>
    </message>
    <message>
        <source>New group</source>
        <translation>Neue Gruppe</translation>
    </message>
    <message>
        <source>New sample line %1</source>
        <translation>Neues Querprofil %1</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::FreeSectionView</name>
    <message>
        <source>Draw</source>
        <translation>Zeichnen</translation>
    </message>
    <message>
        <source>Draw another line over the plan</source>
        <translation>Eine andere Linie im Plan zeichnen</translation>
    </message>
    <message>
        <source>Sample line…</source>
        <translation>Querprofil…</translation>
    </message>
    <message>
        <source>Make the line a sample line of a group</source>
        <translation>Die Linie zum Querprofil einer Gruppe machen</translation>
    </message>
    <message>
        <source>Table…</source>
        <translation>Tabelle…</translation>
    </message>
    <message>
        <source>Write distances, places and elevations as a table</source>
        <translation>Entfernungen, Orte und Höhen als Tabelle schreiben</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Back to cross sections</source>
        <translation>Zurück zu den Querprofilen</translation>
    </message>
    <message>
        <source>Free section</source>
        <translation>Freier Schnitt</translation>
    </message>
    <message>
        <source>Draw a line of two points or more over the plan.</source>
        <translation>Im Plan eine Linie aus zwei oder mehr Punkten zeichnen.</translation>
    </message>
    <message>
        <source>E %1 N %2 to E %3 N %4, length %5 %6</source>
        <translation>E %1 N %2 bis E %3 N %4, Länge %5 %6</translation>
    </message>
    <message>
        <source>Distance [%1]</source>
        <translation>Entfernung [%1]</translation>
    </message>
    <message>
        <source>Elevation [%1]</source>
        <translation>Höhe [%1]</translation>
    </message>
    <message>
        <source>The section is being cut…</source>
        <translation>Der Schnitt wird berechnet…</translation>
    </message>
    <message>
        <source>The drawing has neither surfaces nor corridors.</source>
        <translation>Die Zeichnung hat weder DGM noch Straßenkörper.</translation>
    </message>
    <message>
        <source>The line lies off every surface and corridor that is shown.</source>
        <translation>Die Linie liegt neben jedem DGM und Straßenkörper, die gezeigt werden.</translation>
    </message>
    <message>
        <source>Distance %1</source>
        <translation>Strecke %1</translation>
    </message>
    <message>
        <source>E %1 N %2</source>
        <translation>E %1 N %2</translation>
    </message>
    <message>
        <source>Station %1 Offset %2</source>
        <translation>Station %1 Abstand %2</translation>
    </message>
    <message>
        <source>Elevation %1</source>
        <translation>Höhe %1</translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>und %n weitere</numerusform>
            <numerusform>und %n weitere</numerusform>
        </translation>
    </message>
    <message>
        <source>free-section</source>
        <extracomment>Name that a free section&apos;s file is given first.</extracomment>
        <translation>freier-schnitt</translation>
    </message>
    <message>
        <source>.</source>
        <comment>decimal sign</comment>
        <extracomment>Decimal sign of tables for spreadsheets.</extracomment>
        <translation>,</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Entfernung</translation>
    </message>
    <message>
        <source>Easting</source>
        <translation>Rechtswert</translation>
    </message>
    <message>
        <source>Northing</source>
        <translation>Hochwert</translation>
    </message>
    <message>
        <source>%1 less %2</source>
        <translation>%1 minus %2</translation>
    </message>
    <message>
        <source>%1 can&apos;t be written: %2.</source>
        <translation>%1 kann nicht geschrieben werden: %2.</translation>
    </message>
    <message>
        <source>Write the table</source>
        <translation>Tabelle schreiben</translation>
    </message>
    <message>
        <source>Table</source>
        <translation>Tabelle</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::GoToBox</name>
    <message>
        <source>Point, station, easting and northing, or a name</source>
        <translation>Punkt, Station, Rechts- und Hochwert oder ein Name</translation>
    </message>
    <message>
        <source>&amp;Go to:</source>
        <translation>&amp;Gehe zu:</translation>
    </message>
    <message>
        <source>What it may be</source>
        <translation>Was es sein kann</translation>
    </message>
    <message>
        <source>E %1   N %2</source>
        <extracomment>Easting and northing of a place, as their letters.</extracomment>
        <translation>R %1   H %2</translation>
    </message>
    <message>
        <source>Coordinates  %1</source>
        <translation>Koordinaten  %1</translation>
    </message>
    <message>
        <source>Station %1 of %2</source>
        <translation>Station %1 auf %2</translation>
    </message>
    <message>
        <source>Station %1 of %2, %3 left</source>
        <translation>Station %1 auf %2, %3 links</translation>
    </message>
    <message>
        <source>Station %1 of %2, %3 right</source>
        <translation>Station %1 auf %2, %3 rechts</translation>
    </message>
    <message>
        <source>Point %1   %2</source>
        <translation>Punkt %1   %2</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 auf %2</translation>
    </message>
    <message>
        <source>Enter goes there, Tab completes</source>
        <translation>Enter geht dorthin, Tab ergänzt</translation>
    </message>
    <message>
        <source>A point as 17 or GP3, a station as 1+020.5 or 1+020.5, -3 (left), easting and northing as 4500123.4; 5400456.7, or an object&apos;s name</source>
        <translation>Ein Punkt wie 17 oder GP3, eine Station wie 1+020.5 oder 1+020.5, -3 (links), Rechts- und Hochwert wie 4500123.4; 5400456.7 oder der Name eines Objekts</translation>
    </message>
    <message>
        <source>Nothing here is called “%1”, and it is neither a station nor easting and northing</source>
        <translation>Nichts heißt hier „%1“, und eine Station oder Rechts- und Hochwert ist es auch nicht</translation>
    </message>
    <message>
        <source>The drawing has no alignment that the station could be on</source>
        <translation>Die Zeichnung hat keine Achse, auf der die Station liegen könnte</translation>
    </message>
    <message>
        <source>%1 has no length</source>
        <translation>%1 hat keine Länge</translation>
    </message>
    <message>
        <source>%1 goes from %2 to %3</source>
        <translation>%1 reicht von %2 bis %3</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::GroundProfileDialog</name>
    <message>
        <source>Profile from surface</source>
        <translation>Längsschnitt aus DGM</translation>
    </message>
    <message>
        <source>Points are left out where the profile without them stays this close in elevation. 0 keeps a point at every edge of a triangle.</source>
        <translation>Punkte fallen weg, wo der Längsschnitt ohne sie in der Höhe so nahe bleibt. 0 behält an jeder Dreieckskante einen Punkt.</translation>
    </message>
    <message>
        <source>&amp;Alignment:</source>
        <translation>&amp;Achse:</translation>
    </message>
    <message>
        <source>&amp;Surface:</source>
        <translation>&amp;DGM:</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>&amp;Tolerance:</source>
        <translation>&amp;Toleranz:</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>Ergebnis</translation>
    </message>
    <message numerus="yes">
        <source>%n point(s), stations %1 to %2.</source>
        <translation>
            <numerusform>%n Punkt, Station %1 bis %2.</numerusform>
            <numerusform>%n Punkte, Station %1 bis %2.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n gap(s) without ground stay gaps.</source>
        <translation>
            <numerusform>%n Lücke ohne Gelände bleibt eine Lücke.</numerusform>
            <numerusform>%n Lücken ohne Gelände bleiben Lücken.</numerusform>
        </translation>
    </message>
    <message>
        <source>The alignment runs from %1 to %2; the rest has no ground.</source>
        <translation>Die Achse läuft von %1 bis %2; der Rest hat kein Gelände.</translation>
    </message>
    <message>
        <source>The drawing has no alignment.</source>
        <translation>Die Zeichnung hat keine Achse.</translation>
    </message>
    <message>
        <source>The drawing has no surface. Add drawing in the menu File adds one.</source>
        <translation>Die Zeichnung hat kein DGM. Zeichnung hinzufügen im Menü Datei fügt eines hinzu.</translation>
    </message>
    <message>
        <source>The alignment meets the surface nowhere.</source>
        <translation>Die Achse trifft das DGM nirgends.</translation>
    </message>
    <message>
        <source>The profile needs a name.</source>
        <translation>Der Längsschnitt braucht einen Namen.</translation>
    </message>
    <message>
        <source>The alignment has a profile of this name already.</source>
        <translation>Die Achse hat schon einen Längsschnitt dieses Namens.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::GroundTexts</name>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1 (1:%2)</source>
        <translation>%1 (1:%2)</translation>
    </message>
    <message>
        <source>%1°</source>
        <translation>%1°</translation>
    </message>
    <message>
        <source>no ground here</source>
        <translation>kein Gelände hier</translation>
    </message>
    <message>
        <source>Z %1</source>
        <translation>Z %1</translation>
    </message>
    <message>
        <source>%1   level</source>
        <translation>%1   eben</translation>
    </message>
    <message>
        <source>%1   %2 % to %3</source>
        <extracomment>Elevation, slope in per cent, azimuth downhill.</extracomment>
        <translation>%1   %2 % nach %3</translation>
    </message>
    <message>
        <source>Point %1</source>
        <translation>Punkt %1</translation>
    </message>
    <message>
        <source>Vertex of %1</source>
        <translation>Eckpunkt von %1</translation>
    </message>
    <message>
        <source>End of %1</source>
        <translation>Ende von %1</translation>
    </message>
    <message>
        <source>End on %1, station %2</source>
        <translation>Ende auf %1, Station %2</translation>
    </message>
    <message>
        <source>Axis %1, station %2</source>
        <translation>Achse %1, Station %2</translation>
    </message>
    <message>
        <source>Distance %1</source>
        <translation>Strecke %1</translation>
    </message>
    <message>
        <source>Height %1   along the slope %2</source>
        <translation>Höhe %1   schräg %2</translation>
    </message>
    <message>
        <source>Slope %1</source>
        <translation>Neigung %1</translation>
    </message>
    <message>
        <source>In all %1</source>
        <translation>Insgesamt %1</translation>
    </message>
    <message>
        <source>along the slope %1</source>
        <translation>schräg %1</translation>
    </message>
    <message>
        <source>Area %1   perimeter %2</source>
        <translation>Fläche %1   Umfang %2</translation>
    </message>
    <message>
        <source>%1: distance %2</source>
        <translation>%1: Strecke %2</translation>
    </message>
    <message>
        <source>, azimuth %1</source>
        <translation>, Richtungswinkel %1</translation>
    </message>
    <message>
        <source>, height %1, along the slope %2</source>
        <translation>, Höhe %1, schräg %2</translation>
    </message>
    <message>
        <source>, slope %1</source>
        <translation>, Neigung %1</translation>
    </message>
    <message>
        <source>, no ground at an end</source>
        <translation>, kein Gelände an einem Ende</translation>
    </message>
    <message>
        <source>In all: distance %1</source>
        <translation>Insgesamt: Strecke %1</translation>
    </message>
    <message>
        <source>, height %1</source>
        <translation>, Höhe %1</translation>
    </message>
    <message>
        <source>, along the slope %1</source>
        <translation>, schräg %1</translation>
    </message>
    <message>
        <source>Closed: area %1, perimeter %2</source>
        <translation>Geschlossen: Fläche %1, Umfang %2</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::HelpWindow</name>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Contents</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>&amp;Forward</source>
        <translation>&amp;Vorwärts</translation>
    </message>
    <message>
        <source>&amp;Contents</source>
        <translation>&amp;Inhalt</translation>
    </message>
    <message>
        <source>Smaller text</source>
        <translation>Kleinere Schrift</translation>
    </message>
    <message>
        <source>Larger text</source>
        <translation>Größere Schrift</translation>
    </message>
    <message>
        <source>Find in page</source>
        <translation>Auf der Seite suchen</translation>
    </message>
    <message>
        <source>The help has no page for “%1”. These are the pages that it has.</source>
        <translation>Die Hilfe hat keine Seite zu „%1“. Dies sind ihre Seiten.</translation>
    </message>
    <message>
        <source>The help pages aren&apos;t there: “%1” holds none.</source>
        <translation>Die Hilfeseiten fehlen: In „%1“ liegen keine.</translation>
    </message>
    <message>
        <source>The page “%1” isn&apos;t there.</source>
        <translation>Die Seite „%1“ gibt es nicht.</translation>
    </message>
    <message>
        <source>Help: %1</source>
        <translation>Hilfe: %1</translation>
    </message>
    <message>
        <source>Not found</source>
        <translation>Nicht gefunden</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::LookMenus</name>
    <message>
        <source>&amp;Alignments</source>
        <translation>&amp;Achsen</translation>
    </message>
    <message>
        <source>S&amp;tations</source>
        <translation>&amp;Stationen</translation>
    </message>
    <message>
        <source>Sample &amp;lines</source>
        <translation>&amp;Querprofile</translation>
    </message>
    <message>
        <source>&amp;Points</source>
        <translation>&amp;Punkte</translation>
    </message>
    <message>
        <source>&amp;Corridors</source>
        <translation>Straßen&amp;körper</translation>
    </message>
    <message>
        <source>&amp;Triangles when near</source>
        <translation>&amp;Dreiecke aus der Nähe</translation>
    </message>
    <message>
        <source>&amp;Border</source>
        <translation>&amp;Umring</translation>
    </message>
    <message>
        <source>&amp;Relief</source>
        <translation>&amp;Relief</translation>
    </message>
    <message>
        <source>&amp;Heights</source>
        <translation>&amp;Höhenfarben</translation>
    </message>
    <message>
        <source>&amp;Nothing</source>
        <translation>&amp;Nichts</translation>
    </message>
    <message>
        <source>C&amp;ontours</source>
        <translation>Höhen&amp;linien</translation>
    </message>
    <message>
        <source>Interval by the &amp;scale</source>
        <translation>Abstand nach dem &amp;Maßstab</translation>
    </message>
    <message>
        <source>&amp;Interval %1…</source>
        <translation>A&amp;bstand %1…</translation>
    </message>
    <message>
        <source>&amp;Interval…</source>
        <translation>A&amp;bstand…</translation>
    </message>
    <message>
        <source>Contours</source>
        <translation>Höhenlinien</translation>
    </message>
    <message>
        <source>Interval between contours, in units of the drawing:</source>
        <translation>Abstand der Höhenlinien, in Einheiten der Zeichnung:</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::MainWindow</name>
    <message>
        <source>There are no reports: %1. Drawings can be looked at all the same.</source>
        <translation>Es gibt keine Berichte: %1. Ansehen lassen sich Zeichnungen trotzdem.</translation>
    </message>
    <message>
        <source>About lvxhost-desktop</source>
        <translation>Über lvxhost-desktop</translation>
    </message>
    <message>
        <source>&lt;h3&gt;lvxhost-desktop %1&lt;/h3&gt;&lt;p&gt;Opens LandXML drawings and runs the road reports on them.&lt;/p&gt;&lt;p&gt;Module: %2&lt;/p&gt;</source>
        <translation>&lt;h3&gt;lvxhost-desktop %1&lt;/h3&gt;&lt;p&gt;Öffnet LandXML-Zeichnungen und erstellt daraus die Berichte für den Straßenentwurf.&lt;/p&gt;&lt;p&gt;Modul: %2&lt;/p&gt;</translation>
    </message>
    <message>
        <source>%1[*] – lvxhost-desktop</source>
        <translation>%1[*] – lvxhost-desktop</translation>
    </message>
    <message>
        <source>No drawing is open. OPEN opens one.</source>
        <translation>Es ist keine Zeichnung geöffnet. OPEN öffnet eine.</translation>
    </message>
    <message>
        <source>Drop to open; hold Ctrl to add to the open drawing</source>
        <translation>Loslassen öffnet; mit Strg wird zur offenen Zeichnung hinzugefügt</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::MeasureTool</name>
    <message>
        <source>Measure: points</source>
        <translation>Messen: Punkte</translation>
    </message>
    <message>
        <source>Z %1</source>
        <translation>Z %1</translation>
    </message>
    <message>
        <source>%1, Esc: back</source>
        <translation>%1, Esc: zurück</translation>
    </message>
    <message>
        <source>%1, Enter ends, Esc: one back</source>
        <translation>%1, Enter beendet, Esc: einen zurück</translation>
    </message>
    <message>
        <source>Measured</source>
        <translation>Gemessen</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::NoticeBar</name>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ObjectMaker</name>
    <message>
        <source>New profile “%1”</source>
        <translation>Neuer Längsschnitt „%1“</translation>
    </message>
    <message>
        <source>Select points for the group; Enter ends:</source>
        <translation>Punkte für die Gruppe wählen; die Eingabetaste beendet:</translation>
    </message>
    <message>
        <source>Select points to take away; Enter ends:</source>
        <translation>Punkte wählen, die wegfallen; die Eingabetaste beendet:</translation>
    </message>
    <message>
        <source>New point group “%1”</source>
        <translation>Neue Punktgruppe „%1“</translation>
    </message>
    <message>
        <source>&amp;Profile from surface…</source>
        <translation>Längsschnitt aus D&amp;GM…</translation>
    </message>
    <message>
        <source>Point group from &amp;filter…</source>
        <translation>Punktgruppe aus &amp;Filter…</translation>
    </message>
    <message>
        <source>Point group from &amp;selection…</source>
        <translation>Pu&amp;nktgruppe aus Auswahl…</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ObjectMenu</name>
    <message>
        <source>P&amp;roperties</source>
        <translation>&amp;Eigenschaften</translation>
    </message>
    <message>
        <source>&amp;Zoom here</source>
        <translation>Hierher &amp;zoomen</translation>
    </message>
    <message>
        <source>&amp;Copy coordinates</source>
        <translation>Koordinaten &amp;kopieren</translation>
    </message>
    <message>
        <source>&amp;Hide</source>
        <translation>&amp;Ausblenden</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::PlaceLine</name>
    <message>
        <source>left</source>
        <translation>links</translation>
    </message>
    <message>
        <source>right</source>
        <translation>rechts</translation>
    </message>
    <message>
        <source>on the axis</source>
        <translation>auf der Achse</translation>
    </message>
    <message>
        <source>%1:  station %2   offset %3 %4</source>
        <translation>%1:  Station %2   Abstand %3 %4</translation>
    </message>
    <message>
        <source>E %1   N %2</source>
        <extracomment>Easting and northing of a place, as their letters.</extracomment>
        <translation>R %1   H %2</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::PlanOutput</name>
    <message>
        <source>PDF document</source>
        <translation>PDF-Dokument</translation>
    </message>
    <message>
        <source>SVG drawing</source>
        <translation>SVG-Zeichnung</translation>
    </message>
    <message>
        <source>PNG picture</source>
        <translation>PNG-Bild</translation>
    </message>
    <message>
        <source>plan</source>
        <translation>Lageplan</translation>
    </message>
    <message>
        <source>Export the plan</source>
        <translation>Lageplan exportieren</translation>
    </message>
    <message>
        <source>Print the plan</source>
        <translation>Lageplan drucken</translation>
    </message>
    <message>
        <source>This computer has no printer. Export the plan as a PDF file, and print that where there is one.</source>
        <translation>Dieser Rechner hat keinen Drucker. Der Lageplan lässt sich als PDF exportieren und dort drucken, wo es einen gibt.</translation>
    </message>
    <message>
        <source>%1 doesn&apos;t take the plan. Is it switched on and connected? The plan can be exported as a PDF file meanwhile.</source>
        <translation>%1 nimmt den Lageplan nicht an. Ist der Drucker eingeschaltet und verbunden? Der Lageplan lässt sich derweil als PDF exportieren.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::PlanSheetDialog</name>
    <message>
        <source>Coordinate &amp;grid</source>
        <translation>Koordinaten&amp;gitter</translation>
    </message>
    <message>
        <source>&amp;Legend</source>
        <translation>&amp;Legende</translation>
    </message>
    <message>
        <source>Export the plan</source>
        <translation>Lageplan exportieren</translation>
    </message>
    <message>
        <source>Print the plan</source>
        <translation>Lageplan drucken</translation>
    </message>
    <message>
        <source>Landscape</source>
        <translation>Querformat</translation>
    </message>
    <message>
        <source>Portrait</source>
        <translation>Hochformat</translation>
    </message>
    <message>
        <source>As large as it goes</source>
        <translation>So groß wie möglich</translation>
    </message>
    <message>
        <source>What the plan shows</source>
        <translation>Was der Lageplan zeigt</translation>
    </message>
    <message>
        <source>Everything</source>
        <translation>Alles</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Exportieren…</translation>
    </message>
    <message>
        <source>Print…</source>
        <translation>Drucken…</translation>
    </message>
    <message>
        <source>&amp;Paper:</source>
        <translation>&amp;Papier:</translation>
    </message>
    <message>
        <source>&amp;Orientation:</source>
        <translation>&amp;Ausrichtung:</translation>
    </message>
    <message>
        <source>&amp;Scale:</source>
        <translation>&amp;Maßstab:</translation>
    </message>
    <message>
        <source>P&amp;art:</source>
        <translation>Aus&amp;schnitt:</translation>
    </message>
    <message>
        <source>A scale is typed as 1:500.</source>
        <translation>Ein Maßstab wird als 1:500 eingegeben.</translation>
    </message>
    <message>
        <source>1:%1, %2 by %3 %4 of the drawing</source>
        <translation>1:%1, %2 mal %3 %4 der Zeichnung</translation>
    </message>
    <message>
        <source>Not all of it fits; at 1:%1 it would.</source>
        <translation>Nicht alles passt darauf; bei 1:%1 schon.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::PlanSnap</name>
    <message>
        <source>S: snapping off</source>
        <translation>S: Fang aus</translation>
    </message>
    <message>
        <source>S: snapping on</source>
        <translation>S: Fang ein</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::PlanView</name>
    <message>
        <source>Plan</source>
        <translation>Lageplan</translation>
    </message>
    <message>
        <source>Nothing to show</source>
        <translation>Nichts zu zeigen</translation>
    </message>
    <message>
        <source>No drawing</source>
        <translation>Keine Zeichnung</translation>
    </message>
    <message>
        <source>This drawing has no surface, alignment, point or corridor.</source>
        <translation>Diese Zeichnung hat weder DGM noch Achse, Punkt oder Straßenkörper.</translation>
    </message>
    <message>
        <source>Open a LandXML file, or drop one here.</source>
        <translation>Öffnen Sie eine LandXML-Datei, oder ziehen Sie eine hierher.</translation>
    </message>
    <message>
        <source>%1 selected</source>
        <translation>%1 gewählt</translation>
    </message>
    <message>
        <source>Inside and touched</source>
        <translation>Innen und berührt</translation>
    </message>
    <message>
        <source>Wholly inside</source>
        <translation>Ganz innen</translation>
    </message>
    <message>
        <source>A adds again, Enter ends</source>
        <translation>A fügt wieder hinzu, Enter beendet</translation>
    </message>
    <message>
        <source>Click or drag a window, Enter ends</source>
        <translation>Klicken oder Fenster aufziehen, Enter beendet</translation>
    </message>
    <message>
        <source>R or Shift removes, Enter ends</source>
        <translation>R oder Umschalt entfernt, Enter beendet</translation>
    </message>
    <message>
        <source>(%1 of %2)</source>
        <translation>(%1 von %2)</translation>
    </message>
    <message>
        <source>Space: the next below, Esc: back</source>
        <translation>Leertaste: das nächste darunter, Esc: zurück</translation>
    </message>
    <message>
        <source>Here or in the tree, Esc: back</source>
        <translation>Hier oder im Baum, Esc: zurück</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::PointGroupDialog</name>
    <message>
        <source>Point group from filter</source>
        <translation>Punktgruppe aus Filter</translation>
    </message>
    <message>
        <source>Point group from selection</source>
        <translation>Punktgruppe aus Auswahl</translation>
    </message>
    <message>
        <source>%1 isn&apos;t a number, such as 7, or a range, such as 100..120.</source>
        <translation>%1 ist weder eine Zahl wie 7 noch ein Bereich wie 100..120.</translation>
    </message>
    <message>
        <source>Quotes in %1 come in pairs.</source>
        <translation>Anführungszeichen in %1 brauchen ein Gegenstück.</translation>
    </message>
    <message>
        <source>Number of points</source>
        <translation>Zahl der Punkte</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>&amp;Description:</source>
        <translation>&amp;Beschreibung:</translation>
    </message>
    <message>
        <source>Name o&amp;f the point:</source>
        <translation>Name des &amp;Punkts:</translation>
    </message>
    <message>
        <source>&amp;Elevation:</source>
        <translation>&amp;Höhe:</translation>
    </message>
    <message>
        <source>N&amp;umber:</source>
        <translation>N&amp;ummer:</translation>
    </message>
    <message>
        <source>* stands for any letters, ? for one; semicolons part what else may be</source>
        <translation>* steht für beliebige Zeichen, ? für eines; Semikolons trennen, was auch sein darf</translation>
    </message>
    <message>
        <source>A number or a range; .. stands between its ends, semicolons part what else may be</source>
        <translation>Eine Zahl oder ein Bereich; zwischen seinen Enden steht .., Semikolons trennen, was auch sein darf</translation>
    </message>
    <message numerus="yes">
        <source>%n point(s) in the group.</source>
        <translation>
            <numerusform>%n Punkt in der Gruppe.</numerusform>
            <numerusform>%n Punkte in der Gruppe.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n more can&apos;t be in a group: their numbers stand twice.</source>
        <translation>
            <numerusform>%n weiterer kann in keiner Gruppe sein: Seine Nummer steht zweimal da.</numerusform>
            <numerusform>%n weitere können in keiner Gruppe sein: Ihre Nummern stehen zweimal da.</numerusform>
        </translation>
    </message>
    <message>
        <source>No point fits.</source>
        <translation>Kein Punkt passt.</translation>
    </message>
    <message>
        <source>The group needs a name.</source>
        <translation>Die Gruppe braucht einen Namen.</translation>
    </message>
    <message>
        <source>There is a point group of this name already.</source>
        <translation>Es gibt schon eine Punktgruppe dieses Namens.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ProfileView</name>
    <message>
        <source>Select an alignment to see its profiles.</source>
        <translation>Wählen Sie eine Achse, um ihre Längsschnitte zu sehen.</translation>
    </message>
    <message>
        <source>Profile of %1</source>
        <translation>Längsschnitt %1</translation>
    </message>
    <message>
        <source>Station %1 to %2</source>
        <translation>Station %1 bis %2</translation>
    </message>
    <message>
        <source>Station [%1]</source>
        <translation>Station [%1]</translation>
    </message>
    <message>
        <source>Elevation [%1]</source>
        <translation>Höhe [%1]</translation>
    </message>
    <message>
        <source>L=%1 + %2</source>
        <translation>L=%1 + %2</translation>
    </message>
    <message>
        <source>L=%1</source>
        <translation>L=%1</translation>
    </message>
    <message>
        <source>R=%1</source>
        <translation>H=%1</translation>
    </message>
    <message>
        <source>Surface %1</source>
        <translation>DGM %1</translation>
    </message>
    <message>
        <source>Alignment %1 has no profiles.</source>
        <translation>Die Achse %1 hat keine Längsschnitte.</translation>
    </message>
    <message>
        <source>Nothing of alignment %1 is shown.</source>
        <translation>Von der Achse %1 ist nichts eingeblendet.</translation>
    </message>
    <message>
        <source>Station %1</source>
        <translation>Station %1</translation>
    </message>
    <message>
        <source>Elevation %1</source>
        <translation>Höhe %1</translation>
    </message>
    <message>
        <source>profile</source>
        <extracomment>Name that a profile&apos;s file is given first.</extracomment>
        <translation>Längsschnitt</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ProgressStrip</name>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>End this work (Escape)</source>
        <translation>Diese Arbeit abbrechen (Esc)</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Byte</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::PropertiesView</name>
    <message>
        <source>Pages of properties</source>
        <translation>Seiten der Eigenschaften</translation>
    </message>
    <message>
        <source>Table</source>
        <translation>Tabelle</translation>
    </message>
    <message>
        <source>Copy for a spreadsheet</source>
        <translation>Für Tabellenkalkulation kopieren</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Copy as text</source>
        <translation>Als Text kopieren</translation>
    </message>
    <message>
        <source>Values</source>
        <translation>Werte</translation>
    </message>
    <message>
        <source>Property</source>
        <translation>Eigenschaft</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Einheit</translation>
    </message>
    <message numerus="yes">
        <source>%n row(s)</source>
        <translation>
            <numerusform>%n Zeile</numerusform>
            <numerusform>%n Zeilen</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::RecentDrawings</name>
    <message>
        <source>%1 isn&apos;t there any more</source>
        <translation>%1 gibt es nicht mehr</translation>
    </message>
    <message>
        <source>No drawing was opened yet</source>
        <translation>Noch keine Zeichnung geöffnet</translation>
    </message>
    <message>
        <source>&amp;Remove those that are gone</source>
        <translation>&amp;Fehlende entfernen</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ReportAdviser</name>
    <message numerus="yes">
        <source>%n more odd thing(s) in what the report is of; see Diagnostics.</source>
        <translation>
            <numerusform>%n weitere Auffälligkeit in dem, was der Bericht zeigt; siehe Diagnose.</numerusform>
            <numerusform>%n weitere Auffälligkeiten in dem, was der Bericht zeigt; siehe Diagnose.</numerusform>
        </translation>
    </message>
    <message>
        <source>Warning: %1</source>
        <translation>Warnung: %1</translation>
    </message>
    <message>
        <source>The command ends where its workbook can&apos;t be saved, so that a page behind it is missing too. Choose a place that can be written, or leave the workbook out.</source>
        <translation>Der Befehl endet, wo sich seine Arbeitsmappe nicht speichern lässt, so dass auch die Seite danach fehlt. Wählen Sie einen Ort, an den Sie schreiben dürfen, oder lassen Sie die Arbeitsmappe weg.</translation>
    </message>
    <message numerus="yes">
        <source>(%n more in the console)</source>
        <translation>
            <numerusform>(%n weitere in der Konsole)</numerusform>
            <numerusform>(%n weitere in der Konsole)</numerusform>
        </translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>The report could not go on with these objects. Diagnostics tells what is odd about them; with others it may run.</source>
        <translation>Der Bericht kam mit diesen Objekten nicht weiter. Unter „Diagnose“ steht, was an ihnen seltsam ist; mit anderen läuft er vielleicht.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ReportOutcome</name>
    <message>
        <source>The drawing has new sections that aren&apos;t saved yet.</source>
        <translation>Die Zeichnung hat neue Querschnitte, die noch nicht gespeichert sind.</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Byte</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1 was not written: %2</source>
        <translation>%1 wurde nicht geschrieben: %2</translation>
    </message>
    <message>
        <source>%1 was removed.</source>
        <translation>%1 wurde entfernt.</translation>
    </message>
    <message>
        <source>%1 was cancelled; no unfinished file was left.</source>
        <translation>%1 wurde abgebrochen; es ist keine unfertige Datei zurückgeblieben.</translation>
    </message>
    <message>
        <source>%1 ended by an exception: %2</source>
        <translation>%1 endete mit einer Ausnahme: %2</translation>
    </message>
    <message>
        <source>%1 ended and wrote nothing.</source>
        <translation>%1 ist beendet und hat nichts geschrieben.</translation>
    </message>
    <message>
        <source>Not everything was written</source>
        <translation>Nicht alles wurde geschrieben</translation>
    </message>
    <message numerus="yes">
        <source>%1 could not write %n file(s).</source>
        <translation>
            <numerusform>%1 konnte %n Datei nicht schreiben.</numerusform>
            <numerusform>%1 konnte %n Dateien nicht schreiben.</numerusform>
        </translation>
    </message>
    <message>
        <source>Run the report again and choose a folder that you may write to and that has room. What stood under these names is as it was.</source>
        <translation>Starten Sie den Bericht noch einmal, und wählen Sie einen Ordner, in den Sie schreiben dürfen und der Platz hat. Was unter diesen Namen stand, ist unverändert.</translation>
    </message>
    <message>
        <source>There is no folder %1, and nothing was written.</source>
        <translation>Den Ordner %1 gibt es nicht, und es wurde nichts geschrieben.</translation>
    </message>
    <message>
        <source>Nothing was written</source>
        <translation>Nichts wurde geschrieben</translation>
    </message>
    <message>
        <source>There is no folder %1.</source>
        <translation>Den Ordner %1 gibt es nicht.</translation>
    </message>
    <message>
        <source>Make it, or choose another place for the output file.</source>
        <translation>Legen Sie ihn an, oder wählen Sie einen anderen Ort für die Ausgabedatei.</translation>
    </message>
    <message>
        <source>%1 is written.</source>
        <translation>%1 ist geschrieben.</translation>
    </message>
    <message>
        <source>Not written: %1</source>
        <translation>Nicht geschrieben: %1</translation>
    </message>
    <message>
        <source>The command ended before %1.</source>
        <translation>Der Befehl endete vor %1.</translation>
    </message>
    <message>
        <source>%1 wrote %2.</source>
        <translation>%1 schrieb %2.</translation>
    </message>
    <message>
        <source>%1 is saved.</source>
        <translation>%1 ist gespeichert.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ReportPrinting</name>
    <message>
        <source>Print</source>
        <translation>Drucken</translation>
    </message>
    <message>
        <source>&amp;Save as PDF…</source>
        <translation>Als &amp;PDF speichern…</translation>
    </message>
    <message>
        <source>%1 can&apos;t be written: %2</source>
        <translation>%1 lässt sich nicht schreiben: %2</translation>
    </message>
    <message>
        <source>Save as PDF</source>
        <translation>Als PDF speichern</translation>
    </message>
    <message>
        <source>PDF document</source>
        <translation>PDF-Dokument</translation>
    </message>
    <message>
        <source>This system has no printer. Set one up in the system&apos;s settings, or save the report as a PDF document.</source>
        <translation>Dieses System hat keinen Drucker. Richten Sie in den Einstellungen des Systems einen ein, oder speichern Sie den Bericht als PDF-Dokument.</translation>
    </message>
    <message>
        <source>The printer %1 can&apos;t be reached, or took nothing. See whether it is switched on, choose another one, or save the report as a PDF document.</source>
        <translation>Der Drucker %1 ist nicht erreichbar oder nahm nichts an. Sehen Sie nach, ob er eingeschaltet ist, wählen Sie einen anderen, oder speichern Sie den Bericht als PDF-Dokument.</translation>
    </message>
    <message>
        <source>Page %1</source>
        <translation>Seite %1</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ReportViewer</name>
    <message>
        <source>This system has no program for %1. Install one (LibreOffice Calc for workbooks, a browser for pages), or take the file elsewhere.</source>
        <translation>Dieses System hat kein Programm für %1. Installieren Sie eines (LibreOffice Calc für Mappen, einen Browser für Seiten), oder öffnen Sie die Datei anderswo.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be read: %2</source>
        <translation>%1 kann nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>%1 isn&apos;t there any more. Run the report again.</source>
        <translation>%1 gibt es nicht mehr. Starten Sie den Bericht noch einmal.</translation>
    </message>
    <message>
        <source>The folder %1 isn&apos;t there any more.</source>
        <translation>Den Ordner %1 gibt es nicht mehr.</translation>
    </message>
    <message>
        <source>This system has no file manager. The file is in %1.</source>
        <translation>Dieses System hat keinen Dateimanager. Die Datei liegt in %1.</translation>
    </message>
    <message>
        <source>&amp;Find…</source>
        <translation>&amp;Suchen…</translation>
    </message>
    <message>
        <source>&amp;Print…</source>
        <translation>&amp;Drucken…</translation>
    </message>
    <message>
        <source>Save as P&amp;DF…</source>
        <translation>Als &amp;PDF speichern…</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::SampleLineEditing</name>
    <message>
        <source>New sample lines “%1”</source>
        <translation>Neue Querprofile „%1“</translation>
    </message>
    <message>
        <source>Edit sample lines “%1”</source>
        <translation>Querprofile „%1“ bearbeiten</translation>
    </message>
    <message numerus="yes">
        <source>Group “%1” has %n sample line(s).</source>
        <translation>
            <numerusform>Gruppe „%1“ hat %n Querprofil.</numerusform>
            <numerusform>Gruppe „%1“ hat %n Querprofile.</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Name</source>
        <translation>&amp;Name</translation>
    </message>
    <message>
        <source>New width to the &amp;left</source>
        <translation>Neue Breite nach &amp;links</translation>
    </message>
    <message>
        <source>New width to the &amp;right</source>
        <translation>Neue Breite nach &amp;rechts</translation>
    </message>
    <message>
        <source>as it is</source>
        <translation>wie sie ist</translation>
    </message>
    <message>
        <source>A name is wanted.</source>
        <translation>Ein Name wird erwartet.</translation>
    </message>
    <message>
        <source>The alignment has a group of this name already.</source>
        <translation>Die Achse hat schon eine Gruppe dieses Namens.</translation>
    </message>
    <message>
        <source>A width above 0 is wanted, or nothing.</source>
        <translation>Eine Breite über 0 wird erwartet, oder nichts.</translation>
    </message>
    <message>
        <source>Delete sample line %1</source>
        <translation>Querprofil %1 löschen</translation>
    </message>
    <message>
        <source>Delete sample lines “%1”</source>
        <translation>Querprofile „%1“ löschen</translation>
    </message>
    <message>
        <source>Add a sample line</source>
        <translation>Querprofil hinzufügen</translation>
    </message>
    <message>
        <source>Station from %1 to %2:</source>
        <translation>Station von %1 bis %2:</translation>
    </message>
    <message>
        <source>New sample line %1</source>
        <translation>Neues Querprofil %1</translation>
    </message>
    <message>
        <source>Width of sample line %1</source>
        <translation>Breite von Querprofil %1</translation>
    </message>
    <message>
        <source>Sample &amp;lines…</source>
        <translation>&amp;Querprofile …</translation>
    </message>
    <message>
        <source>&amp;Add a line to “%1” here, at %2</source>
        <translation>&amp;Hier ein Querprofil zu „%1“ hinzufügen, bei %2</translation>
    </message>
    <message>
        <source>Add a line at a &amp;station…</source>
        <translation>Querprofil bei &amp;Station hinzufügen …</translation>
    </message>
    <message>
        <source>&amp;Edit the group…</source>
        <translation>&amp;Gruppe bearbeiten …</translation>
    </message>
    <message>
        <source>&amp;Delete the line</source>
        <translation>Querprofil &amp;löschen</translation>
    </message>
    <message>
        <source>&amp;Delete the group</source>
        <translation>Gruppe &amp;löschen</translation>
    </message>
    <message>
        <source>Nothing was changed, since a drawing is being read.</source>
        <translation>Nichts wurde geändert, denn eine Zeichnung wird gelesen.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::SampleLinesDialog</name>
    <message>
        <source>Sample lines</source>
        <translation>Querprofile</translation>
    </message>
    <message>
        <source>Edit sample lines “%1”</source>
        <translation>Querprofile „%1“ bearbeiten</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Gruppe</translation>
    </message>
    <message>
        <source>&amp;Alignment</source>
        <translation>&amp;Achse</translation>
    </message>
    <message>
        <source>&amp;Group name</source>
        <translation>&amp;Name der Gruppe</translation>
    </message>
    <message>
        <source>Reports show the group under this name</source>
        <translation>Unter diesem Namen steht die Gruppe in Berichten</translation>
    </message>
    <message>
        <source>Where lines stand</source>
        <translation>Wo Querprofile liegen</translation>
    </message>
    <message>
        <source>A line &amp;every</source>
        <translation>&amp;Ein Querprofil alle</translation>
    </message>
    <message>
        <source>&amp;Counted</source>
        <translation>&amp;Gezählt</translation>
    </message>
    <message>
        <source>at multiples</source>
        <translation>bei Vielfachen</translation>
    </message>
    <message>
        <source>from the first station</source>
        <translation>ab der ersten Station</translation>
    </message>
    <message>
        <source>&amp;Half of that in curves with a radius below</source>
        <translation>&amp;Halber Abstand in Bögen mit Radius unter</translation>
    </message>
    <message>
        <source>&amp;From station</source>
        <translation>&amp;Von Station</translation>
    </message>
    <message>
        <source>Empty: from the start of the alignment</source>
        <translation>Leer: vom Anfang der Achse</translation>
    </message>
    <message>
        <source>&amp;To station</source>
        <translation>&amp;Bis Station</translation>
    </message>
    <message>
        <source>Empty: to the end of the alignment</source>
        <translation>Leer: bis zum Ende der Achse</translation>
    </message>
    <message>
        <source>At &amp;both ends</source>
        <translation>An bei&amp;den Enden</translation>
    </message>
    <message>
        <source>At the ends of hori&amp;zontal elements</source>
        <translation>An den Enden der Lageelemen&amp;te</translation>
    </message>
    <message>
        <source>&amp;Profile</source>
        <translation>&amp;Längsschnitt</translation>
    </message>
    <message>
        <source>At the &amp;intersection points of the profile</source>
        <translation>An den Tangentenschnittpunkten des Längs&amp;schnitts</translation>
    </message>
    <message>
        <source>At the ends of its &amp;vertical curves</source>
        <translation>An den Enden seiner A&amp;usrundungen</translation>
    </message>
    <message>
        <source>At the&amp;se stations</source>
        <translation>An diesen Stati&amp;onen</translation>
    </message>
    <message>
        <source>With semicolons: 0+020; 35.5</source>
        <translation>Mit Strichpunkten: 0+020; 35.5</translation>
    </message>
    <message>
        <source>&amp;Merge lines closer than</source>
        <translation>&amp;Zusammenlegen, wenn näher als</translation>
    </message>
    <message>
        <source>Lines as close as this are one</source>
        <translation>So nahe Querprofile sind eines</translation>
    </message>
    <message>
        <source>How wide</source>
        <translation>Wie breit</translation>
    </message>
    <message>
        <source>Fixed width to the &amp;left</source>
        <translation>Feste Breite nach lin&amp;ks</translation>
    </message>
    <message>
        <source>Fixed width to the &amp;right</source>
        <translation>Feste Breite nach &amp;rechts</translation>
    </message>
    <message>
        <source>&amp;Otherwise to the border of</source>
        <translation>Sonst b&amp;is zum Rand von</translation>
    </message>
    <message>
        <source>Largest &amp;width to the border</source>
        <translation>Hö&amp;chstbreite bis zum Rand</translation>
    </message>
    <message>
        <source>Lines that don&apos;t reach the border, or don&apos;t meet the surface, are this wide</source>
        <translation>So breit sind Querprofile, die den Rand nicht erreichen oder das DGM nicht treffen</translation>
    </message>
    <message>
        <source>S&amp;kew [°]</source>
        <translation>Schie&amp;fe [°]</translation>
    </message>
    <message>
        <source>By how much lines turn clockwise against square</source>
        <translation>Um wie viel Querprofile im Uhrzeigersinn gegen die Senkrechte gedreht sind</translation>
    </message>
    <message>
        <source>Names</source>
        <translation>Namen</translation>
    </message>
    <message>
        <source>Patter&amp;n of the names</source>
        <translation>&amp;Muster der Namen</translation>
    </message>
    <message>
        <source>{station} as reports print it, {kind} why the line stands there, {n} its number</source>
        <translation>{station} wie in Berichten, {kind} warum das Querprofil dort liegt, {n} seine Nummer</translation>
    </message>
    <message>
        <source>What the rules give</source>
        <translation>Was die Regeln ergeben</translation>
    </message>
    <message>
        <source>A number is wanted.</source>
        <translation>Eine Zahl wird erwartet.</translation>
    </message>
    <message>
        <source>A number above 0 is wanted.</source>
        <translation>Eine Zahl über 0 wird erwartet.</translation>
    </message>
    <message>
        <source>A station is wanted, as 1020.5 or 1+020.5.</source>
        <translation>Eine Station wird erwartet, wie 1020.5 oder 1+020.5.</translation>
    </message>
    <message>
        <source>The alignment runs from %1 to %2.</source>
        <translation>Die Achse reicht von %1 bis %2.</translation>
    </message>
    <message>
        <source>This lies before the first station.</source>
        <translation>Das liegt vor der ersten Station.</translation>
    </message>
    <message>
        <source>This alignment has no profile.</source>
        <translation>Diese Achse hat keinen Längsschnitt.</translation>
    </message>
    <message>
        <source>Stations between semicolons are wanted.</source>
        <translation>Stationen zwischen Strichpunkten werden erwartet.</translation>
    </message>
    <message>
        <source>A number of 0 or above is wanted.</source>
        <translation>Eine Zahl ab 0 wird erwartet.</translation>
    </message>
    <message>
        <source>The drawing has no surface: give both widths.</source>
        <translation>Die Zeichnung hat kein DGM: beide Breiten angeben.</translation>
    </message>
    <message>
        <source>This surface has no ground.</source>
        <translation>Dieses DGM hat kein Gelände.</translation>
    </message>
    <message>
        <source>An angle between -90 and 90 is wanted.</source>
        <translation>Ein Winkel zwischen -90 und 90 wird erwartet.</translation>
    </message>
    <message>
        <source>A name is wanted.</source>
        <translation>Ein Name wird erwartet.</translation>
    </message>
    <message>
        <source>The alignment has a group of this name already.</source>
        <translation>Die Achse hat schon eine Gruppe dieses Namens.</translation>
    </message>
    <message>
        <source>In braces only {station}, {kind} and {n} can stand.</source>
        <translation>In Klammern können nur {station}, {kind} und {n} stehen.</translation>
    </message>
    <message>
        <source>The drawing has no alignment.</source>
        <translation>Die Zeichnung hat keine Achse.</translation>
    </message>
    <message>
        <source>Something is missing above.</source>
        <translation>Oben fehlt noch etwas.</translation>
    </message>
    <message>
        <source>Nothing says where lines stand yet.</source>
        <translation>Noch ist nicht gesagt, wo Querprofile liegen.</translation>
    </message>
    <message>
        <source>This gives more than %1 lines.</source>
        <translation>Das ergibt mehr als %1 Querprofile.</translation>
    </message>
    <message numerus="yes">
        <source>%n line(s) so far…</source>
        <translation>
            <numerusform>Bisher %n Querprofil …</numerusform>
            <numerusform>Bisher %n Querprofile …</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n line(s): %1</source>
        <translation>
            <numerusform>%n Querprofil: %1</numerusform>
            <numerusform>%n Querprofile: %1</numerusform>
        </translation>
    </message>
    <message>
        <source>OK makes all lines of the group anew. Lines that were added, deleted or pulled by hand are as the rules make them then; Undo brings them back.</source>
        <translation>OK macht alle Querprofile der Gruppe neu. Was von Hand ergänzt, gelöscht oder gezogen wurde, ist dann so, wie die Regeln es machen; Rückgängig holt es zurück.</translation>
    </message>
    <message>
        <source>These rules give no line here.</source>
        <translation>Diese Regeln ergeben hier kein Querprofil.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::SchemeMenu</name>
    <message>
        <source>As the &amp;system</source>
        <translation>Wie das &amp;System</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Hell</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>&amp;Dunkel</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::SectionView</name>
    <message>
        <source>Select a sample line to see its cross section.</source>
        <translation>Wählen Sie ein Querprofil, um seinen Schnitt zu sehen.</translation>
    </message>
    <message>
        <source>Cross section at %1, %2</source>
        <translation>Querprofil bei %1, %2</translation>
    </message>
    <message>
        <source>Sample line %1, %2</source>
        <translation>Querprofil %1, %2</translation>
    </message>
    <message>
        <source>Offset [%1]</source>
        <translation>Abstand [%1]</translation>
    </message>
    <message>
        <source>Elevation [%1]</source>
        <translation>Höhe [%1]</translation>
    </message>
    <message>
        <source>The drawing has no surface, and no corridor has a section here.</source>
        <translation>Die Zeichnung hat kein DGM, und kein Straßenkörper hat hier einen Querschnitt.</translation>
    </message>
    <message>
        <source>Sample line %1 lies off every surface that is shown, and no corridor that is shown has a section at %2.</source>
        <translation>Das Querprofil %1 liegt außerhalb aller eingeblendeten DGM, und kein eingeblendeter Straßenkörper hat bei %2 einen Querschnitt.</translation>
    </message>
    <message>
        <source>Offset %1</source>
        <translation>Abstand %1</translation>
    </message>
    <message>
        <source>Elevation %1</source>
        <translation>Höhe %1</translation>
    </message>
    <message>
        <source>section</source>
        <extracomment>Name that a cross section&apos;s file is given first.</extracomment>
        <translation>Querprofil</translation>
    </message>
    <message>
        <source>Previous section (Page up)</source>
        <translation>Vorheriges Querprofil (Bild auf)</translation>
    </message>
    <message>
        <source>Next section (Page down)</source>
        <translation>Nächstes Querprofil (Bild ab)</translation>
    </message>
    <message>
        <source>Sections of the alignment: sample lines of the group, and corridors</source>
        <translation>Querprofile der Achse: die der Gruppe und die der Straßenkörper</translation>
    </message>
    <message>
        <source>Sections of the alignment</source>
        <translation>Querprofile der Achse</translation>
    </message>
    <message>
        <source>Through all sections of the alignment</source>
        <translation>Durch alle Querprofile der Achse</translation>
    </message>
    <message>
        <source>Station: Enter goes to the nearest section</source>
        <translation>Station: Enter geht zum nächstgelegenen Querprofil</translation>
    </message>
    <message>
        <source>Station</source>
        <translation>Station</translation>
    </message>
    <message>
        <source>Follow</source>
        <translation>Folgen</translation>
    </message>
    <message>
        <source>Show the section nearest to the mouse in plan and profile</source>
        <translation>Das Querprofil zeigen, das der Maus in Plan und Längsschnitt am nächsten liegt</translation>
    </message>
    <message>
        <source>Section of a corridor</source>
        <translation>Querprofil eines Straßenkörpers</translation>
    </message>
    <message>
        <source>Nothing that is shown has a section at %1.</source>
        <translation>Nichts, was gezeigt wird, hat bei %1 ein Querprofil.</translation>
    </message>
    <message>
        <source>Corridors</source>
        <translation>Straßenkörper</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::Session</name>
    <message>
        <source>something that has no words</source>
        <translation>etwas, das keinen Text mitbringt</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ShortcutList</name>
    <message>
        <source>Keyboard shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Aktion</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::StartDrawings</name>
    <message>
        <source>%1 isn&apos;t there any more</source>
        <translation>%1 ist nicht mehr da</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::StartPage</name>
    <message>
        <source>Open a drawing</source>
        <translation>Eine Zeichnung öffnen</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Öffnen…</translation>
    </message>
    <message>
        <source>A LandXML file; or drop one here</source>
        <translation>Eine LandXML-Datei; oder ziehen Sie eine hierher</translation>
    </message>
    <message>
        <source>The example</source>
        <translation>Das Beispiel</translation>
    </message>
    <message>
        <source>Recent drawings</source>
        <translation>Letzte Zeichnungen</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::TextWindow</name>
    <message>
        <source>&amp;Earlier lines</source>
        <translation>&amp;Frühere Zeilen</translation>
    </message>
    <message>
        <source>&amp;Later lines</source>
        <translation>&amp;Spätere Zeilen</translation>
    </message>
    <message>
        <source>%1 can&apos;t be read: %2</source>
        <translation>%1 kann nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>%1, lines %2 to %3</source>
        <translation>%1, Zeilen %2 bis %3</translation>
    </message>
    <message>
        <source>%1, line %2</source>
        <translation>%1, Zeile %2</translation>
    </message>
    <message>
        <source>&amp;Find…</source>
        <translation>&amp;Suchen…</translation>
    </message>
    <message>
        <source>&amp;Print…</source>
        <translation>&amp;Drucken…</translation>
    </message>
    <message>
        <source>Save as P&amp;DF…</source>
        <translation>Als &amp;PDF speichern…</translation>
    </message>
    <message>
        <source>&amp;Text</source>
        <translation>&amp;Text</translation>
    </message>
    <message>
        <source>T&amp;able</source>
        <translation>T&amp;abelle</translation>
    </message>
    <message>
        <source>This report&apos;s columns can&apos;t be told apart. Its text is on the other page.</source>
        <translation>Die Spalten dieses Berichts lassen sich nicht unterscheiden. Sein Text steht auf der anderen Seite.</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ValueTable</name>
    <message>
        <source>&amp;Copy for a spreadsheet	Ctrl+C</source>
        <translation>Für Tabellenkalkulation &amp;kopieren	Ctrl+C</translation>
    </message>
    <message>
        <source>Copy as &amp;text</source>
        <translation>Als &amp;Text kopieren</translation>
    </message>
    <message>
        <source>&amp;Zoom here</source>
        <translation>Hierher &amp;zoomen</translation>
    </message>
</context>
<context>
    <name>lvx::desktop::WindowActions</name>
    <message>
        <source>&amp;Open…</source>
        <translation>Ö&amp;ffnen…</translation>
    </message>
    <message>
        <source>Open a LandXML drawing</source>
        <translation>Eine LandXML-Zeichnung öffnen</translation>
    </message>
    <message>
        <source>&amp;Reload</source>
        <translation>&amp;Neu laden</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>Save the drawing with its added sections</source>
        <translation>Die Zeichnung mit den hinzugefügten Querschnitten speichern</translation>
    </message>
    <message>
        <source>Save &amp;as…</source>
        <translation>Speichern &amp;unter…</translation>
    </message>
    <message>
        <source>Save the drawing in another file</source>
        <translation>Die Zeichnung in einer anderen Datei speichern</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Close the program</source>
        <translation>Das Programm schließen</translation>
    </message>
    <message>
        <source>Zoom to &amp;all</source>
        <translation>Zoom auf &amp;alles</translation>
    </message>
    <message>
        <source>Show the whole drawing</source>
        <translation>Die ganze Zeichnung zeigen</translation>
    </message>
    <message>
        <source>Zoom to &amp;selection</source>
        <translation>Zoom auf A&amp;uswahl</translation>
    </message>
    <message>
        <source>Show the selected object as large as it goes</source>
        <translation>Das gewählte Objekt so groß wie möglich zeigen</translation>
    </message>
    <message>
        <source>&amp;Find object</source>
        <translation>Objekt &amp;suchen</translation>
    </message>
    <message>
        <source>Find an object of the drawing by its name</source>
        <translation>Ein Objekt der Zeichnung nach seinem Namen suchen</translation>
    </message>
    <message>
        <source>&amp;Command line</source>
        <translation>&amp;Befehlszeile</translation>
    </message>
    <message>
        <source>Type a command by its name</source>
        <translation>Einen Befehl mit seinem Namen eingeben</translation>
    </message>
    <message>
        <source>&amp;Contents</source>
        <translation>&amp;Inhalt</translation>
    </message>
    <message>
        <source>How the reports are made</source>
        <translation>Wie die Berichte entstehen</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>Ü&amp;ber</translation>
    </message>
    <message>
        <source>About this program</source>
        <translation>Über dieses Programm</translation>
    </message>
    <message>
        <source>&amp;Reports</source>
        <translation>&amp;Berichte</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Open re&amp;cent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Layers</source>
        <translation>&amp;Ebenen</translation>
    </message>
    <message>
        <source>S&amp;urface</source>
        <translation>&amp;DGM</translation>
    </message>
    <message>
        <source>Sc&amp;heme</source>
        <translation>&amp;Farbschema</translation>
    </message>
    <message>
        <source>&amp;Panels</source>
        <translation>Bereic&amp;he</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <source>&lt;b&gt;Layers&lt;/b&gt;&lt;br&gt;What is drawn</source>
        <translation>&lt;b&gt;Ebenen&lt;/b&gt;&lt;br&gt;Was gezeichnet wird</translation>
    </message>
    <message>
        <source>&lt;b&gt;Surface&lt;/b&gt;&lt;br&gt;How the ground is drawn</source>
        <translation>&lt;b&gt;DGM&lt;/b&gt;&lt;br&gt;Wie das Gelände gezeichnet wird</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>Take back the last change of the drawing</source>
        <translation>Die letzte Änderung der Zeichnung zurücknehmen</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>Make the change again that was taken back</source>
        <translation>Die zurückgenommene Änderung wieder ausführen</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>B&amp;earbeiten</translation>
    </message>
    <message>
        <source>Sample &amp;lines…</source>
        <translation>&amp;Querprofile …</translation>
    </message>
    <message>
        <source>Make a group of sample lines by rules</source>
        <translation>Eine Gruppe von Querprofilen nach Regeln anlegen</translation>
    </message>
    <message>
        <source>&amp;Edit sample lines…</source>
        <translation>Querprofile &amp;bearbeiten …</translation>
    </message>
    <message>
        <source>Change the group of the selected sample line</source>
        <translation>Die Gruppe des gewählten Querprofils ändern</translation>
    </message>
    <message>
        <source>&amp;Add a sample line…</source>
        <translation>Querprofil &amp;hinzufügen …</translation>
    </message>
    <message>
        <source>Add a line to the selected group, at a station</source>
        <translation>Der gewählten Gruppe ein Querprofil an einer Station hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Delete the selected sample line or group</source>
        <translation>Das gewählte Querprofil oder die gewählte Gruppe löschen</translation>
    </message>
    <message>
        <source>A&amp;dd drawing…</source>
        <translation>Zeichnung &amp;hinzufügen…</translation>
    </message>
    <message>
        <source>Add the contents of more LandXML files to the open drawing</source>
        <translation>Den Inhalt weiterer LandXML-Dateien zur offenen Zeichnung hinzufügen</translation>
    </message>
    <message>
        <source>Read the open drawing&apos;s files again</source>
        <translation>Die Dateien der offenen Zeichnung noch einmal lesen</translation>
    </message>
    <message>
        <source>&amp;Profile from surface…</source>
        <translation>Längsschnitt aus D&amp;GM…</translation>
    </message>
    <message>
        <source>Make a ground profile of an alignment from a surface</source>
        <translation>Aus einem DGM den Geländelängsschnitt einer Achse machen</translation>
    </message>
    <message>
        <source>Point group from &amp;filter…</source>
        <translation>Punktgruppe aus &amp;Filter…</translation>
    </message>
    <message>
        <source>Make a group of the points that meet conditions</source>
        <translation>Eine Gruppe der Punkte machen, die Bedingungen erfüllen</translation>
    </message>
    <message>
        <source>Point group from &amp;selection…</source>
        <translation>Pu&amp;nktgruppe aus Auswahl…</translation>
    </message>
    <message>
        <source>Select points in the plan and make a group of them</source>
        <translation>Punkte im Lageplan wählen und zu einer Gruppe machen</translation>
    </message>
    <message>
        <source>&amp;Measure</source>
        <translation>&amp;Messen</translation>
    </message>
    <message>
        <source>Measure distances, heights, slopes and areas in the plan</source>
        <translation>Strecken, Höhen, Neigungen und Flächen im Lageplan messen</translation>
    </message>
    <message>
        <source>&amp;Difference of surfaces…</source>
        <translation>D&amp;ifferenz von DGM…</translation>
    </message>
    <message>
        <source>Cut and fill between two surfaces, and the plan coloured by them</source>
        <translation>Abtrag und Auftrag zwischen zwei DGM, und der Lageplan danach gefärbt</translation>
    </message>
    <message>
        <source>Section &amp;book…</source>
        <translation>Profilhef&amp;t…</translation>
    </message>
    <message>
        <source>Draw all sections of a group, or the long section, into one PDF</source>
        <translation>Alle Querprofile einer Gruppe oder den Längsschnitt in ein PDF zeichnen</translation>
    </message>
    <message>
        <source>Free sect&amp;ion</source>
        <translation>Freier S&amp;chnitt</translation>
    </message>
    <message>
        <source>Draw a line over the plan and see the section along it</source>
        <translation>Eine Linie im Plan zeichnen und den Schnitt entlang ihr sehen</translation>
    </message>
    <message>
        <source>&amp;Export plan…</source>
        <translation>Lageplan &amp;exportieren…</translation>
    </message>
    <message>
        <source>Write the plan to a PDF, SVG or PNG file, in true scale</source>
        <translation>Den Lageplan maßstäblich als PDF, SVG oder PNG schreiben</translation>
    </message>
    <message>
        <source>&amp;Print plan…</source>
        <translation>Lageplan &amp;drucken…</translation>
    </message>
    <message>
        <source>Print the plan in true scale</source>
        <translation>Den Lageplan maßstäblich drucken</translation>
    </message>
    <message>
        <source>Zoom to a &amp;rectangle</source>
        <translation>Auf ein &amp;Rechteck zoomen</translation>
    </message>
    <message>
        <source>Show a rectangle that you draw, as large as it goes</source>
        <translation>Ein gezeichnetes Rechteck so groß wie möglich zeigen</translation>
    </message>
    <message>
        <source>Show what the plan showed before</source>
        <translation>Zeigen, was der Lageplan zuvor zeigte</translation>
    </message>
    <message>
        <source>&amp;Next view</source>
        <translation>&amp;Nächste Ansicht</translation>
    </message>
    <message>
        <source>Show the view again that was gone back from</source>
        <translation>Die Ansicht wieder zeigen, von der zurückgegangen wurde</translation>
    </message>
    <message>
        <source>Fill the screen with the window, or give it its size back</source>
        <translation>Den Bildschirm mit dem Fenster füllen oder ihm seine Größe zurückgeben</translation>
    </message>
    <message>
        <source>Sho&amp;w all objects</source>
        <translation>Alle Objekte &amp;zeigen</translation>
    </message>
    <message>
        <source>Show the objects again that are hidden in the plan</source>
        <translation>Die im Lageplan ausgeblendeten Objekte wieder zeigen</translation>
    </message>
    <message>
        <source>&amp;Go to…</source>
        <translation>&amp;Gehe zu…</translation>
    </message>
    <message>
        <source>Go to a point, a station, coordinates or an object</source>
        <translation>Zu einem Punkt, einer Station, Koordinaten oder einem Objekt gehen</translation>
    </message>
    <message>
        <source>Put all panels and tools back to their first places</source>
        <translation>Alle Bereiche und Werkzeuge an ihren ersten Platz stellen</translation>
    </message>
    <message>
        <source>This &amp;window</source>
        <translation>Dieses &amp;Fenster</translation>
    </message>
    <message>
        <source>What the parts of this window show and do</source>
        <translation>Was die Teile dieses Fensters zeigen und tun</translation>
    </message>
    <message>
        <source>&amp;Keyboard shortcuts</source>
        <translation>&amp;Tastenkürzel</translation>
    </message>
    <message>
        <source>All keys of this window&apos;s actions</source>
        <translation>Alle Tasten der Aktionen dieses Fensters</translation>
    </message>
    <message>
        <source>Pre&amp;vious view</source>
        <translation>&amp;Vorige Ansicht</translation>
    </message>
    <message>
        <source>Full scr&amp;een</source>
        <translation>V&amp;ollbild</translation>
    </message>
    <message>
        <source>Rese&amp;t panels</source>
        <translation>Bereiche zurüc&amp;ksetzen</translation>
    </message>
</context>
</TS>
