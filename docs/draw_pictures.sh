#!/bin/sh
# Draws the pictures of the documents: draw_pictures.sh [FOLDER], else into docs/images.
set -eu

root=$(dirname -- "$(dirname -- "$(readlink -f -- "$0")")")
folder=$(readlink -f -- "${1:-$root/docs/images}")
cd "$root"

render() {
    name=$1
    shift
    ./dev render assets/rocket.obj "$@" -o "$folder/$name.png"
}

render rocket
for view in normal uv group; do
    render "rocket-$view" --shade "$view" --size 320 400
done
render rocket-edges --edges --size 320 400
render rocket-smooth --smooth 30 --hard-edges --size 320 400
./dev qzpoly dump assets/five_polygons.obj | docs/draw_data_model.py >"$folder/data-model.svg"
./dev build debug
PYTHONPATH=build/debug/python /usr/bin/python3 examples/draw_model.py \
    assets/rocket.obj "$folder/python.png" --samples 128 --size 320
