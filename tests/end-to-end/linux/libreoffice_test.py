"""The extension of examples/libreoffice in a real LibreOffice.

libreoffice_test.py FOLDER UNITTEST-ARGUMENT...: in a world of its own, which the environment describes, whose font
manager has Almond, regular and bold, and Pecan. FOLDER is for files. Exit status 77 where a program is missing.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import time
import unittest

try:
    import uno
    from com.sun.star.beans import PropertyValue
    from com.sun.star.connection import NoConnectException
except ImportError:
    print("there is no python3-uno", file=sys.stderr)
    sys.exit(77)

FOLDER = pathlib.Path(sys.argv[1])
PROFILE = f"-env:UserInstallation={(FOLDER / 'profile').as_uri()}"
EXAMPLE = pathlib.Path(__file__).parents[3] / "examples/libreoffice"
DOCUMENT = """<?xml version="1.0"?><office:document office:version="1.2"
    xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
    xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
    xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
    xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
    office:mimetype="application/vnd.oasis.opendocument.text"><office:automatic-styles>{}</office:automatic-styles>
    <office:body><office:text>{}</office:text></office:body></office:document>"""
STYLE = '<style:style style:family="paragraph" style:name="{}"><style:text-properties {}/></style:style>'


def write_document(name, *paragraphs):
    """A document with a paragraph of each of these properties; its path."""
    styles = "".join(STYLE.format(number, properties) for number, properties in enumerate(paragraphs))
    text = "".join(f'<text:p text:style-name="{number}">A</text:p>' for number in range(len(paragraphs)))
    path = FOLDER / name
    path.write_text(DOCUMENT.format(styles, text))
    return path


def run(*command, **options):
    result = subprocess.run(command, text=True, capture_output=True, **options)
    if result.returncode != 0:
        raise RuntimeError(f"{command[0]} ended with {result.returncode}: {result.stderr}")
    return result


def converted_fonts(document, **environment):
    """What the document's PDF embeds, without the tags of subsets, and what was said meanwhile."""
    converted = run("soffice", PROFILE, "--headless", "--convert-to", "pdf", "--outdir", FOLDER, document,
                    env={**os.environ, **environment})
    lines = run("pdffonts", document.with_suffix(".pdf")).stdout.splitlines()
    return {line.split()[0].partition("+")[2] for line in lines if "+" in line}, converted.stderr


def visible_fonts():
    """The font manager's fonts that any program sees."""
    lines = run("fc-list", ":", "postscriptname", "file").stdout.splitlines()
    return {line.partition("postscriptname=")[2] for line in lines if "/fonts/Vantorix/" in line}


class DrivenLibreOffice:
    """One that does as it is told, until the test is over. Documents are numbered as they come."""

    def __init__(self, test):
        pipe = f"plugincore-test-{os.getpid()}"
        # "soffice" is a script that waits for it, and starts it again with a new profile.
        program = pathlib.Path(shutil.which("soffice")).resolve().parent / "soffice.bin"
        self.process = subprocess.Popen([program, PROFILE, "--headless", f"--accept=pipe,name={pipe};urp;"],
                                        text=True, stderr=subprocess.PIPE)
        test.addCleanup(self.process.kill)
        context = uno.getComponentContext()
        self.factory = context.ServiceManager
        resolver = self.factory.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", context)
        deadline = time.monotonic() + 60
        remote = None
        while remote is None:
            try:
                remote = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
            except NoConnectException:
                test.assertLess(time.monotonic(), deadline, "LibreOffice does not listen")
                time.sleep(0.1)
        self.desktop = remote.getValueByName("/singletons/com.sun.star.frame.theDesktop")
        self.documents = []

    def open(self, url, **properties):
        values = [PropertyValue(Name=name, Value=value) for name, value in {"Hidden": True, **properties}.items()]
        self.documents.append(self.desktop.loadComponentFromURL(url, "_blank", 0, tuple(values)))

    def open_stream(self, path):
        """As a document from elsewhere: the application does not hear of the file."""
        stream = self.factory.createInstance("com.sun.star.io.SequenceInputStream")
        stream.initialize((uno.ByteSequence(path.read_bytes()),))
        self.open("private:stream", InputStream=stream)

    def write(self, number, family):
        shape = self.documents[number].createInstance("com.sun.star.drawing.TextShape")
        self.documents[number].DrawPages.getByIndex(0).add(shape)
        shape.String = "A"
        shape.CharFontName = family

    def save(self, number, name):
        self.documents[number].storeAsURL((FOLDER / name).as_uri(), ())

    def close(self, number):
        self.documents[number].close(True)

    def kill(self):
        """What it said."""
        self.process.kill()
        return self.process.communicate()[1]


