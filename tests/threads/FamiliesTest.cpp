// Eight threads over every family of operations at once, from the very first use of its tables:
// all must get what one alone gets. Under the thread sanitizer this also proves that nothing is
// shared without order.
#include <gtest/gtest.h>

#include <barrier>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <velmocore/feeds/FeedRendering.h>
#include <velmocore/markup/EditableNotes.h>
#include <velmocore/markup/Entities.h>
#include <velmocore/markup/JSONEscapes.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/markup/TagStripping.h>
#include <velmocore/net/URLRequest.h>
#include <velmocore/net/UserAgents.h>
#include <velmocore/platform/DateFormat.h>
#include <velmocore/platform/Log.h>
#include <velmocore/platform/PropertyList.h>
#include <velmocore/platform/Resources.h>
#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/query/QueryRewriting.h>
#include <velmocore/readers/BibTeX.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/readers/DocumentDates.h>
#include <velmocore/readers/Sheets.h>
#include <velmocore/storage/Base64.h>
#include <velmocore/storage/Compression.h>
#include <velmocore/storage/Digests.h>
#include <velmocore/storage/InternetLocations.h>
#include <velmocore/storage/KeyedDataEditing.h>
#include <velmocore/storage/MetaDataStore.h>
#include <velmocore/storage/StorageBlocks.h>
#include <velmocore/system/StandardFolders.h>
#include <velmocore/text/Checksums.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Finding.h>
#include <velmocore/text/Folding.h>
#include <velmocore/text/Lines.h>
#include <velmocore/text/Normalisation.h>
#include <velmocore/text/Paths.h>
#include <velmocore/text/Reformatting.h>
#include <velmocore/text/StringRanges.h>
#include <velmocore/text/TextAtIndex.h>
#include <velmocore/text/Trimming.h>
#include <velmocore/url/DomainNames.h>
#include <velmocore/url/FileKinds.h>
#include <velmocore/url/InvertedPaths.h>
#include <velmocore/url/LinkAcceptance.h>
#include <velmocore/url/MIMETypes.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/SearchEngines.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/url/URLSimplification.h>
#include <velmocore/words/Components.h>
#include <velmocore/words/Ellipsizing.h>
#include <velmocore/words/LanguageFilter.h>
#include <velmocore/words/Words.h>

#include "TestSupport.h"

