#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "platform/foundation/error.h"
#include "store/playable_cue.h"
#include "store/publication.h"
#include "store/set_record.h"
#include "store/signing_key.h"

namespace halvo {

// The bytes written and those to be written, now and then.
using Progress = std::function<void(std::size_t written, std::size_t total)>;

// The first of cue/version, cue/version-2, cue/version-3 and so on that does not exist in the store yet.
quellaro::Result<std::string> freshPath(const std::string& store, const Publication& publication);

// Everything of a set, signed if there is a key (null: none), under a hidden name first: at its own path it is
// complete, whenever the process is killed.
quellaro::Result<SetRecord> writeSet(const std::string& directory, const Publication& publication,
                                     const CueFiles& files, const SigningKey* key, const Progress& progress);

}  // namespace halvo
