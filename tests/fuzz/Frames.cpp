#include "fuzz/Frames.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

namespace fuzz {
namespace {

// Grey levels at the methods' thresholds, and multiples of 10, which lose 10 % exactly.
constexpr std::array kGreys = {255, 200, 29,  30,  31,  59,  60,  61,  90,  100,
                               127, 128, 179, 180, 181, 205, 206, 250, 254, 0};

// Rows at the methods' limits of run lengths and windows.
constexpr std::array kLengths = {5,  1,  2,  3,  4,  6,  7,  8,  9,  10, 12, 14, 16,
                                 18, 19, 20, 21, 22, 25, 29, 30, 31, 40, 41, 42};

// Drops from hump to valley around those that make a hump.
constexpr std::array kDrops = {60, 4, 5, 6, 49, 50, 51, 1, 2, 3, 10, 20, 100};

// A frame that is painted on; what lies outside is cut off.
struct Canvas {
    Size size;
    Bytes pixels;

    explicit Canvas(Size s)
        : size{std::max(s.width, 0), std::max(s.height, 0)},
          pixels(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height)) {}

    bool contains(int row, int column) const {
        return row >= 0 && row < size.height && column >= 0 && column < size.width;
    }
    unsigned char& at(int row, int column) {
        return pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(size.width) +
                      static_cast<std::size_t>(column)];
    }
    void set(int row, int column, int grey) {
        if (contains(row, column)) at(row, column) = static_cast<unsigned char>(std::clamp(grey, 0, 255));
    }
    void lighten(int row, int column, int grey) {
        if (contains(row, column)) set(row, column, std::max<int>(grey, at(row, column)));
    }
};

int drawLength(FuzzInput& input) {
    return input.oneIn(4) ? input.range(1, 42) : input.pick(kLengths);
}

int drawGrey(Noise& noise) {
    return noise.oneIn(2) ? noise.range(0, 255) : noise.pick(kGreys);
}

// A first row, often close to the top or bottom edge.
int drawRow(FuzzInput& input, int height) {
    switch (input.range(0, 5)) {
        case 4:
            return input.range(-3, 5);
        case 5:
            return height - input.range(0, 12);
        default:
            return input.range(0, std::max(height - 1, 0));
    }
}

struct Columns {
    int first;
    int end;
};

Columns drawColumns(FuzzInput& input, int width) {
    if (!input.oneIn(3)) return {0, width};
    const int first = input.range(0, std::max(width - 1, 0));
    return {first, std::min(width, first + input.range(1, std::max(width, 1)))};
}

// The grey values of a stripe from top to bottom. One method compares grey levels with the frame's width.
std::vector<int> drawCrossSection(FuzzInput& input, int length, int width) {
    const int peak = input.oneIn(4) && width > 60 ? std::min(width, 255) : drawGrey(input);
    const int shape = input.range(0, 4);
    const int fall = input.range(1, 60);  // grey levels per row
    Noise noise = input.noise();

    std::vector<int> greys(static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) {
        const int fromPeak = std::abs(2 * i - (length - 1)) / 2;
        int grey = peak;
        switch (shape) {
            case 1:  // roof
                grey = peak - fall * fromPeak;
                break;
            case 2:  // bell
                grey = peak * 16 / (16 + fromPeak * fromPeak * fall / 8);
                break;
            case 3:  // ramp
                grey = peak - fall * i / 4;
                break;
            case 4:  // rough
                grey = peak - noise.range(0, fall);
                break;
            default:  // plateau
                break;
        }
        greys[static_cast<std::size_t>(i)] = std::max(grey, 0);
    }
    return greys;
}

void paintStripe(FuzzInput& input, Canvas& canvas, int length) {
    const std::vector<int> greys = drawCrossSection(input, length, canvas.size.width);
    const Columns columns = drawColumns(input, canvas.size.width);
    const int firstRow = drawRow(input, canvas.size.height);
    const int slope = input.oneIn(2) ? input.range(-160, 160) : input.range(-12, 12);  // rows per 64 columns
    const int jitter = input.pick({0, 0, 0, 1, 2, 6});                                 // rows
    const int jump = input.pick({0, 0, 4, 5, 6, 7, -5, -6, 16, -20});                  // rows
    const int jumpEvery = input.range(1, 60);                                          // columns
    const int gap = input.pick({0, 0, 0, 1, 2, 5, 18, 19, 20, 21, 22});                // columns
    const int litBetweenGaps = input.range(1, 130);                                    // columns
    const int missing = input.pick({0, 0, 0, 4, 5, 6, 20});                            // one column in so many
    const int fading = input.range(0, 5);
    Noise noise = input.noise();

    int percent = 100;
    for (int c = columns.first; c < columns.end; ++c) {
        const int i = c - columns.first;
        if (gap > 0 && i % (litBetweenGaps + gap) >= litBetweenGaps) continue;
        if (missing > 0 && noise.oneIn(missing)) continue;
        switch (fading) {
            case 3:  // around 10 % from column to column
                percent = i % 2 == 0 ? 100 : noise.range(89, 91);
                break;
            case 4:
                percent = percent < 20 ? 100 : percent * 9 / 10;
                break;
            case 5:
                percent = noise.range(40, 100);
                break;
            default:
                break;
        }
        const int row = firstRow + slope * i / 64 + i / jumpEvery * jump + noise.range(0, jitter);
        for (std::size_t k = 0; k < greys.size(); ++k)
            canvas.lighten(row + static_cast<int>(k), c, greys[k] * percent / 100);
    }
}

