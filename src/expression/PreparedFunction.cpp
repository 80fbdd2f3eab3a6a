#include "expression/PreparedFunction.h"

#include "base/Characters.h"
#include "base/DateFormat.h"
#include "expression/Conversion.h"
#include "expression/Lexer.h"
#include "expression/RegularOptions.h"
#include "forms/Reading.h"

#include <fmt/format.h>
#include <re2/re2.h>

#include <array>
#include <string>
#include <utility>

namespace tavix::expression {

namespace {

constexpr int kMostGroups = 9;
constexpr int kSubmatches = kMostGroups + 1; ///< the whole match is group 0

class DateReader final : public PreparedFunction {
  public:
    explicit DateReader(DateFormat format) : m_format(std::move(format)) {}

    Value call(std::span<const Value> arguments, Scratch& /*scratch*/) const override {
        const auto ticks = m_format.read(arguments[0].text);
        return ticks ? Value::ofDate(*ticks) : Value{};
    }

  private:
    DateFormat m_format;
};

class ReadingDates final : public PreparedFunction {
  public:
    explicit ReadingDates(forms::Reading reading) : m_reading(reading) {}

    Value call(std::span<const Value> arguments, Scratch& /*scratch*/) const override {
        const auto ticks = m_reading.ticks(arguments[0].text);
        return ticks ? Value::ofDate(*ticks) : Value{};
    }

  private:
    forms::Reading m_reading;
};

class ReadingNumbers final : public PreparedFunction {
  public:
    explicit ReadingNumbers(forms::Reading reading) : m_reading(reading) {}

    Value call(std::span<const Value> arguments, Scratch& /*scratch*/) const override {
        const auto number = m_reading.number(arguments[0].text);
        return number ? finite(*number) : Value{};
    }

  private:
    forms::Reading m_reading;
};

class Fit final : public PreparedFunction {
  public:
    explicit Fit(forms::Reading reading) : m_reading(reading) {}

    Value call(std::span<const Value> arguments, Scratch& /*scratch*/) const override {
        return Value::ofBoolean(m_reading.fits(arguments[0].text));
    }

  private:
    forms::Reading m_reading;
};

Error notAReading(std::string_view text, std::string_view kind) {
    return Error{fmt::format("\"{}\" is not a reading{}; readings are 'integer', 'real', 'real decimal-comma', 'date', "
                             "'date day-first', 'date month-first', 'boolean' and the like",
                             shortened(text, kLongestEcho), kind)};
}

template <typename Made>
Prepared madeOf(const forms::Reading& reading) {
    return std::shared_ptr<const PreparedFunction>(std::make_shared<Made>(reading));
}

class Extraction final : public PreparedFunction {
  public:
    Extraction(std::string_view pattern, const re2::RE2::Options& options) : m_pattern(pieceOf(pattern), options) {}
    [[nodiscard]] const re2::RE2& pattern() const { return m_pattern; }

    Value call(std::span<const Value> arguments, Scratch& /*scratch*/) const override {
        const std::int64_t group = arguments.size() > 2 ? arguments[2].integer : 0;
        if (group < 0 || group > m_pattern.NumberOfCapturingGroups() || group > kMostGroups)
            return {};
        std::array<re2::StringPiece, kSubmatches> found;
        const std::string_view text = arguments[0].text;
        if (!m_pattern.Match(pieceOf(text), 0, text.size(), re2::RE2::UNANCHORED, found.data(),
                             static_cast<int>(group) + 1))
            return {};
        const re2::StringPiece part = found[static_cast<std::size_t>(group)];
        return part.data() ? Value::ofText({part.data(), part.size()}) : Value{};
    }

  private:
    re2::RE2 m_pattern;
};

class Replacement final : public PreparedFunction {
  public:
    Replacement(std::string_view pattern, std::string_view replacement, const re2::RE2::Options& options)
        : m_pattern(pieceOf(pattern), options), m_replacement(replacement) {}
    [[nodiscard]] const re2::RE2& pattern() const { return m_pattern; }

    Value call(std::span<const Value> arguments, Scratch& scratch) const override {
        const std::string_view text = arguments[0].text;
        const int groups = 1 + re2::RE2::MaxSubmatch(m_replacement);
        std::array<re2::StringPiece, kSubmatches> found;
        std::string& out = scratch.builder();
        std::size_t copied = 0;
        std::size_t from = 0;
        std::size_t lastEnd = std::string_view::npos;
        while (from <= text.size() &&
               m_pattern.Match(pieceOf(text), from, text.size(), re2::RE2::UNANCHORED, found.data(), groups)) {
            const auto begin = static_cast<std::size_t>(found[0].data() - text.data());
            from = begin + found[0].size();
            // An empty match at the end of another one is not a match of its own.
            if (begin != lastEnd || !found[0].empty()) {
                out.append(text.substr(copied, begin - copied));
                m_pattern.Rewrite(&out, m_replacement, found.data(), groups);
                if (!scratch.fits(out.size()))
                    return {};
                copied = from;
                lastEnd = from;
            }
            if (found[0].empty() && from == text.size())
                break;
            if (found[0].empty())
                (void)nextCharacter(text, from);
        }
        if (lastEnd == std::string_view::npos)
            return arguments[0];
        out.append(text.substr(copied));
        return Value::ofText(scratch.keep(out));
    }

  private:
    re2::RE2 m_pattern;
    std::string m_replacement;
};

} // namespace

Prepared prepareDateFormat(std::string_view format) {
    // No date format begins with the word.
    if (const auto reading = forms::Reading::parse(format); reading && reading->type == FieldType::Date)
        return madeOf<ReadingDates>(*reading);
    Result<DateFormat> parsed = DateFormat::parse(format);
    if (!parsed)
        return parsed.error();
    return std::shared_ptr<const PreparedFunction>(std::make_shared<DateReader>(std::move(parsed).value()));
}

Prepared prepareNumberReading(std::string_view reading) {
    const auto parsed = forms::Reading::parse(reading);
    if (!parsed || (parsed->type != FieldType::Integer && parsed->type != FieldType::Real))
        return notAReading(reading, " of numbers");
    return madeOf<ReadingNumbers>(*parsed);
}

Prepared prepareFit(std::string_view reading) {
    const auto parsed = forms::Reading::parse(reading);
    return parsed ? madeOf<Fit>(*parsed) : notAReading(reading, "");
}

Prepared prepareExtraction(std::string_view pattern, std::int64_t memory) {
    auto made = std::make_shared<Extraction>(pattern, regularOptions(memory));
    if (!made->pattern().ok())
        return notARegularExpression(made->pattern());
    return std::shared_ptr<const PreparedFunction>(std::move(made));
}

Prepared prepareReplacement(std::string_view pattern, std::string_view replacement, std::int64_t memory) {
    auto made = std::make_shared<Replacement>(pattern, replacement, regularOptions(memory));
    if (!made->pattern().ok())
        return notARegularExpression(made->pattern());
    std::string reason;
    if (!made->pattern().CheckRewriteString(pieceOf(replacement), &reason))
        return Error{fmt::format("this is not a replacement: {}", reason)};
    return std::shared_ptr<const PreparedFunction>(std::move(made));
}

} // namespace tavix::expression
