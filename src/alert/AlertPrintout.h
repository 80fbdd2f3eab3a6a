#pragma once

#include "report/AlertStates.h"

#include <functional>
#include <locale>
#include <string>
#include <string_view>
#include <vector>

/// The alerts report on paper: which text is where on which page. Lengths are in units of the measured texts.
namespace tavix {

inline constexpr std::string_view kPrintFont = "Arial";
inline constexpr std::string_view kPrintFailed = "Unable to get printer device context";
inline constexpr std::string_view kPrintErrorCaption = "Print Error";

enum class PrintWeight { Plain, Bold };

struct PrintMeasure {
    std::function<double(std::string_view text, PrintWeight weight)> widthOf;
    double lineHeight = 1;
    double pageWidth = 0; ///< without margins
    double pageHeight = 0;
};

struct PrintedText {
    double x = 0;
    double y = 0; ///< of the line's top
    std::string text;
    PrintWeight weight = PrintWeight::Plain;

    bool operator==(const PrintedText&) const = default;
};

struct PrintedPage {
    std::vector<PrintedText> texts;
    double titleEnd = 0; ///< where a line below the page's heading is drawn
};

/// The texts at the head of each page.
struct PrintHeading {
    std::string title; ///< "Tavix Alerts Report"
    std::string note;  ///< the filter
};

/// Each alert is a block of labelled lines, which is not parted unless it is longer than a page. Long texts are broken
/// between words, and within words that are wider than the page. There is at least one page.
[[nodiscard]] std::vector<PrintedPage> layOutAlerts(const std::vector<const AlertState*>& alerts,
                                                    const PrintHeading& heading, const PrintMeasure& measure,
                                                    const std::locale& locale);

/// The lines of a text that fit the width. Line breaks in the text are kept.
[[nodiscard]] std::vector<std::string> brokenIntoLines(std::string_view text, double width,
                                                       const std::function<double(std::string_view)>& widthOf);

} // namespace tavix
