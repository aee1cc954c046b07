#pragma once

#include <cstddef>
#include <cstdint>

// What a fuzzer is: a function that takes any bytes and returns 0, or ends the program at a fault.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size);
