#!/usr/bin/env bash
# A tour for a new user: shows each command, explains it, and runs it on a device in a temporary
# folder. It compares what it sees with what it explains, and fails at the first difference.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh

readonly bin=build/release/bin
readonly feeds=examples/feeds
readonly brokenFeed=broken.xml
readonly requestedFeed=carnet_des_rues.xml

temporary=$(mktemp -d)
serverId=
cleanUp() {
    "$bin/tidebrookctl" --home "$temporary/device" service stop >/dev/null 2>&1 || true
    if [[ -n $serverId ]]; then
        kill "$serverId" 2>/dev/null || true
        wait "$serverId" 2>/dev/null || true
    fi
    rm -rf "$temporary"
}
trap cleanUp EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
trap 'exit 129' HUP

fail() {
    printf '\nThe tour stops here: %s\n' "$1" >&2
    exit 1
}

chapter() { printf '\n--- %s ---\n' "$1"; }
explain() { printf '%s\n' "$@"; }

# The command as one would type it.
typed() {
    local word
    printf '  $ tidebrookctl'
    for word in "$@"; do
        if [[ $word == *[!A-Za-z0-9_:/.-]* ]]; then
            word="\"$word\""
        fi
        printf ' %s' "$word"
    done
    printf '\n'
}

# try STATUS ARGUMENT...: shows and runs a command that must end with that exit status, and leaves
# what it printed in $output.
try() {
    local expected=$1 status=0
    shift
    typed "$@"
    output=$("$bin/tidebrookctl" --home "$temporary/device" "$@") || status=$?
    if [[ -n $output ]]; then
        sed 's/^/    /; s/\t/   /g' <<<"$output"
    fi
    if ((status != expected)); then
        fail "that command ended with $status, and not with $expected."
    fi
}

# Reads "unread/total" in the first field of the channel list and adds up all channels.
totals() {
    awk -F'[/\t]' '{ unread += $1; total += $2 } END { print unread + 0 "/" total + 0 }' <<<"$1"
}

# The field behind "ok" in the lines of an update: how many articles were new.
newArticles() {
    awk -F'\t' '$1 == "ok" { sum += $2 } END { print sum + 0 }' <<<"$1"
}

itemsOf() {
    grep -ac '<item>' "$feeds/$1"
}

categoryOf() {
    awk -F'\t' -v file="$1" '$3 == file { print $1 }' "$feeds/channels.tsv"
}

countLines() {
    grep -c "^$2"$'\t' <<<"$1" || true
}

buildQuietly() {
    local log=$temporary/build.log
    echo "Building Tidebrook (the first time, this takes some minutes) ..."
    if ! build release tidebrookctl feedlarkd feedserver >"$log" 2>&1; then
        cat "$log" >&2
        fail "the build failed."
    fi
}

# Tidebrook lives in one folder, its device. A new one gets channels of the real Internet; one
# whose list of default channels is empty gets none, and so the tour needs no network.
makeDevice() {
    mkdir -p "$temporary/device/windows"
    : >"$temporary/device/windows/RSSChannels.txt"
    chapter "A new device"
    explain "Categories, channels and articles live in one folder, the device." \
        "This one is temporary and starts without channels, so that the tour needs no network:"
    try 0 init
    if [[ $output != "0 categories, 0 channels"$'\t'* ]]; then
        fail "a device with an empty list of default channels must begin empty."
    fi
}

