#!/usr/bin/env bash
# Makes the pictures of docs/hosts.md: a document in each of some programs before its font is active, with it and after. Needs
# inkscape, scribus, libreoffice-writer, chromium, evince, xvfb, poppler-utils and imagemagick; takes a font from a Debian
# package. Builds nothing; the argument is the preset of a build, release if there is none.
set -euo pipefail
export PATH=/usr/bin:$PATH
cd "$(dirname -- "$(readlink -f -- "$0")")/.."
build=$PWD/build/${1:-release}
images=$PWD/docs/images/hosts
world=$(mktemp -d)
export HOME=$world XDG_RUNTIME_DIR=$world/run XDG_DATA_HOME=$world/data XDG_CONFIG_HOME=$world/config XDG_CACHE_HOME=$world/cache
mkdir -m 700 "$XDG_RUNTIME_DIR"
pellwick=$build/lib/vantorix/Pellwick
trap '"$pellwick" stop --no-start >/dev/null 2>&1 || true; rm -rf "$world"' EXIT

mkdir -p "$images" "$world/fonts"
(cd "$world/fonts" && apt-get download -qq fonts-comic-neue 2>/dev/null && dpkg -x fonts-comic-neue_*.deb .)
find "$world/fonts" -name 'ComicNeue-Bold.otf' -exec "$pellwick" add {} + >/dev/null
"$pellwick" login somebody >/dev/null
"$pellwick" launch-info >/dev/null

text='The quick brown fox jumps'
cat >"$world/page.svg" <<END
<svg xmlns="http://www.w3.org/2000/svg" width="440" height="60"><rect width="440" height="60" fill="white"/>
<text x="12" y="38" style="font-family:'Comic Neue';font-weight:bold;font-size:24px">$text</text></svg>
END
cat >"$world/page.fodt" <<END
<?xml version="1.0"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0" office:version="1.2"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0" xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"
 xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
 office:mimetype="application/vnd.oasis.opendocument.text">
<office:font-face-decls><style:font-face style:name="F" svg:font-family="'Comic Neue'"/></office:font-face-decls>
<office:automatic-styles><style:style style:name="P1" style:family="paragraph">
<style:text-properties style:font-name="F" fo:font-weight="bold" fo:font-size="24pt"/></style:style></office:automatic-styles>
<office:body><office:text><text:p text:style-name="P1">$text</text:p></office:text></office:body></office:document>
END
page='PAGEXPOS="100" PAGEYPOS="20" PAGEWIDTH="400" PAGEHEIGHT="80" BORDERLEFT="0" BORDERRIGHT="0" BORDERTOP="0" BORDERBOTTOM="0"'
box='M0 0 L380 0 L380 60 L0 60 L0 0 Z'
points='0 0 0 0 380 0 380 0 380 0 380 0 380 60 380 60 380 60 380 60 0 60 0 60 0 60 0 60 0 0 0 0'
cat >"$world/page.sla" <<END
<SCRIBUSUTF8NEW Version="1.5.8"><DOCUMENT ANZPAGES="1" $page DFONT="Comic Neue Bold" DSIZE="24" UNITS="0" ORIENTATION="1"
 FIRSTNUM="0" BOOK="0" ScatchBottom="20" ScatchLeft="100" ScatchRight="100" ScatchTop="20" GapHorizontal="0" GapVertical="40">
<COLOR NAME="Black" SPACE="CMYK" C="0" M="0" Y="0" K="100"/>
<STYLE NAME="Default Paragraph Style" DefaultStyle="1" FONT="Comic Neue Bold" FONTSIZE="24"/>
<CHARSTYLE CNAME="Default Character Style" DefaultStyle="1" FONT="Comic Neue Bold" FONTSIZE="24"/>
<LAYERS NUMMER="0" LEVEL="0" NAME="Background" SICHTBAR="1" DRUCKEN="1" EDIT="1"/>
<MASTERPAGE $page NUM="0" NAM="Normal" MNAM="" Size="Custom" Orientation="1" LEFT="0"/>
<PAGE $page NUM="0" NAM="" MNAM="Normal" Size="Custom" Orientation="1" LEFT="0"/>
<PAGEOBJECT XPOS="110" YPOS="30" OwnPage="0" ItemID="1" PTYPE="4" WIDTH="380" HEIGHT="60" FRTYPE="0" CLIPEDIT="0" PWIDTH="0"
 PCOLOR="None" PCOLOR2="None" path="$box" copath="$box" NUMPO="16" POCOOR="$points" gXpos="110" gYpos="30" LAYER="0"
 NEXTITEM="-1" BACKITEM="-1"><StoryText><DefaultStyle/><ITEXT FONT="Comic Neue Bold" FONTSIZE="24" FCOLOR="Black" CH="$text"/>
