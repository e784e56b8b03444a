// Risky work in a process of its own: whatever a page does to it, this program goes on.
//
//     helper PAGE       starts itself as its own helper
#include <velmocore/markup/Page.h>
#include <velmocore/system/HelperService.h>
#include <velmocore/system/HelperTask.h>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace velmo;

namespace {

constexpr char16_t Name[] = u"org.example.velmocore.cookbook";

int serve() {
    HelperService service;
    service.addOperation(u"text", [](const PropertyListArray& arguments, Error* error) {
        const Data* bytes = arguments.empty() ? nullptr : arguments[0].as<Data>();
        if (bytes) return std::optional(PropertyList{Page(*bytes).plainText()});
        *error = {u"example", 1, u"the bytes of a page are wanted"};
        return std::optional<PropertyList>();
    });
    return service.publish(Name) && service.serve() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return serve();
    std::ifstream file(argv[1], std::ios::binary);
    const Data bytes(std::istreambuf_iterator<char>(file), {});
    const auto task = HelperTask::helperTaskWithPath(argv[0], Name);
    const auto proxy = task->proxy();
    if (!proxy) return 2;
    const auto text = proxy->call(u"text", {PropertyList{bytes}});
    if (!text) return 2;
    if (const String* string = text->as<String>()) std::cout << *string;
}
