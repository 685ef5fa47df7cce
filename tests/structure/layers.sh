#!/usr/bin/env bash
# layers.sh SOURCE: which folder may include which. Dependencies point one way, in headers; in sources a ring of two
# subsystems may close.
set -euo pipefail
cd "$1"
faults=0
# may_not FILES INCLUDES WHY
may_not() {
  local found
  found=$(grep -nE "#include [\"<]($2)" $1 2>/dev/null || true)
  [ -z "$found" ] && return
  echo "$3:"
  echo "$found"
  faults=1
}
headers() { find "$@" -name '*.hpp' ! -name fwd.hpp; }

may_not "$(find platform -name '*.cpp' -o -name '*.h*')" 'vorn/' 'the platform knows nothing of the engine'
may_not "$(find vorn -name '*.?pp')" 'platform/' 'the engine sees of the platform only its include folder'
may_not "$(headers vorn/core vorn/math)" 'vorn/(scene|physics|render)/[^f]' 'core and math stand at the bottom'
may_not "$(headers vorn/scene)" 'vorn/(physics|render)/[^f]' 'the scene stands below physics and render'
may_not "$(headers vorn/physics)" 'vorn/render/[^f]' 'physics stands below render'
may_not "$(find vorn -name '*.hpp')" 'json/(reader|writer)\.h' 'JSON is parsed and written in core/json.cpp only'
exit $faults
