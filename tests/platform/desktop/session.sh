#!/usr/bin/env bash
# session.sh SAMPLE: a player of the sample 02-input records a session; played, on the desktop and without one, it tells
# the same.
set -eu
sample=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

VORN_RECORD=$work/session.input "$sample" >"$work/recorded" &
player=$!
frames() { cat "$work/session.input" 2>/dev/null | grep -c frame || true; }
until [ "$(frames)" -gt 10 ]; do kill -0 $player; sleep 0.1; done
xdotool mousemove 400 400 keydown Right sleep 0.3 keydown s sleep 0.3 keyup s mousemove 460 420 click 4 keyup Right \
  sleep 1 keydown Escape
wait $player
grep -q "key 83 down" "$work/recorded"

for driver in "$SDL_VIDEODRIVER" offscreen; do
  SDL_VIDEODRIVER=$driver VORN_PLAY=$work/session.input timeout 20 "$sample" >"$work/played"
  diff "$work/recorded" "$work/played"
done
