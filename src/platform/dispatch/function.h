#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace quellaro {

template <typename Signature>
class Function;

// A call to be made later, with what it has captured. Copies share their captures and cost no memory, so that handing
// one on cannot fail; what is captured need not be copyable. std::function keeps type information, a copier and a
// second form of storage for every lambda, which made the shared library 11 KB larger. Calling an empty one is an
// error of the caller's. Copies may be made, called and dropped on different threads; what they call is not locked.
template <typename R, typename... Arguments>
class Function<R(Arguments...)> {
 public:
  Function() noexcept = default;
  Function(std::nullptr_t) noexcept {}
  template <typename F, typename = std::enable_if_t<!std::is_same_v<std::remove_cvref_t<F>, Function> &&
                                                    std::is_invocable_r_v<R, std::decay_t<F>&, Arguments...>>>
  Function(F&& callable) {
    if constexpr (std::is_constructible_v<std::remove_cvref_t<F>, std::nullptr_t>) {
      if (callable == nullptr) return;
    }
    state_.reset(std::make_unique<Held<std::decay_t<F>>>(std::forward<F>(callable)).release());
  }
  Function(const Function& other) noexcept : state_(other.state_.get()) {
    if (state_ != nullptr) state_->owners.fetch_add(1, std::memory_order_relaxed);
  }
  Function(Function&&) noexcept = default;
  Function& operator=(Function other) noexcept {
    state_.swap(other.state_);
    return *this;
  }
  ~Function() = default;

  explicit operator bool() const noexcept { return state_ != nullptr; }
  friend bool operator==(const Function& function, std::nullptr_t) noexcept { return function.state_ == nullptr; }
  R operator()(Arguments... arguments) const { return state_->call(*state_, std::forward<Arguments>(arguments)...); }

 private:
  struct State {
    R (*call)(State&, Arguments&&...);
    void (*destroy)(State*);
    std::atomic<unsigned> owners = 1;
  };
  template <typename F>
  struct Held : State {
    explicit Held(F held) : State{&call, &destroy}, callable(std::move(held)) {}
    static R call(State& state, Arguments&&... arguments) {
      return std::invoke(static_cast<Held&>(state).callable, std::forward<Arguments>(arguments)...);
    }
    static void destroy(State* state) { const std::unique_ptr<Held> last(static_cast<Held*>(state)); }
    F callable;
  };
  // The last owner takes the captures along.
  struct Leave {
    void operator()(State* state) const {
      if (state->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) state->destroy(state);
    }
  };

  std::unique_ptr<State, Leave> state_;
};

}  // namespace quellaro
