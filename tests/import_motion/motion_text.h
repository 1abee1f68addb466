#pragma once

#include <string>

// Motion files of one layer or a few, a hundred units square, two seconds at 30 frames a second.
namespace quellaro {

inline std::string placed(const std::string& more = "") {
  return R"("ip":0,"op":60,"st":0,"ks":{"o":{"k":100},"p":{"k":[50,50,0]},"a":{"k":[0,0,0]},"s":{"k":[100,100]},"r":{"k":0}})" +
         (more.empty() ? "" : "," + more);
}

inline std::string fill(const std::string& color = "1,0,0") {
  return R"({"ty":"fl","c":{"k":[)" + color + R"(,1]},"o":{"k":100},"r":1})";
}

inline std::string box(int width, int height) {
  return R"({"ty":"rc","p":{"k":[0,0]},"s":{"k":[)" + std::to_string(width) + "," + std::to_string(height) +
         R"(]},"r":{"k":0}})";
}

inline std::string shapes(const std::string& items, const std::string& more = "") {
  return R"({"ty":4,"nm":"drawn",)" + placed(more) + R"(,"shapes":[{"ty":"gr","it":[)" + items +
         R"(,{"ty":"tr","p":{"k":[0,0]},"a":{"k":[0,0]},"s":{"k":[100,100]},"r":{"k":0},"o":{"k":100}}]}]})";
}

inline std::string motionOf(const std::string& layers, const std::string& more = "") {
  return R"({"v":"5.7","fr":30,"ip":0,"op":60,"w":100,"h":100,)" + (more.empty() ? "" : more + ",") + R"("layers":[)" +
         layers + "]}";
}

}  // namespace quellaro
