#!/usr/bin/env bash
# A tour for somebody who sees Tidebrook for the first time: every command is shown, run for real
# on a device in a temporary folder, and explained. It also holds what it sees against what it
# tells, and ends with a failure at the first difference.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh

readonly bin=build/release/bin
readonly feeds=examples/feeds
readonly brokenFeed=broken.xml

temporary=$(mktemp -d)
serverId=
cleanUp() {
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

countLines() {
    grep -c "^$2"$'\t' <<<"$1" || true
}

buildQuietly() {
    local log=$temporary/build.log
    echo "Building Tidebrook (the first time, this takes some minutes) ..."
    if ! build release >"$log" 2>&1; then
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
    if [[ $output != "0 categories, 0 channels" ]]; then
        fail "a device with an empty list of default channels must begin empty."
    fi
}

# The port comes through a pipe, whose end tells as well if the server could not start.
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
    explain "\"add\" subscribes to a feed, and makes its category if there is none yet." \
        "It prints the name under which the channel is kept:"
    while IFS=$'\t' read -r category name file; do
        try 0 add "$category" "$name" "$site/$file"
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

updateFirst() {
    chapter "Fetching"
    explain "\"update\" fetches every channel. Each line tells how it went: ok, the number of new" \
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
        "The file $feeds/$brokenFeed ends in the middle of an article. Tidebrook tells the" \
        "error and keeps the channel, and the next update tries it again. The other channels" \
        "are not held up by it."
}

# What arrived must be what the publishers wrote: as many articles as there are items.
compareWithFiles() {
    local file items expected
    for file in "${!nameOf[@]}"; do
        if [[ $file == "$brokenFeed" ]]; then
            continue
        fi
        items=$(grep -ac '<item>' "$feeds/$file")
        expected=$(printf 'ok\t%s\t%s/%s\t%s' "$items" "$items" "$items" "${nameOf[$file]}")
        if ! grep -Fxq "$expected" <<<"$update"; then
            fail "${nameOf[$file]} has $items articles, and not all of them arrived."
        fi
    done
}

readArticle() {
    local channel=${nameOf[harbour_courier.xml]} title
    chapter "Reading"
    explain "The articles of a channel: unread (u) or read (r), date, and title:"
    try 0 articles "$channel"
    title=$(head -n 1 <<<"$output" | cut -f3-)
    explain "" "One of them in full, with its date, its link and its text:"
    try 0 show "$channel" "$title"
    if [[ $(grep -c . <<<"$output") -lt 3 ]]; then
        fail "an article must have a date, a link and a text."
    fi
    explain "" "Showing it has marked it as read:"
    try 0 articles "$channel"
    if [[ $(grep '^r' <<<"$output" | cut -f3-) != "$title" ||
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
        "was read stays read:"
    try 1 update
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

# Tidebrook pauses where a screen would show something; nobody watches an automatic run.
if [[ ${CI:-} == true ]]; then
    export TIDEBROOK_PAUSES=0
fi

echo "Tidebrook reads news feeds. This tour shows how, with the command-line program"
echo "tidebrookctl, on example feeds; it leaves nothing behind."
buildQuietly
makeDevice
startServer
addChannels
updateFirst
compareWithFiles
explainBrokenFeed
readArticle
updateAgain
checkStore

chapter "The end"
explain "The temporary device and the web server are removed now. To begin for yourself:" \
    "  $bin/tidebrookctl init" \
    "  $bin/tidebrookctl --help"
