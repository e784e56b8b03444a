// People's letters are made label by label out of the ASCII form, so that one label which cannot be
// shown leaves the others as they are, and what was written makes no difference.
#include <velmocore/url/DomainNames.h>

#include "platform/DomainNames.h"
#include "url/WebHosts.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

/// The label in the letters of people, if it has such; else the label.
String lettersOf(Units label) {
    if (!label.starts_with(u"xn--")) return label;
    const String letters = detail::domains::toUnicode(label);
    const bool isBroken = letters.isEmpty() || letters.view().find(u'\uFFFD') != Units::npos;
    return isBroken ? String(label) : letters;
}

template <class Shows>
String inLetters(Units domain, Shows shows) {
    String ascii = domainToASCII(domain);
    if (ascii.view().find(u"xn--") == Units::npos) return ascii;
    StringBuilder out(ascii.length());
    for (Units rest = ascii;;) {
        const Units label = rest.substr(0, rest.find(u'.'));
        const String letters = lettersOf(label);
        out.append(shows(letters.view()) ? letters.view() : label);
        if (label.size() == rest.size()) return out.finish();
        out.append(u'.');
        rest.remove_prefix(label.size() + 1);
    }
}

}  // namespace

String domainToASCII(Units domain) {
    StringBuilder out(domain.size());
    return detail::appendDomainHost(out, domain) ? out.finish() : String();
}

String domainToUnicode(Units domain) {
    return inLetters(domain, [](Units) { return true; });
}

String displayDomain(Units domain) {
    return inLetters(domain, [](Units label) { return !detail::domains::isDeceptive(label); });
}

}  // namespace velmo
