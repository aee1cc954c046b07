#include <tools/qzpoly/pictures/picture_text.h>

#include <algorithm>

namespace {

constexpr unsigned int letters_a_line = 16;
constexpr unsigned int line_length = letters_a_line * tool_letter_advance;

// The characters 0x20 to 0x7F, the last one a box: 16 side by side, 8 rows of each.
// clang-format off
constexpr char s_letters[] =
    "        #    # #   # #    #   ##  #  ##     #      #   #                                      # "
    "        #    # #  #####  #### ## #  #  #    #     #     #   # # #   #                        #  "
    "        #          # #  # #      #  #  #         #       #   ###    #                        #  "
    "        #          # #   ###    #    ##          #       #  ##### #####       #####         #   "
    "        #          # #    # #  #    # # #        #       #   ###    #                      #    "
    "                  ##### ####   # ## #  #          #     #   # # #   #     ##         ##    #    "
    "        #          # #    #   #  ##  ## #          #   #                  #          ##   #     "
    "                                                                         #                      "
    " ###    #    ###   ###     #  #####   ##  #####  ###   ###                                 ###  "
    "#   #  ##   #   # #   #   ##  #      #        # #   # #   #                #         #    #   # "
    "#  ##   #       #     #  # #  ####  #        #  #   # #   #  ##    ##     #   #####   #       # "
    "# # #   #     ##    ##  #  #      # ####    #    ###   ####  ##    ##    #             #    ##  "
    "##  #   #    #        # #####     # #   #   #   #   #     #               #   #####   #     #   "
    "#   #   #   #     #   #    #  #   # #   #   #   #   #    #   ##    ##      #         #          "
    " ###   ###  #####  ###     #   ###   ###    #    ###   ##    ##     #                       #   "
    "                                                                   #                            "
    " ###   ###  ####   ###  ####  ##### #####  ###  #   #  ###    ### #   # #     #   # #   #  ###  "
    "#   # #   # #   # #   # #   # #     #     #   # #   #   #      #  #  #  #     ## ## ##  # #   # "
    "# ### #   # #   # #     #   # #     #     #     #   #   #      #  # #   #     # # # ##  # #   # "
    "# # # ##### ####  #     #   # ####  ####  # ### #####   #      #  ##    #     # # # # # # #   # "
    "# ### #   # #   # #     #   # #     #     #   # #   #   #      #  # #   #     #   # #  ## #   # "
    "#     #   # #   # #   # #   # #     #     #   # #   #   #   #  #  #  #  #     #   # #  ## #   # "
    " ###  #   # ####   ###  ####  ##### #      ###  #   #  ###   ##   #   # ##### #   # #   #  ###  "
    "                                                                                                "
    "####   ###  ####   #### ##### #   # #   # #   # #   # #   # #####  ###  #      ###    #         "
    "#   # #   # #   # #       #   #   # #   # #   # #   # #   #     #  #     #       #   # #        "
    "#   # #   # #   # #       #   #   # #   # #   #  # #  #   #    #   #     #       #  #   #       "
    "####  #   # ####   ###    #   #   # #   # # # #   #    # #    #    #      #      #              "
    "#     # # # # #       #   #   #   # #   # # # #  # #    #    #     #       #     #              "
    "#     #  #  #  #      #   #   #   #  # #  ## ## #   #   #   #      #       #     #              "
    "#      ## # #   # ####    #    ###    #   #   # #   #   #   #####  ###      #  ###        ##### "
    "                                                                                                "
    " #          #               #         ##        #       #      #  #      ##                     "
    "  #         #               #        #          #                 #       #                     "
    "       ###  ####   ###   ####  ###  ####   #### ####   ##     ##  #  #    #   ## #  ####   ###  "
    "          # #   # #     #   # #   #  #    #   # #   #   #      #  # #     #   # # # #   # #   # "
    "       #### #   # #     #   # #####  #    #   # #   #   #      #  ##      #   # # # #   # #   # "
    "      #   # #   # #   # #   # #      #     #### #   #   #      #  # #     #   # # # #   # #   # "
    "       #### ####   ###   ####  ###   #        # #   #  ###  #  #  #  #   ###  # # # #   #  ###  "
    "                                           ###               ##                                 "
    "                         #                                           ##   #   ##          ##### "
    "                         #                                          #     #     #         #   # "
    "####   #### # ##   #### ####  #   # #   # #   # #   # #   # #####   #     #     #    #  # #   # "
    "#   # #   # ##  # #      #    #   # #   # # # #  # #  #   #    #   #      #      #  # # # #   # "
    "#   # #   # #      ###   #    #   # #   # # # #   #   #   #   #     #     #     #   #  #  #   # "
    "####   #### #         #  #  # #   #  # #  # # #  # #   ####  #      #     #     #         #   # "
    "#         # #     ####    ##   ####   #    # #  #   #     # #####    ##   #   ##          ##### "
    "#         #                                            ###                                      ";
// clang-format on
static_assert(sizeof s_letters == 6 * tool_letter_height * line_length + 1);

void draw_letter(ToolImage& image, char const& character, unsigned int const& left,
                 unsigned int const& top, unsigned int const& scale, ToolColor const& color) {
    bool const is_known = character >= ' ' && character <= '~';
    unsigned int const number = static_cast<unsigned int>((is_known ? character : '\x7F') - ' ');
    char const* const letter = s_letters +
                               number / letters_a_line * tool_letter_height * line_length +
                               number % letters_a_line * tool_letter_advance;
    for (unsigned int y = 0; y < tool_letter_height; ++y) {
        for (unsigned int x = 0; x < tool_letter_advance; ++x) {
            if (letter[y * line_length + x] != ' ') {
                fill(image, left + x * scale, top + y * scale, scale, scale, color);
            }
        }
    }
}

}  // namespace

void draw_text(ToolImage& image, std::string_view const& text, unsigned int const& left,
               unsigned int const& top, unsigned int const& scale, ToolColor const& color) {
    unsigned int x = left;
    for (char const character : text) {
        draw_letter(image, character, x, top, scale, color);
        x += tool_letter_advance * scale;
        if (x >= image.width) {
            return;
        }
    }
}

void fill(ToolImage& image, unsigned int const& left, unsigned int const& top,
          unsigned int const& width, unsigned int const& height, ToolColor const& color) {
    for (unsigned int y = top; y < std::min(top + height, image.height); ++y) {
        for (unsigned int x = left; x < std::min(left + width, image.width); ++x) {
            image.set_pixel(x, y, color);
        }
    }
}
