// Meta tags, and what is asked of them.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagScanner.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Normalisation.h>

#include "markup/TagSupport.h"
#include "text/Keyword.h"

namespace velmo::detail {

/// The attributes of a meta tag. Each is looked for when it is first asked for, and once, however
/// many ask; what is not there is empty.
class MetaTag {
    using Units = std::u16string_view;

public:
    explicit MetaTag(const Tag& tag) : tag_(tag.whole()), web_(tag.web) {}

    Units name() { return read(name_, "NAME"); }
    Units httpEquiv() { return read(httpEquiv_, "HTTP-EQUIV"); }
    Units property() { return read(property_, "PROPERTY"); }
    /// The NAME, or else the PROPERTY.
    Units key() { return name().empty() ? property() : name(); }
    const String& lowercaseKey() {
        if (lowercaseKey_.isAbsent()) {
            std::u16string units(key());
            lowercase(units);
            lowercaseKey_ = units;
        }
        return lowercaseKey_;
    }
    /// The CONTENT; absent if there is none.
    const String& content() {
        if (!std::exchange(hasReadContent_, true))
            content_ = contentAttributeOfTagCharacters(tag_, web_);
        return content_;
    }

private:
    struct Attribute {
        Units value = {};
        bool wasRead = false;
    };

    Units read(Attribute& attribute, std::string_view name) {
        if (!attribute.wasRead) attribute = {attributeOf(tag_, name, web_), true};
        return attribute.value;
    }

    const Units tag_;
    const WebRules& web_;
    Attribute name_, httpEquiv_, property_;
    String lowercaseKey_, content_;
    bool hasReadContent_ = false;
};

/// Which meta tags are meant: those whose NAME, or HTTP-EQUIV, is one of up to three values in any
/// case. The third may stand in a PROPERTY too. An empty value is none.
struct MetaQuery {
    enum class Attribute { Name, HTTPEquiv };

    Attribute attribute = Attribute::Name;
    std::u16string_view firstValue, secondValue = {}, thirdValue = {};

    bool matches(MetaTag& tag) const {
        const std::u16string_view value =
            attribute == Attribute::Name ? tag.name() : tag.httpEquiv();
        return isOneOf(value, firstValue) || isOneOf(value, secondValue) ||
               isOneOf(value, thirdValue) ||
               (!thirdValue.empty() && isOneOf(tag.property(), thirdValue));
    }

private:
    static bool isOneOf(std::u16string_view value, std::u16string_view sought) {
        return !sought.empty() && keyword::equalNoCase(value, sought);
    }
};

/// The contents of several tags with spaces between. Nearly always there is one, which is shared.
class JoinedContents {
public:
    void add(const String& content) {
        if (content.isEmpty()) return;
        if (first_.isAbsent()) {
            first_ = content;
            return;
        }
        if (joined_.empty()) joined_ = first_.view();
        joined_.append(1, u' ').append(content);
    }

    /// Absent if there were none.
    String finish() const { return joined_.empty() ? first_ : String(joined_); }

private:
    String first_;
    std::u16string joined_;
};

/// The name of the meta tag that tells an editable note.
inline constexpr std::u16string_view EditableNoteName = u"VW:isEditableNote";

}  // namespace velmo::detail
