#include "blocks/Operand.h"
#include "expression/ByteSearch.h"
#include "expression/PreparedFunction.h"

#include <array>
#include <optional>
#include <string_view>

namespace tavix::expression {

namespace {

/// A function whose result is a part of its text, or null, so that nothing is copied.
template <typename Find>
class FoundPartOperand : public Operand {
  public:
    FoundPartOperand(const Node& text, Find find) : m_source(makeOperand(text)), m_find(std::move(find)) {}

    const Vector& evaluate(Frame& frame, const RowSet& rows) override {
        const Vector& source = m_source->evaluate(frame, rows);
        m_results.begin(Type::Text, frame.rows());
        std::string_view* const out = m_results.texts();
        withTexts(source, [&](auto texts) {
            rows.forEach([&](std::uint32_t row) {
                const std::optional<std::string_view> part =
                    source.nulls && source.nulls[row] != 0 ? std::nullopt : m_find(texts[row]);
                if (part)
                    out[row] = *part;
                else
                    m_results.set(row, Value{});
            });
        });
        m_results.vector().ascii = source.ascii;
        m_results.vector().readable = source.readable;
        return m_results.vector();
    }

  private:
    OperandPtr m_source;
    Find m_find;
    Results m_results;
};

template <typename Find>
OperandPtr makeFound(const Node& text, Find find) {
    return std::make_unique<FoundPartOperand<Find>>(text, std::move(find));
}

/// split() at a constant separator, of a constant number.
OperandPtr makeSplit(const Node& node) {
    const Node& number = node.child(2);
    if (!isFixedText(node.child(1)) || node.child(1).text.empty() || !number.isConstant() || number.constant.isNull() ||
        number.constant.integer < 1)
        return nullptr;
    return makeFound(node.child(0),
                     [search = ByteSearch(node.child(1).text),
                      wanted = number.constant.integer](std::string_view rest) -> std::optional<std::string_view> {
                         for (std::int64_t part = 1;; ++part) {
                             const std::size_t end = search.find(rest);
                             if (part == wanted)
                                 return rest.substr(0, end);
                             if (end == ByteSearch::kNotFound)
                                 return std::nullopt;
                             rest.remove_prefix(end + search.needle().size());
                         }
                     });
}

/// regexp_extract() of a constant group.
OperandPtr makeExtraction(const Node& node) {
    if (node.children.size() > 2 && (!node.child(2).isConstant() || node.child(2).constant.isNull()))
        return nullptr;
    const Value group = node.children.size() > 2 ? node.child(2).constant : Value::ofInteger(0);
    return makeFound(node.child(0), [&node, group](std::string_view text) -> std::optional<std::string_view> {
        const std::array<Value, 3> arguments{Value::ofText(text), node.child(1).constant, group};
        Scratch unused; // the result is a part of the text
        const Value part = node.prepared->call(arguments, unused);
        return part.isNull() ? std::nullopt : std::optional(part.text);
    });
}

} // namespace

OperandPtr makeTextPart(const Node& node) {
    if (node.children.empty() || node.child(0).isConstant() || node.child(0).type != Type::Text)
        return nullptr;
    if (isCallOf(node, "split"))
        return makeSplit(node);
    return isCallOf(node, "regexp_extract") ? makeExtraction(node) : nullptr;
}

} // namespace tavix::expression
