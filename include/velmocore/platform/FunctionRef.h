#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace velmo {

/// Only of functions; see below.
template <class Signature>
class FunctionRef;

/// Refers to something callable for the time of one call: two words, no allocation,
/// no ownership. Pass it by value; the callable must outlive the call it is passed
/// to, which a lambda in the argument list does. A default-made one, or one of null, is empty and
/// must not be called. It may be called on any thread on which the callable may.
///
///     std::size_t n = 0;
///     parseWordsWithHandler(u"one two", [&](std::u16string_view, Range) { ++n; });
///     n;    // 2
template <class Result, class... Arguments>
class FunctionRef<Result(Arguments...)> {
public:
    constexpr FunctionRef() noexcept = default;
    constexpr FunctionRef(std::nullptr_t) noexcept {}

    /// Of a function, a lambda or any other object that can be called.
    template <class Callable>
    requires(
        !std::is_same_v<std::remove_cvref_t<Callable>, FunctionRef> &&
        std::is_invocable_r_v<Result, Callable&,
                              Arguments...>) constexpr FunctionRef(Callable&& callable) noexcept {
        using Target = std::remove_reference_t<Callable>;
        if constexpr (std::is_function_v<Target>) {
            target_.function = reinterpret_cast<void (*)()>(&callable);
            invoke_ = [](Storage target, Arguments... arguments) -> Result {
                return reinterpret_cast<Target*>(target.function)(
                    std::forward<Arguments>(arguments)...);
            };
        } else {
            target_.object = const_cast<void*>(static_cast<const void*>(std::addressof(callable)));
            invoke_ = [](Storage target, Arguments... arguments) -> Result {
                return (*static_cast<Target*>(target.object))(
                    std::forward<Arguments>(arguments)...);
            };
        }
    }

    Result operator()(Arguments... arguments) const {
        return invoke_(target_, std::forward<Arguments>(arguments)...);
    }
    /// Whether there is something to call.
    explicit constexpr operator bool() const noexcept { return invoke_ != nullptr; }

private:
    union Storage {
        void* object = nullptr;
        void (*function)();
    };
    Storage target_;
    Result (*invoke_)(Storage, Arguments...) = nullptr;
};

}  // namespace velmo