class LibreOffice(unittest.TestCase):
    def test_embeds_fonts_that_only_the_font_manager_has(self):
        letter = write_document("Brief 字.fodt", 'fo:font-family="Almond"',
                                'fo:font-family="Almond" fo:font-weight="bold"')
        self.assertEqual(converted_fonts(letter)[0], {"Almond-Regular", "Almond-Bold"})
        self.assertEqual(visible_fonts(), set())
        self.assertIn("CloseAllFonts() returning 0", pathlib.Path(os.environ["PLUGINCORE_DEBUG_OUTPUT"]).read_text())
        fonts, said = converted_fonts(letter, PLUGINCORE_LIBRARY="/nowhere/libPluginCore.so")
        self.assertEqual(fonts, {"Base-Regular"})
        self.assertIn("Document Fonts: PluginCore cannot be loaded: /nowhere/libPluginCore.so", said)
        self.assertNotIn("Traceback", said)

    def test_keeps_fonts_for_as_long_as_documents_need_them(self):
        almond = write_document("almond.fodt", 'fo:font-family="Almond"')
        both = write_document("both.fodt", 'fo:font-family="Almond"', 'fo:font-family="Pecan"')
        self.assertEqual(converted_fonts(almond)[0], {"Almond-Regular"})  # and the profile is made
        office = DrivenLibreOffice(self)
        of_both = {"Almond-Regular", "Pecan-Regular"}

        def expect(fonts, *steps):
            for step, *arguments in steps:
                step(*arguments)
            self.assertEqual(visible_fonts(), fonts, f"after {arguments}")

        expect({"Almond-Regular"}, (office.open, almond.as_uri()))
        expect(of_both, (office.open, both.as_uri()), (office.close, 0))
        # The document under its new name, and another one of the old name.
        expect(of_both, (office.save, 1, "renamed.odt"), (office.open, both.as_uri()), (office.close, 1))
        expect(of_both, (office.open, both.as_uri()), (office.close, 2))  # which was open twice
        expect(set(), (office.close, 3))
        # A drawing that has its first path and font only when it is saved.
        expect({"Pecan-Regular"}, (office.open, "private:factory/sdraw"), (office.write, 4, "Pecan"),
               (office.save, 4, "drawing.odg"))
        expect(set(), (office.close, 4))
        # One that came from no file.
        expect(set(), (office.open_stream, both))
        expect(of_both, (office.save, 5, "streamed.odt"))
        expect(set(), (office.close, 5))
        # A file that is open twice, and goes on as two.
        expect(of_both, (office.open, both.as_uri()), (office.open, both.as_uri()), (office.save, 7, "copy.odt"),
               (office.close, 7))
        expect(set(), (office.close, 6))
        expect(of_both, (office.open, both.as_uri()))
        self.assertNotIn("Document Fonts", office.kill())
        deadline = time.monotonic() + 60
        while visible_fonts() and time.monotonic() < deadline:
            time.sleep(0.1)
        self.assertEqual(visible_fonts(), set())


def install_extension():
    """unopkg refuses root, which passes for a user in a namespace."""
    as_a_user = ["unshare", "--user", "--map-user=1000", "--map-group=1000"] if os.getuid() == 0 else []
    if as_a_user and subprocess.run([*as_a_user, "true"], capture_output=True).returncode != 0:
        return False
    run(EXAMPLE / "pack", FOLDER / "fonts.oxt")
    run(*as_a_user, "unopkg", "add", "--suppress-license", PROFILE, FOLDER / "fonts.oxt")
    return True


missing = [program for program in ("soffice", "unopkg", "pdffonts", "zip") if not shutil.which(program)]
if missing or not install_extension():
    print("there is no", missing or "user whom root could be for unopkg", file=sys.stderr)
    sys.exit(77)
unittest.main(argv=sys.argv[:1] + sys.argv[2:])
