#pragma once

#include <map>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "import/art/script_objects.h"
#include "import/art/script_painting.h"
#include "import/art/script_tokens.h"

namespace halvo::art {

// Reads the script as its own interpreter would: words take their operands off a stack and leave their results there,
// and the context on top is what drawing words work on. A word it does not know stops it, for what that would have done
// to the stack is not known either.
class ScriptReader {
 public:
  ScriptReader(const Matrix& toFrame, std::vector<ArtNote>& notes) : painting_{toFrame, notes} {}

  std::variant<DisplayList, ArtError> read(std::string_view script);

 private:
  using Surface = std::shared_ptr<ScriptSurface>;
  using Pattern = std::shared_ptr<ScriptPattern>;
  using Context = std::shared_ptr<ScriptContext>;
  using Operation = bool (ScriptReader::*)();

  bool take(const Token& token);
  bool word(std::string_view text);
  static const std::map<std::string_view, Operation>& operations();

  // The topmost value, where it is of that kind.
  template <class Value>
  Value* top() {
    return stack_.empty() ? nullptr : std::get_if<Value>(&stack_.back());
  }
  template <class Value>
  bool pop(Value& value) {
    Value* const found = top<Value>();
    if (!found) return false;
    value = std::move(*found);
    stack_.pop_back();
    return true;
  }
  // The topmost numbers, in the order they were pushed.
  template <std::size_t kCount>
  bool pop(double (&numbers)[kCount]) {
    for (std::size_t i = kCount; i-- > 0;)
      if (!pop(numbers[i])) return false;
    return true;
  }
  ScriptContext* context() {
    const Context* const found = top<Context>();
    return found ? found->get() : nullptr;
  }
  Point mapped(double x, double y) { return context()->matrix.map({x, y}); }

  bool closeArray();
  bool closeDictionary();
  // Of the stack and the names.
  bool dropTop();
  bool duplicate();
  bool exchange();
  bool index();
  bool roll();
  bool define();
  bool undefine();
  // Of surfaces and patterns.
  bool makeSurface();
  bool makeImage();
  bool makeSimilar();
  bool makeContext();
  bool makePattern();
  bool makeColour(Colour colour);
  bool grey();
  bool alpha();
  bool greyAlpha();
  bool rgb();
  bool rgba();
  bool linear();
  bool radial();
  bool addStop();
  bool setExtend();
  bool ignoreOperand();
  bool identity();
  bool setMatrix();
  bool changeMatrix(const Matrix& change);
  bool translate();
  bool scale();
  // Of contexts.
  bool setSource();
  bool setRule();
  bool setWidth();
  bool setCap();
  bool setJoin();
  bool setMiterLimit();
  bool setDash();
  bool setOperator();
  bool newPath();
  bool move();
  bool line();
  bool curve();
  bool close();
  bool rectanglePath();
  template <void (ScriptPainting::*kDraw)(const ScriptContext&) const, bool kKeepsPath = true>
  bool draw() {
    if (!context()) return false;
    (painting_.*kDraw)(*context());
    if constexpr (!kKeepsPath) context()->path.clear();
    return true;
  }
  bool mask();
  template <bool kKeepsPath>
  bool clip() {
    if (!context()) return false;
    painting_.clip(*context());
    if constexpr (!kKeepsPath) context()->path.clear();
    return true;
  }
  bool resetClip();

  ScriptPainting painting_;
  std::vector<ScriptValue> stack_;
  std::map<std::string_view, ScriptValue> names_;
  Surface picture_;
};

}  // namespace halvo::art
