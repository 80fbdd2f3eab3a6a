#include "base/Ascii.h"
#include "blocks/AdjacentResults.h"
#include "blocks/RowCalls.h"
#include "expression/ByteSearch.h"
#include "expression/TextOperators.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace tavix::expression {

namespace {

/// Bytes of the texts.
std::size_t sizeOf(const Vector& source, const RowSet& rows) {
    std::size_t size = 0;
    withTexts(source, [&](auto texts) { rows.forEach([&](std::uint32_t row) { size += texts[row].size(); }); });
    return size;
}

/// lower() and upper(). Maps a block of ASCII texts at once.
class MappedOperand : public Operand {
  public:
    explicit MappedOperand(const Node& node)
        : m_isLower(isCallOf(node, "lower")), m_source(makeOperand(node.child(0))), m_rowByRow(node) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        if (source.isAscii()) {
            const bool isWhole = source.ends && rows.isDense() && frame.rows() > 0;
            const std::size_t size = isWhole ? source.ends[frame.rows() - 1] : sizeOf(source, rows);
            if (frame.takeAdjacent(size))
                return isWhole ? mapBlock(source, size) : mapEach(source, size, frame, rows);
        }
        const std::array<const Vector*, 1> arguments{&source};
        return m_rowByRow.evaluate(frame, rows, arguments);
    }

  private:
    /// For ASCII texts in any form.
    const Vector& mapEach(const Vector& source, std::size_t size, const Frame& frame, const RowSet& rows) {
        m_adjacent.begin(frame.rows(), size);
        const auto map = m_isLower ? lowerAscii : upperAscii;
        withTexts(source, [&](auto texts) {
            m_adjacent.makeEach(rows, [&](std::uint32_t row) {
                const std::string_view text = texts[row];
                map(text.data(), text.size(), m_adjacent.extend(text.size()));
            });
        });
        return m_adjacent.vector(source.nulls, true);
    }
    const Vector& mapBlock(const Vector& source, std::size_t size) {
        if (m_bytes.size() < size)
            m_bytes.resize(size);
        (m_isLower ? lowerAscii : upperAscii)(source.bytes, size, m_bytes.data());
        m_block = source;
        m_block.bytes = m_bytes.data();
        m_block.readable = m_bytes.data() + size;
        return m_block;
    }

    bool m_isLower;
    OperandPtr m_source;
    std::vector<char> m_bytes;
    Vector m_block;
    AdjacentResults m_adjacent;
    RowCalls m_rowByRow; ///< for texts that are not ASCII, and for large ones
};

/// unaccent(), reverse() and initcap(), which are simple for ASCII texts.
class AsciiOperand : public Operand {
  public:
    explicit AsciiOperand(const Node& node)
        : m_isReverse(isCallOf(node, "reverse")),
          m_isUnaccent(isCallOf(node, "unaccent")),
          m_source(makeOperand(node.child(0))),
          m_rowByRow(node) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        if (source.isAscii()) {
            if (m_isUnaccent)
                return source;
            const std::size_t size = sizeOf(source, rows);
            if (frame.takeAdjacent(size))
                return mapEach(source, size, frame, rows);
        }
        const std::array<const Vector*, 1> arguments{&source};
        return m_rowByRow.evaluate(frame, rows, arguments);
    }

  private:
    const Vector& mapEach(const Vector& source, std::size_t size, const Frame& frame, const RowSet& rows) {
        m_results.begin(frame.rows(), size);
        withTexts(source, [&](auto texts) {
            m_results.makeEach(rows, [&](std::uint32_t row) {
                const std::string_view text = texts[row];
                char* const to = m_results.extend(text.size());
                if (m_isReverse)
                    std::reverse_copy(text.begin(), text.end(), to);
                else
                    capitalize(text, to);
            });
        });
        return m_results.vector(source.nulls, true);
    }
    static void capitalize(std::string_view text, char* to) {
        bool isInWord = false;
        for (const char c : text) {
            *to++ = isInWord ? asciiLower(c) : asciiUpper(c);
            isInWord = isAsciiLetter(c) || isAsciiDigit(c);
        }
    }

    bool m_isReverse;
    bool m_isUnaccent;
    OperandPtr m_source;
    AdjacentResults m_results;
    RowCalls m_rowByRow; ///< for texts that are not ASCII, and for large ones
};

