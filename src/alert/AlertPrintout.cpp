#include "alert/AlertPrintout.h"

#include "alert/AlertLine.h"
#include "base/Characters.h"
#include "base/NumberText.h"
#include "report/AlertTexts.h"

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr double kHeadingLines = 2.5; ///< title, note, and the space below them
constexpr double kFootLines = 2;      ///< the page's number, and the space above it
constexpr double kBlockGap = 0.8;     ///< between two alerts, in lines
constexpr double kLabelGap = 1.0;     ///< between label and text, in heights of a line
constexpr double kWidestLabel = 0.45; ///< of the page

struct Labelled {
    std::string label;
    std::string text;
};

/// "raised (error), 3 runs, since ...".
std::string stateText(const AlertState& alert, const std::locale& locale) {
    if (alert.shown() == AlertShown::Muted)
        return alertMuteText(alert, locale);
    std::string text(alertShownWord(alert.shown()));
    if (alert.shown() == AlertShown::Raised)
        text += " (" + alertLevelText(alert) + ")";
    const std::string since = alertSinceText(alert, locale);
    return since.empty() ? text : text + ", " + since;
}

std::string figureText(const AlertState& alert) {
    const std::string figure = alertFigureText(alert);
    const std::string reference = alertReferenceText(alert);
    return figure.empty() || reference.empty() ? figure : figure + " (" + reference + ")";
}

std::vector<Labelled> linesOf(const AlertState& alert, const std::locale& locale) {
    std::vector<Labelled> lines;
    const AlertLine line = alertLine(alert);
    for (std::size_t part = 0; part < AlertLine::kParts; ++part)
        lines.push_back({std::string(kAlertLineNames.at(part)) + ":", line.parts.at(part)});
    lines.push_back({"State:", stateText(alert, locale)});
    if (std::string figure = figureText(alert); !figure.empty())
        lines.push_back({"Figure:", std::move(figure)});
    return lines;
}

/// The end of the longest beginning of `word` that fits; at least one character.
std::size_t endOfFitting(std::string_view word, double width, const std::function<double(std::string_view)>& widthOf) {
    std::size_t fits = 1;
    std::size_t tooLong = countCharacters(word);
    while (fits + 1 < tooLong) {
        const std::size_t middle = fits + (tooLong - fits) / 2;
        (widthOf(word.substr(0, offsetOfCharacter(word, middle))) <= width ? fits : tooLong) = middle;
    }
    return offsetOfCharacter(word, fits);
}

class Layout {
  public:
    Layout(const PrintHeading& heading, const PrintMeasure& measure) : m_heading(heading), m_measure(measure) {
        startPage();
    }

    void add(const std::vector<Labelled>& lines) {
        struct Row {
            const std::string* label; ///< null for a further line of the text
            std::string text;
        };
        const double indent = labelWidth(lines);
        const auto plainWidth = [this](std::string_view text) { return m_measure.widthOf(text, PrintWeight::Plain); };
        std::vector<Row> rows;
        for (const Labelled& line : lines) {
            const std::string* label = &line.label;
            for (std::string& text : brokenIntoLines(line.text, m_measure.pageWidth - indent, plainWidth))
                rows.push_back({std::exchange(label, nullptr), std::move(text)});
        }
        const double height = static_cast<double>(rows.size()) * m_measure.lineHeight;
        if (m_y > m_top && m_y + height > m_bottom)
            startPage();
        for (Row& row : rows) {
            if (m_y > m_top && m_y + m_measure.lineHeight > m_bottom)
                startPage();
            if (row.label)
                put(0, *row.label, PrintWeight::Bold);
            put(indent, std::move(row.text), PrintWeight::Plain);
            m_y += m_measure.lineHeight;
        }
        m_y += kBlockGap * m_measure.lineHeight;
    }

    std::vector<PrintedPage> take() { return std::move(m_pages); }

  private:
    double labelWidth(const std::vector<Labelled>& lines) const {
        double width = 0;
        for (const Labelled& line : lines)
            width = std::max(width, m_measure.widthOf(line.label, PrintWeight::Bold));
        return std::min(width + kLabelGap * m_measure.lineHeight, kWidestLabel * m_measure.pageWidth);
    }

    void put(double x, std::string text, PrintWeight weight) {
        if (!text.empty())
            m_pages.back().texts.push_back({x, m_y, std::move(text), weight});
    }

    void startPage() {
        m_pages.emplace_back();
        m_y = 0;
        put(0, m_heading.title, PrintWeight::Bold);
        m_y = m_measure.lineHeight;
        put(0, m_heading.note, PrintWeight::Plain);
        m_pages.back().titleEnd = 2.15 * m_measure.lineHeight;
        m_y = m_measure.pageHeight - m_measure.lineHeight;
        const std::string foot = "Page " + formatInteger(static_cast<std::int64_t>(m_pages.size()));
        const double width = m_measure.widthOf(foot, PrintWeight::Plain);
        put(std::max(0.0, (m_measure.pageWidth - width) / 2), foot, PrintWeight::Plain);
        m_top = kHeadingLines * m_measure.lineHeight;
        m_bottom = m_measure.pageHeight - kFootLines * m_measure.lineHeight;
        m_y = m_top;
    }

    const PrintHeading& m_heading;
    const PrintMeasure& m_measure;
    std::vector<PrintedPage> m_pages;
    double m_top = 0;
    double m_bottom = 0;
    double m_y = 0;
};

} // namespace

std::vector<std::string> brokenIntoLines(std::string_view text, double width,
                                         const std::function<double(std::string_view)>& widthOf) {
    std::vector<std::string> lines(1);
    const double blank = widthOf(" ");
    double used = 0;
    const auto addWord = [&](std::string_view word) {
        double needed = widthOf(word);
        const bool isFirst = lines.back().empty();
        if (!isFirst && used + blank + needed <= width) {
            lines.back().append(" ").append(word);
            used += blank + needed;
            return;
        }
        if (!isFirst)
            lines.emplace_back();
        while (needed > width && countCharacters(word) > 1) {
            const std::size_t end = endOfFitting(word, width, widthOf);
            lines.back() = word.substr(0, end);
            lines.emplace_back();
            word.remove_prefix(end);
            needed = widthOf(word);
        }
        lines.back() = word;
        used = needed;
    };
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of(" \t\r\n", at), text.size());
        if (end > at)
            addWord(text.substr(at, end - at));
        if (end < text.size() && text[end] == '\n') {
            lines.emplace_back();
            used = 0;
        }
        at = end + 1;
    }
    return lines;
}

std::vector<PrintedPage> layOutAlerts(const std::vector<const AlertState*>& alerts, const PrintHeading& heading,
                                      const PrintMeasure& measure, const std::locale& locale) {
    Layout layout(heading, measure);
    for (const AlertState* alert : alerts)
        layout.add(linesOf(*alert, locale));
    return layout.take();
}

} // namespace tavix
