#include "base/Ascii.h"
#include "base/Characters.h"
#include "expression/RowEvaluator.h"
#include "findings/FieldRules.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>

namespace tavix::findings {

namespace {

constexpr std::string_view kLowered = "lower(`Value`)";
constexpr std::string_view kUnaccented = "unaccent(lower(`Value`))";
constexpr std::string_view kSqueezed = R"(regexp_replace(unaccent(lower(`Value`)), '[^\pL\pN]+', ''))";

expression::Program compiled(std::string_view expression) {
    const expression::Field fields[] = {{"Value", expression::Type::Text}};
    return *expression::compile(expression, fields, expression::Wanted::Value, 0).program;
}

/// An expression over `Value` that gives a text.
class Key {
  public:
    explicit Key(const expression::Program& program) : m_evaluator(program) {}

    std::string of(std::string_view text) {
        const expression::Value row[] = {expression::Value::ofText(text)};
        const expression::Value result = m_evaluator.evaluate(row);
        return result.isNull() ? std::string() : std::string(result.text);
    }

  private:
    expression::RowEvaluator m_evaluator;
};

struct KeyPrograms {
    expression::Program lowered = compiled(kLowered);
    expression::Program unaccented = compiled(kUnaccented);
    expression::Program squeezed = compiled(kSqueezed);

    static const KeyPrograms& get() {
        static const KeyPrograms kPrograms;
        return kPrograms;
    }
};

void squeezeAscii(std::string_view text, std::string& key) {
    key.clear();
    for (const char c : text)
        if (isAsciiLetter(c) || isAsciiDigit(c))
            key += asciiLower(c);
}

/// Such a text can only come from one with a letter, so all values that have this key are known.
bool hasLetter(std::string_view key) {
    return std::any_of(key.begin(), key.end(), [](char c) { return isAsciiLetter(c) || !isAscii(c); });
}

/// Numbers differ by their signs and points: 1.10 is not 11.0.
bool isWritten(std::string_view key) {
    constexpr std::size_t kLeastLetters = 4;
    return key.size() >= kLeastLetters && hasLetter(key) && std::none_of(key.begin(), key.end(), isAsciiDigit);
}

/// The text without punctuation, and with single blanks between words.
std::string wordsOf(std::string_view text) {
    std::string words;
    for (const char c : text)
        if (c == ' ' ? !words.empty() && words.back() != ' ' : isAsciiLetter(c) || isAsciiDigit(c) || !isAscii(c))
            words += c;
    if (words.ends_with(' '))
        words.pop_back();
    return words;
}

bool hasSingleLetter(std::string_view words) {
    std::size_t length = 0;
    for (const char c : words) {
        if (c == ' ' && length == 1)
            return true;
        length = c == ' ' ? 0 : length + 1;
    }
    return length == 1;
}

class Variants {
  public:
    explicit Variants(FieldCase& field) : m_field(field), m_words(field.values.words()) {}

    void find() {
        std::vector<std::pair<std::size_t, std::size_t>> byHash; ///< of the squeezed key; index
        byHash.reserve(m_words.size());
        std::string key;
        for (std::size_t i = 0; i < m_words.size(); ++i) {
            const std::string_view text = m_words.at(i).text;
            if (isAscii(text))
                squeezeAscii(text, key);
            else
                key = m_squeezed.of(text);
            if (hasLetter(key))
                byHash.emplace_back(std::hash<std::string_view>()(key), i);
        }
        std::sort(byHash.begin(), byHash.end());
        for (std::size_t begin = 0; begin < byHash.size();) {
            std::size_t end = begin + 1;
            while (end < byHash.size() && byHash[end].first == byHash[begin].first)
                ++end;
            if (end - begin > 1)
                takeGroup(std::span(byHash).subspan(begin, end - begin));
            begin = end;
        }
        add("several-cases", Likelihood::Likely, kLowered, m_cases);
        add("several-accents", Likelihood::Possible, kUnaccented, m_accents);
        add("several-spellings", Likelihood::Possible, {}, m_spellings);
    }

  private:
    struct Group {
        std::vector<Counted> values;
        std::set<std::string> keys; ///< of the finer kind
    };
    using Groups = std::map<std::string, Group>;

    /// Values whose squeezed keys have one hash, and nearly always one key.
    void takeGroup(std::span<const std::pair<std::size_t, std::size_t>> members) {
        Groups cases;
        Groups accents;
        Groups spellings;
        for (const auto& member : members) {
            const Counted value = m_words.at(member.second);
            const std::string lowered = m_lowered.of(value.text);
            const std::string unaccented = m_unaccented.of(value.text);
            put(cases, lowered, value, std::string(value.text));
            put(accents, unaccented, value, lowered);
            put(spellings, m_squeezed.of(value.text), value, unaccented);
        }
        keep(cases, m_cases);
        keep(accents, m_accents);
        for (auto& [key, group] : spellings)
            leaveSpellings(group);
        std::erase_if(spellings, [](const auto& group) { return !isWritten(group.first); });
        keep(spellings, m_spellings);
    }

