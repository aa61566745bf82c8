#!/usr/bin/env bash
# fonts-against-pdf-tools.sh FOLDER: the fonts of every .pdf and .ai file below FOLDER, as this program, pdffonts and
# `mutool info -F` list them: the time per file, processes' starts included, and the names that only one side finds.
# Needs hyperfine, poppler-utils and mupdf-tools.
set -euo pipefail
folder=${1:?usage: fonts-against-pdf-tools.sh FOLDER}
build=$(cd "$(dirname -- "$0")/.." && pwd)/build/bench
for tool in hyperfine pdffonts mutool; do
  command -v "$tool" >/dev/null || { echo "$tool is missing: apt-get install hyperfine poppler-utils mupdf-tools" >&2; exit 1; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export host=$build/bin/plugincore-host
find "$folder" -name '*.pdf' -o -name '*.ai' | sort >"$work/files"
count=$(wc -l <"$work/files")

# One script a way, so that all are started alike. pdffonts takes one file; the other two take many.
each() { printf 'while IFS= read -r file; do %s "$file"; done <%s\n' "$1" "$work/files"; }
all() { printf 'tr "\\n" "\\0" <%s | xargs -0 %s\n' "$work/files" "$1"; }
each "pdffonts" >"$work/pdffonts.sh"
each "mutool info -F" >"$work/mutool.sh"
each "$host fonts" >"$work/one-by-one.sh"
all "$host fonts" >"$work/all-at-once.sh"
hyperfine --style none --ignore-failure --warmup 1 --runs 5 --export-csv "$work/times.csv" \
  "bash $work/all-at-once.sh" "bash $work/one-by-one.sh" "bash $work/pdffonts.sh" "bash $work/mutool.sh" >/dev/null 2>&1
awk -F, -v count="$count" 'NR > 1 { time[NR] = $(NF - 4) }
  END {
    printf "%d files; milliseconds per file: fonts, all at once %.2f; one by one %.2f; pdffonts %.2f; mutool info -F %.2f\n",
      count, time[2] / count * 1e3, time[3] / count * 1e3, time[4] / count * 1e3, time[5] / count * 1e3
    printf "times as fast as pdffonts: %.1f all at once, %.1f one by one; as mutool: %.1f and %.1f\n",
      time[4] / time[2], time[4] / time[3], time[5] / time[2], time[5] / time[3]
  }' "$work/times.csv"

# Names without their subset tags; the tools cut names off or leave fonts without a name out, which shows here too.
without_tags() { LC_ALL=C sed -E 's/^[A-Z]{6}\+//' | grep -av '^\[none\]$' | LC_ALL=C sort -u; }
while IFS= read -r file; do
  "$host" fonts "$file" 2>/dev/null | LC_ALL=C sort -u >"$work/ours" || true
  pdffonts "$file" 2>/dev/null | tail -n +3 | LC_ALL=C awk '{ print $1 }' | without_tags >"$work/pdffonts" || true
  mutool info -F "$file" 2>/dev/null | LC_ALL=C sed -nE "s/.*Type[0-9C]* '([^']*)'.*/\1/p; s/.*TrueType '([^']*)'.*/\1/p" |
    without_tags >"$work/mutool" || true
  for tool in pdffonts mutool; do
    only_ours=$(LC_ALL=C comm -23 "$work/ours" "$work/$tool" | paste -sd ' ')
    only_theirs=$(LC_ALL=C comm -13 "$work/ours" "$work/$tool" | paste -sd ' ')
    [ -z "$only_ours" ] || printf '%s: %s does not list: %s\n' "${file##*/}" "$tool" "$only_ours"
    [ -z "$only_theirs" ] || printf '%s: only %s lists: %s\n' "${file##*/}" "$tool" "$only_theirs"
  done
done <"$work/files"
