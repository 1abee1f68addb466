#include "import/motion/renderer.h"

namespace halvo::motion {

bool canEvaluate() { return false; }

Renderer::Renderer(const std::string& text) : text_(text) {}

std::string Renderer::tree(std::size_t, std::size_t, std::size_t) const { return {}; }

std::string Renderer::picture(std::size_t, std::size_t) const { return {}; }

}  // namespace halvo::motion
