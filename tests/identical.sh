#!/bin/sh
# identical.sh PROGRAM... -- FILE...
# Dumps every file, and a few spheres, by every build of the program: all must print the same bytes.
# The names of the programs hold no blanks.
set -eu

programs=
while [ "$1" != -- ]; do
    programs="$programs $1"
    shift
done
shift

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
dump_count=0
fault_count=0

# compare ARGUMENT...: what the builds print for these arguments, and how they end.
compare() {
    first=
    for program in $programs; do
        status=0
        "$program" dump "$@" >"$folder/dump" 2>/dev/null || status=$?
        echo "exit status $status" >>"$folder/dump"
        if [ "$status" -gt 1 ]; then
            echo "$program ended with $status: dump $*" >&2
            fault_count=$((fault_count + 1))
        fi
        if [ -z "$first" ]; then
            first=$program
            mv "$folder/dump" "$folder/first"
        elif ! cmp -s "$folder/first" "$folder/dump"; then
            echo "$program differs from $first: dump $*" >&2
            fault_count=$((fault_count + 1))
        fi
        dump_count=$((dump_count + 1))
    done
}

for file; do
    compare "$file" --smooth 0 --smooth 30 --smooth 180
    compare "$file" --no-check-quads --digest
done
for sphere in '0 0' '7 5 1 2 3' '200 100'; do
    # shellcheck disable=SC2086
    compare --sphere $sphere --smooth 20
done

echo "$dump_count dumps compared, $fault_count differ"
[ "$fault_count" -eq 0 ]
