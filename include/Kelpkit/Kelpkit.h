#pragma once

/// All of Kelpkit's public headers.

#include "Files.h"
#include "Log.h"
#include "Text.h"
