#!/usr/bin/env python3
"""Opens a workbook of ours in LibreOffice and compares every cell with what it must show: its kind and its text.

usage: check_workbook.py WORKBOOK-SAMPLE-PROGRAM [LibreOffice's program]
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

OFFICE = "{urn:oasis:names:tc:opendocument:xmlns:office:1.0}"
TABLE = "{urn:oasis:names:tc:opendocument:xmlns:table:1.0}"
TEXT = "{urn:oasis:names:tc:opendocument:xmlns:text:1.0}"


def shown_text(node):
    """The text of a paragraph with its blanks and tabs, which stand as elements."""
    text = node.text or ""
    for child in node:
        if child.tag == TEXT + "s":
            text += " " * int(child.get(TEXT + "c", "1"))
        elif child.tag == TEXT + "tab":
            text += "\t"
        elif child.tag == TEXT + "line-break":
            text += "\n"
        else:
            text += shown_text(child)
        text += child.tail or ""
    return text


def shown_cells(document):
    """Cell name to [kind, text] of the first sheet of a flat OpenDocument file."""
    cells = {}
    row = 0
    for line in ElementTree.parse(document).find(f".//{TABLE}table").iter(TABLE + "table-row"):
        column = 0
        rows = int(line.get(TABLE + "number-rows-repeated", "1"))
        for cell in line:
            kind = cell.get(OFFICE + "value-type")
            if cell.get(TABLE + "formula"):
                kind = "formula"
            columns = int(cell.get(TABLE + "number-columns-repeated", "1"))
            if kind:
                text = "\n".join(shown_text(paragraph) for paragraph in cell.findall(TEXT + "p"))
                for place in range(columns):
                    for line_number in range(rows):
                        cells[f"{chr(65 + column + place)}{row + line_number + 1}"] = [kind, text]
            column += columns
        row += rows
    return cells


def main():
    sample = sys.argv[1]
    office = sys.argv[2] if len(sys.argv) > 2 else "soffice"
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        # The report's name ends in .xls whatever the format: LibreOffice must find out by itself.
        book, expectation, shown = folder / "road.xls", folder / "expected.json", folder / "road.fods"
        subprocess.run([sample, book, expectation], check=True)
        result = subprocess.run(
            [office, f"-env:UserInstallation={(folder / 'profile').as_uri()}", "--headless", "--convert-to", "fods",
             "--outdir", folder, book],
            capture_output=True, text=True, check=False)
        if result.returncode != 0 or not shown.exists():
            sys.exit(f"LibreOffice didn't open the workbook:\n{result.stdout}{result.stderr}")
        wanted = json.loads(expectation.read_text(encoding="utf-8"))
        got = shown_cells(shown)
    wrong = [cell for cell in sorted(wanted.keys() | got.keys()) if wanted.get(cell) != got.get(cell)]
    for cell in wrong[:20]:
        print(f"{cell}: should show {wanted.get(cell)}, shows {got.get(cell)}")
    print(f"{len(wanted)} cells in LibreOffice, {len(wrong)} wrong")
    return 1 if wrong or not wanted else 0


sys.exit(main())
