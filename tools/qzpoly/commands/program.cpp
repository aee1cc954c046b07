#include <tools/qzpoly/commands/program.h>

#include <tools/qzpoly/commands/commands.h>
#include <tools/qzpoly/terminal/numbers.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>

namespace {

constexpr void (*s_commands[])(CLI::App& app, ToolSession& session) = {
    &add_render_command,  &add_turntable_command, &add_sheet_command, &add_check_command,
    &add_info_command,    &add_convert_command,   &add_pack_command,  &add_dump_command,
    &add_visible_command, &add_probe_command,     &add_stats_command, &add_verify_command,
};

// As usual, but for what repeats the name of a value: its type once more, and how many words it
// has.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_option_opts(CLI::Option const* option) const override {
        std::string text = CLI::Formatter::make_option_opts(option);
        std::string const word_count = make_text(" x ", option->get_expected());
        for (std::string_view const repeated :
             {std::string_view(":UINT"), std::string_view(":FLOAT"),
              std::string_view(word_count)}) {
            std::size_t const place = text.find(repeated);
            text.erase(std::min(place, text.size()), repeated.size());
        }
        return text;
    }
};

// What is wrong with the command line, and where to look.
std::string tell_fault(CLI::App const& app, CLI::ParseError const& fault) {
    std::vector<std::string> const unknown = app.remaining();
    std::string const reason =
        unknown.empty()
            ? fault.what()
            : (unknown[0][0] == '-' ? "there is no option " : "there is no subcommand ") +
                  unknown[0];
    bool const has_subcommand = unknown.empty() && !app.get_subcommands().empty();
    return reason + "; see qzpoly " +
           (has_subcommand ? app.get_subcommands()[0]->get_name() + " --help" : "--help");
}

}  // namespace

int run_program(int const& argument_count, char const* const* arguments) {
    ToolSession session;
    CLI::App app("Looks at polygon meshes: Wavefront OBJ files and LightWave objects", "qzpoly");
    app.formatter(std::make_shared<HelpFormatter>());
    app.require_subcommand(1);
    app.set_version_flag("--version", "qzpoly " QZPOLY_VERSION);
    app.footer("Exit status: 0 done, 1 failed, 2 wrong usage, 130 interrupted.");
    for (auto const add_command : s_commands) {
        add_command(app, session);
    }
    try {
        parse_arguments(app, {arguments + 1, arguments + argument_count});
    } catch (CLI::Success const& help) {
        app.exit(help);
    } catch (CLI::ParseError const& fault) {
        session.messages.fail(tell_fault(app, fault));
        return tool_wrong_usage;
    } catch (std::exception const& fault) {
        return session.messages.fail(fault.what());
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        return session.messages.fail("cannot write to standard output");
    }
    return session.status != tool_success && is_interrupted() ? ToolMessages::tell_interrupt()
                                                              : session.status;
}
