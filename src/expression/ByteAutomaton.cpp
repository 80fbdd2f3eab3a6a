#include "expression/ByteAutomaton.h"

#include "expression/SimplePattern.h"

#include <algorithm>
#include <map>

namespace tavix::expression {

namespace {

constexpr std::size_t kMostPlaces = 512;
constexpr std::size_t kMostStates = 250;

/// Where one may stand in a pattern: before a byte of a set, before two ways to go on, or at its end.
struct Place {
    enum class Kind { Bytes, Fork, End };
    Kind kind = Kind::End;
    AsciiSet bytes;
    std::size_t next = 0;
    std::size_t other = 0;
};

/// The places of a pattern, made from its end to its beginning.
class Places {
  public:
    explicit Places(const PatternPart& pattern) {
        m_list.emplace_back();
        m_start = add(pattern, 0);
    }

    [[nodiscard]] bool areTooMany() const { return m_list.size() > kMostPlaces; }
    [[nodiscard]] std::size_t start() const { return m_start; }
    [[nodiscard]] const Place& operator[](std::size_t place) const { return m_list[place]; }
    [[nodiscard]] const std::vector<Place>& list() const { return m_list; }

  private:
    /// Where the part begins that is followed by the place `next`.
    std::size_t add(const PatternPart& part, std::size_t next) {
        if (areTooMany())
            return next;
        switch (part.kind) {
        case PatternPart::Kind::Bytes:
            return make({Place::Kind::Bytes, part.bytes, next, 0});
        case PatternPart::Kind::Sequence:
            for (auto one = part.parts.rbegin(); one != part.parts.rend(); ++one)
                next = add(*one, next);
            return next;
        case PatternPart::Kind::Choice: {
            std::size_t start = add(part.parts.back(), next);
            for (auto one = part.parts.rbegin() + 1; one != part.parts.rend(); ++one)
                start = make({Place::Kind::Fork, {}, add(*one, next), start});
            return start;
        }
        case PatternPart::Kind::Repeat:
            return addRepeat(part, next);
        }
        return next;
    }

    std::size_t addRepeat(const PatternPart& part, std::size_t next) {
        const PatternPart& body = part.parts.front();
        std::size_t start = next;
        if (part.most == PatternPart::kUnlimited) {
            start = make({Place::Kind::Fork, {}, 0, next});
            m_list[start].next = add(body, start);
        } else {
            for (int i = part.least; i < part.most && !areTooMany(); ++i)
                start = make({Place::Kind::Fork, {}, add(body, start), next});
        }
        for (int i = 0; i < part.least && !areTooMany(); ++i)
            start = add(body, start);
        return start;
    }

    std::size_t make(Place place) {
        m_list.push_back(place);
        return m_list.size() - 1;
    }

    std::vector<Place> m_list;
    std::size_t m_start = 0;
};

/// Bytes that no set of the pattern tells apart, numbered; returns how many numbers there are.
std::size_t classify(const Places& places, std::array<std::uint8_t, 256>& classes) {
    std::map<std::vector<bool>, std::uint8_t> numbers;
    for (std::size_t byte = 0; byte < 128; ++byte) {
        std::vector<bool> memberships;
        for (const Place& place : places.list()) {
            if (place.kind == Place::Kind::Bytes)
                memberships.push_back(place.bytes[byte]);
        }
        const auto number = static_cast<std::uint8_t>(numbers.size());
        classes[byte] = numbers.emplace(std::move(memberships), number).first->second;
    }
    return numbers.size();
}

/// The states of the table: each a set of places at which one may stand.
class States {
  public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1); ///< where no place is left

    States(const Places& places, const std::array<std::uint8_t, 256>& classes, std::size_t classCount)
        : m_places(places) {
        for (std::size_t byte = 128; byte-- > 0;)
            m_examples[classes[byte]] = byte;
        (void)stateOf({m_places.start()});
        for (std::size_t state = 0; state < m_sets.size() && !areTooMany(); ++state) {
            for (std::size_t c = 0; c < classCount; ++c)
                m_moves.push_back(move(state, m_examples[c]));
        }
    }