<trail/></StoryText></PAGEOBJECT></DOCUMENT></SCRIBUSUTF8NEW>
END
cat >"$world/export.py" <<END
import scribus
pdf = scribus.PDFfile()
pdf.file = "$world/page.pdf"
pdf.save()
END

cat >"$world/page.html" <<END
<body style="margin:8px;font:bold 24px 'Comic Neue'">$text</body>
END
# Without its font in it; a viewer finds the objects by itself.
cat >"$world/bare.pdf" <<END
%PDF-1.4
1 0 obj <</Type/Catalog/Pages 2 0 R>> endobj
2 0 obj <</Type/Pages/Kids[3 0 R]/Count 1>> endobj
3 0 obj <</Type/Page/Parent 2 0 R/MediaBox[0 0 400 60]/Contents 4 0 R/Resources<</Font<</F 5 0 R>>>>>> endobj
4 0 obj <</Length $((40 + ${#text}))>> stream
BT /F 24 Tf 10 20 Td ($text) Tj ET
endstream endobj
5 0 obj <</Type/Font/Subtype/TrueType/BaseFont/ComicNeue-Bold/Encoding/WinAnsiEncoding/FontDescriptor 6 0 R>> endobj
6 0 obj <</Type/FontDescriptor/FontName/ComicNeue-Bold/Flags 32/ItalicAngle 0/Ascent 800/Descent -200/CapHeight 700/StemV 80
/FontBBox[0 0 1000 1000]>> endobj
trailer <</Root 1 0 R>>
END

inkscape=(inkscape "$world/page.svg" "--export-filename=$world/page.pdf")
scribus=(xvfb-run -a scribus -g -ns -py "$world/export.py" -- "$world/page.sla")
libreoffice=(soffice --headless --convert-to pdf --outdir "$world" "$world/page.fodt")

chromium=(chromium --headless --no-sandbox --disable-gpu "--user-data-dir=$world/chromium" --window-size=480,60
  "--screenshot=$world/page.png" "$world/page.html")
evince=(evince-thumbnailer -s 480 "file://$world/bare.pdf" "$world/page.png")

# picture NAME DOCUMENT COMMAND...: three strips, one below the other, of what the command makes: page.pdf or page.png. Without
# a document, the font's name serves.
picture() {
  local name=$1 document=$2 moment
  shift 2
  for moment in before with after; do
    rm -f "$world/page.pdf" "$world/page.png"
    if [ $moment = with ]; then
      "$build/bin/plugincore-host" open ${document:+"$document"} --fonts ComicNeue-Bold -- "$@"
    else
      "$@"
    fi >"$world/messages" 2>&1 || { cat "$world/messages" >&2; return 1; }
    until [ -z "$(fc-list 'Comic Neue')" ]; do sleep 0.5; done
    [ ! -f "$world/page.pdf" ] || pdftoppm -r 96 -singlefile -png "$world/page.pdf" "$world/page"
    convert "$world/page.png" -trim +repage -bordercolor white -border 12 -gravity west -extent 520x56 "$world/strip.png"
    convert -size 90x"$(identify -format %h "$world/strip.png")" xc:white -gravity center -pointsize 14 -fill gray40 \
      -annotate 0 "$moment" "$world/strip.png" +append "$world/$moment.png"
  done
  convert "$world/before.png" "$world/with.png" "$world/after.png" -append "$images/$name.png"
}
picture inkscape "$world/page.svg" "${inkscape[@]}"
picture scribus "$world/page.sla" "${scribus[@]}"
picture libreoffice "$world/page.fodt" "${libreoffice[@]}"
picture chromium "" "${chromium[@]}"
picture evince "$world/bare.pdf" "${evince[@]}"
