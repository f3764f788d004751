#!/bin/bash
# The viewer in a real window: an X server without a screen, and a user's hands on its mouse and keys. What the viewer says of itself is asked
# through its script.
set -euo pipefail
cd "$(dirname "$0")/.."
viewer=build/release/bin/zelview
work=$(mktemp -d)
server= window_program=
cleanup() {
    [ -z "$window_program" ] || kill "$window_program" 2>/dev/null || true
    [ -z "$server" ] || kill "$server" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "viewer: $1"; exit 1; }

# Starts nothing without a window: neither the toolkit nor its module.
if LD_DEBUG=files build/release/bin/zel info --quiet examples/models/pavilion.dae 2>&1 >/dev/null | grep -q 'libQt\|zel-windows'; then
    fail "the command-line tool loads the toolkit"
fi
if env -u DISPLAY -u WAYLAND_DISPLAY "$viewer" examples/models/pavilion.dae 2>"$work/trouble"; then
    fail "a viewer without a screen says nothing"
fi
grep -q screen "$work/trouble" || fail "a viewer without a screen gives no reason"

mkfifo "$work/number"
exec {number}<>"$work/number"
Xvfb -displayfd "$number" -screen 0 1280x1024x24 >/dev/null 2>&1 &
server=$!
read -r -t 20 -u "$number" display
export DISPLAY=:$display

mkfifo "$work/steps" "$work/answers"
"$viewer" --screen --script - examples/models/pavilion.dae <"$work/steps" >"$work/answers" 2>"$work/trouble" &
window_program=$!
exec 8>"$work/steps" 9<"$work/answers"
say() { echo "$1" >&8; }
ask() {    # one line of JSON
    say "query $1"
    read -r -t 20 -u 9 answer || fail "no answer to $1: $(cat "$work/trouble")"
    printf %s "$answer"
}
settle() { say "wait idle"; ask title >/dev/null; }
# value EXPRESSION: of the answer in Python's terms
value() { python3 -c 'import json,sys; a=json.load(sys.stdin); print(eval(sys.argv[1]))' "$1"; }
# expect QUERY EXPRESSION VALUE WHAT: within some seconds
expect() {
    local got
    for _ in $(seq 50); do
        got=$(ask "$1" | value "$2")
        [ "$got" != "$3" ] || return 0
        sleep 0.1
    done
    fail "$4: $got instead of $3"
}

say "size 1000 800"
settle
id=$(xdotool search --sync --onlyvisible --name 'pavilion.dae' | head -1)
xdotool windowfocus --sync "$id" 2>/dev/null || true
before=$(ask view | value 'a["matrix"]')
middle=$(ask view | value 'a["width"] // 2')    # the lists stand at the right

xdotool mousemove --window "$id" "$middle" 450
settle
xdotool mousedown 1 mousemove_relative --sync 60 0 mousemove_relative --sync 20 10 mouseup 1
settle
expect view "a['matrix'] == $before" False "a drag turns"
expect selection 'len(a)' 0 "a drag selects"

xdotool mousemove --window "$id" "$middle" 370 click 1    # the roof
settle
expect selection 'len(a) > 0' True "a click selects"

zoom=$(ask view | value 'a["zoom"]')
xdotool click 4
settle
expect view "a['zoom'] == $zoom" False "the wheel zooms"

xdotool key --window "$id" KP_5
settle
expect view 'a["number"]' 5 "the key of the front view"
xdotool key --window "$id" Tab
settle
expect view 'a["fullScreen"]' True "the key of the full screen"
xdotool key --window "$id" Escape
settle
expect view 'a["fullScreen"]' False "leaving the full screen"

# A dialog over the view
xdotool key --window "$id" ctrl+alt+KP_4
settle
xdotool key --window "$id" ctrl+alt+KP_5
expect dialogs 'a[-1]["kind"]' dialog "the dialog of the angle"
say "answer cancel"
expect dialogs 'len(a)' 0 "closing the dialog"

say "window $work/window.png"
settle
python3 - "$work/window.png" <<'PICTURE' || fail "the window's picture is empty"
import sys
data = open(sys.argv[1], "rb").read()
sys.exit(0 if data[:4] == b"\x89PNG" and len(data) > 8000 else 1)
PICTURE

exec 8>&-
wait "$window_program" || fail "it ended with $?: $(cat "$work/trouble")"
window_program=
echo "viewer: drags, clicks, wheel, keys, full screen and dialogs work in a window"
