"""drive-libreoffice.py PIPE: does in the LibreOffice that listens there what standard input says, a line each.

open PATH; stream PATH; new; write NUMBER FAMILY; save NUMBER PATH; close NUMBER; quit. Documents are numbered as they come. Each line
is answered with one, empty or with what failed.
"""

import pathlib
import sys
import time

import uno
from com.sun.star.beans import PropertyValue
from com.sun.star.connection import NoConnectException
from com.sun.star.lang import DisposedException


def connect(pipe):
    context = uno.getComponentContext()
    resolver = context.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", context)
    for _ in range(300):
        try:
            remote = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
            return remote.getValueByName("/singletons/com.sun.star.frame.theDesktop")
        except NoConnectException:
            time.sleep(0.1)
    raise SystemExit("LibreOffice does not listen")


def do(desktop, documents, command, words):
    hidden = (PropertyValue(Name="Hidden", Value=True),)
    if command in ("open", "new"):
        url = pathlib.Path(words).as_uri() if command == "open" else "private:factory/sdraw"
        documents.append(desktop.loadComponentFromURL(url, "_blank", 0, hidden))
        return
    if command == "stream":  # as a document from elsewhere: the application does not hear of the file
        factory = uno.getComponentContext().ServiceManager
        stream = factory.createInstance("com.sun.star.io.SequenceInputStream")
        stream.initialize((uno.ByteSequence(pathlib.Path(words).read_bytes()),))
        source = PropertyValue(Name="InputStream", Value=stream)
        documents.append(desktop.loadComponentFromURL("private:stream", "_blank", 0, (*hidden, source)))
        return
    if command == "quit":
        desktop.terminate()
        return
    number, _, argument = words.partition(" ")
    document = documents[int(number)]
    if command == "write":
        shape = document.createInstance("com.sun.star.drawing.TextShape")
        document.DrawPages.getByIndex(0).add(shape)
        shape.String = "A"
        shape.CharFontName = argument
    elif command == "save":
        document.storeAsURL(pathlib.Path(argument).as_uri(), ())
    elif command == "close":
        document.close(True)


desktop = connect(sys.argv[1])
documents = []
for line in sys.stdin:
    try:
        do(desktop, documents, *line.rstrip("\n").partition(" ")[::2])
        print(flush=True)
    except DisposedException:  # after "quit"
        print(flush=True)
    except Exception as error:
        print(repr(error), flush=True)
