// Downloads, as far as they need no network.
#include <velmocore/net/FormData.h>
#include <velmocore/net/URLRequest.h>
#include <velmocore/net/URLResponse.h>

#include "Growth.h"

namespace velmo::growth {

namespace {

Data formOf(const Input& in) {
    Data form = in.utf8;
    appendString(form, u"\r\n--B--\r\n");
    return form;
}

constexpr Operation Rows[] = {
    {"multipart form",
     [](const Input& in) {
         const Data form = formOf(in);
         use(formDataUsingBoundary(form, u"B"));
         use(formDataUsingBoundary(form, u""));
         use(formDataUsingBoundary(form, in.almost));
     }},
    {"head of a response",
     [](const Input& in) {
         const auto head = responseHeadOfBytes(in.utf8);
         if (head) use(responseOfHead(in.url, *head));
         HTTPResponseHead one;
         for (const char16_t* name : {u"Content-Type", u"Content-Length", u"Content-Encoding"})
             one.headers.add({name, in.text});
         use(responseOfHead(in.url, one));
     }},
    {"post and referrer",
     [](const Input& in) {
         URLRequest request;
         setHTTPPost(request, HTTPPostFields{{in.text, in.text}});
         use(formEncodedFields({{in.text, in.text}}));
         setReferrer(request, in.text);
         setReferrer(request, u"http://h.local/" + in.text);
         use(request);
     }},
};

}  // namespace

std::span<const Operation> netOperations() { return Rows; }

}  // namespace velmo::growth
