#include <velmocore/markup/PlainText.h>
#include <velmocore/platform/String.h>

#include <iostream>

int main() {
    const velmo::String page = velmo::String::fromUTF8("<p>caf&eacute; <b>&amp;</b> bar</p>");
    const velmo::String text = velmo::stringByConvertingHtml2PlainText(page);
    std::cout << text;
    return text == u"caf\u00E9 & bar\n\n" ? 0 : 1;
}
