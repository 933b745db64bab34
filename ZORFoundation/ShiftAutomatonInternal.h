// SPDX-License-Identifier: Apache-2.0
#pragma once

// Small automata over text that take about a cycle a unit.

#include <ZORFoundation/CharacterRuleInternal.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace ZORFoundation {

using ZORPlatform::fourUnits;

/// An automaton over UTF-16 units whose states are shifts. The table has a row for each unit of Latin-1, which holds,
/// for every state, the state that the unit leads to; the row shifted by a state has the next one in its lowest bits.
/// So a step waits for a shift only: the look-ups do not depend on each other.
class ShiftAutomaton {
public:
    using State = std::uint64_t;
    using Row = std::uint64_t;

    /// No step leads out of it.
    static constexpr State kRefused = 0;
    /// The row of a unit that is counted.
    static constexpr Row kCounted = Row{1} << 63;
    static constexpr std::size_t kRows = 256;

    /// One of the states of an automaton, numbered from 1 to 9.
    [[nodiscard]] static constexpr State state(unsigned number) noexcept { return State{kStateBits} * number; }

    /// What a row has to hold to lead from any of some states to one.
    [[nodiscard]] static constexpr Row step(std::initializer_list<State> from, State to) noexcept {
        Row row = 0;
        for (const State state : from) row |= to << state;
        return row;
    }

    /// Lets each of the members of Latin-1 lead from any of some states to one.
    constexpr void addStep(const CharacterClass& members, std::initializer_list<State> from, State to) noexcept {
        for (char16_t unit = 0; unit < kRows; ++unit) {
            if (members.contains(unit)) rows_[unit] |= step(from, to);
        }
    }
    constexpr void setRow(char16_t unit, Row row) noexcept { rows_[unit] = row; }
    [[nodiscard]] constexpr Row row(char16_t unit) const noexcept { return rows_[unit]; }

    /// How far a run has come, and how many units it has counted.
    struct Progress {
        State state;
        std::size_t position = 0;
        std::size_t counted = 0;

        /// Takes one step of `length` units, unless it is refused or counts beyond `mostCounted`.
        constexpr bool take(Row row, std::size_t length, std::size_t mostCounted) noexcept {
            const State to = next(state, row);
            const std::size_t count = counted + (row >> 63);
            if (isRefused(to) || count > mostCounted) return false;
            state = to & kStateMask;
            position += length;
            counted = count;
            return true;
        }
    };

    /// Goes on until the text ends, or the next unit is refused, is beyond Latin-1 or is one to count too many.
    [[nodiscard]] Progress run(std::u16string_view text, Progress from, std::size_t mostCounted) const noexcept {
        // Kept in variables of their own, so that none goes by way of memory.
        State state = from.state;
        std::size_t position = from.position;
        std::size_t counted = from.counted;
        for (; position + 4 <= text.size(); position += 4) {
            const std::uint64_t word = fourUnits(text.data() + position);
            if ((word & 0xFF00'FF00'FF00'FF00) != 0) break;
            const Row first = rows_[word & 0xFF];
            const Row second = rows_[word >> 16 & 0xFF];
            const Row third = rows_[word >> 32 & 0xFF];
            const Row fourth = rows_[word >> 48];
            const State to = next(next(next(next(state, first), second), third), fourth);
            const std::size_t count = counted + (first >> 63) + (second >> 63) + (third >> 63) + (fourth >> 63);
            if (isRefused(to) || count > mostCounted) break;
            state = to;
            counted = count;
        }
        for (; position < text.size() && text[position] < kRows; ++position) {
            const Row row = rows_[text[position]];
            const State to = next(state, row);
            const std::size_t count = counted + (row >> 63);
            if (isRefused(to) || count > mostCounted) break;
            state = to;
            counted = count;
        }
        return {state & kStateMask, position, counted};
    }

private:
    static constexpr unsigned kStateBits = 6;
    static constexpr State kStateMask = (1U << kStateBits) - 1;

    // The next state in the lowest bits, below others without a meaning.
    static constexpr State next(State state, Row row) noexcept { return row >> (state & kStateMask); }
    static constexpr bool isRefused(State state) noexcept { return (state & kStateMask) == kRefused; }

    std::array<Row, kRows> rows_{};
};

}  // namespace ZORFoundation
