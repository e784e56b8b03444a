#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/PropertyList.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Extended attributes of files and folders as typed values: a value is raw bytes, or a binary
// property list, the form of the metadata attributes that desktops exchange.
//
//     VWMetaDataStore::setWhereFrom(u"https://example.org/", "saved.html");
//     const auto kept = VWMetaDataStore::metaDataDictionaryAtPath("saved.html");
//     const String source = kept ? getWhereFrom(*kept) : String();
//
// Names are those that programs exchange. The system files them under "user.", which is put in
// front of each and taken off again; attributes of its other namespaces (security, trusted, system)
// are not seen. Many file systems hold little more than 4000 bytes of attributes for a file.

/// The source of a download: a string, or a list of which the first is it.
inline constexpr std::u16string_view WhereFromsKey = u"com.apple.metadata:kMDItemWhereFroms";
/// The comment that people give a file, and its tags with their colours.
inline constexpr std::u16string_view FinderCommentKey = u"com.apple.metadata:kMDItemFinderComment";
inline constexpr std::u16string_view UserTagsKey = u"com.apple.metadata:_kMDItemUserTags";
/// The library's own mark of an editable note; only its presence counts.
inline constexpr std::u16string_view EditableNoteKey = u"com.velmo-works.metadata:isEditableNote";
/// Keys of dictionaries that come from a desktop's index instead.
inline constexpr std::u16string_view ItemTitleKey = u"kMDItemTitle";
inline constexpr std::u16string_view ItemWhereFromsKey = u"kMDItemWhereFroms";

/// The domain of the class's own errors. What the system refuses comes in the domain "posix", with
/// errno as its number and the path.
inline constexpr std::u16string_view MetaDataErrorDomain = u"com.velmo-works.errordomain.MetaData";
/// Its codes.
enum MetaDataErrorCode : std::int64_t {
    MetaDataKeyTooLong = 200,     ///< see MaxMetaDataKeyLength
    MetaDataNotAllRead = 201,     ///< the reasons are in Error::reason
    MetaDataNotAllWritten = 202,  ///< the same
    MetaDataNotEncodable = 203,   ///< the key is in Error::reason
};

/// Names of attributes have at most so many UTF-16 units. The system takes at most 250 bytes of
/// UTF-8, and says so itself.
inline constexpr std::size_t MaxMetaDataKeyLength = 127;

/// What a path means.
struct MetaDataAccess {
    /// Of a symbolic link its target is meant, else the link itself. Linux lets no link have such
    /// attributes, and reports it (EPERM, ENODATA).
    bool traverseLink = true;
};

/// What is absent is an absent PropertyList (std::monostate). An error that is passed is cleared
/// first. Attributes change one at a time, each whole; a dictionary is not written as one. Any
/// thread may call these.
class VELMO_API VWMetaDataStore {
public:
    VWMetaDataStore() = delete;

    /// The names; absent if there are none. A name that is not UTF-8 is left out.
    [[nodiscard]] static std::optional<std::set<String>> metaDataKeysAtPath(
        const Path& path, MetaDataAccess access = {}, Error* error = nullptr);
    /// Names and values; absent if there are none. A value that cannot be read is left out and
    /// makes an error, which comes beside the others.
    [[nodiscard]] static std::optional<PropertyListDictionary> metaDataDictionaryAtPath(
        const Path& path, MetaDataAccess access = {}, Error* error = nullptr);
    /// Sets each, also behind one that fails. Whether all were set.
    static bool setMetaDataDictionary(const PropertyListDictionary& dictionary, const Path& path,
                                      MetaDataAccess access = {}, Error* error = nullptr);

    /// A value: the property list that the bytes are, else the bytes (Data). Absent without an
    /// error if it has no bytes; an attribute that is not there is ENODATA.
    [[nodiscard]] static PropertyList objectForKey(const String& key, const Path& path,
                                                   MetaDataAccess access = {},
                                                   Error* error = nullptr);
    /// Data is stored as it is, anything else as a binary property list.
    static bool setObject(const PropertyList& object, const String& key, const Path& path,
                          MetaDataAccess access = {}, Error* error = nullptr);
    /// False, with ENODATA, if there is no such attribute.
    static bool removeObjectForKey(const String& key, const Path& path, MetaDataAccess access = {},
                                   Error* error = nullptr);

    /// The tags without their colours, of a link those of its target; absent, and no error, if
    /// there are none.
    [[nodiscard]] static std::optional<std::vector<String>> getFinderTags(const Path& path,
                                                                          Error* error = nullptr);
    /// Replaces the tags; those that were there keep their colours. None removes the attribute.
    /// False, and nothing is done, with the user default "DisableFinderTags" set.
    static bool setFinderTags(std::span<const String> tags, const Path& path,
                              Error* error = nullptr);

    /// Sets the mark or removes it, as removeObjectForKey() does.
    static bool setIsEditableNote(bool isEditableNote, const Path& path, MetaDataAccess access = {},
                                  Error* error = nullptr);
    /// An absent or empty source removes the attribute.
    static bool setWhereFrom(const String& whereFrom, const Path& path, MetaDataAccess access = {},
                             Error* error = nullptr);
    /// The value under FinderCommentKey; absent, with ENODATA, if there is none.
    [[nodiscard]] static PropertyList finderCommentAtPath(const Path& path,
                                                          MetaDataAccess access = {},
                                                          Error* error = nullptr);
};

// What dictionaries of attributes say.

/// Whether they have the mark, whatever its value.
[[nodiscard]] VELMO_API bool isEditableNote(const PropertyListDictionary& attributes);
/// Where the file was loaded from, under ItemWhereFromsKey, else WhereFromsKey: a string, the first
/// of a list, or UTF-8 bytes up to a zero at their end. Absent if it is none of these, or a data:
/// URL.
[[nodiscard]] VELMO_API String getWhereFrom(const PropertyListDictionary& attributes);
/// See validatedTags().
[[nodiscard]] VELMO_API std::optional<std::vector<String>> getFinderTags(
    const PropertyListDictionary& attributes);
/// The value under FinderCommentKey, whatever it is; absent if there is none.
[[nodiscard]] VELMO_API PropertyList getFinderComment(const PropertyListDictionary& attributes);
/// The title; absent if it is no string, or just the file's name or path in any case.
[[nodiscard]] VELMO_API String getItemTitleForFile(const PropertyListDictionary& attributes,
                                                   std::u16string_view path);

/// The strings of a list, each up to its first line feed: the number of a colour stands behind it.
/// Absent if the value is; one that is no list is logged, and absent too.
[[nodiscard]] VELMO_API std::optional<std::vector<String>> validatedTags(const PropertyList& tags);

}  // namespace velmo
