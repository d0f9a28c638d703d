#!/bin/sh
# Makes the pictures of README and guide with the real window, from the shipped examples.
#
#   docs/pictures/make_pictures.sh [build folder]        default: build/release
set -eu
cd "$(dirname "$0")/../.."
build="${1:-build/release}"

cmake --build "$build" --target ormel_pictures VADOX1.EXE CONTOUR.EXE
QT_QPA_PLATFORM=offscreen "$build/bin/ormel_pictures" docs/pictures examples/example.orm \
  "examples/basin and range.orm"
