// The collapsing of white units stands with the other work on plain text.
#pragma once

#include "text/WhiteRuns.h"
