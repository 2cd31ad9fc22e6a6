#!/bin/sh
# Re-renders every branding image from its SVG source in this folder.
# Each PNG is written to the branding folder (the parent of this one) at the
# width and height given in the SVG. Needs rsvg-convert (Debian: librsvg2-bin).
set -eu
here=$(cd "$(dirname "$0")" && pwd)
dest=$(dirname "$here")
for svg in "$here"/*.svg; do
    name=$(basename "$svg" .svg)
    rsvg-convert --format=png --output="$dest/$name.png" "$svg"
    echo "$name.png"
done
