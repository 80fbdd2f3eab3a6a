#include "expression/ByteSearch.h"
#include "expression/Operand.h"
#include "expression/TextOperators.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression {

namespace {

/// Texts that are made one after the other in one piece of memory.
class AdjacentResults {
  public:
    /// Beyond this the texts are made row by row, where each is bounded.
    static constexpr std::size_t kMostBytes = std::size_t{8} << 20;

    /// Room for `size` bytes and some more, which copying in steps may overwrite.
    void begin(std::size_t rows, std::size_t size) {
        if (m_bytes.size() < size + kStep)
            m_bytes.resize(size + kStep);
        m_ends.resize(rows);
        m_size = 0;
    }
    void append(std::string_view text) {
        std::memcpy(m_bytes.data() + m_size, text.data(), text.size());
        m_size += text.size();
    }
    /// The same for a text behind which, up to `readable`, lie bytes that may be read: most are copied in one step.
    void append(std::string_view text, const char* readable) {
        if (text.size() > kStep || static_cast<std::size_t>(readable - text.data()) < kStep)
            return append(text);
        std::memcpy(m_bytes.data() + m_size, text.data(), kStep);
        m_size += text.size();
    }
    void end(std::uint32_t row) { m_ends[row] = static_cast<std::uint32_t>(m_size); }

    const Vector& vector(const std::uint8_t* nulls, bool isAscii) {
        m_vector = Vector{};
        m_vector.type = Type::Text;
        m_vector.bytes = m_bytes.data();
        m_vector.ends = m_ends.data();
        m_vector.nulls = nulls;
        m_vector.isAscii = isAscii;
        return m_vector;
    }

  private:
    static constexpr std::size_t kStep = 16;

    std::vector<char> m_bytes;
    std::vector<std::uint32_t> m_ends;
    std::size_t m_size = 0;
    Vector m_vector;
};

/// The function row by row, for texts of another form or too large ones.
class RowByRow {
  public:
    explicit RowByRow(const Node& node) : m_call(node.function->implementation), m_values(node.children.size()) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows, const std::vector<const Vector*>& columns) {
        m_results.begin(Type::Text, frame.rows());
        rows.forEach([&](std::uint32_t row) {
            bool isNull = false;
            for (std::size_t i = 0; i < columns.size(); ++i) {
                m_values[i] = columns[i]->at(row);
                isNull = isNull || m_values[i].isNull();
            }
            m_results.set(row, isNull ? Value{} : m_call(m_values, frame.scratch()));
            frame.collectFailure(row);
        });
        return m_results.vector();
    }

  private:
    Implementation m_call;
    std::vector<Value> m_values;
    Results m_results;
};

/// replace of a fixed text by another: the block is searched in one go, and what lies between two finds is copied.
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
            if (longest <= AdjacentResults::kMostBytes)
                return replaceBlock(source, frame.rows(), longest);
        }
        return m_rowByRow.evaluate(frame, rows,
                                   {&source, &m_from->evaluate(frame, rows), &m_to->evaluate(frame, rows)});
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
            m_results.append(bytes.substr(done, end - done), bytes.data() + bytes.size());
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
        return m_results.vector(source.nulls, source.isAscii && m_isReplacementAscii);
    }

    OperandPtr m_source;
    OperandPtr m_from;
    OperandPtr m_to;
    ByteSearch m_search;
    std::string_view m_replacement;
    bool m_isReplacementAscii;
    AdjacentResults m_results;
    RowByRow m_rowByRow;
};

/// concat, the parts of a row behind those of the row before.
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
        const std::size_t size = totalSize(frame.rows(), rows);
        if (size > AdjacentResults::kMostBytes)
            return m_rowByRow.evaluate(frame, rows, m_columns);
        m_results.begin(frame.rows(), size);
        bool isAllAscii = true;
        const std::uint8_t* nulls = nullptr;
        m_readers.clear();
        for (const Vector* column : m_columns) {
            isAllAscii = isAllAscii && (column->isConstant ? isAscii(column->constant.text) : column->isAscii);
            if (column->nulls)
                nulls = mergedNulls(nulls, column->nulls, frame.rows());
            m_readers.push_back(Reader(*column));
        }
        std::uint32_t next = 0; // rows that are not asked for are empty
        rows.forEach([&](std::uint32_t row) {
            for (; next < row; ++next)
                m_results.end(next);
            for (const Reader& reader : m_readers)
                m_results.append(reader[row]);
            m_results.end(next++);
        });
        for (; next < frame.rows(); ++next)
            m_results.end(next);
        return m_results.vector(nulls, isAllAscii);
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

    /// What the rows take together; beyond the limit when a part is null throughout.
    [[nodiscard]] std::size_t totalSize(std::size_t blockRows, const RowSet& rows) const {
        std::size_t size = 0;
        for (const Vector* column : m_columns) {
            if (column->isConstant && column->constant.isNull())
                return AdjacentResults::kMostBytes + 1;
            if (column->isConstant)
                size += column->constant.text.size() * rows.size();
            else if (column->ends)
                size += blockRows == 0 ? 0 : column->ends[blockRows - 1];
            else
                rows.forEach([&](std::uint32_t row) { size += column->texts[row].size(); });
        }
        return size;
    }
    const std::uint8_t* mergedNulls(const std::uint8_t* first, const std::uint8_t* second, std::size_t rows) {
        if (!first)
            return second;
        m_nulls.resize(rows);
        for (std::size_t row = 0; row < rows; ++row)
            m_nulls[row] = first[row] | second[row];
        return m_nulls.data();
    }

    std::vector<OperandPtr> m_parts;
    std::vector<const Vector*> m_columns;
    std::vector<Reader> m_readers;
    std::vector<std::uint8_t> m_nulls;
    AdjacentResults m_results;
    RowByRow m_rowByRow;
};

} // namespace

OperandPtr makeBuiltText(const Node& node) {
    if (isCallOf(node, "concat"))
        return std::make_unique<ConcatOperand>(node);
    if (isCallOf(node, "replace") && !node.child(0).isConstant() && isFixedText(node.child(1)) &&
        isFixedText(node.child(2)) && !node.child(1).text.empty())
        return std::make_unique<ReplaceOperand>(node);
    return nullptr;
}

} // namespace tavix::expression
