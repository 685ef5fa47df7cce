# Shared by the scripts beside it: `source "$(dirname "$0")/common.sh"`. Not a program of its own.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '\033[1m== %s\033[0m\n' "$*"; }

# What the project needs to be built and tested, all of Debian 12.
library_packages=(g++ cmake ninja-build pkg-config libjsoncpp-dev libsdl2-dev
  libepoxy-dev libegl1 libgl1-mesa-dri libfreetype-dev libfontconfig-dev fonts-liberation libstb-dev
  libopenal-dev libsndfile1-dev libimgui-dev
  glslang-dev glslang-tools spirv-tools libspirv-cross-c-shared-dev libassimp-dev libmeshoptimizer-dev libcli11-dev libfmt-dev
  dpkg-dev file)
build_packages=("${library_packages[@]}"
  assimp-testmodels libvalijson-dev libgtest-dev libgmock-dev libbenchmark-dev libbullet-dev xvfb xauth xdotool weston)
# llvm has the program that gives the sanitizers' reports their names and lines; without it they warn in the midst of
# what tests read.
check_packages=(clang clang-format libclang-rt-14-dev llvm)

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# need PACKAGE...: installs those that are not there yet.
need() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  say "Installing ${missing[*]}"
  as_root apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [cmake --build arguments...]
build() {
  local preset=$1
  shift
  say "Building ($preset)"
  mkdir -p build
  local log=build/configure-$preset.log
  cmake --preset "$preset" >"$log" || { cat "$log"; exit 1; }
  cmake --build --preset "$preset" "$@"
}
