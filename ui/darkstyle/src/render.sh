#!/bin/sh
# Re-renders every style-sheet image from its SVG source in this folder.
# Each PNG is written to the resource folder (the parent of this one) at the
# width and height given in the SVG. Needs rsvg-convert (Debian: librsvg2-bin).
# The two widget previews hold text: it is drawn in Segoe UI where installed,
# otherwise in DejaVu Sans (Debian: fonts-dejavu-core).
set -eu
here=$(cd "$(dirname "$0")" && pwd)
dest=$(dirname "$here")
for svg in "$here"/*.svg; do
    name=$(basename "$svg" .svg)
    rsvg-convert --format=png --output="$dest/$name.png" "$svg"
    echo "$name.png"
done
