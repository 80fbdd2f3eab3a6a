#include "worksheet/CellName.h"

#include "base/Ascii.h"

#include <fmt/format.h>

namespace tavix::worksheet {

namespace {

constexpr std::size_t kMaxLetters = 3;
constexpr std::size_t kMaxDigits = 12;

/// 1 to 26; 0 if it is not a letter.
int letterNumber(char character) {
    return isAsciiLetter(character) ? asciiUpper(character) - 'A' + 1 : 0;
}

} // namespace

Result<Cell> parseCellName(std::string_view name) {
    const Error noCell{fmt::format("\"{}\" is not the name of a cell", name.substr(0, 40))};
    std::size_t letters = 0;
    int column = 0;
    while (letters < name.size() && letterNumber(name[letters]) != 0) {
        if (letters == kMaxLetters)
            return noCell;
        column = column * 26 + letterNumber(name[letters++]);
    }
    const std::string_view digits = name.substr(letters);
    if (letters == 0 || digits.empty() || digits.size() > kMaxDigits)
        return noCell;
    std::int64_t row = 0;
    for (char digit : digits) {
        if (digit < '0' || digit > '9')
            return noCell;
        row = row * 10 + (digit - '0');
    }
    if (row == 0)
        return noCell;
    return Cell{row - 1, column - 1};
}

std::string columnName(int column) {
    std::string name;
    for (int rest = column + 1; rest > 0; rest = (rest - 1) / 26)
        name.insert(name.begin(), static_cast<char>('A' + (rest - 1) % 26));
    return name;
}

std::string cellName(const Cell& cell) {
    return columnName(cell.column) + std::to_string(cell.row + 1);
}

} // namespace tavix::worksheet
