#pragma once

#include <platform/qz_obj/obj_list.h>
#include <platform/qz_obj/obj_map.h>
#include <platform/qz_obj/obj_report.h>
#include <platform/qz_resource.h>

#include <string_view>

// Creases of edges, from two statements:
//   t crease i/r/s ...  counts of integers, reals and strings, then those: pairs of points from 0
//                       on, and one sharpness for all pairs or one for each
//   ec sharpness a b    one edge, of points from 1 on
class ObjCreases {
  public:
    void begin_tag();
    void begin_edge();
    // The next word of the statement. False: the rest of it does not matter.
    bool add_word(std::string_view const& word);
    // A malformed statement is dropped with a warning.
    void end_statement(ObjReport& report);

    // Hands over the creases whose points are there.
    void finish(unsigned int const& point_count, ObjReport& report, ResourceImportData& data);

  private:
    enum Expected { NAME, COUNTS, SHARPNESS, VALUES };

    bool add_counts(std::string_view const& word);
    bool add_index(std::string_view const& word);
    bool add_sharpness(std::string_view const& word);
    bool has_good_counts() const;

    ObjList<int> m_indices;  // -1: no point that could be there
    ObjList<float> m_sharpnesses;
    ObjForward m_forward;

    // Of the statement that is being read.
    Expected m_expected = NAME;
    bool m_is_other_tag = false;
    unsigned int m_first_number = 0;
    unsigned int m_indices_left = 0;
    unsigned int m_sharpnesses_left = 0;
    unsigned int m_first_index = 0;
    unsigned int m_first_sharpness = 0;
};
