#pragma once

#include <QString>
#include <QTextDocument>

namespace tavix {

/// The text as it was entered, with lines ended by LF. QTextDocument::toPlainText() would turn no-break spaces into
/// ordinary ones.
[[nodiscard]] inline QString rawText(const QTextDocument& document) {
    constexpr QChar kParagraphSeparator(0x2029);
    return document.toRawText().replace(kParagraphSeparator, u'\n');
}

} // namespace tavix
