#pragma once

/// @file
/// All of Kelpkit's public headers.

#include "ChildExe.h"
#include "Color.h"
#include "CrashReport.h"
#include "DateTime.h"
#include "Files.h"
#include "Log.h"
#include "Mfc.h"
#include "ModelUpgrade.h"
#include "SystemInfo.h"
#include "Text.h"
#include "XMLParser.h"
#include "XmlConfig.h"
