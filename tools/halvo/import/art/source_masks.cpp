#include "import/art/source_masks.h"

#include <cstdio>
#include <string>

#include "import/art/source_text.h"

namespace halvo::art {

namespace {

std::string opening(double opacity, std::string_view more) {
  char text[64];
  std::snprintf(text, sizeof text, "<g opacity=\"%.6f\"", opacity);
  return text + std::string(more) + '>';
}

std::string attributeText(std::string_view name, std::string_view value) {
  const char quote = value.find('"') == std::string_view::npos ? '"' : '\'';
  return ' ' + std::string(name) + '=' + quote + std::string(value) + quote;
}

bool isPlainNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789.-+") == std::string_view::npos;
}

// A viewport of the mask's own region, which cuts off what is outside.
std::string regionOf(const Tag& mask) {
  if (mask.find("maskUnits") != "userSpaceOnUse") return "<g>";
  std::string_view numbers[4];
  const char* const names[] = {"x", "y", "width", "height"};
  for (int i = 0; i < 4; ++i) {
    const auto value = mask.find(names[i]);
    if (!value || !isPlainNumber(*value)) return "<g>";
    numbers[i] = *value;
  }
  std::string box;
  std::string text = "<svg";
  for (int i = 0; i < 4; ++i) {
    text += attributeText(names[i], numbers[i]);
    box += (i > 0 ? " " : "") + std::string(numbers[i]);
  }
  return text + attributeText("viewBox", box) + '>';
}

}  // namespace

std::string_view referredId(std::string_view value) {
  const std::size_t begin = value.find('#');
  if (value.find("url(") == std::string_view::npos || begin == std::string_view::npos) return {};
  const std::size_t end = value.find_first_of("\"') \t&", begin);
  return value.substr(begin + 1, end == std::string_view::npos ? end : end - begin - 1);
}

bool maskByGroup(std::string_view document, const Tag& masked, std::string_view maskId, const TagsById& ids,
                 const std::vector<Edit>& removals, std::vector<Edit>& edits) {
  const auto found = ids.find(maskId);
  if (found == ids.end() || found->second->name != "mask" || masked.isRoot) return false;
  const Tag& mask = *found->second;
  if (mask.find("maskContentUnits") == "objectBoundingBox") return false;
  const std::string_view style = mask.find("style").value_or("");
  const bool isAlpha = mask.find("mask-type") == "alpha" || style.find("mask-type:alpha") != std::string_view::npos ||
                       style.find("mask-type: alpha") != std::string_view::npos;
  // The mask's content is painted as where it stands, not as what it masks.
  constexpr std::string_view kPlain =
      " fill=\"#000\" fill-opacity=\"1\" fill-rule=\"nonzero\" stroke=\"none\" stroke-width=\"1\" stroke-opacity=\"1\""
      " clip-rule=\"nonzero\"";
  std::string content =
      opening(isAlpha ? kAlphaMask : kLightMask, attributeText("transform", masked.find("transform").value_or("")));
  const std::string region = regionOf(mask);
  content += "<g" + std::string(kPlain) + '>' + region + "<g";
  for (const char* name :
       {"fill", "stroke", "fill-opacity", "stroke-width", "fill-rule", "style", "class", "transform"})
    if (const auto value = mask.find(name)) content += attributeText(name, *value);
  content += '>' + edited(document, mask.end, mask.contentEnd, removals) + "</g>";
  content += region == "<g>" ? "</g>" : "</svg>";
  content += "</g></g></g>";
  edits.push_back({masked.begin, 0, opening(kMaskedGroup, "")});
  edits.push_back({masked.elementEnd, 0, content});
  return true;
}

}  // namespace halvo::art
