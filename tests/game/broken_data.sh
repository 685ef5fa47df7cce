#!/usr/bin/env bash
# Breaks the game's data, one file at a time, and looks how the game takes it: it goes on, or ends
# with a message that names the file. Missing, empty and cut in half are told by the name; of bytes
# that are wrong it may also name what they were to hold. A signal, a report of a sanitizer, a hang
# or a message without a name is a fault.
#   broken_data.sh GAME [FILE...]    files below data/; all of them without one
# BROKEN_RUN is what the game is to do, by default the first two seconds of the recorded session;
# BROKEN_SEED picks the wrong bytes, and BROKEN_JOBS is how many run at a time.
set -uo pipefail
game=$1
shift
source=$PWD/samples/game
export game source SDL_VIDEODRIVER=offscreen
work=$(mktemp -d)
export work
trap 'rm -rf "$work"' EXIT
head -n 1200 "$source/session.input" >"$work/start.input"

# try FILE FAULT: in a copy of the folder, in which all but the file are links.
try() {
  local file=$1 fault=$2 name whole size status=0 i
  local here=$work/${file//\//_}.$fault
  mkdir "$here"
  cp -rsL "$source/data" "$here/data"
  whole=$source/data/$file
  rm "$here/data/$file"
  size=$(stat -Lc %s "$whole")
  case $fault in
    missing) ;;
    empty) : >"$here/data/$file" ;;
    cut) head -c $((size / 2)) "$whole" >"$here/data/$file" ;;
    wrong)
      cp "$whole" "$here/data/$file"
      RANDOM=$((${BROKEN_SEED:-1} + size))
      # JSON of which a letter is wrong is mostly JSON still; other files get bytes of any kind.
      case $file in
        *.json | *.ent | *.var | *.scene) set -- 2 97 26 ;;
        *) set -- 8 0 256 ;;
      esac
      for ((i = 0; i < $1; ++i)); do
        printf "\\x$(printf %02x $(($2 + RANDOM % $3)))" |
          dd of="$here/data/$file" bs=1 seek=$(((RANDOM * 32768 + RANDOM) % size)) conv=notrunc status=none
      done
      ;;
  esac
  cd "$here"
  timeout 300 "$game" ${BROKEN_RUN:---play "$work/start.input"} >out 2>&1 || status=$?
  name=$(basename "$file")
  [ "$fault" = wrong ] && name="data/"
  if [ $status -gt 1 ] || grep -qa 'Sanitizer\|runtime error:' out ||
    { [ $status -eq 1 ] && ! grep -av '^Loaded \|^Removed ' out | grep -qaF "$name"; }; then
    echo "$file, $fault: status $status: $(grep -am 3 'Sanitizer\|runtime error:\|game: ' out || tail -n 1 out)"
    echo "$file $fault" >>"$work/faults"
  fi
  echo "$file $fault $status $(grep -a 'game: ' out)" >>"$work/all"
  cd "$work"
  rm -rf "$here"
}
export -f try

if [ $# -gt 0 ]; then printf '%s\n' "$@"; else (cd "$source/data" && find . -type f -printf '%P\n' | sort); fi |
  while IFS= read -r file; do
    for fault in missing empty cut wrong; do printf '%s\0%s\0' "$file" "$fault"; done
  done | xargs -0 -n 2 -P "${BROKEN_JOBS:-2}" bash -c 'try "$1" "$2"' _
[ -n "${BROKEN_LIST:-}" ] && sort "$work/all" >"$BROKEN_LIST"
echo "$(wc -l <"$work/all") cases, $(grep -cE '^[^ ]+ [^ ]+ 1 ' "$work/all") ended with a message"
[ ! -e "$work/faults" ]
