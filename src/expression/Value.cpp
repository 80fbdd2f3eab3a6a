#include "expression/Value.h"

namespace tavix::expression {

Value Value::ofCell(const KvbDatavar& cell) {
    const KvbDatavar::Storage& storage = cell.storage();
    if (const auto* integer = std::get_if<std::int64_t>(&storage))
        return ofInteger(*integer);
    if (const auto* real = std::get_if<double>(&storage))
        return ofReal(*real);
    if (const auto* text = std::get_if<std::string>(&storage))
        return ofText(*text);
    return {};
}

std::string_view typeName(Type type) {
    switch (type) {
    case Type::Null:
        return "null";
    case Type::Boolean:
        return "boolean";
    case Type::Integer:
        return "integer";
    case Type::Real:
        return "real";
    case Type::Text:
        return "text";
    case Type::Date:
        return "date";
    }
    return "null";
}

} // namespace tavix::expression
