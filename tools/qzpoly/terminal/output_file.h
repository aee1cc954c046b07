#pragma once

#include <tools/qzpoly/terminal/messages.h>

#include <cstddef>
#include <string>

// Writes a file, the last thing that a subcommand does: all of it, or none. It is written beside
// its place and then put there, so that a file of that name stays as it was when something fails;
// false after the reason has been shown. What is no regular file, as a pipe or a device, is written
// to where it is, and so is a file in a folder that is not ours.
bool write_file(std::string const& path, void const* bytes, std::size_t const& size,
                ToolMessages& messages);
