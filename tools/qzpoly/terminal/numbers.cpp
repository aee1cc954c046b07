#include <tools/qzpoly/terminal/numbers.h>

#include <algorithm>
#include <cmath>

std::string check_finite(std::string const& text) {
    double value = 0;
    bool const is_number = CLI::detail::lexical_cast(text, value);
    return is_number && std::isfinite(value) ? std::string() : "not a finite number: " + text;
}

namespace {

// CLI11 would take whatever follows for the number.
void add_usual_number(std::vector<std::string>& arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        double value = 0;
        bool const has_number =
            i + 1 < arguments.size() && CLI::detail::lexical_cast(arguments[i + 1], value);
        if (arguments[i] == "--ambient-occlusion" && !has_number) {
            arguments[i] += "=8";
        }
    }
}

}  // namespace

// CLI11 takes what begins with a minus for an option, unless a digit follows.
void parse_arguments(CLI::App& app, std::vector<std::string> arguments) {
    for (std::string& argument : arguments) {
        double value = 0;
        if (argument.rfind('-', 0) != 0 || !CLI::detail::lexical_cast(argument, value)) {
            continue;
        }
        if (!std::isfinite(value)) {
            argument = "-1e999";
        } else if (argument[1] == '.') {
            argument.insert(1, 1, '0');
        }
    }
    add_usual_number(arguments);
    std::reverse(arguments.begin(), arguments.end());  // as CLI11 wants them
    app.parse(std::move(arguments));
}
