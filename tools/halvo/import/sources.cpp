#include "import/sources.h"

#include <iterator>

#include "input.h"
#include "picture/svg_folder.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

Importing<std::vector<std::string>> listFolder(const std::string& folder) {
  std::vector<std::string> names = svgNamesIn(folder);
  if (names.empty()) return refusal(folder, "there is no .svg or .svgz file in this folder");
  // Which of them is the frame, nobody but their maker knows.
  for (std::size_t i = 1; i < names.size(); ++i)
    if (compareNaturally(*svgStemOf(names[i - 1]), *svgStemOf(names[i])) == 0)
      return refusal(folder, names[i - 1] + " and " + names[i] +
                                 " are two sources of one name: remove one, or name the files in their order");
  const std::string start = folder.back() == '/' ? folder : folder + "/";
  for (std::string& name : names) {
    name.insert(0, start);
    // One that is named may be a pipe; one that lies about would be waited for.
    if (isStream(name)) return refusal(name, "this is no regular file");
  }
  return names;
}

}  // namespace

Importing<std::vector<std::string>> listSources(const std::vector<std::string>& named) {
  std::vector<std::string> files;
  for (const std::string& name : named) {
    if (!FileManager::directoryExistsAtPath(name)) {
      files.push_back(name);
      continue;
    }
    auto listed = listFolder(name);
    if (auto* const why = std::get_if<Refusal>(&listed)) return std::move(*why);
    auto& more = std::get<0>(listed);
    files.insert(files.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
  }
  if (files.size() > limits::kFrames)
    return refusal(named.front(), std::to_string(files.size()) + " sources, but the player takes at most " +
                                      std::to_string(limits::kFrames) + " frames");
  return files;
}

}  // namespace halvo
