#include <fmt/format.h>

#include <ostream>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Range.h>

namespace velmo {

std::string printed(const Range& range) {
    return range.isFound() ? fmt::format("{{{}, {}}}", range.location, range.length) : "{none}";
}

std::string printed(const Error& error) {
    return fmt::format("{} {}: {}", error.domain.utf8(), error.code, error.text.utf8());
}

std::ostream& operator<<(std::ostream& stream, const Range& range) {
    return stream << printed(range);
}

std::ostream& operator<<(std::ostream& stream, const Error& error) {
    return stream << printed(error);
}

}  // namespace velmo
