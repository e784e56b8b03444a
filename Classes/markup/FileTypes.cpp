// The lists are what file dialogs show, the predicates what the library accepts. The two
// differ in places: "SHTM" is an XML extension for the predicate and a page's in the list,
// and some lists hold one case only while the predicates accept all.
#include <velmocore/markup/FileTypes.h>

#include <velmocore/platform/UserDefaults.h>

#include <mutex>
#include <span>

#include "platform/Unicode.h"
#include "text/Keyword.h"
#include "text/PathParts.h"

namespace velmo {
namespace {

using Keywords = std::span<const std::string_view>;
using Names = std::span<const char16_t* const>;

constexpr std::string_view HTMLKeywords[] = {"SHTML", "XHTML", "PHTML", "MHTML", "JHTML", "HTML",
                                             "ASPX",  "PHP3",  "PHP4",  "PHP5",  "SHTM",  "XHTM",
                                             "HTM",   "CFM",   "PHP",   "JSP",   "ASP",   "CGI"};

constexpr std::string_view XMLKeywords[] = {
    "XML",  "XSL",  "ENT",  "WML",   "DTD",     "SGM",     "XBL",       "RSS",
    "RDF",  "RSD",  "TBX",  "XSD",   "SGML",    "OPML",    "SHTM",      "XSLT",
    "SDEF", "WSDL", "DITA", "IDATA", "DITAMAP", "DITAVAL", "XMLOUTLINE"};

constexpr std::string_view PropertyListKeywords[] = {
    "PLIST", "STRINGS", "TFILTER", "SCOUTSET", "SCRIPTSUITE", "ENTITLEMENTS", "SCRIPTTERMINOLOGY"};

constexpr const char16_t* HTMLNames[] = {
    u"xhtml", u"XHTML", u"xhtm", u"XHTM",  u"shtm",  u"SHTM",  u"shtml", u"SHTML", u"cfm",
    u"CFM",   u"html",  u"HTML", u"mhtml", u"MHTML", u"phtml", u"PHTML", u"jhtml", u"JHTML",
    u"htm",   u"HTM",   u"JSP",  u"jsp",   u"php",   u"PHP",   u"php3",  u"PHP3",  u"php4",
    u"PHP4",  u"php5",  u"PHP5", u"asp",   u"ASP",   u"aspx",  u"ASPX",  u"cgi",   u"CGI"};

constexpr const char16_t* XMLNames[] = {
    u"xml",  u"XML",  u"xsl",  u"XSL",     u"xslt",       u"XSLT",    u"xbl",    u"XBL",
    u"ent",  u"ENT",  u"wml",  u"WML",     u"sgml",       u"SGML",    u"sgm",    u"SGM",
    u"dtd",  u"DTD",  u"opml", u"OPML",    u"xmloutline", u"idata",   u"rss",    u"rsd",
    u"rdf",  u"tbx",  u"TBX",  u"sdef",    u"SDEF",       u"xsd",     u"XSD",    u"wsdl",
    u"WSDL", u"dita", u"DITA", u"ditamap", u"DITAMAP",    u"ditaval", u"DITAVAL"};

constexpr const char16_t* PropertyListNames[] = {u"plist",
                                                 u"PLIST",
                                                 u"scriptsuite",
                                                 u"scriptSuite",
                                                 u"scriptterminology",
                                                 u"scriptTerminology",
                                                 u"strings",
                                                 u"entitlements",
                                                 u"tfilter",
                                                 u"scoutSet"};

std::vector<String> listOf(Names names) { return {names.begin(), names.end()}; }

void appendTo(std::vector<String>& list, const std::vector<String>& more) {
    list.insert(list.end(), more.begin(), more.end());
}

bool isOneOf(std::u16string_view extension, Keywords keywords) {
    for (std::string_view keyword : keywords)
        if (detail::keyword::equals(extension, keyword)) return true;
    return false;
}

}  // namespace

std::vector<String> HTMLFileTypes() { return listOf(HTMLNames); }
std::vector<String> PropertyListFileTypes() { return listOf(PropertyListNames); }

/// Asked for until there are some, and then kept, so that a hook which is set after the first
/// question still counts.
std::vector<String> CustomXMLFileTypes() {
    static std::mutex mutex;
    static std::vector<String> kept;
    const std::lock_guard lock(mutex);
    if (kept.empty()) kept = userDefaultStrings(u"AdditionalXMLExtensions");
    return kept;
}

std::vector<String> XMLFileTypes() {
    std::vector<String> list = listOf(XMLNames);
    for (const String& custom : CustomXMLFileTypes()) {
        list.push_back(custom);
        list.emplace_back(detail::unicode::upperCase(custom.view()));
    }
    return list;
}

std::vector<String> MarkupFileTypes() {
    std::vector<String> list = XMLFileTypes();
    appendTo(list, HTMLFileTypes());
    appendTo(list, PropertyListFileTypes());
    return list;
}

bool isHTMLExtension(std::u16string_view extension) {
    // An extension cut from a URL may still have the query on it.
    return isOneOf(extension.substr(0, extension.find(u'?')), HTMLKeywords);
}

bool isXMLExtension(std::u16string_view extension) {
    for (const String& custom : CustomXMLFileTypes())
        if (detail::keyword::equalNoCase(extension, custom)) return true;
    return isOneOf(extension, XMLKeywords);
}

bool isPropertyListExtension(std::u16string_view extension) {
    return isOneOf(extension, PropertyListKeywords);
}

bool isMarkupExtension(std::u16string_view extension) {
    return isXMLExtension(extension) || isHTMLExtension(extension) ||
           isPropertyListExtension(extension);
}

bool isHTMLFile(std::u16string_view path) { return isHTMLExtension(detail::extensionOfPath(path)); }
bool isXMLFile(std::u16string_view path) { return isXMLExtension(detail::extensionOfPath(path)); }
bool isPropertyListFile(std::u16string_view path) {
    return isPropertyListExtension(detail::extensionOfPath(path));
}
bool isMarkupFile(std::u16string_view path) {
    return isMarkupExtension(detail::extensionOfPath(path));
}

}  // namespace velmo
