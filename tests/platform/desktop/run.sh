#!/usr/bin/env bash
# run.sh x11|wayland PROGRAM [ARGUMENTS]: runs it on a desktop of its own that nobody sees: an X server without a window
# manager, or a Wayland compositor with its keyboard and mouse from such a server.
set -u
desktop=$1
shift
work=$(mktemp -d)
chmod 700 "$work"
servers=()
end() {
  kill "${servers[@]}" 2>/dev/null
  wait "${servers[@]}" 2>/dev/null
  rm -rf "$work"
}
trap end EXIT

# start NAME SIGN COMMAND...: in the background, and waits until the file or socket SIGN has come.
start() {
  local name=$1 sign=$2 i
  shift 2
  command -v "$1" >/dev/null || { echo "$1 is not installed; scripts/test does that"; exit 1; }
  "$@" 3>"$work/display" >"$work/$name.log" 2>&1 &
  servers+=($!)
  for ((i = 0; i < 300; ++i)); do
    if [ -s "$sign" ] || [ -S "$sign" ]; then return; fi
    kill -0 "${servers[-1]}" 2>/dev/null || break
    sleep 0.05
  done
  echo "$name did not come up:"
  cat "$work/$name.log"
  exit 1
}

for tool in xdotool setxkbmap; do
  command -v "$tool" >/dev/null || { echo "$tool is not installed; scripts/test does that"; exit 1; }
done

# The server finds a display number that is free, and sockets are in a folder of our own: two tests at once do not meet.
unset WAYLAND_DISPLAY
start Xvfb "$work/display" Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp
export DISPLAY=":$(cat "$work/display")" XDG_RUNTIME_DIR="$work" SDL_VIDEODRIVER=$desktop
if [ "$desktop" = wayland ]; then
  # Not the backend without any output: a desktop without keyboard and mouse is more than SDL can bear.
  start weston "$work/vorn-test" weston --backend=x11-backend.so --use-pixman --width=1024 --height=768 \
    --socket=vorn-test --no-config --idle-time=0
  export WAYLAND_DISPLAY=vorn-test
fi

timeout 60 "$@"
result=$?
[ "$result" = 124 ] && echo "the program did not end within a minute"
[ "$result" = 0 ] || tail -n 50 "$work"/*.log
exit "$result"