# The port comes through a pipe, whose end also reports a server that could not start.
startServer() {
    local announcement=$temporary/announcement line=
    mkfifo "$announcement"
    "$bin/feedserver" --directory "$feeds" >"$announcement" &
    serverId=$!
    exec {announced}<"$announcement"
    if ! read -r -t 20 line <&"$announced" || [[ $line != "listening on http://127.0.0.1:"* ]]; then
        fail "the example feed server did not start."
    fi
    site=${line#listening on }
    # A second way to fetch a feed always goes to port 80 of its host; here, that is this server.
    export TIDEBROOK_HTTP_PORT=${site##*:}
    export no_proxy=127.0.0.1
    chapter "Some feeds to read"
    explain "A small web server on this machine now plays the publishers. It serves the files" \
        "in $feeds/ at $site/"
}

addChannels() {
    local category name file
    chapter "Subscribing"
    explain "\"add\" subscribes to a feed; with \"--create\" it makes the category if there is none yet." \
        "It prints the name under which the channel is kept:"
    while IFS=$'\t' read -r category name file; do
        try 0 add --create "$category" "$name" "$site/$file"
        nameOf[$file]=$output
    done <"$feeds/channels.tsv"
    explain "" "What there is now; in front of each channel stand its unread and its articles:"
    try 0 categories
    if [[ $(sort <<<"$output") != "$(cut -f1 "$feeds/channels.tsv" | sort -u)" ]]; then
        fail "these are not the categories that were added."
    fi
    try 0 channels
    if [[ $(grep -c . <<<"$output") != "${#nameOf[@]}" || $(totals "$output") != 0/0 ]]; then
        fail "there must be ${#nameOf[@]} channels without articles."
    fi
}

# What the reader does when the user taps "Update".
requestOne() {
    local name=${nameOf[$requestedFeed]}
    chapter "Asking the downloader"
    explain "The reader does not fetch by itself: it asks a service in the background, feedlarkd, and" \
        "waits for its answer. \"request\" does the same, and starts the service where none runs:"
    try 0 request "$(categoryOf "$requestedFeed")" "$name"
    if [[ $output != "done" ]]; then
        fail "the request was not answered with \"done\"."
    fi
    try 0 service status
    try 0 articles "$name"
    if [[ $(countLines "$output" u) != "$(itemsOf "$requestedFeed")" ]]; then
        fail "the articles of $name did not all arrive."
    fi
}

updateFirst() {
    chapter "Fetching"
    explain "\"update\" fetches every channel, without the service. Each line says how it went: ok, the number of new" \
        "articles, unread/all articles, and the channel. One feed is broken on purpose, so the" \
        "command as a whole ends with exit status 1:"
    try 1 update
    update=$output
    if [[ $(countLines "$update" ok) != $((${#nameOf[@]} - 1)) ]]; then
        fail "every feed but one must arrive."
    fi
}

explainBrokenFeed() {
    local line
    chapter "When a feed is broken"
    line=$(grep '^error' <<<"$update" || true)
    if [[ $line != *$'\t'"${nameOf[$brokenFeed]}" ]]; then
        fail "${nameOf[$brokenFeed]} must be the one feed that failed."
    fi
    explain "    ${line//$'\t'/   }" \
        "The file $feeds/$brokenFeed ends in the middle of an article. Tidebrook reports the" \
        "error and keeps the channel, and the next update tries it again. The other channels" \
        "are not held up by it."
}

# What arrived must be what the publishers wrote: as many articles as there are items.
compareWithFiles() {
    local file items new expected
    for file in "${!nameOf[@]}"; do
        if [[ $file == "$brokenFeed" ]]; then
            continue
        fi
        items=$(itemsOf "$file")
        new=$items
        if [[ $file == "$requestedFeed" ]]; then
            new=0
        fi
        expected=$(printf 'ok\t%s\t%s/%s\t%s' "$new" "$items" "$items" "${nameOf[$file]}")
        if ! grep -Fxq "$expected" <<<"$update"; then
            fail "${nameOf[$file]} has $items articles, and not all of them arrived."
        fi
    done
}

readArticle() {
    local channel=${nameOf[harbour_courier.xml]} title
    chapter "Reading"
    explain "The articles of a channel: unread (u) or read (r), date, title, and number:"
    try 0 articles "$channel"
    title=$(head -n 1 <<<"$output" | cut -f3)
    explain "" "One of them in full, by its title; its number would do as well:"
    try 0 show "$channel" "$title"
    if [[ $(grep -c . <<<"$output") -lt 3 ]]; then
        fail "an article must have a heading and a text."
    fi
    explain "" "Showing it has marked it as read:"
    try 0 articles "$channel"
    if [[ $(grep '^r' <<<"$output" | cut -f3) != "$title" ||
        $(countLines "$output" r) != 1 ]]; then
        fail "that article, and no other, must be marked as read."
    fi
    explain "" "Some publishers give no dates; their articles are listed all the same:"
    try 0 articles "${nameOf[valley_observer.xml]}"
}

updateAgain() {
    local before after
    chapter "Fetching again"
    try 0 channels
    before=$(totals "$output")
    explain "" "The publishers have written nothing new, so no article may appear twice, and what" \
        "was read stays read. The feed that has failed is left alone for a while (later); with" \
        "\"--full\", or by its name, it would be tried now:"
    try 0 update
    if [[ $(countLines "$output" later) != 1 ]]; then
        fail "the broken feed must be left alone, and no other."
    fi
    if [[ $(newArticles "$output") != 0 ]]; then
        fail "nothing is new, but articles were stored."
    fi
    try 0 channels
    after=$(totals "$output")
    if [[ $before != "$after" ]]; then
        fail "there were $before unread/all articles before, and now there are $after."
    fi
    explain "" "Nothing doubled: $after unread/all articles, as before."
}

# The service looks at its settings once a minute; one that begins looks at once.
automaticRounds() {
    local name=${nameOf[$requestedFeed]} tries=200
    chapter "Fetching on its own"
    explain "Channels on the automatic list are updated by the service, here every 30 minutes. A first" \
        "round is due at once:"
    try 0 auto add "$name"
    try 0 setting UpdateInterval 1
    try 0 setting UpdateMode 1
    try 0 service stop
    try 0 service start
    until "$bin/tidebrookctl" --home "$temporary/device" setting LastAutoUpdate \
        >/dev/null 2>&1; do
        if ((--tries == 0)); then
            fail "the service did not run the round that is due."
        fi
        sleep 0.1
    done
    explain "" "Of each channel: its last success, what came of it, and when it is tried next:"
    try 0 updates
    if [[ $(grep -v "not automatic$" <<<"$output" | cut -f 1,3) != "$name"$'\tunchanged' ]]; then
        fail "one channel must be automatic, and must be unchanged."
    fi
    try 0 service stop
}

checkStore() {
    chapter "Examining what is stored"
    explain "\"check\" looks for damage and wrong counts, and prints a line for each fault:"
    try 0 check
    explain "    (exit status 0: everything is in order)"
}

output=
update=
site=
declare -A nameOf=() # the names of the channels by the files of their feeds

# Tidebrook pauses where a screen would show something; no user watches an automatic run.
if [[ ${CI:-} == true ]]; then
    export TIDEBROOK_PAUSES=0
fi

echo "Tidebrook reads news feeds. This tour shows how, with the command-line program"
echo "tidebrookctl, on example feeds; it leaves nothing behind."
buildQuietly
makeDevice
startServer
addChannels
requestOne
updateFirst
compareWithFiles
explainBrokenFeed
readArticle
updateAgain
automaticRounds
checkStore

chapter "The end"
explain "The temporary device and the web server are removed now. To begin for yourself:" \
    "  $bin/tidebrookctl init" \
    "  $bin/tidebrookctl --help"
