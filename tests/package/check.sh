#!/bin/sh
# check.sh SHARED_BUILD STATIC_BUILD PACKAGE.deb BARE_SYSTEM
# Installs two builds to some place, and the package into a bare Debian system: programs must run
# there, and applications must build against it.
set -eu

root=$(dirname -- "$(dirname -- "$(dirname -- "$(readlink -f -- "$0")")")")
shared=$1
static=$2
package=$3
bare=$(readlink -f -- "$4")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Runs a command; what it prints is shown only if it fails.
quietly() {
    "$@" >"$folder/log" 2>&1 || {
        cat "$folder/log" >&2
        echo "package: failed: $*" >&2
        exit 1
    }
}

in_bare() {
    as_root=
    [ "$(id -u)" -eq 0 ] || as_root=sudo
    quietly $as_root chroot "$bare" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/tmp \
        DEBIAN_FRONTEND=noninteractive "$@"
}

# An application finds the libraries in a tree, and inherits what it needs.
check_tree() {
    tree=$1
    rm -rf "$folder/examples"
    quietly cmake -S "$root/examples" -B "$folder/examples" -G Ninja -D CMAKE_PREFIX_PATH="$tree"
    quietly ninja -C "$folder/examples"
    quietly "$folder/examples/first_hit"
    quietly "$folder/examples/box_tree" "$root/assets/rocket.obj"
    quietly grep -e '-ffp-contract=off.*-std=[a-z+]*20' "$folder/examples/build.ninja"
    find "$tree/include" -path '*/p[lo]*/*' -name '*.h' -printf '#include <%P>\n' >"$folder/all.cpp"
    quietly g++ -std=c++20 -fsyntax-only -isystem "$tree/include" "$folder/all.cpp"
}

# Nothing in a tree tells where it was built.
check_paths() {
    if grep -rlF "$root" "$1"; then
        echo "package: the files above name the folder of the build" >&2
        exit 1
    fi
}

for build in "$shared" "$static"; do
    quietly cmake --install "$build" --prefix "$folder/first place"
    mv "$folder/first place" "$folder/${build##*/}"
    check_paths "$folder/${build##*/}"
    check_tree "$folder/${build##*/}"
done
# The program finds its libraries and its model beside it, and brings its page and completion.
tree=$folder/${shared##*/}
quietly env -i "$tree/bin/qzpoly" render --size 16 16 -o "$folder/picture.png"
quietly test -s "$tree/share/man/man1/qzpoly.1"
quietly bash -c 'source "$1" && complete -p qzpoly' bash \
    "$tree/share/bash-completion/completions/qzpoly"

in_bare apt-get update
quietly cp "$package" "$bare/tmp/qz.deb"
in_bare apt-get install -y --no-install-recommends /tmp/qz.deb
in_bare qzpoly --version
in_bare test -s /usr/share/man/man1/qzpoly.1 -a -s /usr/share/bash-completion/completions/qzpoly
in_bare qzpoly render --sphere 8 4 --size 16 16 -o /tmp/picture.png
check_tree "$bare/usr"
in_bare apt-get purge -y --autoremove qz-poly
quietly test -z "$(find "$bare/usr" -name '*qz*' -print -quit)"
