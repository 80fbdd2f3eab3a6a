#include "expression/ExpressionError.h"

#include <fmt/format.h>

namespace tavix::expression {

std::string describe(const ExpressionError& error) {
    return fmt::format("line {}, column {}: {}", error.line, error.column, error.message);
}

} // namespace tavix::expression
