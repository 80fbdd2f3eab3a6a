#include "blocks/AdjacentResults.h"
#include "blocks/JoinedNulls.h"
#include "blocks/RowCalls.h"
#include "expression/ByteSearch.h"
#include "expression/TextOperators.h"

#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression {

namespace {

/// replace() of a constant text by another: searches the whole block at once and copies the bytes between the hits.
class ReplaceOperand : public Operand {
  public:
    explicit ReplaceOperand(const Node& node)
        : m_source(makeOperand(node.child(0))),
          m_from(makeOperand(node.child(1))),
          m_to(makeOperand(node.child(2))),
          m_search(node.child(1).text),
          m_replacement(node.child(2).text),
          m_isReplacementAscii(isAscii(m_replacement)),
          m_rowByRow(node) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        if (source.ends && rows.isDense() && frame.rows() > 0) {
            const std::size_t size = source.ends[frame.rows() - 1];
            const std::size_t longest = size / m_search.needle().size() * m_replacement.size() + size;
            if (frame.takeAdjacent(longest))
                return replaceBlock(source, frame.rows(), longest);
        }
        const std::array<const Vector*, 3> arguments{&source, &m_from->evaluate(frame, rows),
                                                     &m_to->evaluate(frame, rows)};
        return m_rowByRow.evaluate(frame, rows, arguments);
    }

  private:
    const Vector& replaceBlock(const Vector& source, std::size_t rows, std::size_t longest) {
        m_results.begin(rows, longest);
        const std::uint32_t* const ends = source.ends;
        const std::string_view bytes(source.bytes, ends[rows - 1]);
        const std::size_t size = m_search.needle().size();
        std::uint32_t row = 0;
        std::size_t done = 0; // bytes of the block
        const auto copyUpTo = [&](std::size_t end) {
            m_results.append(bytes.substr(done, end - done), source.readable);
            done = end;
        };
        const auto replaceAt = [&](std::size_t at) {
            for (; ends[row] <= at; ++row) {
                copyUpTo(ends[row]);
                m_results.end(row);
            }
            if (at + size > ends[row])
                return false; // reaches into the next row
            copyUpTo(at);
            m_results.append(m_replacement);
            done = at + size;
            return true;
        };
        if (size == 1) {
            m_search.forEachByte(bytes, [&](std::size_t at) { (void)replaceAt(at); });
        } else {
            std::size_t at = m_search.find(bytes);
            while (at != ByteSearch::kNotFound)
                at = m_search.find(bytes, at + (replaceAt(at) ? size : 1));
        }
        for (; row < rows; ++row) {
            copyUpTo(ends[row]);
            m_results.end(row);
        }
        return m_results.vector(source.nulls, source.isAscii() && m_isReplacementAscii);
    }

    OperandPtr m_source;
    OperandPtr m_from;
    OperandPtr m_to;
    ByteSearch m_search;
    std::string_view m_replacement;
    bool m_isReplacementAscii;
    AdjacentResults m_results;
    RowCalls m_rowByRow; ///< for other forms of texts, and for large ones
};

/// concat(): appends the parts of row after row.
class ConcatOperand : public Operand {
  public:
    explicit ConcatOperand(const Node& node) : m_rowByRow(node) {
        for (const NodePtr& child : node.children)
            m_parts.push_back(makeOperand(*child));
    }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        m_columns.clear();
        for (const OperandPtr& part : m_parts)
            m_columns.push_back(&part->evaluate(frame, rows));
        const std::optional<std::size_t> size = totalSize(frame.rows(), rows);
        if (!size || !frame.takeAdjacent(*size))
            return m_rowByRow.evaluate(frame, rows, m_columns);
        m_results.begin(frame.rows(), *size);
        bool isAllAscii = true;
        m_nulls.begin();
        m_readers.clear();
        for (const Vector* column : m_columns) {
            isAllAscii = isAllAscii && (column->isConstant ? isAscii(column->constant.text) : column->isAscii());
            m_nulls.add(*column, frame.rows());
            m_readers.push_back(Reader(*column));
        }
        m_results.makeEach(rows, [&](std::uint32_t row) {
            for (const Reader& reader : m_readers)
                m_results.append(reader[row]);
        });
        return m_results.vector(m_nulls.get(), isAllAscii);
    }

  private:
    /// Reads a column of texts of any form.
    struct Reader {
        explicit Reader(const Vector& column)
            : constant(column.constant.text), adjacent{column.bytes, column.ends}, texts(column.texts) {}
        std::string_view operator[](std::uint32_t row) const {
            return adjacent.ends ? adjacent[row] : texts ? texts[row] : constant;
        }
        std::string_view constant;
        AdjacentTexts adjacent;
        const std::string_view* texts;
    };

    /// The total size of the rows; none when a part is always null.
    [[nodiscard]] std::optional<std::size_t> totalSize(std::size_t blockRows, const RowSet& rows) const {
        std::size_t size = 0;
        for (const Vector* column : m_columns) {
            if (column->isConstant && column->constant.isNull())
                return std::nullopt;
            if (column->isConstant)
                size += column->constant.text.size() * rows.size();
            else if (column->ends)
                size += blockRows == 0 ? 0 : column->ends[blockRows - 1];
            else
                rows.forEach([&](std::uint32_t row) { size += column->texts[row].size(); });
        }
        return size;
    }

    std::vector<OperandPtr> m_parts;
    std::vector<const Vector*> m_columns;
    std::vector<Reader> m_readers;
    JoinedNulls m_nulls;
    AdjacentResults m_results;
    RowCalls m_rowByRow; ///< for other forms of texts, and for large ones
};

