#include "profiling/MetricValue.h"

#include "expression/Conversion.h"

#include <string>

namespace tavix::profiling {

KvbDatavar metricValue(const expression::Value& value) {
    expression::Scratch scratch;
    switch (value.type) {
    case expression::Type::Integer:
        return value.integer;
    case expression::Type::Real:
        return metricValue(value.real);
    case expression::Type::Null:
        return {};
    default:
        return std::string(expression::convert(value, expression::Type::Text, scratch).text);
    }
}

} // namespace tavix::profiling
