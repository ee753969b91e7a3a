#!/usr/bin/env python3
"""Makes the example's library of fonts: make_fonts.py FOLDER.

The letters are a grid of five by seven squares, drawn here; lower case has the shapes of upper case.
Two families come out: Harbour Grid in two weights (TrueType outlines) and Lantern Grid (PostScript
outlines).
"""
import pathlib
import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.t2CharStringPen import T2CharStringPen
from fontTools.pens.ttGlyphPen import TTGlyphPen

CELL = 100  # units a square; 1,000 units an em
ADVANCE = 6 * CELL
LETTERS = {
    "A": "01110 10001 10001 11111 10001 10001 10001",
    "B": "11110 10001 10001 11110 10001 10001 11110",
    "C": "01110 10001 10000 10000 10000 10001 01110",
    "D": "11110 10001 10001 10001 10001 10001 11110",
    "E": "11111 10000 10000 11110 10000 10000 11111",
    "F": "11111 10000 10000 11110 10000 10000 10000",
    "G": "01110 10001 10000 10111 10001 10001 01111",
    "H": "10001 10001 10001 11111 10001 10001 10001",
    "I": "01110 00100 00100 00100 00100 00100 01110",
    "J": "00111 00010 00010 00010 00010 10010 01100",
    "K": "10001 10010 10100 11000 10100 10010 10001",
    "L": "10000 10000 10000 10000 10000 10000 11111",
    "M": "10001 11011 10101 10101 10001 10001 10001",
    "N": "10001 11001 10101 10011 10001 10001 10001",
    "O": "01110 10001 10001 10001 10001 10001 01110",
    "P": "11110 10001 10001 11110 10000 10000 10000",
    "Q": "01110 10001 10001 10001 10101 10010 01101",
    "R": "11110 10001 10001 11110 10100 10010 10001",
    "S": "01111 10000 10000 01110 00001 00001 11110",
    "T": "11111 00100 00100 00100 00100 00100 00100",
    "U": "10001 10001 10001 10001 10001 10001 01110",
    "V": "10001 10001 10001 10001 10001 01010 00100",
    "W": "10001 10001 10001 10101 10101 11011 10001",
    "X": "10001 10001 01010 00100 01010 10001 10001",
    "Y": "10001 10001 01010 00100 00100 00100 00100",
    "Z": "11111 00001 00010 00100 01000 10000 11111",
    "0": "01110 10001 10011 10101 11001 10001 01110",
    "1": "00100 01100 00100 00100 00100 00100 01110",
    "2": "01110 10001 00001 00110 01000 10000 11111",
    "3": "11110 00001 00001 01110 00001 00001 11110",
    "4": "00010 00110 01010 10010 11111 00010 00010",
    "5": "11111 10000 11110 00001 00001 10001 01110",
    "6": "00110 01000 10000 11110 10001 10001 01110",
    "7": "11111 00001 00010 00100 01000 01000 01000",
    "8": "01110 10001 10001 01110 10001 10001 01110",
    "9": "01110 10001 10001 01111 00001 00010 01100",
    ".": "00000 00000 00000 00000 00000 01100 01100",
    ",": "00000 00000 00000 00000 01100 00100 01000",
    "-": "00000 00000 00000 11111 00000 00000 00000",
    "!": "00100 00100 00100 00100 00100 00000 00100",
}


def squares(pattern, swell):
    """Corners of each filled square, `swell` units larger on every side."""
    for row, cells in enumerate(pattern.split()):
        for column, cell in enumerate(cells):
            if cell == "1":
                left, bottom = column * CELL - swell, (6 - row) * CELL - swell
                right, top = left + CELL + 2 * swell, bottom + CELL + 2 * swell
                yield (left, bottom), (left, top), (right, top), (right, bottom)


def draw(pen, pattern, swell):
    for corners in squares(pattern, swell):
        pen.moveTo(corners[0])
        for corner in corners[1:]:
            pen.lineTo(corner)
        pen.closePath()


def glyph(pattern, swell, outlines):
    if outlines == "ttf":
        pen = TTGlyphPen(None)
        draw(pen, pattern, swell)
        return pen.glyph()
    pen = T2CharStringPen(ADVANCE, None)
    draw(pen, pattern, swell)
    return pen.getCharString()


def make(folder, family, style, swell, outlines):
    names = {character: f"uni{ord(character):04X}" for character in LETTERS}
    patterns = {".notdef": "11111 10001 10001 10001 10001 10001 11111", "space": "00000 " * 7}
    patterns.update({names[character]: LETTERS[character] for character in LETTERS})
    characters = {ord(character): name for character, name in names.items()}
    characters.update({ord(c.lower()): name for c, name in names.items() if c.isalpha()})
    characters[ord(" ")] = "space"
    post_script_name = f"{family.replace(' ', '')}-{style}"

    builder = FontBuilder(1000, isTTF=outlines == "ttf")
    builder.setupGlyphOrder(list(patterns))
    builder.setupCharacterMap(characters)
    glyphs = {name: glyph(pattern, swell, outlines) for name, pattern in patterns.items()}
    if outlines == "ttf":
        builder.setupGlyf(glyphs)
    else:
        builder.setupCFF(post_script_name, {"FullName": f"{family} {style}"}, glyphs, {})
    builder.setupHorizontalMetrics({name: (ADVANCE, 0) for name in patterns})
    builder.setupHorizontalHeader(ascent=800, descent=-200)
    builder.setupNameTable({
        "familyName": family, "styleName": style, "uniqueFontIdentifier": f"1.000;{post_script_name}",
        "fullName": f"{family} {style}", "psName": post_script_name, "version": "Version 1.000",
        "manufacturer": "Vendrel Examples",
    })
    builder.setupOS2(sTypoAscender=800, sTypoDescender=-200, usWinAscent=800, usWinDescent=200,
                     usWeightClass=700 if style == "Bold" else 400, achVendID="VNDR")
    builder.setupPost()
    builder.font["head"].created = builder.font["head"].modified = 3_800_000_000
    builder.font.recalcTimestamp = False
    builder.save(str(folder / f"{post_script_name}.{outlines}"))


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    make(folder, "Harbour Grid", "Regular", -4, "ttf")
    make(folder, "Harbour Grid", "Bold", 12, "ttf")
    make(folder, "Lantern Grid", "Regular", -18, "otf")


if __name__ == "__main__":
    main()
