#pragma once

#include <chrono>

// Runs from when it is made.
class ToolStopwatch {
  public:
    double get_seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
    }

  private:
    std::chrono::steady_clock::time_point const m_start = std::chrono::steady_clock::now();
};