// A line of spots, and now and then two spots instead of one, on either side of the line at about 2 rows from it.
void paintForkedLine(FuzzInput& input, Canvas& canvas) {
    const int firstRow = drawRow(input, canvas.size.height);
    const int slope = input.range(-16, 16);           // rows per 64 columns
    const int forks = input.pick({6, 3, 12});         // one column in so many
    const int spread = input.pick({120, 40, 10, 0});  // grey levels
    Noise noise = input.noise();
    const auto paintSpot = [&](int row, int rows, int column) {
        for (int r = row; r < row + rows; ++r) canvas.lighten(r, column, 200 - noise.range(0, spread));
    };
    for (int c = 0; c < canvas.size.width; ++c) {
        const int row = firstRow + slope * c / 64;
        if (noise.oneIn(forks)) {
            paintSpot(row - 4, noise.range(3, 4), c);
            paintSpot(row + 1, noise.range(3, 4), c);
        } else {
            paintSpot(row - 1, 3, c);
        }
    }
}

void paintBox(FuzzInput& input, Canvas& canvas) {
    const Columns columns = drawColumns(input, canvas.size.width);
    const int firstRow = drawRow(input, canvas.size.height);
    const int length = drawLength(input);
    const int grey = drawGrey(input);
    for (int c = columns.first; c < columns.end; ++c) {
        for (int r = firstRow; r < firstRow + length; ++r) canvas.set(r, c, grey);
    }
}

// A bright area that hangs from the top edge, with a ragged lower end.
void paintBlob(FuzzInput& input, Canvas& canvas) {
    Columns columns = drawColumns(input, canvas.size.width);
    int length = input.oneIn(2) ? input.range(1, 120) : input.pick({30, 29, 31, 32});
    int ragged = input.pick({0, 1, 2, 20});
    if (input.oneIn(3)) {
        // About 100 pixels.
        columns.end = std::min(columns.first + input.range(2, 3), canvas.size.width);
        length = columns.end - columns.first == 2 ? 50 : 34;
        ragged = 1;
    }
    const int grey = input.pick({255, 181, 180, 182, 250});
    Noise noise = input.noise();
    for (int c = columns.first; c < columns.end; ++c) {
        const int end = length + noise.range(-ragged, ragged);
        for (int r = 0; r < end; ++r) canvas.set(r, c, grey);
    }
}

// Humps with valleys between them, one behind the other down a column.
void paintHumps(FuzzInput& input, Canvas& canvas) {
    const Columns columns = drawColumns(input, canvas.size.width);
    const int firstRow = drawRow(input, canvas.size.height);
    const int humps = input.range(1, 6);
    const int level = input.range(20, 200);  // of the valleys
    const int longestFlank = input.range(1, 8);
    const bool alike = input.oneIn(2);  // every column
    Noise noise = input.noise();
    const Noise start = noise;

    for (int c = columns.first; c < columns.end; ++c) {
        if (alike) noise = start;
        int row = firstRow;
        int grey = level;
        for (int hump = 0; hump < humps; ++hump) {
            const int top = grey + noise.pick(kDrops);
            for (const int goal : {top, top - noise.pick(kDrops)}) {
                const int steps = noise.range(1, longestFlank);
                const int from = grey;
                for (int i = 1; i <= steps; ++i) {
                    grey = from + (goal - from) * i / steps;
                    canvas.set(row++, c, grey);
                }
                for (int flat = noise.range(0, 2); flat > 0; --flat) canvas.set(row++, c, grey);
            }
            grey = std::clamp(grey, 0, 255);
        }
    }
}

// Columns of unrelated runs with short gaps.
void paintRuns(FuzzInput& input, Canvas& canvas) {
    const Columns columns = drawColumns(input, canvas.size.width);
    const int longestGap = input.pick({6, 1, 2, 30});
    const int longestRun = input.pick({8, 3, 24, 50});
    const bool flat = input.oneIn(2);
    Noise noise = input.noise();
    for (int c = columns.first; c < columns.end; ++c) {
        int row = noise.range(-3, longestGap);
        for (int run = noise.range(0, 6); run > 0; --run) {
            const int grey = noise.oneIn(6) ? canvas.size.width : drawGrey(noise);
            for (int i = noise.oneIn(2) ? noise.range(1, longestRun) : noise.pick(kLengths); i > 0; --i)
                canvas.set(row++, c, flat ? grey : grey - noise.range(0, 8));
            row += noise.range(1, longestGap);
        }
    }
}

