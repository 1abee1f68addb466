#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace quellaro {

// Lists of numbers are what frames are made of. Where the processor allows it they are read sixty-four characters at a
// time: where each number and its point stand is known before any of them is read, so that none waits for the one
// before it. For a curve's six that is more than twice as fast as one by one.

// What may be looked at: sixty-four characters, and what is loaded with a number that starts at the last of them.
inline constexpr std::ptrdiff_t kNumberWindow = 64 + 8;

bool canScanNumberWindow();

// By their four low bits: the separator that has these, or a character that has others. None is part of a number.
using SeparatorTable = std::array<char, 16>;

// Reads pairs of numbers, as two are calculated at once, at the front of the kNumberWindow characters at `p`, with
// separators and a minus before each, until there is room for no more or anything unusual: a number of more than eight
// characters, an exponent, a plus, another character, or the window's end. Gives how many numbers it has read, and
// moves `p` behind the last one. Only where canScanNumberWindow().
std::size_t scanNumberWindow(const char*& p, const SeparatorTable& separators, std::span<double> into);

}  // namespace quellaro
