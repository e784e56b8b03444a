#include "gather/SiteHosts.h"

#include <algorithm>

#include <velmocore/text/Folding.h>

namespace velmo::detail {

String serverOf(const URL& url) {
    const std::optional<std::uint32_t> port = url.port();
    String server = lowercaseAsciiString(url.scheme() + u"://" + url.host());
    return port ? server + u":" + String::fromUTF8(std::to_string(*port)) : server;
}

Host& SiteHosts::of(const URL& url) { return hosts_[lowercaseAsciiString(url.host())]; }

void SiteHosts::enqueue(Host& host) {
    if (!host.isBusy && !host.queue.empty()) idle_.emplace(host.due, &host);
}

void SiteHosts::add(const URL& url, PageID id, bool isFirst) {
    Host& host = of(url);
    if (isFirst)
        host.queue.push_front(id);
    else
        host.queue.push_back(id);
    enqueue(host);
}

Host* SiteHosts::take(double now) {
    if (idle_.empty() || idle_.begin()->first > now) return nullptr;
    Host* const host = idle_.begin()->second;
    idle_.erase(idle_.begin());
    host->isBusy = true;
    return host;
}

void SiteHosts::release(Host& host, double due) {
    host.isBusy = false;
    host.due = std::max(host.due, due);
    enqueue(host);
}

void SiteHosts::delay(const URL& url, double due) {
    Host& host = of(url);
    if (!host.isBusy) idle_.erase({host.due, &host});
    host.due = std::max(host.due, due);
    enqueue(host);
}

std::optional<double> SiteHosts::nextDue() const {
    return idle_.empty() ? std::nullopt : std::optional(idle_.begin()->first);
}

}  // namespace velmo::detail
