#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// A list of advertisers in the text format that blockers share: a rule a line.
///
///     const AdvertisementFilter filter(u"! ours\n||ads.example^\n||h.org/banner/\n@@||good.ads.example^");
///     filter.matches(URL::URLWithString(u"http://x.ads.example/a"));      // true
///     filter.matches(URL::URLWithString(u"http://good.ads.example/a"));   // false
///
/// Rules that tell an address by itself count, in any case:
/// - "||host^" and "||host": the host and all below it; "||host/path": where the path begins so;
/// - a text of at least four units with none of * ^ | in it: an address that holds it;
/// - "@@" in front of one of these: no advertisement after all;
/// - a * at either end means nothing; of options behind a $ the rule may have those that do not ask
///   what a link stands in: third-party, 3p, popup, document, doc, all and important.
///
/// All other rules, those for parts of pages too, are left out and counted. Copies share the rules.
/// The number of rules makes no difference to the time that a URL takes. Threads: may be asked on
/// any thread.
class VELMO_API AdvertisementFilter {
public:
    /// Reads a list; an empty or absent one has no rules. Time is linear in it.
    explicit AdvertisementFilter(std::u16string_view rules);

    /// False for an absent URL and for one without a host.
    [[nodiscard]] bool matches(const URL& url) const;

    /// The rules that count, exceptions too.
    [[nodiscard]] std::size_t numberOfRules() const noexcept;
    /// The lines that are neither a rule that counts, nor a comment (!), a title ([) or empty.
    [[nodiscard]] std::size_t numberOfSkippedLines() const noexcept;

private:
    struct Rules;

    std::shared_ptr<const Rules> rules_;
};

}  // namespace velmo
