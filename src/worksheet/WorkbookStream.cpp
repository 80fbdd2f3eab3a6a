#include "worksheet/WorkbookStream.h"

#include "worksheet/CellText.h"
#include "worksheet/Records.h"
#include "worksheet/Styles.h"

#include <algorithm>

namespace tavix::worksheet {

namespace {

constexpr std::uint32_t kVersion = 0x0600;
constexpr std::uint32_t kUtf16CodePage = 1200;
constexpr double kUsualWidth = 8.43;
/// Space on both sides of a text, in digits.
constexpr double kMargin = 1.5;

enum SubstreamKind : std::uint32_t { Globals = 0x0005, Worksheet = 0x0010 };

void putStart(std::string& out, SubstreamKind kind) {
    putHeader(out, RecordId::Bof, 16);
    put16(out, kVersion);
    put16(out, kind);
    put16(out, 0x0DBB); // a build and a year of it that readers take for this version
    put16(out, 0x07CC);
    put32(out, 0x000000C1);
    put32(out, kVersion >> 8u);
}

void putEnd(std::string& out) {
    putHeader(out, RecordId::Eof, 0);
}

void putWindow(std::string& out) {
    putHeader(out, RecordId::Window1, 18);
    put16(out, 0x0168); // place and size on the screen, twentieths of a point
    put16(out, 0x010E);
    put16(out, 0x3A5C);
    put16(out, 0x23BE);
    put16(out, 0x0038); // scroll bars and sheet tabs
    put16(out, 0);      // the first sheet is shown
    put16(out, 0);
    put16(out, 1);   // one is selected
    put16(out, 600); // thousandths of the window's width for the tabs
}

void putSheetEntry(std::string& out, const std::string& name, std::int64_t position) {
    CellText text;
    text.assign(name);
    const std::size_t bytes = text.length() * (text.wide() ? 2 : 1);
    putHeader(out, RecordId::BoundSheet8, 8 + bytes);
    put32(out, static_cast<std::uint32_t>(position));
    put16(out, 0); // a visible worksheet
    put8(out, static_cast<std::uint32_t>(text.length()));
    put8(out, text.wide() ? 1 : 0);
    if (text.wide())
        putUnits(out, text.units());
    else
        out += text.narrow();
}

/// The records before the shared strings. Their length does not depend on the positions.
std::string globals(const std::vector<SheetImage>& sheets, const std::vector<std::int64_t>& positions) {
    std::string out;
    putStart(out, Globals);
    putHeader(out, RecordId::CodePage, 2);
    put16(out, kUtf16CodePage);
    putWindow(out);
    putHeader(out, RecordId::Date1904, 2);
    put16(out, 0);
    putStyles(out);
    for (std::size_t index = 0; index < sheets.size(); ++index)
        putSheetEntry(out, sheets[index].part->name(), positions[index]);
    return out;
}

void putColumnWidths(std::string& out, const ColumnWidths& widths) {
    for (std::size_t column = 0; column < widths.set.size(); ++column) {
        const double wanted =
            widths.set[column] >= 0 ? widths.set[column] : std::max(kUsualWidth, widths.content[column] + kMargin);
        if (wanted == kUsualWidth)
            continue;
        putHeader(out, RecordId::ColInfo, 12);
        put16(out, static_cast<std::uint32_t>(column));
        put16(out, static_cast<std::uint32_t>(column));
        put16(out, static_cast<std::uint32_t>(wanted * 256));
        put16(out, static_cast<std::uint32_t>(Style::Plain));
        put16(out, 2); // a width that somebody chose
        put16(out, 0);
    }
}

std::string beforeCells(const SheetImage& sheet) {
    std::string out;
    putStart(out, Worksheet);
    putColumnWidths(out, *sheet.widths);
    putHeader(out, RecordId::Dimensions, 14);
    put32(out, sheet.extent.firstRow);
    put32(out, sheet.extent.endRow);
    put16(out, sheet.extent.firstColumn);
    put16(out, sheet.extent.endColumn);
    put16(out, 0);
    return out;
}

/// Keeps the first row visible: a pane below it, in which the cell A2 is selected.
void putFrozenFirstRow(std::string& out) {
    constexpr std::uint32_t kLowerLeft = 2;
    putHeader(out, RecordId::Pane, 10);
    put16(out, 0); // no column
    put16(out, 1); // one row
    put16(out, 1); // then row 2
    put16(out, 0);
    put16(out, kLowerLeft);
    putHeader(out, RecordId::Selection, 15);
    put8(out, kLowerLeft);
    put16(out, 1); // A2
    put16(out, 0);
    put16(out, 0); // the first of
    put16(out, 1); // one range:
    put16(out, 1); // its rows
    put16(out, 1);
    put8(out, 0); // and columns
    put8(out, 0);
}

std::string afterCells(const SheetImage& sheet, bool first) {
    // Grid lines, headings, zeros, default colours, outline symbols.
    constexpr std::uint32_t kUsual = 0x00B6;
    constexpr std::uint32_t kSelectedAndShown = 0x0600;
    constexpr std::uint32_t kFrozen = 0x0108;
    std::string out;
    putHeader(out, RecordId::Window2, 18);
    put16(out, kUsual | (first ? kSelectedAndShown : 0) | (sheet.hasHeader ? kFrozen : 0));
    put16(out, 0); // from A1 on
    put16(out, 0);
    put32(out, 0x40); // the colour of the grid lines
    put32(out, 0);    // usual sizes
    put32(out, 0);
    if (sheet.hasHeader)
        putFrozenFirstRow(out);
    putEnd(out);
    return out;
}

} // namespace

Status writeWorkbookStream(const std::vector<SheetImage>& sheets, const SharedStrings& strings, const Sink& sink) {
    std::vector<std::int64_t> positions(sheets.size());
    std::int64_t position = static_cast<std::int64_t>(globals(sheets, positions).size()) + strings.size() +
                            static_cast<std::int64_t>(kRecordHeaderBytes);
    std::int64_t texts = 0;
    for (std::size_t index = 0; index < sheets.size(); ++index) {
        const SheetImage& sheet = sheets[index];
        positions[index] = position;
        position += static_cast<std::int64_t>(beforeCells(sheet).size() + sheet.lastRow.size() +
                                              afterCells(sheet, index == 0).size()) +
                    sheet.part->cells().size();
        texts += sheet.texts;
    }
    if (position > kMaxBytes)
        return Error{"The worksheets exceed 2 GB, the most that a file of this format can hold"};

    if (Status written = sink(globals(sheets, positions)); !written)
        return written;
    if (Status written = strings.copyTo(sink, texts); !written)
        return written;
    std::string end;
    putEnd(end);
    if (Status written = sink(end); !written)
        return written;
    for (std::size_t index = 0; index < sheets.size(); ++index) {
        const SheetImage& sheet = sheets[index];
        if (Status written = sink(beforeCells(sheet)); !written)
            return written;
        if (Status written = sheet.part->cells().copyTo(sink); !written)
            return written;
        if (Status written = sink(sheet.lastRow + afterCells(sheet, index == 0)); !written)
            return written;
    }
    return {};
}

} // namespace tavix::worksheet
