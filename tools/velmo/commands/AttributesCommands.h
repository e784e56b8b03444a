// The actions of "velmo attributes", and what they share.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <velmocore/storage/MetaDataStore.h>

#include "frame/FileRun.h"

namespace velmo::tool {

Command makeAttributesListCommand(Session& session);
Command makeAttributesGetCommand(Session& session);
Command makeAttributesSetCommand(Session& session);
Command makeAttributesRemoveCommand(Session& session);
Command makeAttributesTagsCommand(Session& session);
Command makeAttributesSourceCommand(Session& session);
Command makeAttributesCommentCommand(Session& session);

/// What they are called with; each uses what it names.
struct AttributeOptions {
    InputOptions input;
    String name;
    PropertyList value;  ///< what is to be set
    std::vector<std::string> given;
    bool clear = false, values = false;
    MetaDataAccess access;

    bool changes() const { return clear || !given.empty(); }
};

/// Work on the attributes of one file; what cannot be done is an InputError.
using AttributeWork = void (*)(const std::string& path, const AttributeOptions& options,
                               Report& report);

/// A command that does the work for each PATH; the arguments that it has more come before.
Command attributeCommand(Session& session, std::shared_ptr<AttributeOptions> options,
                         AttributeWork work);
/// --no-dereference.
Option noFollowOption(AttributeOptions& options);
/// NAME.
Argument attributeNameArgument(AttributeOptions& options);

/// Whether there is something; false if the error says only that there is no such attribute. Any
/// other error is thrown.
bool isThere(const Error& error);

/// Tells that an attribute was changed: a line "FILE: WHAT", or the members as JSON.
void tellChange(Report& report, const std::string& path, std::string_view what, JsonObject members);

}  // namespace velmo::tool
