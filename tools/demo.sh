#!/usr/bin/env bash
# Shows the agent at work: makes a sample store, writes, counts and reads its contacts and appointments through the desktop
# program, and ends the agent. Everything that it makes is in build/demo. DEMO_CONTACTS sets how many contacts the timed read has.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/wine-server.sh

many=${DEMO_CONTACTS:-1000}
demo=$PWD/build/demo
export LANG=C.UTF-8
# The sample has appointments of many zones: in one that is named here they are shown at the same times everywhere.
export TZ=Europe/Berlin
# The local store of the demo, and the lines of the log that carry telephone numbers too: here they are made up.
export LOCALSTORE_ROOT="Z:${demo//\//\\}\\store"
export FENNIC64_LEVEL=1

say() { printf '\n\e[1m%s\e[0m\n' "$*"; }
# Shows a command as a user would give it, and runs it.
show() {
  printf '$ zebdesk %s\n' "$*"
  zebdesk "$@"
}
zebdesk() { (cd "$demo" && exec "$OLDPWD/tools/run-wine.sh" bin/zebdesk.exe "$@"); }
# The number of agents of the demo that run; the pattern does not match its own command line.
agents() { { grep -las "${demo//\//.}.bin.[Z]ebAgentForOutlook64" /proc/[0-9]*/cmdline || true; } | wc -l; }

# Also after a failure: the agent would wait for the next desktop program for ever.
on_exit() {
  [ -e "$demo/bin/zebdesk.exe" ] || return 0
  printf 'agents running: %d\n$ zebdesk shutdown\n' "$(agents)"
  zebdesk shutdown
  local tries=100
  while [ "$(agents)" -gt 0 ] && [ $((tries -= 1)) -gt 0 ]; do sleep 0.1; done
  printf 'agents running: %d\n' "$(agents)"
  [ "$(agents)" -eq 0 ]
}

rm -rf "$demo"
mkdir -p "$demo/bin"
# Programs of the demo's own, so that its settings and its log are not those of build/bin.
cp "${ZEB_BIN_DIR:-build/bin}"/*.exe "${ZEB_BIN_DIR:-build/bin}"/*.dll "$demo/bin/"
cp -r localstore/sample/people localstore/sample/appointments "$demo/"
keep_wine_server

say "A store with people of many scripts in one profile, and $many plain contacts in another"
tools/run-wine.sh "${ZEB_TEST_BIN_DIR:-build/release/tests}/../tools/zebsample.exe" "$LOCALSTORE_ROOT" "$many"

say "Settings for the agent: where its lists go, and reads that go into sub-folders"
show setup

say "The mail profiles. The desktop program starts the agent"
show profiles

say "The stores and folders of the default profile. One store cannot be opened, and the others are there all the same"
show folders

say "More people come in through the agent, a document each. It does not say what it wrote, so zebdesk looks"
mapfile -t people < <(cd "$demo" && ls people/*.xml)
show write contacts "${people[@]}"

say "How many contacts a read would send, from the default folder and from a folder of the list"
show count
family=$(zebdesk folders --xml | grep -A1 '<fname>Família<' | sed -n 's:.*<id>\(.*\)</id>.*:\1:p')
show count --folder "$family"

say "The agent sends each contact as a document; the desktop program makes a table"
show read contacts --quiet

say "The appointments at the time of Berlin, wherever they were made, with their series in words"
show count calendars
show read calendars --quiet

say "The contacts as files, one a contact"
show read contacts --out documents
ls "$demo/documents" | head -n 3
printf '...\n'
document=$(grep -l '<LastName>山田' "$demo"/documents/*.xml)
printf '$ cat documents/%s\n' "$(basename "$document")"
cat "$document"

say "The pictures are files of their own, each beside the document that names it"
for picture in "$demo"/documents/*.jpg; do
  [ "$(head -c 3 "$picture" | od -An -tx1)" = ' ff d8 ff' ] || { printf 'demo: %s is no JPEG\n' "$picture" >&2; exit 1; }
  printf '%6d bytes  documents/%s\n' "$(stat -c %s "$picture")" "$(basename "$picture")"
done

say "Of a contact that was read a document is made that can be written. It is edited and written back"
# From here on reads bring what changes.
zebdesk read contacts --quiet --changed contacts.map --out changes >"$demo/first-read.txt"
document=documents/$(basename "$(grep -l '<LastName>Okafor' "$demo"/documents/*.xml)")
printf '$ zebdesk convert %s > edited.xml\n' "$document"
zebdesk convert "$document" >"$demo/edited.xml"
sed -i 's:<JobTitle>.*</JobTitle>:<JobTitle>Head of the gauging station</JobTitle>:' "$demo/edited.xml"
grep -E 'lFlag|JobTitle' "$demo/edited.xml"
show write contacts edited.xml
show read contacts --changed contacts.map --out changes
printf '$ grep JobTitle changes/%s\n' "$(basename "$document")"
grep JobTitle "$demo/changes/$(basename "$document")"

say "And it is deleted"
show write contacts --delete "$(sed -n 's:.*<PIMID>\(.*\)</PIMID>.*:\1:p' "$demo/edited.xml")"
show read contacts --changed contacts.map --out changes
show count

say "A series of appointments comes in through the agent"
zebdesk read calendars --quiet --changed calendars.map --out calendar >"$demo/first-read.txt"
show write calendars appointments/gauge-reading.xml
show read calendars --changed calendars.map --out calendar

say "It is read, converted, edited and written back: now it is every second week, and elsewhere"
appointment_named() { printf 'calendar/%s' "$(basename "$(grep -l "<Description>$1" "$demo"/calendar/*.xml)")"; }
document=$(appointment_named 'Reading of the gauge')
printf '$ zebdesk convert %s > series.xml\n' "$document"
zebdesk convert "$document" >"$demo/series.xml"
sed -i -e 's:<lRecurInterval>.*<:<lRecurInterval>2<:' -e 's:<lRecurRepeat>.*<:<lRecurRepeat>9<:' \
  -e 's:<Location>.*<:<Location>Upper weir<:' "$demo/series.xml"
grep -E 'lFlag|Location|lRecurInterval|lRecurRepeat' "$demo/series.xml"
show write calendars series.xml
show read calendars --changed calendars.map --out calendar

say "What a write of a series would lose is told by the conversion"
document=$(appointment_named Chorprobe)
printf '$ zebdesk convert %s > choir.xml\n' "$document"
zebdesk convert "$document" 2>&1 >"$demo/choir.xml"

say "And the series is deleted"
show write calendars --delete "$(sed -n 's:.*<PIMID>\(.*\)</PIMID>.*:\1:p' "$demo/series.xml")"
show read calendars --changed calendars.map --out calendar
show count calendars

say "The last lines of the log that the agent wrote"
tail -n 10 "$demo/bin/Logs/ZebAgentOutlook64.log" | tr -d '\r'

say "A read of $many contacts"
begin=$(date +%s%N)
show read contacts --profile Second --quiet --xml >"$demo/many.xml"
milliseconds=$((($(date +%s%N) - begin) / 1000000))
read_items=$(grep -c '</Contact>' "$demo/many.xml")
printf '%d contacts in %d ms, logon and logoff included: %d a second\n' \
  "$read_items" "$milliseconds" "$((read_items * 1000 / (milliseconds + 1)))"
[ "$read_items" -eq "$many" ] || { printf 'demo: %d contacts were expected\n' "$many" >&2; exit 1; }

say "The agent is told to end"
