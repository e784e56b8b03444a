// Extended attributes as typed values. Each operation of the class is one on a file with a place
// for its error; operations on several attributes collect the errors of those that fail.
//
// Nothing marks a value as a list or as bytes, so that reading goes by the first bytes alone, as
// all programs do that share these attributes: bytes that look like a list and can be read as one
// come back as one, whoever set them.
#include <velmocore/storage/MetaDataStore.h>

#include <fmt/core.h>

#include <cerrno>
#include <map>
#include <system_error>

#include <velmocore/platform/Log.h>
#include <velmocore/platform/UserDefaults.h>

#include "storage/FileAttributes.h"

namespace velmo {
namespace {

using detail::FileAttributes;

constexpr std::string_view ListMark = "bplist";

/// What bytes are by their looks: a property list, or themselves.
PropertyList valueOfBytes(Data&& bytes) {
    if (charsOf(bytes).starts_with(ListMark))
        if (auto list = propertyListFromData(bytes)) return std::move(*list);
    return {std::move(bytes)};
}

/// An error of the system tells why in its text and has no other reason.
const String& reasonOf(const Error& error) {
    return error.reason.isAbsent() ? error.text : error.reason;
}

bool isAboutNoAttribute(const Error& error) {
    return error.domain == u"posix" && error.code == ENODATA;
}

/// One operation on a file: what it works on, and who is told why it failed.
class Operation {
public:
    Operation(const Path& path, MetaDataAccess access, Error* error)
        : path_(path), attributes_(path, access.traverseLink), error_(error ? *error : ignored_) {
        error_ = {};
    }

    std::optional<std::set<String>> keys() {
        const std::optional<Data> names = attributes_.list();
        if (!names) return failed(), std::nullopt;
        // A file may have attributes of the system only, and then has none of these.
        std::set<String> keys = detail::keysOfAttributeNames(*names);
        if (keys.empty()) return std::nullopt;
        return keys;
    }

    PropertyList object(const String& key) {
        const std::optional<std::string> name = nameOf(key);
        if (!name) return {};
        std::optional<Data> bytes = attributes_.read(*name);
        if (!bytes) return failed(), PropertyList();
        return bytes->empty() ? PropertyList() : valueOfBytes(std::move(*bytes));
    }

    bool set(const String& key, const PropertyList& object) {
        if (isTooLong(key)) return false;
        // Bytes are another program's format as likely as not, and stay what they are.
        if (const Data* data = object.as<Data>()) return write(key, *data);
        const auto list = dataFromPropertyList(object, PropertyListFormat::Binary);
        if (list) return write(key, *list);
        return failed(MetaDataNotEncodable, "The value cannot be encoded as a property list.", key);
    }

    bool remove(const String& key) {
        if (isTooLong(key)) return false;
        const std::optional<std::string> name = nameOf(key);
        return name && (attributes_.remove(*name) || failed());
    }

    /// The error is filled; false, for those that return it.
    bool failed(MetaDataErrorCode code, std::string_view text, const String& reason = {}) {
        error_ = {MetaDataErrorDomain, code, String::fromUTF8(text), path_.string(), reason};
        return false;
    }
    /// The same for a call of the system, by what it left.
    bool failed(int number = errno) {
        const std::string text = std::generic_category().message(number);
        error_ = {u"posix", number, String::fromUTF8(text), path_.string()};
        return false;
    }

private:
    bool isTooLong(const String& key) {
        if (key.size() <= MaxMetaDataKeyLength) return false;
        failed(MetaDataKeyTooLong,
               fmt::format("The metadata key `{}' is too long to be used.", key.utf8()));
        return true;
    }

    /// A zero or a lone surrogate in a key is a fault of the program, and is told to its log too.
    std::optional<std::string> nameOf(const String& key) {
        std::optional<std::string> name = detail::attributeNameOfKey(key);
        if (name) return name;
        failed(EINVAL);
        log(fmt::format("getFileSystemRepresentation '{}':\n{}\n{}", key.utf8(),
                        path_.string().utf8(), error_.text.utf8()));
        return name;
    }

    bool write(const String& key, Bytes bytes) {
        const std::optional<std::string> name = nameOf(key);
        return name && (attributes_.write(*name, bytes) || failed());
    }

