#!/usr/bin/python3
"""Builds small fonts for tests, benches and the example.

    make_font.py --family F --psname N [--style S] [--version V] [--vendor XXXX] [--maker NAME]
                 [--format ttf|otf|pfa|pfb|ttc|otc|var] [--gpos] [--faces N] [--instances A,B]
                 [--revision N] OUT

ttc and otc hold --faces faces (2 unless told) named NAME-1, NAME-2 and so on. var has one weight axis
and the named instances Light and Bold, unless told. pfb and pfa are Type 1. The glyphs are A to Z and the blank, each
a box whose width depends on --revision, so that two revisions differ in their outlines.
"""
import argparse
import io
import struct

from fontTools.fontBuilder import FontBuilder
from fontTools.misc import eexec
from fontTools.pens.t2CharStringPen import T2CharStringPen
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import TTCollection, TTFont
from fontTools.ttLib.tables.DefaultTable import DefaultTable

CHARACTERS = {32: "space", **{c: chr(c) for c in range(ord("A"), ord("Z") + 1)}}
GLYPHS = [".notdef"] + list(CHARACTERS.values())


def box(pen, width, step=0):
    pen.moveTo((50, 0))
    pen.lineTo((50, 700 + step))
    pen.lineTo((width - 50, 700 + step))
    pen.lineTo((width - 50, 0))
    pen.closePath()


def width_of(options):
    return 500 + options.revision


def sfnt(options, psname, style, cff):
    builder = FontBuilder(1000, isTTF=not cff)
    builder.setupGlyphOrder(GLYPHS)
    builder.setupCharacterMap(CHARACTERS)
    width = width_of(options)
    glyphs = {}
    for index, name in enumerate(GLYPHS):
        pen = T2CharStringPen(width, None) if cff else TTGlyphPen(None)
        if name != "space":
            box(pen, width, index)
        glyphs[name] = pen.getCharString() if cff else pen.glyph()
    if cff:
        builder.setupCFF(psname, {"FullName": psname}, glyphs, {})
    else:
        builder.setupGlyf(glyphs)
    builder.setupHorizontalMetrics({name: (width, 50) for name in GLYPHS})
    builder.setupHorizontalHeader(ascent=800, descent=-200)
    names = {
        "familyName": options.family,
        "styleName": style,
        "uniqueFontIdentifier": psname + " " + options.version,
        "fullName": options.family + " " + style,
        "version": "Version " + options.version,
    }
    if psname:
        names["psName"] = psname
    if options.maker:
        names["manufacturer"] = options.maker
    if style not in ("Regular", "Italic", "Bold", "Bold Italic"):
        names["typographicFamily"] = options.family
        names["typographicSubfamily"] = style
        names["familyName"] = options.family + " " + style
        names["styleName"] = "Regular"
    builder.setupNameTable(names)
    builder.setupOS2(achVendID=(options.vendor + "    ")[:4], sTypoAscender=800, sTypoDescender=-200,
                     usWinAscent=800, usWinDescent=200,
                     usWeightClass=700 if "Bold" in style else 400)
    builder.setupPost()
    builder.font["head"].fontRevision = float(".".join(options.version.split(".")[:2]) or 1)
    if options.gpos:
        builder.font["GPOS"] = empty_layout("GPOS")
    return builder


def empty_layout(tag):
    """A layout table without scripts, features and lookups."""
    table = DefaultTable(tag)
    table.data = struct.pack(">IHHHHHH", 0x00010000, 10, 12, 14, 0, 0, 0)
    return table


