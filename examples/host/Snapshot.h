#pragma once

#include "Canvas.h"

#include <memory>

class HostWindow;

// The client area of a window as the screen shows it, once the hosted program has painted itself. Null where it does not
// come to rest.
std::unique_ptr<Canvas> Snapshot(const HostWindow& window);
