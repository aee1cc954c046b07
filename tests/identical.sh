#!/bin/sh
# identical.sh PROGRAM... -- FILE...
# Dumps, packs, checks, converts and probes every file, and a few spheres, and draws some, by every build of the
# program: all must give the same bytes. The names of the programs hold no blanks.
set -eu

programs=
while [ "$1" != -- ]; do
    programs="$programs $1"
    shift
done
shift

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
made=$folder/made # what pack and render write
run_count=0
fault_count=0
worst_status=1

cat >"$folder/probes" <<END
--ray 0.1 0.2 9 0 0 -1
--ray 0.013 0.027 9 0.001 -0.002 -1 --time 0.25
--ray 0.03 9 0.02 0.003 -1 0.01 --time 0.25 --exact
END

# give PROGRAM ARGUMENT...: what the build gives for these arguments, and how it ends, is the same as
# the first one's.
give() {
    status=0
    rm -f "$made"
    "$@" <"$folder/probes" >"$folder/given" 2>/dev/null || status=$?
    [ ! -e "$made" ] || mv "$made" "$folder/given"
    echo "exit status $status" >>"$folder/given"
    if [ "$status" -gt "$worst_status" ]; then
        echo "ended with $status: $*" >&2
        fault_count=$((fault_count + 1))
    elif [ ! -e "$folder/first" ]; then
        mv "$folder/given" "$folder/first"
    elif ! cmp -s "$folder/first" "$folder/given"; then
        echo "differs from the first build: $*" >&2
        fault_count=$((fault_count + 1))
    fi
    run_count=$((run_count + 1))
}

compare() {
    rm -f "$folder/first"
    for program in $programs; do
        give "$program" "$@"
    done
}

compare_pictures() {
    rm -f "$folder/first"
    for program in $programs; do
        for threads in 1 8; do
            give "$program" render "$@" --threads "$threads" --size 64 48 --samples 4 -o "$made"
        done
    done
}

# compare_mesh ARGUMENT...: the options that name the mesh
compare_mesh() {
    compare dump "$@" --smooth 0 --smooth 30 --smooth 180
    compare dump "$@" --no-check-quads --digest
    compare pack "$@" -o "$made"
    compare check "$@" --json --places 20
    compare probe "$@" --batch --smooth 30 --spin 30
    worst_status=2 # where there is no such primitive
    compare probe "$@" --primitive 7 --st 0.2 0.3 --json
    worst_status=1
}

for file; do
    compare_mesh "$file"
    compare convert "$file" "$made"
    if [ -n "$(find "$file" -size +20k -size -70k)" ]; then
        compare_pictures "$file" --smooth 30 --spin 20 --edges
        compare_pictures "$file" --ambient-occlusion 2 --camera three-quarter
        compare turntable "$file" --frames 3 --size 64 48 --samples 2 -o "$made"
    fi
done
for sphere in '0 0' '7 5 1 2 3' '200 100'; do
    # shellcheck disable=SC2086
    compare_mesh --sphere $sphere
    # shellcheck disable=SC2086
    compare_pictures --sphere $sphere --exact --shade normal
done

echo "$run_count runs compared, $fault_count differ"
[ "$fault_count" -eq 0 ]
