#!/usr/bin/env bash
# fonts-of-large-document.sh [MEBIBYTES]: listing the fonts of a large document in the page cache (default 800 MiB)
# against `rg -a -c -F /FontName` on the same file, whole processes; the peak memory on a document of 2 GiB; and what a
# small document costs above an empty one. Needs hyperfine and ripgrep, 3 GiB of disk and of page cache.
set -euo pipefail
build=$(cd "$(dirname -- "$0")/.." && pwd)/build/bench
for tool in hyperfine rg; do
  command -v "$tool" >/dev/null || { echo "$tool is missing: apt-get install hyperfine ripgrep" >&2; exit 1; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
host=$build/bin/plugincore-host

# The medians of some commands, run in turns, one a line.
medians() { hyperfine -N --style none --warmup 3 --runs "$1" --export-csv "$work/times.csv" "${@:2}" >/dev/null 2>&1 &&
  awk -F, 'NR > 1 { print $(NF - 4) }' "$work/times.csv"; }
ratio() { awk -v name="$1" -v a="$2" -v b="$3" 'BEGIN { printf "%s: %.2f ms against %.2f ms, ratio %.2f\n", name, a * 1e3, b * 1e3, a / b }'; }

"$build/bin/make-large-document" "$work/large.ai" "${1:-800}"
for run in 1 2 3; do
  mapfile -t times < <(medians 10 "$host fonts $work/large.ai" "rg -a -c -F /FontName $work/large.ai")
  ratio "${1:-800} MiB, fonts against rg" "${times[@]}"
done

: >"$work/empty.ai"
head -c 65536 "$work/large.ai" >"$work/small.ai"
for run in 1 2 3; do
  mapfile -t times < <(medians 300 "$host fonts $work/small.ai" "$host fonts $work/empty.ai")
  ratio "64 KiB against an empty file" "${times[@]}"
done

"$build/bin/make-large-document" "$work/large.ai" 2048
/usr/bin/time -f "2 GiB: peak memory %M KiB, %e s" "$host" fonts "$work/large.ai" | wc -l | sed 's/$/ names/'
