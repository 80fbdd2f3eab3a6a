#include "blocks/JoinedNulls.h"
#include "blocks/Operand.h"
#include "expression/TextOperators.h"

#include <limits>

namespace tavix::expression {

namespace {

/// left(), right() or substring() with numbers that vary by row. `Cut` is called with a text, the numbers, and whether
/// the text is known to be ASCII.
template <typename Cut>
class MeasuredCutOperand : public Operand {
  public:
    MeasuredCutOperand(const Node& node, Cut cut)
        : m_text(makeOperand(node.child(0))),
          m_first(makeOperand(node.child(1))),
          m_second(node.children.size() > 2 ? makeOperand(node.child(2)) : nullptr),
          m_cut(cut) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_text->evaluate(frame, rows);
        const Vector& first = m_first->evaluate(frame, rows);
        m_nulls.begin();
        m_nulls.add(source, frame.rows());
        m_nulls.add(first, frame.rows());
        Vector second;
        second.isConstant = true;
        second.constant = Value::ofInteger(std::numeric_limits<std::int64_t>::max());
        if (m_second) {
            second = m_second->evaluate(frame, rows);
            m_nulls.add(second, frame.rows());
        }
        m_results.begin(Type::Text, frame.rows());
        std::string_view* const out = m_results.texts();
        const bool isAscii = source.isAscii();
        withTexts(source, [&, cut = m_cut](auto texts) {
            rows.forEach([cut, texts, out, isAscii, a = Numbers(first), b = Numbers(second)](std::uint32_t row) {
                out[row] = cut(texts[row], a[row], b[row], isAscii);
            });
        });
        m_results.takeNulls(m_nulls.get());
        m_results.vector().ascii = source.ascii;
        m_results.vector().readable = source.readable;
        return m_results.vector();
    }

  private:
    struct Numbers {
        explicit Numbers(const Vector& vector)
            : values(vector.isConstant ? nullptr : vector.integers), constant(vector.constant.integer) {}
        std::int64_t operator[](std::uint32_t row) const { return values ? values[row] : constant; }
        const std::int64_t* values;
        std::int64_t constant;
    };

    OperandPtr m_text;
    OperandPtr m_first;
    OperandPtr m_second; ///< null without one
    Cut m_cut;
    JoinedNulls m_nulls;
    Results m_results;
};

template <typename Cut>
OperandPtr makeCut(const Node& node, Cut cut) {
    return std::make_unique<MeasuredCutOperand<Cut>>(node, cut);
}

} // namespace

OperandPtr makeMeasuredCut(const Node& node) {
    if (node.children.size() < 2 || node.child(0).isConstant() || node.child(0).type != Type::Text)
        return nullptr;
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        const Node& number = node.child(i);
        if (number.type != Type::Integer || (number.isConstant() && number.constant.isNull()))
            return nullptr;
    }
    using Text = std::string_view;
    using Number = std::int64_t;
    if (isCallOf(node, "left"))
        return makeCut(node,
                       [](Text text, Number count, Number, bool isAscii) { return leftOf(text, count, isAscii); });
    if (isCallOf(node, "right"))
        return makeCut(node,
                       [](Text text, Number count, Number, bool isAscii) { return rightOf(text, count, isAscii); });
    if (isCallOf(node, "substring"))
        return makeCut(node, [](Text text, Number first, Number count, bool isAscii) {
            return substringOf(text, first, count, isAscii);
        });
    return nullptr;
}

} // namespace tavix::expression
