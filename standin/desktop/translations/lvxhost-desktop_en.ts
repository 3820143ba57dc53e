<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>DrawingSources</name>
    <message numerus="yes">
        <source>%1 + %n file(s)</source>
        <translation>
            <numerusform>%1 + %n file</numerusform>
            <numerusform>%1 + %n files</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::BookWords</name>
    <message numerus="yes">
        <source>%n sheet(s), %1, %2</source>
        <translation>
            <numerusform>%n sheet, %1, %2</numerusform>
            <numerusform>%n sheets, %1, %2</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::Document</name>
    <message numerus="yes">
        <source>The reader found %n odd thing(s) in it; see Diagnostics.</source>
        <translation>
            <numerusform>The reader found %n odd thing in it; see Diagnostics.</numerusform>
            <numerusform>The reader found %n odd things in it; see Diagnostics.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DrawingTree</name>
    <message numerus="yes">
        <source>%n found: Enter goes to the next</source>
        <translation>
            <numerusform>%n found: Enter goes to it</numerusform>
            <numerusform>%n found: Enter goes to the next</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Point %1 and %n more: Enter goes to the next</source>
        <translation>
            <numerusform>Point %1 and %n more: Enter goes to the next</numerusform>
            <numerusform>Point %1 and %n more: Enter goes to the next</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::DrawingTreeModel</name>
    <message numerus="yes">
        <source>%n region(s)</source>
        <translation>
            <numerusform>%n region</numerusform>
            <numerusform>%n regions</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::FreeSectionView</name>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>and %n more</numerusform>
            <numerusform>and %n more</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::GroundProfileDialog</name>
    <message numerus="yes">
        <source>%n point(s), stations %1 to %2.</source>
        <translation>
            <numerusform>%n point, stations %1 to %2.</numerusform>
            <numerusform>%n points, stations %1 to %2.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n gap(s) without ground stay gaps.</source>
        <translation>
            <numerusform>%n gap without ground stays a gap.</numerusform>
            <numerusform>%n gaps without ground stay gaps.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::PointGroupDialog</name>
    <message numerus="yes">
        <source>%n point(s) in the group.</source>
        <translation>
            <numerusform>%n point in the group.</numerusform>
            <numerusform>%n points in the group.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n more can&apos;t be in a group: their numbers stand twice.</source>
        <translation>
            <numerusform>%n more can&apos;t be in a group: its number stands twice.</numerusform>
            <numerusform>%n more can&apos;t be in a group: their numbers stand twice.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::PropertiesView</name>
    <message numerus="yes">
        <source>%n row(s)</source>
        <translation>
            <numerusform>%n row</numerusform>
            <numerusform>%n rows</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ReportAdviser</name>
    <message numerus="yes">
        <source>%n more odd thing(s) in what the report is of; see Diagnostics.</source>
        <translation>
            <numerusform>%n more odd thing in what the report is of; see Diagnostics.</numerusform>
            <numerusform>%n more odd things in what the report is of; see Diagnostics.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>(%n more in the console)</source>
        <translation>
            <numerusform>(%n more in the console)</numerusform>
            <numerusform>(%n more in the console)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::ReportOutcome</name>
    <message numerus="yes">
        <source>%1 could not write %n file(s).</source>
        <translation>
            <numerusform>%1 could not write %n file.</numerusform>
            <numerusform>%1 could not write %n files.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::SampleLineEditing</name>
    <message numerus="yes">
        <source>Group “%1” has %n sample line(s).</source>
        <translation>
            <numerusform>Group “%1” has %n sample line.</numerusform>
            <numerusform>Group “%1” has %n sample lines.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>lvx::desktop::SampleLinesDialog</name>
    <message numerus="yes">
        <source>%n line(s) so far…</source>
        <translation>
            <numerusform>%n line so far…</numerusform>
            <numerusform>%n lines so far…</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n line(s): %1</source>
        <translation>
            <numerusform>%n line: %1</numerusform>
            <numerusform>%n lines: %1</numerusform>
        </translation>
    </message>
</context>
</TS>
