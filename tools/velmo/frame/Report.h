// What the work on one input has to say.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/String.h>

#include "Json.h"
#include "Session.h"
#include "Terminal.h"

namespace velmo::tool {

/// Collects the output of one input and writes it when its turn has come, a long one in pieces.
/// Complaints come before the output that follows them. One thread uses a report.
class Report {
public:
    /// Waits until all that stands before this report has been written.
    using Turn = std::function<void()>;

    explicit Report(Session& session, Turn turn = nullptr);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    Session& session() { return session_; }
    bool json() const { return session_.json; }

    /// A line for people. Of foreign text nothing reaches a terminal that it would obey.
    void printLine(std::string_view foreign);
    Line line() const;  ///< an empty line to add parts to
    void printLine(const Line& line);
    /// The name of a file, for other programs if they asked for NUL at its end.
    void printName(std::string_view name);
    /// The name of an input above its output, where there are several inputs.
    void printHeading(std::string_view name);
    /// A whole text and a line end; its lone surrogates become U+FFFD.
    void printText(std::u16string_view text);
    /// Bytes as they are, whatever they are; on a terminal as they can be shown.
    void printBytes(std::string_view bytes);
    /// One line for programs.
    void printObject(JsonObject members);

    void noteHit(bool hit) { session_.noteHit(hit); }
    /// An input could not be used.
    void fail(std::string_view file, std::string_view reason);
    /// Something is to be known of an input that could be used. The same is said once.
    void warn(std::string_view file, std::string_view text);

    /// Writes all that was collected, when its turn has come.
    void flush();

    /// The report that works on this thread, and the file that it works on: whom the library's
    /// diagnostics go to.
    void nameFile(std::string_view file) { file_ = file; }
    static void logLine(std::string_view line);

private:
    void append(std::string_view bytes);

    Session& session_;
    Turn turn_;
    Report* former_;
    std::string file_, out_;
    std::vector<std::string> complaints_;
    std::set<std::string> said_;
};

/// The members that name a file: "file", and "fileBytes" in Base64 for a name that is not UTF-8.
/// More members may follow.
JsonObject fileObject(std::string_view name, JsonObject more = {});

}  // namespace velmo::tool
