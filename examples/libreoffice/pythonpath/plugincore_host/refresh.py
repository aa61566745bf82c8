"""Makes fonts that became active known to the running application.

It asks the system for its fonts once, when it starts, and then learns of none but those that documents bring along. So
a document that does, of a few hundred bytes and the fonts, is opened unseen and closed again. What was made known in
this way stays known until the application ends.
"""

import io
import zipfile
from xml.sax.saxutils import quoteattr

import uno
from com.sun.star.beans import PropertyValue

MIMETYPE = "application/vnd.oasis.opendocument.text"
MANIFEST = """<?xml version="1.0" encoding="UTF-8"?>
<manifest:manifest xmlns:manifest="urn:oasis:names:tc:opendocument:xmlns:manifest:1.0" manifest:version="1.2">
<manifest:file-entry manifest:full-path="/" manifest:media-type="%s"/>
<manifest:file-entry manifest:full-path="content.xml" manifest:media-type="text/xml"/>
%%s</manifest:manifest>""" % MIMETYPE
MANIFEST_FONT = '<manifest:file-entry manifest:full-path="%s" manifest:media-type="application/x-font-ttf"/>\n'
CONTENT = """<?xml version="1.0" encoding="UTF-8"?>
<office:document-content xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
 xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"
 xmlns:xlink="http://www.w3.org/1999/xlink" office:version="1.2">
<office:font-face-decls>
%s</office:font-face-decls>
<office:body><office:text/></office:body></office:document-content>"""
CONTENT_FONT = """<style:font-face style:name=%s svg:font-family=%s><svg:font-face-src>
<svg:font-face-uri xlink:href="%s" xlink:type="simple"><svg:font-face-format svg:string="truetype"/>
</svg:font-face-uri></svg:font-face-src></style:font-face>
"""


def known_fonts(context):
    """Family and style of each font that the application knows."""
    toolkit = context.ServiceManager.createInstanceWithContext("com.sun.star.awt.Toolkit", context)
    return {(font.Name, font.StyleName) for font in toolkit.createScreenCompatibleDevice(1, 1).FontDescriptors}


def make_known(context, fonts):
    """`fonts`: family, by the name that documents use, and font file of each."""
    document = _document_with(fonts)
    stream = context.ServiceManager.createInstanceWithContext("com.sun.star.io.SequenceInputStream", context)
    stream.initialize((uno.ByteSequence(document),))
    arguments = tuple(PropertyValue(Name=name, Value=value) for name, value in (
        ("InputStream", stream), ("FilterName", "writer8"), ("Hidden", True), ("ReadOnly", True)))
    desktop = context.getValueByName("/singletons/com.sun.star.frame.theDesktop")
    desktop.loadComponentFromURL("private:stream", "_blank", 0, arguments).close(True)


def _document_with(fonts):
    content = io.BytesIO()
    # Files may be older than archives can say.
    with zipfile.ZipFile(content, "w", strict_timestamps=False) as archive:
        archive.writestr("mimetype", MIMETYPE)
        entries = [(family, file, f"Fonts/{number}.ttf") for number, (family, file) in enumerate(fonts)]
        for _, file, entry in entries:
            archive.write(file, entry)
        archive.writestr("content.xml", CONTENT % "".join(
            CONTENT_FONT % (quoteattr(f"F{number}"), quoteattr(f"'{family}'"), entry)
            for number, (family, _, entry) in enumerate(entries)))
        archive.writestr("META-INF/manifest.xml", MANIFEST % "".join(MANIFEST_FONT % each[2] for each in entries))
    return content.getvalue()
