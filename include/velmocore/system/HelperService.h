#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/PropertyList.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// An operation that a helper offers. Absent if it fails, with an error that reaches the caller.
using HelperOperation =
    std::function<std::optional<PropertyList>(const PropertyListArray& arguments, Error* error)>;

/// What a service does by itself.
struct HelperServiceOptions {
    /// Whether the object offers "stillBusy", which says whether an operation runs or waits. It is
    /// answered while one runs.
    bool answersStillBusy = true;
};

/// The side of a named connection that serves: one object with its operations, published under a
/// name for other processes of the same user.
///
///     HelperService service;
///     service.addOperation(u"length", [](const PropertyListArray& arguments, Error* error) {
///         const auto* text = arguments.empty() ? nullptr : std::get_if<String>(&arguments[0].value);
///         if (text) return std::optional(PropertyList{std::int64_t(text->length())});
///         *error = {u"example", 1, u"a text is wanted"};
///         return std::optional<PropertyList>();
///     });
///     if (service.publish(u"org.example.lengths-of-this-example")) service.stop(), service.serve();
///
/// One thread sets it up and serves, and runs the operations one after the other, so that they need
/// no locks; greetings, questions for what is offered, and stillBusy are answered meanwhile. An
/// operation that throws has failed; the helper goes on.
class VELMO_API HelperService {
public:
    /// Without operations, and not yet published.
    explicit HelperService(HelperServiceOptions options = {});
    /// Withdraws the name.
    ~HelperService();
    HelperService(const HelperService&) = delete;
    HelperService& operator=(const HelperService&) = delete;

    /// Before publishing. The error that an operation gets is never null. False if the name cannot
    /// be one, which is letters, digits and '_', with no digit first; the last of a name counts.
    bool addOperation(std::u16string_view name, HelperOperation operation);

    /// Registers the name, which may be any text but an empty one. False if another process serves
    /// under it, or if no socket can be made; what a killed one left is replaced.
    bool publish(const String& name, Error* error = nullptr);

    /// Serves until stop(). False if nothing is published, or if the system fails.
    bool serve(Error* error = nullptr);
    /// Ends serve(), now or as soon as it is called; an operation that runs comes to its end first.
    /// Any thread may call it, an operation, and a signal handler.
    void stop() noexcept;

private:
    struct State;
    const std::unique_ptr<State> state_;
};

}  // namespace velmo
