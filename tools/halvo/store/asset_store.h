#pragma once

#include <string>

#include "platform/foundation/error.h"
#include "store/listing_change.h"
#include "store/playable_cue.h"
#include "store/publication.h"
#include "store/set_writer.h"

namespace halvo {

// Writes the cue below a path that was not there before, and then lets version_config.json list it: whatever happens in
// between, the store points at files that are there. Everything else that the store lists stays as it is. A version
// that is there already with the same content is listed again, without a copy.
quellaro::Result<Change> publishIntoStore(const std::string& store, const Publication& publication,
                                          const CueFiles& files, const ChangeOptions& options,
                                          const Progress& progress);

}  // namespace halvo
