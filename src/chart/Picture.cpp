#include "chart/Picture.h"

#include "base/Characters.h"

namespace tavix::chart {

Canvas plainCanvas(double width, double height) {
    constexpr double kCharacter = 7;
    return {width, height, 16,
            [](std::string_view text) { return kCharacter * static_cast<double>(countCharacters(text)); }};
}

std::string fittedText(const Canvas& canvas, std::string_view text, double width) {
    // A very long text needs no exact measure.
    constexpr std::size_t kMostBytes = 400;
    const std::string_view begin = cutToBytes(text, kMostBytes);
    if (begin.size() == text.size() && canvas.textWidth(text) <= width)
        return std::string(text);
    std::size_t fits = 0;
    std::size_t tooLong = countCharacters(begin) + 1;
    const auto cut = [&](std::size_t characters) {
        return std::string(begin.substr(0, offsetOfCharacter(begin, characters))) + "…";
    };
    while (fits + 1 < tooLong) {
        const std::size_t middle = (fits + tooLong) / 2;
        (canvas.textWidth(cut(middle)) <= width ? fits : tooLong) = middle;
    }
    return cut(fits);
}

} // namespace tavix::chart
