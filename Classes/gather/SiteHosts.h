// The hosts of a crawl, each with its pages in the order in which they were found, and with when it
// may be asked again.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <tuple>

#include <velmocore/gather/RobotsRules.h>

#include "gather/Frontier.h"

namespace velmo::detail {

/// What is known of the robots.txt of a server, which is a host with a port and a scheme.
struct ServerRules {
    std::optional<RobotsRules> rules = {};  ///< none until they are there
    std::uint32_t tries = 0;
    String complaint = {};  ///< why nobody told them; absent if somebody did
};

struct Host {
    std::deque<PageID> queue = {};
    bool isBusy = false;         ///< a request is under way
    double due = 0;              ///< when the next one may go out
    std::uint32_t troubles = 0;  ///< one behind the other
    std::map<String, ServerRules> servers = {};
};

/// Time to find a host that may be asked is logarithmic in their number.
class SiteHosts {
public:
    /// Of the host of a URL.
    void add(const URL& url, PageID id, bool isFirst = false);
    /// The host whose turn is the longest ago, of those with pages that are not busy and are due;
    /// it is busy from now on. Null if there is none.
    Host* take(double now);
    /// It is not busy any more, and may be asked again then.
    void release(Host& host, double due);
    /// It may be asked no sooner than then.
    void delay(const URL& url, double due);
    [[nodiscard]] Host& of(const URL& url);
    /// When the next host is due of those that are not busy; none if all have no pages.
    [[nodiscard]] std::optional<double> nextDue() const;

private:
    using Place = std::pair<double, Host*>;

    void enqueue(Host& host);

    std::map<String, Host> hosts_;
    std::set<Place> idle_;  ///< with pages, by when they are due
};

/// A server as a text: scheme, host and port.
[[nodiscard]] String serverOf(const URL& url);

}  // namespace velmo::detail
