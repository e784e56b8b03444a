#pragma once

#include <exception>
#include <string>
#include <string_view>

#include <velmocore/system/Archives.h>

namespace velmo::detail {

/// Ends the work on an archive; caught where the operation begins.
class ArchiveFailure : public std::exception {
public:
    explicit ArchiveFailure(Error error) : error_(std::move(error)) {}
    /// A problem of an entry, or of the archive if it has no name.
    ArchiveFailure(ArchiveProblem problem, std::string_view entry, std::string_view reason);

    const Error& error() const { return error_; }
    const char* what() const noexcept override { return "archive failure"; }

private:
    Error error_;
};

/// Goes on if the system did what it was asked; else errno tells why not, about something.
void demand(bool isDone, std::string_view about);

}  // namespace velmo::detail
