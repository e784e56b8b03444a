#include <velmocore/markup/PlainText.h>
#include <velmocore/platform/Resources.h>
#include <velmocore/platform/String.h>
#include <velmocore/words/LanguageFilter.h>

#include <iostream>

int main() {
    const velmo::String page = velmo::String::fromUTF8("<p>caf&eacute; <b>&amp;</b> bar</p>");
    const velmo::String text = velmo::stringByConvertingHtml2PlainText(page);
    velmo::Error error;
    const velmo::LanguageFilter filter(velmo::velmoResourcesDirectory(), false, &error);
    const velmo::String language =
        filter.languageOfText(u"Das ist aber nicht das, was wir hier auch noch sehen und wissen wollten.");
    std::cout << text << language << error.text << '\n';
    return text == u"caf\u00E9 & bar\n\n" && language == u"DE" ? 0 : 1;
}
