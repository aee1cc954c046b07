#pragma once

#include <poly/topology/ear_triangle.h>

// Cuts ears off a polygon until three corners are left, or until none of those left is an ear.
// Writes three corner numbers for each and returns how many numbers it wrote.
//
// The walk asks one corner after another. After a cut it goes on two places further, not beside the
// cut: that decides which diagonals are chosen. A round in which every corner fails ends it.
//
// A corner's answer depends on its two neighbours and on its blocker only, so one that failed is
// closed until one of them goes, and the walk steps over closed corners: they would fail again. For
// the same reason a round fails as a whole exactly when no corner is open.
//
// `Corners` keeps the polygon's remaining corners in a ring:
//   find_open(at)        moves `at` on to the next open corner, itself included; false without one
//   get_previous, get_next, get_point
//   close_reflex(b)      until a neighbour of b goes
//   close_blocked(a,b,c) looks for a corner inside the ear; if there is one, closes b until that
//                        corner or a neighbour of b goes, and returns true
//   cut(a, b, c)         takes b out and opens what this concerns
template <typename Corners>
unsigned int clip_ears(Corners& corners, unsigned int const& count, unsigned int* out) {
    unsigned int left = count;
    unsigned int at = 1;
    unsigned int* end = out;
    while (left > 2 && corners.find_open(at)) {
        unsigned int const b = at;
        unsigned int const a = corners.get_previous(b);
        unsigned int const c = corners.get_next(b);
        if (compute_ear_orientation(corners.get_point(a), corners.get_point(b),
                                    corners.get_point(c)) >= 0.0f) {
            corners.close_reflex(b);
            continue;
        }
        if (corners.close_blocked(a, b, c)) {
            continue;
        }
        end[0] = a;
        end[1] = b;
        end[2] = c;
        end += 3;
        --left;
        corners.cut(a, b, c);
        at = corners.get_next(corners.get_next(c));
    }
    return static_cast<unsigned int>(end - out);
}
