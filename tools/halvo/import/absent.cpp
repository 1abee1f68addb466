#include "import/import_options.h"
#include "options.h"

namespace halvo {

int importCue(const ImportOptions&) {
  return failure("this build of the tool cannot import. What brings it, and imports:  " QUELLARO_SOURCE
                 "/scripts/import SOURCE... -o CUE_DIR");
}

}  // namespace halvo
