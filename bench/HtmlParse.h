// What the benches that parse pages by libxml2 have in common.
#pragma once

#include <libxml/HTMLparser.h>

#include <string>

namespace velmo::bench {

/// Parses a page with handlers, which get the collected data; the parser too, if that has a place
/// for it, to be stopped by them.
template <class Collected>
void parseHtml(const std::string& page, htmlSAXHandler& handler, Collected& collected) {
    htmlParserCtxtPtr context =
        htmlCreateMemoryParserCtxt(page.data(), static_cast<int>(page.size()));
    if (!context) return;
    if constexpr (requires { collected.parser; }) collected.parser = context;
    htmlSAXHandlerPtr own = context->sax;
    context->sax = &handler;
    context->userData = &collected;
    htmlParseDocument(context);
    context->sax = own;
    if (context->myDoc) xmlFreeDoc(context->myDoc);
    htmlFreeParserCtxt(context);
}

}  // namespace velmo::bench
