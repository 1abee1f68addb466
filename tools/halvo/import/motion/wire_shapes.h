#pragma once

#include <optional>

#include "import/art/display_list.h"
#include "import/motion/wire.h"

namespace halvo::motion {

// What stands next on the wire. Fails the reader over what cannot be.
art::Outline readOutline(WireReader& wire);
// Nothing where there is nothing to see.
std::optional<art::Shape> readShape(WireReader& wire);

}  // namespace halvo::motion
