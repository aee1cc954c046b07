#include <tools/qzpoly/pictures/texture_statement.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

constexpr std::string_view blanks = " \t\v\f";

struct Option {
    std::string_view name;
    unsigned int word_count;
    bool takes_numbers;  // up to so many
};
constexpr Option options[] = {
    {"-s", 3, true},       {"-o", 3, true},           {"-t", 3, true},        {"-mm", 2, false},
    {"-blendu", 1, false}, {"-blendv", 1, false},     {"-bm", 1, false},      {"-boost", 1, false},
    {"-cc", 1, false},     {"-clamp", 1, false},      {"-imfchan", 1, false}, {"-texres", 1, false},
    {"-type", 1, false},   {"-colorspace", 1, false},
};

Option const* find_option(std::string_view const& name) {
    auto const* const found =
        std::find_if(std::begin(options), std::end(options),
                     [&](Option const& option) { return option.name == name; });
    return found == std::end(options) ? nullptr : found;
}

std::string_view get_word(std::string_view const& text) {
    return text.substr(0, text.find_first_of(blanks));
}

void drop_word(std::string_view& text) {
    text.remove_prefix(get_word(text).size());
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
}

bool read_number(std::string_view const& word, float& number) {
    float read = 0;
    char const* const end = word.data() + word.size();
    auto const [stop, error] = std::from_chars(word.data() + word.starts_with('+'), end, read);
    bool const is_number = error == std::errc() && stop == end && std::isfinite(read);
    number = is_number ? read : number;
    return is_number;
}

}  // namespace

ToolTextureStatement read_texture_statement(std::string_view text) {
    ToolTextureStatement statement;
    while (Option const* const option = find_option(get_word(text))) {
        drop_word(text);
        float const usual = option->name == "-s" ? 1.0f : 0.0f;
        float numbers[] = {usual, usual, usual};
        for (unsigned int i = 0; i < option->word_count; ++i) {
            if (option->takes_numbers && !read_number(get_word(text), numbers[i])) {
                break;
            }
            drop_word(text);
        }
        if (option->name == "-s") {
            statement.scale = {numbers[0], numbers[1]};
        } else if (option->name == "-o") {
            statement.offset = {numbers[0], numbers[1]};
        }
    }
    statement.path = text;
    return statement;
}