def variable(options):
    builder = sfnt(options, options.psname, options.style, False)
    instances = options.instances.split(",")
    weights = [200 + 600 * i // max(1, len(instances) - 1) for i in range(len(instances))]
    builder.setupFvar(
        [("wght", 200, 400, 800, "Weight")],
        [{"location": {"wght": w}, "stylename": name} for w, name in zip(weights, instances)])
    builder.setupGvar({})
    builder.setupStat([{"tag": "wght", "name": "Weight",
                        "values": [{"value": 400, "name": "Regular", "flags": 2}]}])
    return builder.font


def charstring(width, drawn, step):
    def number(n):
        if -107 <= n <= 107:
            return bytes([n + 139])
        if 108 <= n <= 1131:
            n -= 108
            return bytes([(n >> 8) + 247, n & 255])
        n = -n - 108
        return bytes([(n >> 8) + 251, n & 255])
    out = number(50) + number(width) + b"\x0d"  # hsbw
    if drawn:
        out += (number(0) + b"\x04" +  # vmoveto, then vlineto, hlineto, vlineto, closepath
                number(700 + step) + b"\x07" + number(width - 100) + b"\x06" +
                number(-(700 + step)) + b"\x07" + b"\x09")
    return eexec.encrypt(b"\0\0\0\0" + out + b"\x0e", 4330)[0]


def type1(options, binary):
    clear = (
        f"%!PS-AdobeFont-1.0: {options.psname} {options.version}\n"
        "11 dict begin\n"
        "/FontInfo 8 dict dup begin\n"
        f"/version ({options.version}) readonly def\n"
        f"/FullName ({options.family} {options.style}) readonly def\n"
        f"/FamilyName ({options.family}) readonly def\n"
        f"/Weight ({options.style}) readonly def\n"
        "/ItalicAngle 0 def\n/isFixedPitch true def\n"
        "/UnderlinePosition -100 def\n/UnderlineThickness 50 def\nend readonly def\n"
        f"/FontName /{options.psname} def\n/PaintType 0 def\n/FontType 1 def\n"
        "/FontMatrix [0.001 0 0 0.001 0 0] readonly def\n"
        "/Encoding StandardEncoding def\n"
        "/FontBBox {0 -200 1000 800} readonly def\ncurrentdict end\ncurrentfile eexec\n").encode()
    width = width_of(options)
    private = (b"dup /Private 8 dict dup begin\n/RD {string currentfile exch readstring pop} executeonly def\n"
               b"/ND {noaccess def} executeonly def\n/NP {noaccess put} executeonly def\n"
               b"/BlueValues [] def\n/MinFeature {16 16} def\n/password 5839 def\n/lenIV 4 def\n"
               b"2 index /CharStrings %d dict dup begin\n" % len(GLYPHS))
    for index, name in enumerate(GLYPHS):
        data = charstring(width, name != "space", index)
        private += b"/%s %d RD " % (name.encode(), len(data)) + data + b" ND\n"
    private += b"end\nend\nreadonly put\nnoaccess put\ndup /FontName get exch definefont pop\nmark currentfile closefile\n"
    cipher = eexec.encrypt(b"abcd" + private, 55665)[0]
    zeros = (b"0" * 64 + b"\n") * 8 + b"cleartomark\n"
    if not binary:
        text = cipher.hex().encode()
        lines = b"\n".join(text[i:i + 64] for i in range(0, len(text), 64))
        return clear + lines + b"\n" + zeros
    out = b""
    for kind, part in ((1, clear), (2, cipher), (1, zeros)):
        out += struct.pack("<BBI", 0x80, kind, len(part)) + part
    return out + b"\x80\x03"


def collection(options, cff):
    result = TTCollection()
    for number in range(1, options.faces + 1):
        stream = io.BytesIO()
        sfnt(options, f"{options.psname}-{number}", f"Style {number}", cff).font.save(stream)
        stream.seek(0)
        result.fonts.append(TTFont(stream))
    return result


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("--family", required=True)
    parser.add_argument("--style", default="Regular")
    parser.add_argument("--psname", required=True, help="may be empty: a font without a name")
    parser.add_argument("--version", default="1.000")
    parser.add_argument("--vendor", default="TEST")
    parser.add_argument("--maker", default="")
    parser.add_argument("--format", default="ttf",
                        choices=["ttf", "otf", "pfa", "pfb", "ttc", "otc", "var"])
    parser.add_argument("--gpos", action="store_true", help="with an (empty) layout table")
    parser.add_argument("--faces", type=int, default=2)
    parser.add_argument("--instances", default="Light,Bold")
    parser.add_argument("--revision", type=int, default=0, help="0 to 400: changes the outlines")
    parser.add_argument("out")
    options = parser.parse_args()
    if options.format in ("pfa", "pfb"):
        with open(options.out, "wb") as out:
            out.write(type1(options, options.format == "pfb"))
    elif options.format in ("ttc", "otc"):
        collection(options, options.format == "otc").save(options.out)
    elif options.format == "var":
        variable(options).save(options.out)
    else:
        sfnt(options, options.psname, options.style, options.format == "otf").font.save(options.out)


if __name__ == "__main__":
    main()
