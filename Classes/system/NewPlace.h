// A name beside a file or folder for what is to take its place: whatever is made there appears
// under the final name when it is complete, or not at all.
#pragma once

#include <string>

#include "system/OpenFile.h"

namespace velmo::detail {

/// Where a path leads: the folder, and the name in it.
struct Place {
    OpenFile folder;
    std::string name;

    /// False, and errno, if there is no such folder, or the path ends in no name.
    explicit operator bool() const { return static_cast<bool>(folder); }
};
Place placeOf(FileCalls& calls, const std::string& path);

enum class Occupied {
    Fails,       ///< with EEXIST
    IsReplaced,  ///< by a file; a folder is not
};

/// Moves something to where it stands under another name.
bool moveName(FileCalls& calls, int fromFolder, const std::string& from, int toFolder,
              const std::string& to, Occupied occupied);

class NewPlace {
public:
    /// In an open folder, which must outlive this. Nothing is made.
    NewPlace(FileCalls& calls, int folder);
    /// Removes what was made and has not found its place.
    ~NewPlace();
    NewPlace(const NewPlace&) = delete;
    NewPlace& operator=(const NewPlace&) = delete;

    int folder() const { return folder_; }
    /// Nothing stands under this name, unless it was made here.
    const std::string& name() const { return name_; }

    OpenFile makeFile(mode_t mode);
    bool makeFolder(mode_t mode);
    bool makeLink(const std::string& target);
    /// For others who have made something under the name.
    void noteMade() { isMade_ = true; }

    /// Moves it to its final name in the same folder.
    bool become(const std::string& name, Occupied occupied);

private:
    bool made(bool isDone);

    FileCalls& calls_;
    int folder_;
    std::string name_;
    bool isMade_ = false;
};

}  // namespace velmo::detail
