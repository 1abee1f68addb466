#include "import/haptics.h"

#include "check/haptics.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

using namespace quellaro;

Importing<HapticPart> readHaptics(const std::string& file, Report& report) {
  if (file.empty()) return HapticPart{"{\"Version\": 1.0, \"Pattern\": []}\n", std::nullopt};
  auto pattern = FileManager::readAtPath(file);
  if (!pattern) return refusal(file, pattern.error().localizedDescription);
  Report found;
  const auto felt = checkHaptics(file, true, found);
  HapticPart part{std::move(*pattern), felt ? std::optional(felt->duration()) : std::nullopt};
  for (const FindingGroup* const group : found.groups()) {
    Finding finding = group->first;
    if (kindOf(finding.id).severity == Severity::Error) return refusal(file, finding.what);
    finding.file = file;
    report.add(std::move(finding));
  }
  return part;
}

}  // namespace halvo
