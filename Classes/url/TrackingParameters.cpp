// Rows of one's own stand in a table beside the built-in ones (see KnownParameters.h), so that their
// number costs nothing.
#include <velmocore/url/TrackingParameters.h>

#include <algorithm>

#include "url/KnownParameters.h"

namespace velmo {

const TrackingParameters& TrackingParameters::common() {
    static const TrackingParameters& parameters = *new TrackingParameters(std::u16string_view());
    return parameters;
}

TrackingParameters::TrackingParameters(std::u16string_view text) {
    auto known = std::make_shared<detail::KnownParameters>();
    while (!text.empty()) {
        const std::u16string_view line = text.substr(0, text.find(u'\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const std::size_t start = line.find_first_not_of(u" \t\r");
        if (start != line.npos && line[start] != u'#') known->add(line);
    }
    known_ = std::move(known);
}

bool TrackingParameters::contains(std::u16string_view name, std::u16string_view host) const {
    return known_->isTracking(name, host);
}

std::size_t TrackingParameters::numberOfRejectedLines() const noexcept {
    return known_->numberOfRejected();
}

}  // namespace velmo
