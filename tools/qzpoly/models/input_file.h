#pragma once

#include <cstddef>
#include <string>

constexpr std::size_t tool_no_size_limit = ~std::size_t(0);

// Reads a regular file whole, unless it is larger. Returns why it could not; empty if it could.
std::string read_input_file(std::string const& path, std::size_t const& largest_size,
                            std::string& bytes);
// The same, but of a larger file its first bytes.
std::string read_input_file_start(std::string const& path, std::size_t const& most,
                                  std::string& bytes);
