// The folders are looked up once, at first use, and kept for the life of the process: they do not
// move while a program runs, and every test of a path would otherwise read files. All of this is
// text; no folder is made, and none need exist.
#include <velmocore/system/StandardFolders.h>

#include <cstdlib>

#include <velmocore/text/Paths.h>

#include "system/UserFolders.h"
#include "text/PathParts.h"

namespace velmo {
namespace {

using View = std::u16string_view;

const detail::UserFolders& folders() {
    // Never freed, so that threads which outlive main() may still ask.
    static const auto& found = *new detail::UserFolders(
        detail::findUserFolders([](const char* name) { return std::getenv(name); }));
    return found;
}

bool contains(View path, View part) { return path.find(part) != View::npos; }

/// The path of something in the folder, whatever it is; the folder itself is not.
bool liesBelow(View path, View folder) {
    return path.starts_with(folder) &&
           (folder.ends_with(u'/') || path.substr(folder.size()).starts_with(u'/'));
}

}  // namespace

const String& desktopDirectory() { return folders().desktop; }
const String& downloadsDirectory() { return folders().downloads; }
const String& libraryDirectory() { return folders().library; }
const String& preferencesDirectory() { return folders().preferences; }
const String& cachesDirectory() { return folders().caches; }
const String& applicationSupportDirectory() { return folders().applicationSupport; }

String pathInHomeDirectory(View component) {
    return detail::appendedComponent(homeDirectory(), component);
}
String pathInLibraryDirectory(View component) {
    return detail::appendedComponent(libraryDirectory(), component);
}
String pathInPreferencesDirectory(View component) {
    return detail::appendedComponent(preferencesDirectory(), component);
}
String pathInCachesDirectory(View component) {
    return detail::appendedComponent(cachesDirectory(), component);
}
String pathInApplicationSupportDirectory(View component) {
    return detail::appendedComponent(applicationSupportDirectory(), component);
}

const String& userHomeDirectory() { return folders().userHome; }
const String& userLibraryDirectory() { return folders().userLibrary; }
const String& iCloudFolder() { return folders().iCloud; }
const std::vector<String>& DropboxFolders() { return folders().dropbox; }

bool isCloudFolder(const String& path) {
    return pathIsInDirectory(path, iCloudFolder()) ||
           pathIsInDirectory(path, pathInHomeDirectory(u"Documents/CloudMe")) ||
           pathIsInDirectory(path, pathInHomeDirectory(u"Box Sync")) ||
           contains(path, u"/OneDrive") || contains(path, u"/Google Drive") ||
           pathIsInDirectories(path, DropboxFolders());
}

// Only one platform moves the documents of all programs into the cloud by itself.
bool isVolatileFolder(const String& path) { return isCloudFolder(path); }

bool isTemporaryPath(View path) {
    if (path.starts_with(u"/tmp") || path.starts_with(u"/var/tmp/") ||
        liesBelow(path, folders().temporary))
        return true;
    // Each test first looks for a part that few paths have, so that no path is put together for
    // the others.
    if (contains(path, u"/TemporaryItems") &&
        path.starts_with(pathInCachesDirectory(u"TemporaryItems")))
        return true;
    return contains(path, u"/Library/Mail/") && contains(path, u".mimeattach") &&
           (path.starts_with(u"~/Library/Mail/") ||
            path.starts_with(pathInHomeDirectory(u"Library/Mail/")));
}

}  // namespace velmo
