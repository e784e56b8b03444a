#include <velmocore/markup/TagScanner.h>

#include <cxxabi.h>
#include <execinfo.h>
#include <fmt/format.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <typeinfo>

#include <velmocore/platform/Log.h>

#include "markup/TagScan.h"

namespace velmo {
namespace {

std::string demangled(const char* name) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return status == 0 && text ? text.get() : name;
}

std::string callStack() {
    // The calls that led to the scan: those of the handler are gone when its exception is caught.
    void* frames[32];
    const int count = backtrace(frames, 32);
    const std::unique_ptr<char*, decltype(&std::free)> names(backtrace_symbols(frames, count),
                                                             &std::free);
    std::string text;
    for (int i = 0; names && i < count; ++i) (text += i ? "\n" : "") += names.get()[i];
    return text;
}

void logException(const std::string& name, const char* reason) {
    log(fmt::format("{} ({}): {}\n{}\n{}", "parseXmlWithHandler:context:mutable:", "String", name,
                    reason, callStack()));
}

}  // namespace

bool Tag::hasNameUnits(std::string_view ascii) const {
    return std::equal(ascii.begin(), ascii.end(), name().begin(), [](char letter, char16_t unit) {
        return detail::keyword::upper(static_cast<unsigned char>(letter)) ==
               detail::keyword::upper(unit);
    });
}

bool GetTagsOfString(std::u16string_view string, TagHandler handler) {
    if (string.empty()) return false;
    detail::TagScan<TagHandler>(string, handler).run();
    return true;
}

bool parseXmlWithHandler(std::u16string_view string, TagHandler handler) {
    try {
        return GetTagsOfString(string, handler);
    } catch (const std::bad_alloc&) {
        throw;  // the caller could not tell what was found so far from all that there is
    } catch (const std::exception& exception) {
        logException(demangled(typeid(exception).name()), exception.what());
    } catch (...) {
        logException("unknown", "");
    }
    return false;
}

String fixedXml(const String& string) {
    const auto isBad = [](char16_t unit) {
        return unit < 32 && unit != u'\t' && unit != u'\n' && unit != u'\r';
    };
    if (std::none_of(string.begin(), string.end(), isBad)) return string;
    StringBuilder out(string.length());
    out.append(string.view());
    std::replace_if(out.data(), out.data() + out.length(), isBad, u' ');
    return out.finish();
}

}  // namespace velmo
