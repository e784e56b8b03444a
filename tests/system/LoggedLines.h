// The lines that are logged while an object of this lives, from any thread.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <velmocore/platform/Log.h>

namespace velmo::test {

class LoggedLines {
public:
    LoggedLines() {
        take();
        setLogHandler([](std::string_view line) {
            const std::lock_guard lock(mutex());
            kept().emplace_back(line);
        });
    }
    ~LoggedLines() { setLogHandler(nullptr); }

    /// Those since the start or the last call.
    std::vector<std::string> lines() const { return take(); }

private:
    static std::vector<std::string> take() {
        const std::lock_guard lock(mutex());
        return std::exchange(kept(), {});
    }
    static std::mutex& mutex() {
        static std::mutex mutex;
        return mutex;
    }
    static std::vector<std::string>& kept() {
        static std::vector<std::string> lines;
        return lines;
    }
};

}  // namespace velmo::test
