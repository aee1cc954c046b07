#include <tools/qzpoly/pictures/palette.h>

#include <algorithm>

namespace {

constexpr unsigned int level_bits = 5;  // of a channel, in the count of colors
constexpr unsigned int cell_count = 1u << (3 * level_bits);
constexpr int level_size = 256 >> level_bits;

// Thresholds that spread a level over a square of pixels.
constexpr int pattern[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
constexpr int pattern_count = 16;

struct Cell {
    unsigned int number;  // 5 bits each of red, green, blue
    unsigned int count = 0;
    unsigned long long sums[3] = {0, 0, 0};  // of the colors as they are
};

unsigned int get_level(unsigned int const& cell, unsigned int const& channel) {
    return cell >> (level_bits * (2 - channel)) & ((1u << level_bits) - 1);
}

unsigned int get_cell(unsigned char const* pixel, unsigned int const& x, unsigned int const& y) {
    int const shift =
        (pattern[y % 4][x % 4] * 2 + 1 - pattern_count) * level_size / (2 * pattern_count);
    unsigned int cell = 0;
    for (unsigned int channel = 0; channel < 3; ++channel) {
        int const value = std::clamp(pixel[channel] + shift, 0, 255);
        cell = cell << level_bits | static_cast<unsigned int>(value / level_size);
    }
    return cell;
}

// Cells that will share a color.
struct Box {
    Cell* begin;
    Cell* end;
    unsigned int count = 0;
    unsigned int widest = 0;  // channel
    unsigned int width = 0;   // there, in levels

    Box(Cell* first, Cell* last) : begin(first), end(last) {
        for (Cell const* cell = begin; cell != end; ++cell) {
            count += cell->count;
        }
        for (unsigned int channel = 0; channel < 3; ++channel) {
            unsigned int low = ~0u;
            unsigned int high = 0;
            for (Cell const* cell = begin; cell != end; ++cell) {
                low = std::min(low, get_level(cell->number, channel));
                high = std::max(high, get_level(cell->number, channel));
            }
            if (begin != end && high - low > width) {
                width = high - low;
                widest = channel;
            }
        }
    }

    // Large differences between many pixels are seen most.
    unsigned long long get_weight() const {
        return static_cast<unsigned long long>(count) * width * width;
    }

    // Where half of the pixels lie on either side; never at an end.
    Cell* find_middle() {
        std::sort(begin, end, [&](Cell const& a, Cell const& b) {
            unsigned int const level_a = get_level(a.number, widest);
            unsigned int const level_b = get_level(b.number, widest);
            return level_a != level_b ? level_a < level_b : a.number < b.number;
        });
        unsigned int passed = 0;
        Cell* middle = begin;
        while (middle < end - 2 && (passed += middle->count) < count / 2) {
            ++middle;
        }
        return middle + 1;
    }
};

std::vector<Cell> count_cells(ToolImage const& image, std::vector<unsigned int>& cell_of_pixels) {
    std::vector<Cell> cells(cell_count);
    for (unsigned int y = 0; y < image.height; ++y) {
        for (unsigned int x = 0; x < image.width; ++x) {
            std::size_t const place = std::size_t(y) * image.width + x;
            unsigned char const* const pixel = &image.bytes[3 * place];
            cell_of_pixels[place] = get_cell(pixel, x, y);
            Cell& cell = cells[cell_of_pixels[place]];
            ++cell.count;
            for (unsigned int channel = 0; channel < 3; ++channel) {
                cell.sums[channel] += pixel[channel];
            }
        }
    }
    for (unsigned int i = 0; i < cell_count; ++i) {
        cells[i].number = i;
    }
    std::erase_if(cells, [](Cell const& cell) { return cell.count == 0; });
    return cells;
}

std::vector<Box> cut_boxes(std::vector<Cell>& cells) {
    std::vector<Box> boxes = {Box(cells.data(), cells.data() + cells.size())};
    while (boxes.size() < tool_palette_size) {
        auto const box =
            std::max_element(boxes.begin(), boxes.end(), [](Box const& a, Box const& b) {
                return a.get_weight() < b.get_weight();
            });
        if (box->width == 0) {
            break;
        }
        Cell* const middle = box->find_middle();
        Box const behind(middle, box->end);
        *box = Box(box->begin, middle);
        boxes.push_back(behind);
    }
    return boxes;
}

std::array<unsigned char, 3> get_mean(Box const& box) {
    std::array<unsigned char, 3> mean{};
    for (unsigned int channel = 0; channel < 3; ++channel) {
        unsigned long long sum = 0;
        for (Cell const* cell = box.begin; cell != box.end; ++cell) {
            sum += cell->sums[channel];
        }
        mean[channel] = static_cast<unsigned char>((sum + box.count / 2) / std::max(box.count, 1u));
    }
    return mean;
}

}  // namespace

ToolPalette choose_palette(ToolImage const& image, std::vector<unsigned char>& numbers) {
    std::vector<unsigned int> cell_of_pixels(std::size_t(image.width) * image.height);
    std::vector<Cell> cells = count_cells(image, cell_of_pixels);
    std::vector<Box> const boxes = cut_boxes(cells);
    ToolPalette palette;
    std::vector<unsigned char> number_of_cells(cell_count);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        palette.colors[i] = get_mean(boxes[i]);
        for (Cell const* cell = boxes[i].begin; cell != boxes[i].end; ++cell) {
            number_of_cells[cell->number] = static_cast<unsigned char>(i);
        }
    }
    numbers.resize(cell_of_pixels.size());
    std::transform(cell_of_pixels.begin(), cell_of_pixels.end(), numbers.begin(),
                   [&](unsigned int const& cell) { return number_of_cells[cell]; });
    return palette;
}
