// A small type-erased callable.
#pragma once

#include <TalLog/Assertion.h>

#include <memory>
#include <type_traits>
#include <utility>

namespace Tal {

template <class Signature>
class function;

/// Holds a callable by value; copies share it, state included. Calling an empty one is a bug in the caller: the
/// assertion "m_storage" ends the process. What the callable throws passes through. As thread-safe as the callable.
template <class Result, class... Arguments>
class function<Result(Arguments...)> {
 public:
  /// Empty: not to be called.
  function() noexcept = default;

  /// Holds a copy of @p callable, or what it was moved from; anything that takes the arguments and gives the result.
  template <class Callable,
            class = std::enable_if_t<!std::is_same_v<std::decay_t<Callable>, function> &&
                                     std::is_invocable_r_v<Result, std::decay_t<Callable>&, Arguments...>>>
  function(Callable&& callable)
      : m_storage(std::make_shared<Storage<std::decay_t<Callable>>>(std::forward<Callable>(callable))) {}

  /// Calls it.
  Result operator()(Arguments... arguments) const {
    TAL_ASSERT2_AT(m_storage, __func__, "Include/Tal/Function", TAL_LINE_TEXT(__LINE__));
    return (*m_storage)(std::forward<Arguments>(arguments)...);
  }

  /// False for an empty one.
  explicit operator bool() const noexcept { return m_storage != nullptr; }

 private:
  struct BasicStorage {
    virtual ~BasicStorage() = default;
    virtual Result operator()(Arguments... arguments) = 0;
  };

  template <class Callable>
  struct Storage final : BasicStorage {
    template <class Source>
    // Never copied or moved. NOLINTNEXTLINE(bugprone-forwarding-reference-overload)
    explicit Storage(Source&& source) : m_callable(std::forward<Source>(source)) {}
    Result operator()(Arguments... arguments) override { return m_callable(std::forward<Arguments>(arguments)...); }
    Callable m_callable;
  };

  std::shared_ptr<BasicStorage> m_storage;
};

/// Tells something that may change, such as whether a result is still wanted.
using BoolReader = function<bool()>;

}  // namespace Tal
