#include "expression/ByteAutomaton.h"

#include "expression/SimplePattern.h"

#include <algorithm>
#include <map>

namespace tavix::expression {

namespace {

constexpr std::size_t kMostNfaStates = 512;
constexpr std::size_t kMostDfaStates = 250;

/// A state of the nondeterministic automaton: it reads a byte of a set, or branches, or is the end.
struct NfaState {
    enum class Kind { Bytes, Fork, End };
    Kind kind = Kind::End;
    AsciiSet bytes;
    std::size_t next = 0;
    std::size_t other = 0;
};

/// The nondeterministic automaton of a pattern, built from its end to its beginning.
class Nfa {
  public:
    explicit Nfa(const PatternPart& pattern) {
        m_list.emplace_back();
        m_start = add(pattern, 0);
    }

    [[nodiscard]] bool areTooMany() const { return m_list.size() > kMostNfaStates; }
    [[nodiscard]] std::size_t start() const { return m_start; }
    [[nodiscard]] const NfaState& operator[](std::size_t state) const { return m_list[state]; }
    [[nodiscard]] const std::vector<NfaState>& list() const { return m_list; }

  private:
    /// The first state of the part, which is followed by the state `next`.
    std::size_t add(const PatternPart& part, std::size_t next) {
        if (areTooMany())
            return next;
        switch (part.kind) {
        case PatternPart::Kind::Bytes:
            return make({NfaState::Kind::Bytes, part.bytes, next, 0});
        case PatternPart::Kind::Sequence:
            for (auto one = part.parts.rbegin(); one != part.parts.rend(); ++one)
                next = add(*one, next);
            return next;
        case PatternPart::Kind::Choice: {
            std::size_t start = add(part.parts.back(), next);
            for (auto one = part.parts.rbegin() + 1; one != part.parts.rend(); ++one)
                start = make({NfaState::Kind::Fork, {}, add(*one, next), start});
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
            start = make({NfaState::Kind::Fork, {}, 0, next});
            m_list[start].next = add(body, start);
        } else {
            for (int i = part.least; i < part.most && !areTooMany(); ++i)
                start = make({NfaState::Kind::Fork, {}, add(body, start), next});
        }
        for (int i = 0; i < part.least && !areTooMany(); ++i)
            start = add(body, start);
        return start;
    }

    std::size_t make(NfaState state) {
        m_list.push_back(state);
        return m_list.size() - 1;
    }

    std::vector<NfaState> m_list;
    std::size_t m_start = 0;
};

/// Numbers the classes of bytes that no set of the pattern distinguishes; returns their number.
std::size_t classify(const Nfa& nfa, std::array<std::uint8_t, 256>& classes) {
    std::map<std::vector<bool>, std::uint8_t> numbers;
    for (std::size_t byte = 0; byte < 128; ++byte) {
        std::vector<bool> memberships;
        for (const NfaState& state : nfa.list()) {
            if (state.kind == NfaState::Kind::Bytes)
                memberships.push_back(state.bytes[byte]);
        }
        const auto number = static_cast<std::uint8_t>(numbers.size());
        classes[byte] = numbers.emplace(std::move(memberships), number).first->second;
    }
    return numbers.size();
}

/// The states of the deterministic automaton, each a set of states of the other one.
class DfaStates {
  public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1); ///< the empty set

    DfaStates(const Nfa& nfa, const std::array<std::uint8_t, 256>& classes, std::size_t classCount) : m_nfa(nfa) {
        for (std::size_t byte = 128; byte-- > 0;)
            m_examples[classes[byte]] = byte;
        (void)stateOf({m_nfa.start()});
        for (std::size_t state = 0; state < m_sets.size() && !areTooMany(); ++state) {
            for (std::size_t c = 0; c < classCount; ++c)
                m_moves.push_back(move(state, m_examples[c]));
        }
    }

    [[nodiscard]] bool areTooMany() const { return m_sets.size() > kMostDfaStates; }
    [[nodiscard]] std::size_t count() const { return m_sets.size(); }
    /// For each state the next state for each class.
    [[nodiscard]] const std::vector<std::size_t>& moves() const { return m_moves; }
    [[nodiscard]] bool isAccepting(std::size_t state) const { return m_sets[state].front() == 0; }

  private:
    using Set = std::vector<std::size_t>; ///< ascending; the end of the pattern is 0

    std::size_t move(std::size_t state, std::size_t byte) {
        std::vector<std::size_t> reached;
        for (const std::size_t nfaState : m_sets[state]) {
            if (m_nfa[nfaState].kind == NfaState::Kind::Bytes && m_nfa[nfaState].bytes[byte])
                reached.push_back(m_nfa[nfaState].next);
        }
        return reached.empty() ? kNone : stateOf(std::move(reached));
    }

    /// Adds all states that can be reached without a byte.
    std::size_t stateOf(std::vector<std::size_t> open) {
        std::vector<bool> seen(m_nfa.list().size());
        Set set;
        while (!open.empty()) {
            const std::size_t nfaState = open.back();
            open.pop_back();
            if (seen[nfaState])
                continue;
            seen[nfaState] = true;
            if (m_nfa[nfaState].kind != NfaState::Kind::Fork) {
                set.push_back(nfaState);
                continue;
            }
            open.push_back(m_nfa[nfaState].next);
            open.push_back(m_nfa[nfaState].other);
        }
        std::ranges::sort(set);
        const auto [known, isNew] = m_numbers.emplace(set, m_sets.size());
        if (isNew)
            m_sets.push_back(std::move(set));
        return known->second;
    }

    const Nfa& m_nfa;
    std::array<std::size_t, 256> m_examples{}; ///< a byte of each class
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
    const Nfa nfa(pattern);
    if (nfa.areTooMany())
        return std::nullopt;
    ByteAutomaton made;
    const std::size_t classes = classify(nfa, made.m_class);
    const DfaStates states(nfa, made.m_class, classes);
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
            made.m_next[rowOf[state] + c] = to == DfaStates::kNone ? kNever : rowOf[to];
        }
        made.m_next[rowOf[state] + classes] = unknown;
    }
    return made;
}

} // namespace tavix::expression
