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
may_not "$(find platform vorn -name '*.?pp')" 'dev/' 'only hosts know of the development mode'
may_not "$(find dev -name '*.?pp')" 'platform/[^c]' 'the development mode sees of the platform its control'
may_not "dev/dev_mode.hpp dev/file_watch.hpp dev/overlay.hpp" '(platform|imgui|SDL)' 'hosts have these without more'
upper='physics|trigger|resource|render|input|sound|profiler|shell'
may_not "$(headers vorn/core vorn/math)" "vorn/(scene|$upper)/[^f]" 'core and math stand at the bottom'
may_not "$(headers vorn/scene)" "vorn/($upper)/[^f]" 'the scene stands below all that uses it'
may_not "$(headers vorn/physics)" 'vorn/(trigger|resource|render|input|sound|shell)/[^f]' 'physics stands beside triggers, below the rest'
may_not "$(headers vorn/trigger)" 'vorn/(physics|resource|render|input|sound|shell)/[^f]' 'triggers stand beside physics, below the rest'
may_not "$(headers vorn/resource)" 'vorn/(physics|trigger|render|input|sound|shell)/[^f]' 'resources stand beside physics, below the rest'
may_not "$(headers vorn/render)" 'vorn/(input|sound|profiler|shell)/[^f]' 'render stands below the profiler, beside input and sound'
may_not "$(headers vorn/profiler)" 'vorn/(input|sound|shell)/[^f]' 'the profiler stands above render, below the shell'
may_not "$(headers vorn/input)" 'vorn/(render|sound|profiler|shell)/[^f]' 'render, input and sound stand beside each other'
may_not "$(headers vorn/sound)" 'vorn/(render|input|profiler|shell)/[^f]' 'render, input and sound stand beside each other'
may_not "$(find vorn -name '*.hpp')" 'json/(reader|writer)\.h' 'JSON is parsed and written in core/json.cpp only'
exit $faults
