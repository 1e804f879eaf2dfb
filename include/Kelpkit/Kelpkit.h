#pragma once

/// All of Kelpkit's public headers.

#include "Files.h"
#include "Text.h"
