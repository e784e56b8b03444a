#include <velmocore/markup/TagScanner.h>

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <typeinfo>

#include "markup/TagScan.h"
#include "platform/ExceptionLog.h"

namespace velmo {
namespace {

std::string demangled(const char* name) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return status == 0 && text ? text.get() : name;
}

void logException(const std::string& name, const char* reason) {
    detail::logException("parseXmlWithHandler:context:mutable:", "String", name, reason);
}

}  // namespace

bool Tag::hasNameUnits(std::string_view ascii) const {
    return std::equal(ascii.begin(), ascii.end(), name().begin(), [](char letter, char16_t unit) {
        return detail::keyword::upper(static_cast<unsigned char>(letter)) ==
               detail::keyword::upper(unit);
    });
}

bool GetTagsOfString(std::u16string_view string, TagHandler handler, const WebRules& web) {
    detail::scanTags(string, handler, web);
    return !string.empty();
}

void detail::getTagsOfBytes(std::string_view utf8, ByteTagHandler handler, const WebRules& web) {
    scanTags(utf8, handler, web);
}

bool parseXmlWithHandler(std::u16string_view string, TagHandler handler, const WebRules& web) {
    try {
        return GetTagsOfString(string, handler, web);
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