    /// "J. Smith" is "J Smith", but "Juan A." is not "Juana": blanks around single letters count.
    void leaveSpellings(Group& group) {
        const std::string first = wordsOf(m_unaccented.of(group.values.front().text));
        const auto isLikeFirst = [&](const Counted& value) { return wordsOf(m_unaccented.of(value.text)) == first; };
        if (std::all_of(group.values.begin(), group.values.end(), isLikeFirst))
            return;
        std::erase_if(group.values,
                      [&](const Counted& value) { return hasSingleLetter(wordsOf(m_unaccented.of(value.text))); });
        group.keys.clear();
        for (const Counted& value : group.values)
            group.keys.insert(m_unaccented.of(value.text));
    }

    static void put(Groups& groups, const std::string& key, Counted value, std::string finer) {
        Group& group = groups[key];
        group.values.push_back(value);
        group.keys.insert(std::move(finer));
    }

    static void keep(Groups& groups, Groups& kept) {
        for (auto& [key, group] : groups)
            if (group.keys.size() > 1 && hasLetter(key))
                kept.insert_or_assign(key, std::move(group));
    }

    /// `subject`: what the keys of the groups are compared with; empty: the values are listed.
    void add(std::string_view code, Likelihood likelihood, std::string_view subject, const Groups& groups) {
        if (groups.empty())
            return;
        Hits hits;
        std::vector<std::string_view> keys;
        std::vector<std::string_view> texts;
        const Group* largest = nullptr;
        std::uint64_t mostRows = 0;
        for (const auto& [key, group] : groups) {
            std::uint64_t rows = 0;
            for (const Counted& value : group.values) {
                hits.add(value.count);
                texts.push_back(value.text);
                rows += value.count;
            }
            if (rows > mostRows) {
                mostRows = rows;
                largest = &group;
            }
            keys.push_back(key);
        }
        std::string detail = namesOf(largest->values);
        if (groups.size() > 1)
            detail += fmt::format(", and {} other {}", groups.size() - 1, groups.size() == 2 ? "text" : "texts");
        m_field.add(code, likelihood, hits,
                    subject.empty() ? listCondition("`Value`", std::move(texts))
                                    : listCondition(subject, std::move(keys)),
                    std::move(detail));
    }

    FieldCase& m_field;
    const TextList& m_words;
    Key m_lowered{KeyPrograms::get().lowered};
    Key m_unaccented{KeyPrograms::get().unaccented};
    Key m_squeezed{KeyPrograms::get().squeezed};
    Groups m_cases;
    Groups m_accents;
    Groups m_spellings;
};

/// Codes for one meaning, in lower case.
using Family = std::vector<std::string_view>;

void addMixedCodes(FieldCase& field) {
    constexpr std::uint64_t kMostCodes = 12;
    if (field.values.shown().values > kMostCodes || field.values.words().isFull())
        return;
    static const std::vector<Family> kFamilies = {{"y", "yes", "true", "j", "ja", "oui", "si"},
                                                  {"t", "true"},
                                                  {"n", "no", "false", "nein", "non"},
                                                  {"f", "false"},
                                                  {"m", "male", "man"},
                                                  {"f", "female", "woman"}};
    std::vector<Counted> mixed;
    for (const Family& family : kFamilies) {
        std::vector<Counted> members;
        std::set<std::string> spellings;
        for (std::size_t i = 0; i < field.values.words().size(); ++i) {
            const Counted value = field.values.words().at(i);
            std::string lower = asciiLower(value.text);
            if (std::find(family.begin(), family.end(), lower) == family.end())
                continue;
            members.push_back(value);
            spellings.insert(std::move(lower));
        }
        if (spellings.size() < 2)
            continue;
        for (const Counted& value : members)
            if (std::none_of(mixed.begin(), mixed.end(),
                             [&](const Counted& other) { return other.text == value.text; }))
                mixed.push_back(value);
    }
    field.addListed("mixed-codes", Likelihood::Likely, mixed);
}

} // namespace

void addVariants(FieldCase& field) {
    const TextList& words = field.values.words();
    if (words.isFull() || words.hasLeftOut() || words.size() < 2)
        return;
    Variants(field).find();
    addMixedCodes(field);
}

} // namespace tavix::findings
