#!/usr/bin/env bash
# panel-bridge.sh BUILD: what the bridge refuses, and that those who misuse it hold up nobody. 77: skipped.
set -euo pipefail
build=$(cd "$1" && pwd)
host_program=$build/bin/plugincore-host
"$host_program" panel /nowhere 2>&1 | grep -q 'built without' && { echo "skipped: built without cpp-httplib"; exit 77; }
command -v curl >/dev/null || { echo "skipped: there is no curl"; exit 77; }

world=$(mktemp -d "${TMPDIR:-/tmp}/panel bridge XXXXXX")
export HOME=$world XDG_DATA_HOME=$world/data XDG_CACHE_HOME=$world/cache XDG_CONFIG_HOME=$world/config XDG_RUNTIME_DIR=
export TMPDIR=$world/tmp USER=tester FONTCONFIG_FILE=${0%/*}/../../tests/support/fonts.conf
mkdir -m 700 "$TMPDIR"
pellwick=$build/lib/vantorix/Pellwick
readers=()
host=
cleanup() {
  kill "${readers[@]}" 2>/dev/null || true
  [ -z "$host" ] || kill "$host" 2>/dev/null || true
  wait || true
  "$pellwick" stop --no-start >/dev/null 2>&1 || true
  rm -rf "$world"
}
trap cleanup EXIT
fail() { echo "FAILED: $1" >&2; exit 1; }
wait_for() { for _ in $(seq 400); do if eval "$1"; then return; fi; sleep 0.05; done; fail "never came true: $1"; }

"$pellwick" list >/dev/null
"$host_program" panel --for 600 >"$world/url" 2>"$world/errors" &
host=$!
wait_for '[ -s "$world/url" ]'
url=$(cat "$world/url")
origin=$(cut -d/ -f1-3 <<<"$url")

status() { curl -s -o "$world/body" -w '%{http_code}' --max-time 60 "$@"; }
# expect STATUS WHAT CURL-ARGUMENT…
expect() { local expected=$1 what=$2 got; shift 2; got=$(status "$@") || true; [ "$got" = "$expected" ] || fail "$what: $got, not $expected"; }
json=(-H 'Content-Type: application/json' -d '{"messageID":66}')

expect 403 "no token" "$origin/"
expect 403 "a token that is wrong in its last character" "${url%?/}x/events"
expect 403 "another Host, as after a rebinding of names" -H 'Host: evil.example' "$url"
expect 403 "a page from elsewhere" -H 'Origin: https://evil.example' "${json[@]}" "${url}messages"
expect 403 "another port of this machine" -H "Origin: http://127.0.0.1:1" "${url}documents"
expect 403 "no origin at all, as of a file" -H "Origin: null" "${json[@]}" "${url}messages"
[ "$(wc -l <"$world/body")" = 1 ] || fail "a refusal is more than a line"
[ "$(wc -l <"$world/errors")" = 6 ] || fail "six refusals left other than six lines"
grep -qF "$(cut -d/ -f4 <<<"$url")" "$world/errors" && fail "the token stands in the errors"
expect 415 "a form" -d 'messageID=66' "${url}messages"
expect 413 "a message of two megabytes" -H 'Content-Type: application/json' --data-binary @<(head -c 2000000 /dev/zero) "${url}messages"
expect 202 "the page itself" -H "Origin: $origin" "${json[@]}" "${url}messages"
expect 202 "what is no JSON is the core's affair" -H 'Content-Type: application/json' -d 'no JSON' "${url}messages"

# Files: those that the core named, by exactly their names, and no more once they are let go of.
curl -sN "${url}events?panel=a" >"$world/events" &
readers+=($!)
curl -sN "${url}events?panel=b" >"$world/other" &
readers+=($!)
wait_for 'grep -q listening "$world/events" && grep -q listening "$world/other"'
expect 202 "a query" -H 'Content-Type: application/json' \
  -d '{"messageID":35,"smartListID":0,"workgroupIDs":[],"setIDs":[],"smartSetIDs":[]}' "${url}messages?panel=a"
expect 202 "a font list" -H 'Content-Type: application/json' -d '{"messageID":40,"smartListID":0}' "${url}messages?panel=a"
wait_for 'grep -q "\"messageID\":41" "$world/events"'
list=$(sed -n 's/.*"filename":"file:\/\/\([^"]*\)".*/\1/p' "$world/events")
file() { printf '%s' "$1" | { status -G --data-urlencode path@- "${url}file"; }; }
[ "$(file "$list")" = 200 ] || fail "the list is not given"
for path in /etc/passwd "$list/../$(basename "$list")" "${list%/*}/./${list##*/}" "$world/errors" ''; do
  [ "$(file "$path")" = 404 ] || fail "'$path' is given"
done
echo secret >"$world/secret.txt"
mv "$list" "$world/kept"
ln -s "$world/secret.txt" "$list"
[ "$(file "$list")" = 404 ] || fail "a link in the place of the list is followed"
rm "$list"
mv "$world/kept" "$list"
expect 202 "letting go" -H 'Content-Type: application/json' -d "{\"messageID\":13,\"filename\":\"file://$list\"}" "${url}messages"
wait_for '[ "$(file "$list")" = 404 ]'
[ ! -e "$list" ] || fail "the list is still there"
grep -q '"messageID":41' "$world/other" && fail "another page was told of the list"
for path in ..%2f..%2f..%2fetc%2fpasswd .%2e/plugincore-host .hidden; do
  expect 404 "$path" --path-as-is "$url$path"
done

# A hundred pages, of which one does not read at all, and a crowd of messages.
for each in $(seq 100); do
  curl -sN --limit-rate 1 "${url}events?panel=$each" >/dev/null 2>&1 &
  readers+=($!)
done
curl -sS --no-progress-meter --parallel -o /dev/null -w '%{http_code}\n' -H 'Content-Type: application/json' \
  -d '{"messageID":10}' "${url}messages?n=[1-2000]" 2>"$world/curl" | sort | uniq -c >"$world/answers" || true
grep -vE ' (202|503)$' "$world/answers" && { cat "$world/answers" "$world/curl"; fail "a message got another answer than taken or busy"; }
[ "$(awk '{ n += $1 } END { print n }' "$world/answers")" = 2000 ] || fail "not all messages were answered"
grep -q ' 202$' "$world/answers" || fail "none of the messages was taken"
expect 200 "a page meanwhile" "${url}documents"
expect 200 "a choice that was not offered" "${json[@]}" "${url}replacements"
before=$(grep -c '"messageID":20' "$world/events" || true)
wait_for '[ "$(status "${json[@]}" "${url}messages?panel=a")" = 202 ]'  # the queue may still be full
wait_for '[ "$(grep -c "\"messageID\":20" "$world/events")" -gt "$before" ]'

kill -TERM "$host"
status=0
wait "$host" || status=$?
host=
[ "$status" = 143 ] || fail "the host ended with $status"