/// A function whose result is a part of its text, so that nothing is copied. `Cut` is called with a text and whether it
/// is known to be ASCII.
template <typename Cut>
class CutOperand : public Operand {
  public:
    CutOperand(const Node& text, Cut cut) : m_source(makeOperand(text)), m_cut(cut) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        m_results.begin(Type::Text, frame.rows());
        std::string_view* const out = m_results.texts();
        withTexts(source, [&](auto texts) {
            if (source.isAscii())
                rows.forEach([&](std::uint32_t row) { out[row] = m_cut(texts[row], true); });
            else
                rows.forEach([&](std::uint32_t row) { out[row] = m_cut(texts[row], false); });
        });
        m_results.takeNulls(source);
        m_results.vector().ascii = source.ascii;
        m_results.vector().readable = source.readable;
        return m_results.vector();
    }

  private:
    OperandPtr m_source;
    Cut m_cut;
    Results m_results;
};

template <typename Cut>
OperandPtr makeCut(const Node& text, Cut cut) {
    return std::make_unique<CutOperand<Cut>>(text, cut);
}

class LengthOperand : public Operand {
  public:
    explicit LengthOperand(const Node& text) : m_source(makeOperand(text)) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        m_results.begin(Type::Integer, frame.rows());
        std::int64_t* const out = m_results.integers();
        if (source.isAscii() && source.ends && rows.isDense() && frame.rows() > 0) {
            // A separate loop, which the compiler vectorizes.
            out[0] = source.ends[0];
            for (std::size_t row = 1; row < frame.rows(); ++row)
                out[row] = std::int64_t{source.ends[row] - source.ends[row - 1]};
            m_results.takeNulls(source);
            return m_results.vector();
        }
        withTexts(source, [&](auto texts) {
            const auto store = [&](std::uint32_t row, std::size_t size) { out[row] = static_cast<std::int64_t>(size); };
            if (source.isAscii())
                rows.forEach([&](std::uint32_t row) { store(row, texts[row].size()); });
            else
                rows.forEach([&](std::uint32_t row) { store(row, countCharacters(texts[row])); });
        });
        m_results.takeNulls(source);
        return m_results.vector();
    }

  private:
    OperandPtr m_source;
    Results m_results;
};

