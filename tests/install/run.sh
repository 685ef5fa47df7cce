#!/usr/bin/env bash
# run.sh BUILD SOURCE COMPILER [FLAGS]: installs the build into an empty prefix, moves that to another place, and builds
# and runs a host against it there, away from the repository.
set -euo pipefail
build=$1 source=$2 compiler=$3 flags=${4:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/first" >/dev/null
mv "$work/first" "$work/prefix"
cp -r "$source/tests/install/host" "$work/host"
cmake -S "$work/host" -B "$work/host/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" \
  -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/host/build"
"$work/host/build/host"

# The package brings nothing of ours beyond the library, its headers, its description, the shader files and the author's
# command.
cd "$work/prefix"
[ ! -e bin/vorn ] || bin/vorn --version >/dev/null
find . -type f | grep -vE '^\./(bin/vorn$|include/(vorn|vorn-platform)/|share/vorn/data/shaders/|lib/([^/]*/)?(libVorn\.so|cmake/Vorn/))' && exit 1
exit 0
