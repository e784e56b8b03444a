// A page of the web, if it is one: the server's answer is looked at before anything is loaded.
//
//     download ADDRESS
#include <velmocore/markup/Page.h>
#include <velmocore/net/SynchronousDownload.h>
#include <velmocore/url/URLConstruction.h>

#include <iostream>

using namespace velmo;

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const URL url = URLWithNormalizedStringURL(String::fromUTF8(argv[1]));
    DownloadDelegate delegate;
    delegate.acceptResponse = [](SynchronousDownload& download, Error& error) {
        if (download.response()->MIMEType == u"text/html") return true;
        error = {u"example", 1, u"not a page"};
        return false;
    };
    const DownloadedResponse answer = downloadSynchronousResponse(
        requestWithURL(url, {.userAgent = u"cookbook/1.0 (an example)"}), &delegate);
    if (answer.error) {
        std::cout << answer.error->text << '\n';
        return 1;
    }
    const Page page(answer.data.value_or(Data()), {.url = answer.request.url});
    std::cout << page.title() << '\n' << page.links().size() << " links\n";
}