    [[nodiscard]] bool areTooMany() const { return m_sets.size() > kMostStates; }
    [[nodiscard]] std::size_t count() const { return m_sets.size(); }
    /// For each state a move for each class.
    [[nodiscard]] const std::vector<std::size_t>& moves() const { return m_moves; }
    [[nodiscard]] bool isAccepting(std::size_t state) const { return m_sets[state].front() == 0; }

  private:
    using Set = std::vector<std::size_t>; ///< ascending; the end of the pattern is 0

    std::size_t move(std::size_t state, std::size_t byte) {
        std::vector<std::size_t> reached;
        for (const std::size_t place : m_sets[state]) {
            if (m_places[place].kind == Place::Kind::Bytes && m_places[place].bytes[byte])
                reached.push_back(m_places[place].next);
        }
        return reached.empty() ? kNone : stateOf(std::move(reached));
    }

    /// With all that can be reached without a byte.
    std::size_t stateOf(std::vector<std::size_t> open) {
        std::vector<bool> seen(m_places.list().size());
        Set set;
        while (!open.empty()) {
            const std::size_t place = open.back();
            open.pop_back();
            if (seen[place])
                continue;
            seen[place] = true;
            if (m_places[place].kind != Place::Kind::Fork) {
                set.push_back(place);
                continue;
            }
            open.push_back(m_places[place].next);
            open.push_back(m_places[place].other);
        }
        std::ranges::sort(set);
        const auto [known, isNew] = m_numbers.emplace(set, m_sets.size());
        if (isNew)
            m_sets.push_back(std::move(set));
        return known->second;
    }

    const Places& m_places;
    std::array<std::size_t, 256> m_examples{}; ///< of each class, a byte
    std::vector<Set> m_sets;
    std::map<Set, std::size_t> m_numbers;
    std::vector<std::size_t> m_moves;
};

} // namespace

std::optional<ByteAutomaton> ByteAutomaton::build(std::string_view pattern) {
    const std::optional<PatternPart> parsed = parseSimplePattern(pattern);
    return parsed ? build(*parsed) : std::nullopt;
}

std::optional<ByteAutomaton> ByteAutomaton::build(const PatternPart& pattern) {
    const Places places(pattern);
    if (places.areTooMany())
        return std::nullopt;
    ByteAutomaton made;
    const std::size_t classes = classify(places, made.m_class);
    const States states(places, made.m_class, classes);
    if (states.areTooMany())
        return std::nullopt;

    const std::size_t width = classes + 1;
    std::fill(made.m_class.begin() + 128, made.m_class.end(), static_cast<std::uint8_t>(classes));
    std::size_t rows = 0;
    const auto nextRow = [&] { return static_cast<std::uint16_t>(rows++ * width); };
    (void)nextRow(); // kNever
    const std::uint16_t unknown = nextRow();
    made.m_firstOpen = static_cast<std::uint16_t>(rows * width);
    std::vector<std::uint16_t> rowOf(states.count());
    for (const bool isAccepting : {false, true}) {
        if (isAccepting)
            made.m_firstAccepting = static_cast<std::uint16_t>(rows * width);
        for (std::size_t state = 0; state < states.count(); ++state) {
            if (states.isAccepting(state) == isAccepting)
                rowOf[state] = nextRow();
        }
    }
    made.m_start = rowOf[0];
    made.m_next.assign(rows * width, kNever);
    for (std::size_t state = 0; state < states.count(); ++state) {
        for (std::size_t c = 0; c < classes; ++c) {
            const std::size_t to = states.moves()[state * classes + c];
            made.m_next[rowOf[state] + c] = to == States::kNone ? kNever : rowOf[to];
        }
        made.m_next[rowOf[state] + classes] = unknown;
    }
    return made;
}

} // namespace tavix::expression
