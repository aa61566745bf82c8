"""Which fonts a document uses: those of its styles, and of its text."""

import time
from collections import namedtuple

from com.sun.star.awt.FontSlant import ITALIC, OBLIQUE
from com.sun.star.uno import Exception as UnoException

# Reading waits for the application, so a long text is read in part; its styles name most of its fonts.
LONGEST_READ = 1.0  # seconds

Font = namedtuple("Font", "family style where")

# The three fonts that each text has: for Latin, for East Asian and for complex scripts.
SCRIPTS = {script: tuple(name + script for name in ("CharFontName", "CharFontStyleName", "CharWeight", "CharPosture"))
           for script in ("", "Asian", "Complex")}
WEIGHTS = ((55, "Thin"), (68, "ExtraLight"), (83, "Light"), (105, ""), (130, "SemiBold"), (163, "Bold"),
           (188, "ExtraBold"))


def style_name(weight, slant):
    weight_name = next((name for limit, name in WEIGHTS if weight < limit), "Black") if weight else ""
    slant_name = "Italic" if slant in (ITALIC, OBLIQUE) else ""
    return " ".join(filter(None, (weight_name, slant_name))) or "Regular"


def scripts_of(text):
    """The scripts that characters of the text belong to, roughly: of what is rare the system's fonts take care."""
    scripts = set()
    for character in set(text):
        code = ord(character)
        if 0x2E80 <= code <= 0xD7FF or 0xF900 <= code <= 0xFAFF or code >= 0x20000:
            scripts.add("Asian")
        elif 0x0590 <= code <= 0x109F or 0x1780 <= code <= 0x18AF or 0xFB1D <= code <= 0xFEFF:
            scripts.add("Complex")
        elif not character.isspace():
            scripts.add("")
    return scripts


def fonts_of(document):
    """The fonts as font records for the core, each once."""
    deadline = time.monotonic() + LONGEST_READ
    found = {}
    for font in _all_fonts(document):
        found.setdefault((font.family, font.style), font)
        if time.monotonic() > deadline:
            break
    return [{"PostScriptName": font.family if font.style == "Regular" else f"{font.family} {font.style}",
             "Family": font.family, "Style": font.style, "where": font.where} for font in found.values()]


def _all_fonts(document):
    for part in (_style_fonts, _text_fonts, _shape_fonts):
        try:
            yield from part(document)
        except UnoException:
            pass  # a part that is closing, or withheld


def _fonts_at(properties, scripts, where):
    for script in scripts:
        try:
            family, style, weight, slant = (properties.getPropertyValue(name) for name in SCRIPTS[script])
        except UnoException:
            continue  # a page style, say
        family = (family or "").split(";")[0]
        if family:
            yield Font(family, style or style_name(weight, slant), where)


def _style_fonts(document):
    if not hasattr(document, "StyleFamilies"):  # a formula, say
        return
    families = document.StyleFamilies
    for family in families.ElementNames:
        styles = families.getByName(family)
        for name in styles.ElementNames:
            style = styles.getByName(name)
            if style.isInUse():
                yield from _fonts_at(style, ("",), f"style {style.DisplayName}")


def _elements(container):
    enumeration = container.createEnumeration()
    while enumeration.hasMoreElements():
        yield enumeration.nextElement()


def _items(container):
    return map(container.getByIndex, range(container.Count)) if container else ()


def _fonts_of_text(text, where="text"):
    for block in _elements(text):
        if block.supportsService("com.sun.star.text.TextTable"):
            for cell in block.CellNames:
                yield from _fonts_of_text(block.getCellByName(cell), where)
            continue
        for portion in _elements(block):
            yield from _fonts_at(portion, scripts_of(portion.getString()), where)


def _text_fonts(document):
    if not document.supportsService("com.sun.star.text.GenericTextDocument"):
        return
    yield from _fonts_of_text(document.Text)
    for parts, where in ((document.TextFrames, "frame"), (document.Footnotes, "footnote"),
                         (document.Endnotes, "endnote")):
        for part in _items(parts):
            yield from _fonts_of_text(part.Text if where == "frame" else part, where)
    styles = document.StyleFamilies.getByName("PageStyles")
    for style in map(styles.getByName, styles.ElementNames):
        for part in ("Header", "Footer"):
            if style.isInUse() and style.getPropertyValue(part + "IsOn"):
                yield from _fonts_of_text(style.getPropertyValue(part + "Text"), part.lower())


def _shape_fonts(document):
    if hasattr(document, "DrawPage"):
        yield from _fonts_of_shapes(document.DrawPage)
    for pages in ("DrawPages", "MasterPages"):
        for page in _items(getattr(document, pages, None)):
            yield from _fonts_of_shapes(page)


def _fonts_of_shapes(shapes):
    for shape in _items(shapes):
        if shape.supportsService("com.sun.star.drawing.GroupShape"):
            yield from _fonts_of_shapes(shape)
        elif hasattr(shape, "createEnumeration"):
            yield from _fonts_of_text(shape, "drawing")