void paintSpeckles(FuzzInput& input, Canvas& canvas) {
    const Columns columns = drawColumns(input, canvas.size.width);
    const int density = input.pick({4, 1, 2, 16, 64, 300});  // one pixel in so many
    const bool atThresholds = input.oneIn(2);
    Noise noise = input.noise();
    for (int r = 0; r < canvas.size.height; ++r) {
        for (int c = columns.first; c < columns.end; ++c) {
            if (noise.oneIn(density)) canvas.set(r, c, atThresholds ? noise.pick(kGreys) : noise.range(0, 255));
        }
    }
}

void addNoise(FuzzInput& input, Canvas& canvas) {
    const int amplitude = input.pick({1, 3, 8, 40});  // grey levels
    Noise noise = input.noise();
    for (unsigned char& pixel : canvas.pixels)
        pixel = static_cast<unsigned char>(std::clamp(pixel + noise.range(-amplitude, amplitude), 0, 255));
}

}  // namespace

Size drawSize(FuzzInput& input) {
    const int kind = input.range(0, 31);
    if (kind < 3) return {input.range(0, 8), input.range(0, 8)};
    if (kind < 6) return {input.range(2, 6), input.range(9, 60)};
    if (kind < 16) return {input.range(1, 40), input.range(1, 60)};
    if (kind < 22) return {input.range(1, 100), input.range(1, 130)};
    if (kind < 28) return {input.range(100, 260), input.range(5, 60)};
    switch (kind) {
        case 28:
            return {input.range(1, 200), input.range(1, 260)};
        case 29:
            return {input.range(500, 1300), input.range(1, 40)};
        case 30:
            return {input.range(1, 8), input.range(100, 700)};
        default:
            return {input.range(-3, 6), input.pick({-1, 0, 1, 2, 40, -2147483647 - 1})};
    }
}

int drawGrey(FuzzInput& input) {
    return input.oneIn(3) ? input.range(0, 255) : input.pick(kGreys);
}

Bytes drawFrame(FuzzInput& input, Size size) {
    Canvas canvas(size);
    if (input.oneIn(6)) {
        paintRuns(input, canvas);
        return canvas.pixels;
    }
    if (input.oneIn(4))
        std::fill(canvas.pixels.begin(), canvas.pixels.end(), static_cast<unsigned char>(drawGrey(input)));
    for (int features = input.range(0, 7); features > 0; --features) {
        switch (input.range(0, 15)) {
            case 8:
            case 9:
                paintBox(input, canvas);
                break;
            case 10:
                paintBlob(input, canvas);
                break;
            case 11:
            case 12:
                paintHumps(input, canvas);
                break;
            case 13:
                paintRuns(input, canvas);
                break;
            case 14:
                paintSpeckles(input, canvas);
                break;
            case 15:
                addNoise(input, canvas);
                break;
            default:
                paintStripe(input, canvas, drawLength(input));
                break;
        }
    }
    return canvas.pixels;
}

Bytes drawLines(FuzzInput& input, Size size) {
    Canvas canvas(size);
    if (input.oneIn(2)) paintForkedLine(input, canvas);
    for (int lines = input.range(1, 5); lines > 0; --lines) paintStripe(input, canvas, input.range(1, 5));
    if (input.oneIn(4)) paintSpeckles(input, canvas);
    if (input.oneIn(2)) addNoise(input, canvas);
    return canvas.pixels;
}

Bytes drawBlob(FuzzInput& input, Size size) {
    Canvas canvas(size);
    paintBlob(input, canvas);
    paintSpeckles(input, canvas);
    return canvas.pixels;
}

Bytes drawVariation(FuzzInput& input, const Bytes& frame) {
    const int percent = input.pick({100, 99, 101, 80, 50, 150});
    const int density = input.pick({1000, 50, 10, 2});  // one pixel in so many is replaced
    const int amplitude = input.pick({0, 1, 2, 30});    // grey levels
    Noise noise = input.noise();
    Bytes variation = frame;
    for (unsigned char& pixel : variation) {
        int grey = pixel * percent / 100 + noise.range(-amplitude, amplitude);
        if (noise.oneIn(density)) grey = drawGrey(noise);
        pixel = static_cast<unsigned char>(std::clamp(grey, 0, 255));
    }
    return variation;
}

Bytes drawMask(FuzzInput& input, std::size_t columns) {
    const bool common = input.oneIn(2);
    const int density = input.pick({1000, 2, 8});  // one entry in so many is the other way
    Noise noise = input.noise();
    Bytes mask(columns);
    for (unsigned char& entry : mask) entry = common != noise.oneIn(density) ? 1 : 0;
    return mask;
}

}  // namespace fuzz
