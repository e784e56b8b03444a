// A helper that turns pages into text: the program at the other end of a HelperTask.
//
//     auto task = HelperTask::helperTaskWithPath(".../page-helper", u"org.example.pages");
//     auto text = task->proxy()->call(u"text", {PropertyList{bytes}});
//
// Whatever a page does to this process, its owner goes on and gets a new one.
#include <velmocore/markup/Page.h>
#include <velmocore/system/HelperService.h>

#include <cstdio>

using namespace velmo;

namespace {

std::optional<PropertyList> textOfPage(const PropertyListArray& arguments, Error* error) {
    const Data* bytes = arguments.empty() ? nullptr : arguments[0].as<Data>();
    if (bytes) return PropertyList{Page(*bytes).plainText()};
    *error = {u"page-helper", 1, u"the bytes of a page are wanted"};
    return std::nullopt;
}

}  // namespace

int main() {
    HelperService service;
    service.addOperation(u"text", textOfPage);
    Error error;
    if (service.publish(u"org.example.pages", &error) && service.serve(&error)) return 0;
    std::fprintf(stderr, "page-helper: %s\n", printed(error).c_str());
    return 1;
}
