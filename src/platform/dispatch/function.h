#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace quellaro {

template <typename Signature>
class Function;

// A call to be made later, with what it has captured. Copies share their captures and cost no memory, so that handing
// one on cannot fail; what is captured need not be copyable. std::function keeps type information, a copier and a
// second form of storage for every lambda, which made the shared library 10 KB larger. Calling an empty one is an
// error of the caller's. Copies may be made, called and dropped on different threads; what they call is not locked.
template <typename R, typename... Arguments>
class Function<R(Arguments...)> {
 public:
  Function() noexcept = default;
  Function(std::nullptr_t) noexcept {}
  template <typename F>
  requires(!std::same_as<std::remove_cvref_t<F>, Function> && std::is_invocable_r_v<R, std::decay_t<F>&, Arguments...>)
      Function(F&& callable) {
    if constexpr (std::constructible_from<std::remove_cvref_t<F>, std::nullptr_t>) {
      if (callable == nullptr) return;
    }
    state_ = new Held<std::decay_t<F>>{{&call<std::decay_t<F>>, &destroy<std::decay_t<F>>}, std::forward<F>(callable)};
  }
  Function(const Function& other) noexcept : state_(other.state_) {
    if (state_ != nullptr) state_->owners.fetch_add(1, std::memory_order_relaxed);
  }
  Function(Function&& other) noexcept : state_(std::exchange(other.state_, nullptr)) {}
  Function& operator=(Function other) noexcept {
    std::swap(state_, other.state_);
    return *this;
  }
  ~Function() {
    if (state_ != nullptr && state_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) state_->destroy(state_);
  }

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
    F callable;
  };
  template <typename F>
  static R call(State& state, Arguments&&... arguments) {
    return std::invoke(static_cast<Held<F>&>(state).callable, std::forward<Arguments>(arguments)...);
  }
  template <typename F>
  static void destroy(State* state) {
    delete static_cast<Held<F>*>(state);
  }

  State* state_ = nullptr;
};

}  // namespace quellaro