namespace velmo {
namespace {

constexpr std::size_t Threads = 8;

std::string joined(const std::vector<String>& strings) {
    std::string all;
    for (const String& string : strings) (all += string.utf8()) += '\n';
    return all;
}

/// A date in a zone, written for people, and one among words.
std::string dates() {
    const DateOptions berlin{.zone = TimeZone::named(u"Europe/Berlin").value()};
    const Date day = date(u"3. Februar 2001, 10:11 Uhr", berlin).value();
    const Date other = documentDateByValidatingSeparation(u"on 3/2/2001", true, berlin).value();
    return stringInISO8601(other).utf8() + localizedDateAndTime(day, berlin.zone, "en_GB").utf8();
}

/// What all families make of a page; the order in which they are asked differs by thread.
std::vector<std::string> answers(const std::string& bytes, std::size_t first) {
    const Page page(bytes, {.url = URL::URLWithString(u"http://www.h.org/a/b.html?sid=abc123")});
    const String text = page.plainText();
    const URL& url = page.url();
    const QueryTerms query(u"(l* NEAR/9 c*) OR licen?e -\"no such words\"", {.wildcard = true});
    const std::function<std::string()> families[] = {
        [&] {
            return joined({page.title(), page.markup()}) + std::to_string(page.encoding());
        },
        [&] { return std::to_string(page.links().size() + 100 * page.images().size()); },
        [&] { return joined(std::vector<String>(htmlImages(page.markup()).size(), page.favIcon().absoluteString())); },
        [&] { return std::to_string(page.linkThumbnails().texts.size()) + (page.isErrorPage() ? "error" : "page"); },
        [&] {
            return joined({page.metadata().description, page.summary().title}) +
                   page.canonicalURL().absoluteString().utf8();
        },
        [&] { return stripTags(page.markup()).utf8() + formattedNote(page.markup()).utf8(); },
        [&] { return stringByConvertingEntitiesToCharacters(page.markup()).utf8(); },
        [&] { return stringByConvertingCharactersToJSON(text).utf8(); },
        [&] { return joined(wordsUsingDefaultSeparation(text)); },
        [&] { return joined(componentsUsingDefaultSeparation(text)); },
        [&] { return stringByEllipsizingAfterNWords(text, 20).utf8(); },
        [&] { return page.language(LanguageFilter(velmoResourcesDirectory())).utf8(); },
        [&] {
            return LanguageFilter(velmoResourcesDirectory(), LanguageRules::today()).languageTagOfText(text).utf8();
        },
        [&] { return query.matchesString(text, WildcardComparison::Insensitive) ? "yes" : "no"; },
        [&] { return std::to_string(hitsOfQueryTerms(text, query).size()); },
        [&] { return query.normalizedQueryTerm().utf8(); },
        [&] { return assembleOccurrencesOfWildcards(text, *plusWildcards(u"c* the"), {}).utf8(); },
        [&] { return nonUmlautedString(text).utf8() + lowercaseAsciiString(text).utf8(); },
        [&] { return normalizedString(text).utf8() + normalizedUppercaseString(text).utf8(); },
        [&] { return stringByRemovingMultipleWhiteSpaces(page.markup()).utf8(); },
        [&] { return std::to_string(countSubstring(text, u"\u00E9E", Case::Insensitive)); },
        [&] { return substringWithStart(page.markup(), u"<title>", u"</title>").utf8(); },
        [&] { return getWordAtIndex(text, text.length() / 2).utf8(); },
        [&] { return reformattedMailing(text).utf8() + std::to_string(numberOfLines(text)); },
        [&] { return stringByCreatingFilename(page.title()).utf8(); },
        [&] { return std::to_string(crc32(text)); },
        [&] { return simplifiedStringURL(url.absoluteString()).utf8(); },
        [&] { return URLRelativeTo(url, u"../c//d.html#x").absoluteString().utf8(); },
        [&] {
            return URLRelativeTo(url, u"//B\u00FCcher.example\\c", {.web = WebRules::today()}).absoluteString().utf8() +
                   displayDomain(u"xn--bcher-kva.example").utf8();
        },
        [&] { return acceptStringURL(u"/l/?uddg=http%3A%2F%2Fexample.org%2F", url).absoluteString().utf8(); },
        [&] { return invertedPathRelativeToDirectory(url, u"/m").utf8(); },
        [&] { return stringURLIsAdvertisement(u"http://h.org/ads/1.gif") && !isSearchEngine(url) ? "ad" : "none"; },
        [&] { return MIMETypeForExtension(u"html").utf8() + extensionForMIMEType(u"image/jpeg").utf8(); },
        [&] { return isArchiveType(u"ZIP") ? "archive" : "none"; },
        [&] { return hexStringValue(SHA1Digest(bytes)).utf8() + encodedBase64Data(bytes).utf8(); },
        [&] { return std::string(charsOf(*dataByInflatingData(*dataByGzippingData(Bytes(bytes))))); },
        [&] {
            Data data;
            addString(data, text, 1);
            forEachStorageBlock(Bytes(bytes), [](const StorageBlock&) { return true; }, {.salvage = true});
            return stringForKey(data, 1).utf8();
        },
        [&] { return propertyListAsXML("<plist><string>a</string></plist>") ? "list" : "none"; },
        [&] { return cachesDirectory().utf8(); },
        [&] {
            const InternetLocation found = resolveInternetLocationData({"URL=http://h/\n", u"url"});
            return found.url.utf8() + getWhereFrom({{WhereFromsKey, {url.absoluteString()}}}).utf8();
        },
        [&] {
            const auto request = requestWithURL(url, {.referrer = url, .userAgent = WebKitUserAgent()});
            return referrer(request).utf8() + userAgent(request).utf8() + libraryUserAgent().utf8();
        },
        [&] { return dates(); },
        [&] { return joined(valuesSeparatedByTab(text).rows.at(0)); },
        [&] { return BibTeXEntriesNamed(u"@string{m = M}@a{k, t = {" + text + u"}}").entries[0].value(u"t").utf8(); },
        [&] {
            const String feed = u"<feed><entry><title>" + page.title() + u"</title><content>" + page.markup();
            return stringByConvertingFeed(feed + u"</content></entry>", {.linkedStyleSheet = false}).utf8();
        },
        [&] { return std::string(charsOf(*dataUsingEncoding(text, ISO2022JPStringEncoding, true))); },
    };
    std::vector<std::string> all(std::size(families));
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::size_t family = (first * all.size() / Threads + i) % all.size();
        all[family] = families[family]();
    }
    return all;
}

TEST(Threads, EveryFamilyAtOnceGivesWhatOneGets) {
    setLogHandler([](std::string_view) {});
    const std::vector<std::string> pages = {test::readPage("cc-nc-de.html"), test::readPage("httpd-ja-euc-jp.html"),
                                            test::readPage("httpd-fr-utf8.html")};
    std::vector<std::vector<std::string>> given(Threads);
    std::barrier start(Threads);
    {
        std::vector<std::jthread> threads;
        for (std::size_t t = 0; t < Threads; ++t)
            threads.emplace_back([&, t] {
                start.arrive_and_wait();
                for (const std::string& page : pages)
                    for (std::string& answer : answers(page, t)) given[t].push_back(std::move(answer));
            });
    }
    setLogHandler(nullptr);
    std::vector<std::string> alone;
    for (const std::string& page : pages)
        for (std::string& answer : answers(page, 0)) alone.push_back(std::move(answer));
    ASSERT_GE(alone.size(), 3 * 30u);
    for (const auto& answers : given) EXPECT_EQ(answers, alone);
}

}  // namespace
}  // namespace velmo
