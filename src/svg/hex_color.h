#pragma once

#include <string_view>

#include "platform/coregraphics/color.h"

namespace quellaro {

// "#rgb", "#rgba", "#rrggbb" or "#rrggbbaa", the "#" optional. Every other text is a colour too: the hexadecimal digits
// it starts with are read as a number, whose low 32 bits are the colour, so that a word or a reference is transparent
// black and draws nothing.
CGColor colorFromHexString(std::string_view text);

}  // namespace quellaro
