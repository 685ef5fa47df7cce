#!/usr/bin/env bash
# run.sh BUILD SOURCE COMPILER [FLAGS]: installs the build into an empty prefix away from its place, by its Debian packages
# where there are no flags, and builds and runs a host against it there, away from the repository; then the game that the
# page for newcomers makes.
set -euo pipefail
build=$1 source=$2 compiler=$3 flags=${4:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

if [ -z "$flags" ]; then
  cpack --config "$build/CPackConfig.cmake" -B "$work/packages" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
  for package in "$work"/packages/*.deb; do
    dpkg-deb -x "$package" "$work"
    dpkg-deb -f "$package" Package Version Depends
  done
  mv "$work/usr" "$work/prefix"
else
  cmake --install "$build" --prefix "$work/first" >/dev/null
  mv "$work/first" "$work/prefix"
fi

cp -r "$source/tests/install/host" "$work/host"
# build_host FOLDER
build_host() {
  cmake -S "$1" -B "$1/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" \
    -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
  cmake --build "$1/build"
}
build_host "$work/host"
"$work/host/build/host"
[ ! -e "$work/host/build/dev_host" ] || "$work/host/build/dev_host"

# The programs of the documents, with the data files that stand beside them there.
for page in "$source"/README.md $(grep -l '^```cmake CMakeLists.txt' "$source"/docs/*.md || true); do
  example=$work/$(basename "$page" .md)
  "$build/tests/docs_extract" files "$example" "$page"
  build_host "$example"
  program=$(sed -n 's/^add_executable(\([^ ]*\) .*/\1/p' "$example/CMakeLists.txt")
  (cd "$example" && "build/$program")
done

# The package brings nothing of ours beyond the library, its headers, its description, what games start from, and the
# author's command.
cd "$work/prefix"
[ ! -e bin/vorn ] || bin/vorn --version >/dev/null
! find . -type f | grep -vE '^\./(bin/vorn$|include/(vorn|vorn-dev|vorn-platform)/|share/vorn/(LICENSE$|data/shaders/|schemas/|template/)|share/doc/|lib/([^/]*/)?(libVorn\.so|libVornDev\.a|cmake/Vorn/))' || exit 1

if [ -z "$flags" ] && [ -e bin/vorn ]; then
  mkdir "$work/a newcomer"
  PATH=$work/prefix/bin:$PATH CXX=$compiler "$source/scripts/getting-started" "$work/a newcomer"
fi
