#pragma once

#include <tools/qzpoly/terminal/messages.h>

namespace CLI {
class App;
}  // namespace CLI

// What a subcommand gets from the program and leaves to it.
struct ToolSession {
    ToolMessages messages;
    int status = tool_success;
};

// Each adds one subcommand, which runs when it was chosen. A new one is a file of its own and a row
// in program.cpp. `session` must outlive `app`.
void add_render_command(CLI::App& app, ToolSession& session);
void add_visible_command(CLI::App& app, ToolSession& session);
void add_info_command(CLI::App& app, ToolSession& session);
void add_turntable_command(CLI::App& app, ToolSession& session);
void add_sheet_command(CLI::App& app, ToolSession& session);
void add_convert_command(CLI::App& app, ToolSession& session);
void add_check_command(CLI::App& app, ToolSession& session);
void add_probe_command(CLI::App& app, ToolSession& session);
void add_stats_command(CLI::App& app, ToolSession& session);
void add_dump_command(CLI::App& app, ToolSession& session);
void add_pack_command(CLI::App& app, ToolSession& session);
void add_verify_command(CLI::App& app, ToolSession& session);
