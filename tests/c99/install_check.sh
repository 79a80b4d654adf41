#!/bin/sh
# Installs the build into a scratch prefix, then builds and runs a C consumer twice: once
# through find_package(comnlib) and once through pkg-config.
set -eu
build=$1; src=$2
tmp=$(mktemp -d); trap 'rm -rf "$tmp"' EXIT
cmake --install "$build" --prefix "$tmp/prefix" >/dev/null
cmake -S "$src/consumer_project" -B "$tmp/b" -DCMAKE_PREFIX_PATH="$tmp/prefix" >/dev/null
cmake --build "$tmp/b" >/dev/null
LD_LIBRARY_PATH="$tmp/prefix/lib" "$tmp/b/consumer"
flags=$(PKG_CONFIG_PATH="$tmp/prefix/lib/pkgconfig" pkg-config --cflags --libs comnlib)
cc -std=c99 "$src/consumer.c" $flags -o "$tmp/pc"
LD_LIBRARY_PATH="$tmp/prefix/lib" "$tmp/pc"
