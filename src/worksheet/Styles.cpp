#include "worksheet/Styles.h"

#include "worksheet/Records.h"

#include <string_view>

namespace tavix::worksheet {

namespace {

constexpr std::uint32_t kFontHeight = 200; ///< twentieths of a point
constexpr std::uint32_t kAutomaticColor = 0x7FFF;
constexpr std::string_view kFontName = "Arial";
enum Weight : std::uint32_t { kNormal = 400, kBold = 700 };

/// Fonts 0 to 3 are the plain one; number 4 does not exist in this format, so the bold one is number 5.
constexpr int kPlainFonts = 4;
constexpr std::uint32_t kPlainFont = 0;
constexpr std::uint32_t kBoldFont = 5;

/// Format numbers that every reader knows.
enum Format : std::uint32_t { kGeneral = 0, kDigits = 1, kAsText = 49 };

constexpr int kStyleXfs = 15;
constexpr std::uint32_t kStyleXf = 0xFFF5; ///< a style that is locked and has no parent
constexpr std::uint32_t kCellXf = 0x0001;  ///< a cell that is locked and whose parent is style 0
constexpr std::uint32_t kBottom = 0x20;
constexpr std::uint32_t kWrap = 0x08;
/// The groups of attributes that a cell has itself instead of its style.
enum Own : std::uint32_t { kNothing = 0, kOwnFormat = 0x04, kOwnFont = 0x08, kOwnAlignment = 0x10 };
constexpr std::uint32_t kNoOwnInStyle = 0xF4;

void putFont(std::string& out, Weight weight) {
    putHeader(out, RecordId::Font, 16 + kFontName.size());
    put16(out, kFontHeight);
    put16(out, 0); // neither italic nor struck out
    put16(out, kAutomaticColor);
    put16(out, weight);
    put16(out, 0); // on the line
    put32(out, 0); // no underline, no family, ANSI, reserved
    put8(out, static_cast<std::uint32_t>(kFontName.size()));
    put8(out, 0); // one byte a character
    out += kFontName;
}

void putXf(std::string& out, std::uint32_t font, std::uint32_t format, std::uint32_t kind, std::uint32_t alignment,
           std::uint32_t own) {
    putHeader(out, RecordId::Xf, 20);
    put16(out, font);
    put16(out, format);
    put16(out, kind);
    put8(out, alignment);
    put8(out, 0); // not rotated
    put8(out, 0); // not indented
    put8(out, own);
    put32(out, 0); // no borders
    put32(out, 0);
    put16(out, 0x20C0); // no fill, default colours
}

} // namespace

void putStyles(std::string& out) {
    for (int font = 0; font < kPlainFonts; ++font)
        putFont(out, kNormal);
    putFont(out, kBold);

    for (int style = 0; style < kStyleXfs; ++style)
        putXf(out, kPlainFont, kGeneral, kStyleXf, kBottom, style == 0 ? kNothing : kNoOwnInStyle);
    // In the order of enum Style.
    putXf(out, kPlainFont, kGeneral, kCellXf, kBottom, kNothing);
    putXf(out, kPlainFont, kAsText, kCellXf, kBottom, kOwnFormat);
    putXf(out, kPlainFont, kGeneral, kCellXf, kBottom | kWrap, kOwnAlignment);
    putXf(out, kBoldFont, kGeneral, kCellXf, kBottom, kOwnFont);
    putXf(out, kPlainFont, kDigits, kCellXf, kBottom, kOwnFormat);

    putHeader(out, RecordId::Style, 4);
    put16(out, 0x8000); // XF 0 is a built-in style,
    put8(out, 0);       // "Normal"
    put8(out, 0xFF);    // without levels
}

} // namespace tavix::worksheet
