#include <tools/qzpoly/pictures/gif.h>

#include <tools/qzpoly/pictures/palette.h>

#include <gif_lib.h>

struct ToolGif::State {
    GifFileType* gif = nullptr;
    unsigned int delay = 0;
    bool is_good = false;
    std::vector<unsigned char> bytes;
};

namespace {

constexpr int color_bits = 8;

int take_bytes(GifFileType* gif, GifByteType const* bytes, int count) {
    auto& all = *static_cast<std::vector<unsigned char>*>(gif->UserData);
    all.insert(all.end(), bytes, bytes + count);
    return count;
}

// Repeats without an end.
bool put_loop(GifFileType* gif) {
    constexpr unsigned char endless[] = {1, 0, 0};
    return EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK &&
           EGifPutExtensionBlock(gif, 11, "NETSCAPE2.0") == GIF_OK &&
           EGifPutExtensionBlock(gif, sizeof endless, endless) == GIF_OK &&
           EGifPutExtensionTrailer(gif) == GIF_OK;
}

bool put_delay(GifFileType* gif, unsigned int const& delay) {
    GraphicsControlBlock const control = {DISPOSE_DO_NOT, false, static_cast<int>(delay),
                                          NO_TRANSPARENT_COLOR};
    GifByteType bytes[4];
    std::size_t const count = EGifGCBToExtension(&control, bytes);
    return EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(count), bytes) == GIF_OK;
}

bool put_pixels(GifFileType* gif, ToolImage const& image, ToolPalette const& palette,
                std::vector<unsigned char>& numbers) {
    GifColorType colors[tool_palette_size];
    for (unsigned int i = 0; i < tool_palette_size; ++i) {
        colors[i] = {palette.colors[i][0], palette.colors[i][1], palette.colors[i][2]};
    }
    ColorMapObject* const map = GifMakeMapObject(1 << color_bits, colors);
    int const width = static_cast<int>(image.width);
    int const height = static_cast<int>(image.height);
    bool is_good =
        map != nullptr && EGifPutImageDesc(gif, 0, 0, width, height, false, map) == GIF_OK;
    GifFreeMapObject(map);
    for (unsigned int y = 0; is_good && y < image.height; ++y) {
        is_good = EGifPutLine(gif, &numbers[std::size_t(y) * image.width], width) == GIF_OK;
    }
    return is_good;
}

}  // namespace

ToolGif::ToolGif(unsigned int const& width, unsigned int const& height, unsigned int const& delay)
    : m_state(std::make_unique<State>()) {
    m_state->delay = delay;
    m_state->gif = EGifOpen(&m_state->bytes, &take_bytes, nullptr);
    if (m_state->gif != nullptr) {
        EGifSetGifVersion(m_state->gif, true);
        m_state->is_good =
            EGifPutScreenDesc(m_state->gif, static_cast<int>(width), static_cast<int>(height),
                              color_bits, 0, nullptr) == GIF_OK &&
            put_loop(m_state->gif);
    }
}

ToolGif::~ToolGif() {
    if (m_state->gif != nullptr) {
        EGifCloseFile(m_state->gif, nullptr);
    }
}

void ToolGif::add_frame(ToolImage const& image) {
    std::vector<unsigned char> numbers;
    ToolPalette const palette = choose_palette(image, numbers);
    m_state->is_good = m_state->is_good && put_delay(m_state->gif, m_state->delay) &&
                       put_pixels(m_state->gif, image, palette, numbers);
}

bool ToolGif::finish(std::vector<unsigned char>& bytes) {
    bool const is_closed =
        m_state->gif != nullptr && EGifCloseFile(m_state->gif, nullptr) == GIF_OK;
    m_state->gif = nullptr;
    bytes = std::move(m_state->bytes);
    return m_state->is_good && is_closed;
}
