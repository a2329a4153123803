#!/usr/bin/env bash
# Installs this build into a fresh prefix, checks that every installed header
# finds what it includes there, builds examples/helloModule against the
# prefix with find_package(Tessera) alone (and with pkg-config), and has the
# installed tessera-run load and start it beside the keyer's module.
#   installAndBuildExample.sh BUILD_DIR SOURCE_DIR CMAKE CXX plain|sanitized
set -euo pipefail
build=$1 source=$2 cmake=$3 cxx=$4 kind=$5
if [ "$kind" = sanitized ]; then
    echo "skipped: the sanitised libraries need the sanitiser run time in an outside build"
    exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

"$cmake" --install "$build" --prefix "$prefix" >/dev/null
test -f "$prefix/lib/cmake/Tessera/TesseraConfigVersion.cmake"
test -f "$prefix/lib/pkgconfig/tessera.pc"

# Installed headers include only installed headers.
missing=0
while IFS=: read -r header include; do
    if [ ! -f "$prefix/include/tessera/$include" ]; then
        echo "$header includes <$include>, which is not installed"
        missing=1
    fi
done < <(cd "$prefix/include/tessera" &&
    grep -rHo '^#include <[a-zA-Z]*/[^>]*>' . | sed 's|^\./||; s|:#include <|:|; s|>$||')
[ "$missing" = 0 ]

"$cmake" -S "$source/examples/helloModule" -B "$work/hello" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=Release >/dev/null
"$cmake" --build "$work/hello" >/dev/null

# The same module through pkg-config, for builds without CMake.
mkdir "$work/pc"
"$cxx" -shared -fPIC -o "$work/pc/libhelloModule.so" "$source/examples/helloModule/helloModule.cpp" \
    $(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs tessera)

out=$(env -u TESSERA_MODULE -u TESSERA_RESOURCE_PATH \
    "$prefix/bin/tessera-run" --list-packages --module-path "$work/hello" 2>&1) || {
    printf '%s\n' "$out"
    exit 1
}
for line in "tesseraUiZnmodule [started]" \
    "helloModule [started]"$'\n'"  dependencies: tesseraUiZnmodule" \
    "description: Hello: a matte parameter changed (heard 9, the last Key Blend)" \
    "MSG_TS_SET_KEY_COLOR, MSG_HELLO_MATTE_CHANGED"; do
    if [[ "$out" != *"$line"* ]]; then
        printf 'missing: %s\n--- output:\n%s\n' "$line" "$out"
        exit 1
    fi
done
