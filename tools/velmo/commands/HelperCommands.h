// The actions of "velmo helper", and what they share.
#pragma once

#include <string_view>

#include <velmocore/platform/Error.h>

#include "frame/Command.h"

namespace velmo::tool {

Command makeHelperServeCommand(Session& session);
Command makeHelperCallCommand(Session& session);
Command makeHelperListCommand(Session& session);

/// What an error says, for people: its text.
inline std::string reasonOf(const Error& error) {
    return error.text.isEmpty() ? "failed" : error.text.utf8();
}

}  // namespace velmo::tool
