#pragma once

/// @file
/// What Kelpkit.dll exports is marked with KELPKIT_API.

/// Marks what Kelpkit.dll exports. Nothing without it is visible outside.
#if !defined(_WIN32)
#define KELPKIT_API
#elif defined(KELPKIT_BUILD)
#define KELPKIT_API __declspec(dllexport)
#else
#define KELPKIT_API __declspec(dllimport)
#endif
