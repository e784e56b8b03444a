// Hosts as lists of their parts. Only the forms for folders drop empty parts and cut long ones, as
// no folder can be named so; the others keep what the host has.
#include <velmocore/url/URLHosts.h>

#include <algorithm>

#include <velmocore/text/Normalisation.h>

#include "text/PathParts.h"
#include "url/LongComponents.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

std::vector<String> partsOf(Units host) {
    std::vector<String> parts;
    for (std::size_t start = 0, end; start <= host.size(); start = end + 1) {
        end = std::min(host.find(u'.', start), host.size());
        parts.push_back(host.substr(start, end - start));
    }
    return parts;
}

/// The parts in lower case, the last one first.
std::vector<String> invertedPartsOf(Units host) {
    std::u16string lower(host);
    lowercase(lower);
    std::vector<String> parts = partsOf(lower);
    std::reverse(parts.begin(), parts.end());
    return parts;
}

Units hostOf(const URL& url) { return url.part(URLPart::Host); }

}  // namespace

std::optional<std::vector<String>> hostComponents(Units host) {
    if (host.empty()) return std::nullopt;
    return partsOf(host);
}
std::optional<std::vector<String>> hostComponents(const URL& url) {
    return hostComponents(hostOf(url));
}

String invertedHost(Units host) {
    if (host.empty()) return {};
    std::vector<String> parts = invertedPartsOf(host);
    detail::joinFrom(parts, 0, u'.');
    return parts[0];
}
String invertedHost(const URL& url) { return invertedHost(hostOf(url)); }

// Hosts are inverted so that those of one domain stand beside each other in lists and folders.
std::vector<String> invertedHostComponents(Units host, std::uint64_t maximum) {
    if (host.empty()) return {};
    std::vector<String> parts = invertedPartsOf(host);
    std::erase_if(parts, [](const String& part) { return part.isEmpty(); });
    if (maximum != 0 && parts.size() > maximum) {
        detail::joinFrom(parts, static_cast<std::size_t>(maximum - 1), u'.');
        parts.back() = detail::fittingComponent(parts.back());
    }
    return parts;
}
std::vector<String> invertedHostComponents(const URL& url, std::size_t maximum) {
    return invertedHostComponents(hostOf(url), maximum);
}

String stringByAppendingInvertedHostComponents(Units host, std::size_t maximum,
                                               const String& toPath) {
    if (toPath.isAbsent()) return toPath;
    const std::vector<String> parts = invertedHostComponents(host, maximum);
    return parts.empty() ? toPath : detail::pathOfComponents(toPath, parts);
}

}  // namespace velmo
