// A URL as the URL standard serializes it, written part by part from left to right, with the places
// of its parts.
#pragma once

#include <string_view>

#include <velmocore/text/Encodings.h>
#include <velmocore/url/URL.h>

#include "url/PartedText.h"
#include "url/SpecialSchemes.h"

namespace velmo::detail {

/// Whether a text is the letter of a drive, as "C:" or "C|".
bool isDriveLetter(std::u16string_view text) noexcept;
/// Whether it begins with one that is a whole component.
bool beginsWithDriveLetter(std::u16string_view text) noexcept;

class WebURLWriter {
public:
    explicit WebURLWriter(std::size_t room) : out_(room + grammar::TailUnits) {}

    /// First of all; in any case.
    void scheme(std::u16string_view name);
    bool isSpecial() const noexcept { return special_ != nullptr; }
    bool isFile() const noexcept { return special_ && special_->port == 0; }
    /// Whether the unit is a slash for this scheme.
    bool isSlash(char16_t unit) const noexcept {
        return unit == u'/' || (unit == u'\\' && isSpecial());
    }
    std::u16string_view scheme() const { return {parts_[URLPart::Scheme].of(out_.view())}; }

    // One of these, or none.

    /// The authority of a base, if it has one.
    void authorityOf(const URL& base);
    /// What stands between // and the path. False if it is none.
    bool authority(std::u16string_view text);
    /// The host of a file, which may be empty. False if it is none.
    bool fileHost(std::u16string_view host);

    /// The path of a base as it is.
    void pathOf(const URL& base);
    /// The components of a path, relative to the folder of a base if there is one.
    void path(std::u16string_view components, const URL& folderOf = URL());
    /// The components behind the drive of a base, if that has one.
    void pathOnDriveOf(const URL& base, std::u16string_view components);
    /// A path that is one text.
    void opaquePath(std::u16string_view text);

    void query(std::u16string_view text, StringEncoding encoding);
    void queryOf(const URL& base);
    void fragment(std::u16string_view text);

    /// With its parts; see url/PartedText.h. Absent if it is too long.
    String finish();

private:
    void beginAuthority();
    void endAuthority();
    void credentials(std::u16string_view text);
    bool hostAndPort(std::u16string_view text);
    bool port(std::u16string_view digits);
    void beginPath();
    void endPath();
    void components(std::u16string_view text);
    void component(std::u16string_view text, bool isLast);
    void leaveFolder();
    std::u16string_view pathSoFar() const { return out_.view().substr(pathStart_); }
    grammar::Span spanFrom(std::size_t start) const;

    StringBuilder out_;
    grammar::Parts parts_;
    const SpecialScheme* special_ = nullptr;
    std::size_t authorityStart_ = 0, pathStart_ = 0;
};

}  // namespace velmo::detail
