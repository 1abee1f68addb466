#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace quellaro {

// Makes frames, the same for the same seed: some that the engine draws as everybody does, and as many with one or
// several of the things that it does not know, or with a mistake in their data.
class DocumentGenerator {
 public:
  explicit DocumentGenerator(std::uint32_t seed) : random_(seed) {}

  std::string document();

 private:
  unsigned below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }
  bool chance(unsigned percent) { return below(100) < percent; }
  template <std::size_t size>
  std::string oneOf(const char* const (&texts)[size]) {
    return texts[below(size)];
  }
  // Whether something troublesome comes next: seldom, and in half of the documents never.
  bool isTrouble() { return mayTrouble_ && chance(12); }

  std::string root();
  std::string content(int depth);
  std::string element(int depth);
  std::string shape();
  std::string pathData();
  std::string segment(char& last, bool& wasClosed);
  std::string points();
  std::string paint(bool isShape);
  std::string attributes();
  std::string color();
  std::string transform();
  // A coordinate, and the value of an attribute.
  std::string number();
  std::string value();
  std::string separator();
  // A character taken out, put in or changed.
  std::string damaged(std::string data);

  std::mt19937 random_;
  bool mayTrouble_ = false;
};

}  // namespace quellaro