    const Path& path_;
    FileAttributes attributes_;
    Error ignored_;
    Error& error_;
};

/// The errors of several attributes, as one.
class Failures {
public:
    void add(const Error& error) {
        if (error.text.isAbsent()) return;
        if (!reasons_.empty()) reasons_ += u", ";
        reasons_ += reasonOf(error);
    }
    bool areNone() const { return reasons_.empty(); }
    const std::u16string& reasons() const { return reasons_; }

private:
    std::u16string reasons_;
};

/// A setting that is on, in the words by which settings are.
bool isUserDefaultOn(std::u16string_view key) {
    const std::vector<String> values = userDefaultStrings(key);
    if (values.empty() || values.front().isEmpty()) return false;
    constexpr std::u16string_view On = u"YyTt123456789";
    return On.find(values.front().view().front()) != On.npos;
}

/// The tags as they are to be stored: with the colours that those on the file have, as who names
/// tags anew does not want to change the others.
PropertyListArray tagsWithColors(std::span<const String> tags, const PropertyList& stored) {
    std::map<String, PropertyList> colored;
    if (const auto* old = stored.as<PropertyListArray>())
        for (const PropertyList& tag : *old)
            if (const String* text = tag.as<String>())
                colored.emplace(text->view().substr(0, text->view().find(u'\n')), tag);
    PropertyListArray result;
    for (const String& tag : tags) {
        const auto found = colored.find(tag);
        result.push_back(found == colored.end() ? PropertyList{tag} : found->second);
    }
    return result;
}

}  // namespace

std::optional<std::set<String>> VWMetaDataStore::metaDataKeysAtPath(const Path& path,
                                                                    MetaDataAccess access,
                                                                    Error* error) {
    return Operation(path, access, error).keys();
}

std::optional<PropertyListDictionary> VWMetaDataStore::metaDataDictionaryAtPath(
    const Path& path, MetaDataAccess access, Error* error) {
    Operation whole(path, access, error);
    const auto keys = whole.keys();
    if (!keys) return std::nullopt;
    PropertyListDictionary dictionary;
    Failures failures;
    // One that went since it was listed is a failure like any other.
    for (const String& key : *keys) {
        Error own;
        PropertyList object = objectForKey(key, path, access, &own);
        failures.add(own);
        if (!object.as<std::monostate>()) dictionary.emplace(key, std::move(object));
    }
    if (!failures.areNone())
        whole.failed(MetaDataNotAllRead, "Couldn't read some or all metadata attributes.",
                     failures.reasons());
    if (dictionary.empty()) return std::nullopt;
    return dictionary;
}

bool VWMetaDataStore::setMetaDataDictionary(const PropertyListDictionary& dictionary,
                                            const Path& path, MetaDataAccess access, Error* error) {
    Operation whole(path, access, error);
    Failures failures;
    for (const auto& [key, object] : dictionary) {
        Error own;
        setObject(object, key, path, access, &own);
        failures.add(own);
    }
    return failures.areNone() ||
           whole.failed(MetaDataNotAllWritten, "Couldn't write some or all metadata attributes.",
                        failures.reasons());
}

PropertyList VWMetaDataStore::objectForKey(const String& key, const Path& path,
                                           MetaDataAccess access, Error* error) {
    return Operation(path, access, error).object(key);
}

bool VWMetaDataStore::setObject(const PropertyList& object, const String& key, const Path& path,
                                MetaDataAccess access, Error* error) {
    return Operation(path, access, error).set(key, object);
}

bool VWMetaDataStore::removeObjectForKey(const String& key, const Path& path, MetaDataAccess access,
                                         Error* error) {
    return Operation(path, access, error).remove(key);
}

std::optional<std::vector<String>> VWMetaDataStore::getFinderTags(const Path& path, Error* error) {
    // To have no tags is the common case.
    Error own;
    const PropertyList tags = objectForKey(UserTagsKey, path, {}, &own);
    if (error) *error = isAboutNoAttribute(own) ? Error() : own;
    return validatedTags(tags);
}

bool VWMetaDataStore::setFinderTags(std::span<const String> tags, const Path& path, Error* error) {
    if (error) *error = {};
    if (isUserDefaultOn(u"DisableFinderTags")) return false;
    const PropertyList stored = objectForKey(UserTagsKey, path);
    if (!tags.empty())
        return setObject({tagsWithColors(tags, stored)}, UserTagsKey, path, {}, error);
    Error own;
    if (removeObjectForKey(UserTagsKey, path, {}, &own) || isAboutNoAttribute(own)) return true;
    if (error) *error = own;
    return false;
}

bool VWMetaDataStore::setIsEditableNote(bool isEditableNote, const Path& path,
                                        MetaDataAccess access, Error* error) {
    return isEditableNote ? setObject({String(u"yes")}, EditableNoteKey, path, access, error)
                          : removeObjectForKey(EditableNoteKey, path, access, error);
}

bool VWMetaDataStore::setWhereFrom(const String& whereFrom, const Path& path, MetaDataAccess access,
                                   Error* error) {
    return whereFrom.isEmpty() ? removeObjectForKey(WhereFromsKey, path, access, error)
                               : setObject({whereFrom}, WhereFromsKey, path, access, error);
}

PropertyList VWMetaDataStore::finderCommentAtPath(const Path& path, MetaDataAccess access,
                                                  Error* error) {
    return objectForKey(FinderCommentKey, path, access, error);
}

}  // namespace velmo
