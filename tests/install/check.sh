#!/usr/bin/env bash
# Installs a build into a folder of its own. Programs outside the project must then compile, link and run there, by CMake and
# by pkg-config, and a package that misses something must say what.
#
#   check.sh BUILD [COMPONENT…]    BUILD: the folder of the build; COMPONENT: of its installation, all by default
set -euo pipefail
build=$(realpath "$1")
shift
here=$(dirname "$(realpath "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { printf 'FAILED: %s\n' "$*" >&2; exit 1; }

mkdir "$work/manifests"
for component in "$@"; do
    cmake --install "$build" --prefix "$work/prefix" --component "$component" >/dev/null
    mv "$build/install_manifest_$component.txt" "$work/manifests/"
done
touch "$work/prefix/include/of-another-package.hpp"
library=$(find "$work/prefix" -name pkgconfig -printf '%h')
shared=
[ ! -e "$library/libopcmodel.so" ] || shared=1

# configure NAME OPTION…: prints what CMake says.
configure() {
    local name=$1
    shift
    cmake -S "$here" -B "$work/$name" -DCMAKE_PREFIX_PATH="$work/prefix" "$@" 2>&1
}

configure cmake '-DCOMPONENTS=zip;inspection;editing;xerces' '-DPROGRAMS=stores;documents' >"$work/log" || fail "$(cat "$work/log")"
cmake --build "$work/cmake" >"$work/log" 2>&1 || fail "$(cat "$work/log")"
"$work/cmake/stores" "$work/cmake.zip"
"$work/cmake/documents"

# What the documents say works, too.
for document in README.md docs/installing.md; do
    mkdir "$work/documented"
    {
        printf '%s\n' 'cmake_minimum_required(VERSION 3.22)' 'project(app LANGUAGES CXX)' \
            "add_executable(app \"$here/../../examples/create.cpp\")"
        sed -n '/^```cmake/,/^```/{/^```/!p}' "$here/../../$document"
    } >"$work/documented/CMakeLists.txt"
    grep -q find_package "$work/documented/CMakeLists.txt"
    cmake -S "$work/documented" -B "$work/documented" -DCMAKE_PREFIX_PATH="$work/prefix" >"$work/log" 2>&1 &&
        cmake --build "$work/documented" >>"$work/log" 2>&1 || fail "$document: $(cat "$work/log")"
    "$work/documented/app" "$work/documented.zip"
    rm -r "$work/documented" "$work/documented.zip"
done

# A shared library asks for nothing that it hides, a static one says what it needs.
hidden='-DCMAKE_DISABLE_FIND_PACKAGE_XercesC=ON -DCMAKE_DISABLE_FIND_PACKAGE_ZLIB=ON -DCMAKE_DISABLE_FIND_PACKAGE_OpenSSL=ON'
# says MESSAGE OPTION…: configuring fails with this message.
says() {
    local message=$1
    shift
    ! configure wrong "$@" >"$work/log" || fail "configured in spite of: $message"
    tr -s ' \n' ' ' <"$work/log" | grep -qF "$message" || fail "not said: $message; but: $(cat "$work/log")"
    rm -rf "$work/wrong"
}
says 'it has no component silk. It has: core, ' '-DCOMPONENTS=zip;silk'
# shellcheck disable=SC2086
if [ "$shared" ]; then
    configure bare $hidden -DCOMPONENTS=zip >/dev/null
    says 'its component xerces needs the package XercesC' $hidden -DCOMPONENTS=xerces
else
    says "it needs packages that aren't found: OpenSSL, XercesC, ZLIB" $hidden -DCOMPONENTS=zip
fi

export PKG_CONFIG_PATH=$library/pkgconfig
compile() { # PROGRAM PACKAGE
    # shellcheck disable=SC2046
    "${CXX:-c++}" -std=c++17 "$here/$1.cpp" -o "$work/$1" $(pkg-config --cflags --libs "$2")
}
compile stores opcmodel
compile documents opcmodel-xerces
LD_LIBRARY_PATH=$library "$work/stores" "$work/pkgconfig.zip"
LD_LIBRARY_PATH=$library "$work/documents"

# What was installed goes, and nothing else.
cmake -DBUILD="$work/manifests" -P "$here/../../cmake/OpcmodelUninstall.cmake"
left=$(cd "$work/prefix" && find . ! -type d)
[ "$left" = ./include/of-another-package.hpp ] || fail "left after uninstalling: $left"
[ -z "$(find "$work/prefix" -type d -name 'opc*')" ] || fail "empty folders are left"
