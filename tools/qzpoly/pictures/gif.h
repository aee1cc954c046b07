#pragma once

#include <tools/qzpoly/pictures/image.h>

#include <memory>
#include <string>
#include <vector>

// An animated picture in the making: GIF, 256 colors a frame, endless.
class ToolGif {
  public:
    // `delay`: of a frame, in hundredths of a second. Width and height up to 65535.
    ToolGif(unsigned int const& width, unsigned int const& height, unsigned int const& delay);
    ~ToolGif();
    ToolGif(ToolGif const&) = delete;
    ToolGif& operator=(ToolGif const&) = delete;

    // All frames are of the size given. Faults show at `finish`.
    void add_frame(ToolImage const& image);
    // The bytes of the file; false when something went wrong. Call once, at the end.
    bool finish(std::vector<unsigned char>& bytes);

  private:
    struct State;
    std::unique_ptr<State> m_state;
};