/// instr() of a constant text, from a constant position on.
class PositionOperand : public Operand {
  public:
    PositionOperand(const Node& text, std::string_view part, std::int64_t first)
        : m_source(makeOperand(text)),
          m_search(part),
          m_skipped(static_cast<std::size_t>(std::max<std::int64_t>(1, first) - 1)) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        m_results.begin(Type::Integer, frame.rows());
        std::int64_t* const out = m_results.integers();
        // kNotFound + 1 is 0, the result for "not found".
        static_assert(ByteSearch::kNotFound + 1 == 0);
        std::size_t seen = 0;
        if (m_skipped > 0) {
            searchFrom(source, rows, out);
        } else if (source.ends && frame.rows() > 0) {
            const AdjacentTexts texts{source.bytes, source.ends};
            const auto search = m_search.inShortTexts(source.bytes + source.ends[frame.rows() - 1]);
            rows.forEach([&seen, texts, search, out](std::uint32_t row) {
                const std::size_t place = search.find(texts[row]) + 1;
                out[row] = static_cast<std::int64_t>(place);
                seen |= place;
            });
        } else {
            withTexts(source, [&](auto texts) {
                rows.forEach([&](std::uint32_t row) {
                    const std::size_t place = m_search.find(texts[row]) + 1;
                    out[row] = static_cast<std::int64_t>(place);
                    seen |= place;
                });
            });
        }
        if (seen > 1 && !source.isAscii())
            countBefore(source, rows, out);
        m_results.takeNulls(source);
        return m_results.vector();
    }

  private:
    void searchFrom(const Vector& source, const RowSet& rows, std::int64_t* places) const {
        const bool isAscii = source.isAscii();
        withTexts(source, [&](auto texts) {
            const auto search = m_search.inShortTexts(source.ends ? source.readable : nullptr);
            rows.forEach([places, texts, search, isAscii, skipped = m_skipped](std::uint32_t row) {
                const std::string_view text = texts[row];
                const std::size_t begin = isAscii ? std::min(skipped, text.size()) : offsetOfCharacter(text, skipped);
                const std::size_t place = search.find(text.substr(begin)) + 1;
                const std::size_t isFound = place != 0 ? 1 : 0;
                places[row] = static_cast<std::int64_t>(place + (begin & (0 - isFound)));
            });
        });
        if (!isAscii)
            countBefore(source, rows, places);
    }
    /// Converts positions in bytes to positions in characters.
    static void countBefore(const Vector& source, const RowSet& rows, std::int64_t* places) {
        withTexts(source, [&](auto texts) {
            rows.forEach([&](std::uint32_t row) {
                if (places[row] > 1) {
                    const auto bytes = static_cast<std::size_t>(places[row] - 1);
                    places[row] = static_cast<std::int64_t>(countCharacters(texts[row].substr(0, bytes))) + 1;
                }
            });
        });
    }

    OperandPtr m_source;
    ByteSearch m_search;
    std::size_t m_skipped; ///< characters to skip
    Results m_results;
};

std::optional<std::int64_t> fixedInteger(const Node& node) {
    if (!node.isConstant() || node.constant.type != Type::Integer)
        return std::nullopt;
    return node.constant.integer;
}

} // namespace

OperandPtr makeTextOperand(const Node& node) {
    const Node& text = node.child(0);
    if (text.isConstant())
        return nullptr;
    if (isCallOf(node, "lower") || isCallOf(node, "upper"))
        return std::make_unique<MappedOperand>(node);
    if (isCallOf(node, "unaccent") || isCallOf(node, "reverse") || isCallOf(node, "initcap"))
        return std::make_unique<AsciiOperand>(node);
    if (isCallOf(node, "length"))
        return std::make_unique<LengthOperand>(text);
    if (isCallOf(node, "trim"))
        return makeCut(text, [](std::string_view whole, bool) { return trimLeft(trimRight(whole)); });
    if (isCallOf(node, "ltrim"))
        return makeCut(text, [](std::string_view whole, bool) { return trimLeft(whole); });
    if (isCallOf(node, "rtrim"))
        return makeCut(text, [](std::string_view whole, bool) { return trimRight(whole); });
    if (isCallOf(node, "instr") && node.children.size() == 2 && isFixedText(node.child(1)))
        return std::make_unique<PositionOperand>(text, node.child(1).text, 1);
    if (isCallOf(node, "instr") && isFixedText(node.child(1))) {
        if (const auto first = fixedInteger(node.child(2)))
            return std::make_unique<PositionOperand>(text, node.child(1).text, *first);
    }
    const auto second = node.children.size() > 1 ? fixedInteger(node.child(1)) : std::nullopt;
    if (!second)
        return nullptr;
    if (isCallOf(node, "left"))
        return makeCut(
            text, [count = *second](std::string_view whole, bool isAscii) { return leftOf(whole, count, isAscii); });
    if (isCallOf(node, "right"))
        return makeCut(
            text, [count = *second](std::string_view whole, bool isAscii) { return rightOf(whole, count, isAscii); });
    if (isCallOf(node, "substring")) {
        const auto third = node.children.size() > 2 ? fixedInteger(node.child(2))
                                                    : std::optional(std::numeric_limits<std::int64_t>::max());
        if (third)
            return makeCut(text, [first = *second, count = *third](std::string_view whole, bool isAscii) {
                return substringOf(whole, first, count, isAscii);
            });
    }
    return nullptr;
}

} // namespace tavix::expression
