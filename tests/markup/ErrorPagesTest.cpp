#include <velmocore/markup/ErrorPages.h>

#include "TestSupport.h"

namespace velmo {
namespace {

struct Case {
    View title, text, url;
    bool expected;
};

TEST(ErrorPages, AreToldByTitleTextAndURLTogether) {
    const Case cases[] = {
        {u"404 Not Found", u"404 Not Found nginx", {}, true},
        {u"404 Not Found", u"The number 404 is even.", {}, false},
        {u"404 Not Found", {}, u"http://h/404.html", false},
        {u"Error 404!", u"Error 404!", {}, true},
        {u"*** error - 404 ***", u"ERROR: 404", {}, true},
        {u"Tea shop | page not found", u"Sorry, page not found.", {}, true},
        {u"Tea shop | page not found!", u"Sorry, page not found.", {}, false},
        {u"Page not found", u"Tea. 404 NOT found", {}, true},
        {u"Page not found", u"Tea. 404 (PAGE not found).", {}, true},
        {u"Page not found", u"Tea. 404: not found", {}, false},
        {{}, u"404 Not Found nginx", {}, false},
        {u"Forbidden 403", u"403 Forbidden", {}, false},
        {u"Tea - 404 PAGE - shop", u"This page doesn't exist on this Server.", {}, true},
        {u"Tea - 404 page", u"This page doesn't exist on this server.", {}, false},
        {u"A 403 access denied", u"Tea", u"http://h/403.PHP", true},
        {u"A 403 access denied", {}, u"http://h/403.php", true},
        {u"A 403 access denied", u"Tea", u"http://h/403.php?x", false},
        {u"La pagina SOLICITADA no existe", {}, u"http://h/error.php", true},
        {u"La pagina solicitada no existe", {}, u"http://h/Error.php", false},
        {{}, u"Page not found", u"http://h/404.html", true},
        {{}, u"It DOES NOT exist", u"http://h/404.PHP", true},
        {{}, u"It doesn't exist", u"h/404.htm", true},
        {{}, u"Seite nicht gefunden", u"h/404.shtml", true},
        {{}, u"Nicht vorhanden", u"h/404-index.html", true},
        {{}, u"Nicht da", u"h/404-index.html", false},
        {{}, u"Not found", u"h/a404.html", false},
        {{}, u"Not found", u"h/404.html#x", false},
        {u"", u"", u"h/404.html", false},
        {u"Tea", u"Sorry, server is too busy! Please try again later...", {}, true},
        {u"Tea", u"Sorry, server is too busy! Please try again later. 2", {}, false},
        {{}, {}, {}, false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(isErrorPageTitle(c.title, c.text, c.url), c.expected)
            << String(c.title) << " / " << String(c.text) << " / " << String(c.url);
}

TEST(ErrorPages, TellRateLimitsByTheirLettersOnly) {
    EXPECT_TRUE(exceededPageLoadFrequencyTitle(u"x", u"you have exceeded the allowed page load frequency"));
    EXPECT_TRUE(exceededPageLoadFrequencyTitle({},
                                               u"You have exceeded the allowed page load frequency.\n"
                                               u"Please reload the page in 30 seconds!"));
    EXPECT_TRUE(exceededPageLoadFrequencyTitle({},
                                               u"Woah - slow down: you have exceeded the allowed page load "
                                               u"frequency"));
    EXPECT_FALSE(exceededPageLoadFrequencyTitle({}, u"You have exceeded the allowed page load frequency. Sorry"));
    EXPECT_FALSE(exceededPageLoadFrequencyTitle(u"You have exceeded the allowed page load frequency.", u""));
    EXPECT_FALSE(exceededPageLoadFrequencyTitle(u"You have exceeded the allowed page load frequency.", {}));
    EXPECT_FALSE(exceededPageLoadFrequencyTitle({}, u"404 ..."));
}

}  // namespace
}  // namespace velmo