/// lpad() and rpad() of ASCII texts to a constant size with a constant ASCII character.
class PadOperand : public Operand {
  public:
    PadOperand(const Node& node, std::size_t size, char fill)
        : m_isLeft(isCallOf(node, "lpad")), m_size(size), m_fill(fill), m_rowByRow(node) {
        for (const NodePtr& child : node.children)
            m_arguments.push_back(makeOperand(*child));
    }

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_arguments.front()->evaluate(frame, rows);
        std::size_t longest = rows.size() * m_size;
        if (source.isAscii())
            withTexts(source,
                      [&](auto texts) { rows.forEach([&](std::uint32_t row) { longest += texts[row].size(); }); });
        if (!source.isAscii() || !frame.takeAdjacent(longest)) {
            m_columns.assign(1, &source);
            for (std::size_t i = 1; i < m_arguments.size(); ++i)
                m_columns.push_back(&m_arguments[i]->evaluate(frame, rows));
            return m_rowByRow.evaluate(frame, rows, m_columns);
        }
        m_results.begin(frame.rows(), longest);
        withTexts(source, [&](auto texts) {
            m_results.makeEach(rows, [&](std::uint32_t row) {
                const std::string_view text = texts[row];
                const std::size_t missing = text.size() < m_size ? m_size - text.size() : 0;
                if (m_isLeft)
                    m_results.append(missing, m_fill);
                m_results.append(text, source.readable);
                if (!m_isLeft)
                    m_results.append(missing, m_fill);
            });
        });
        return m_results.vector(source.nulls, true);
    }

  private:
    bool m_isLeft;
    std::size_t m_size;
    char m_fill;
    std::vector<OperandPtr> m_arguments;
    std::vector<const Vector*> m_columns;
    AdjacentResults m_results;
    RowCalls m_rowByRow; ///< for other forms of texts, and for large ones
};

OperandPtr makePad(const Node& node) {
    constexpr std::int64_t kMostPadding = 1000;
    const Node& size = node.child(1);
    if (node.child(0).isConstant() || !size.isConstant() || size.constant.isNull())
        return nullptr;
    if (size.constant.integer < 0 || size.constant.integer > kMostPadding)
        return nullptr;
    std::string_view fill = " ";
    if (node.children.size() > 2) {
        if (!isFixedText(node.child(2)))
            return nullptr;
        fill = node.child(2).text;
    }
    if (fill.size() != 1 || !isAscii(fill))
        return nullptr;
    return std::make_unique<PadOperand>(node, static_cast<std::size_t>(size.constant.integer), fill.front());
}

} // namespace

OperandPtr makeBuiltText(const Node& node) {
    if (isCallOf(node, "concat"))
        return std::make_unique<ConcatOperand>(node);
    if (isCallOf(node, "lpad") || isCallOf(node, "rpad"))
        return makePad(node);
    if (isCallOf(node, "replace") && !node.child(0).isConstant() && isFixedText(node.child(1)) &&
        isFixedText(node.child(2)) && !node.child(1).text.empty())
        return std::make_unique<ReplaceOperand>(node);
    return nullptr;
}

} // namespace tavix::expression
