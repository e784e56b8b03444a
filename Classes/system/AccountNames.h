#pragma once

#include <sys/types.h>

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// The name of a user's account; absent if there is none.
String accountName(uid_t number);

}  // namespace velmo::detail
