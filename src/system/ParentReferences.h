#pragma once

#include <string>

namespace KELPKIT
{

// Folds each "\.." of a path together with the folder name before it, as far as there is one.
std::wstring CollapseParentReferences(std::wstring path);

} // namespace KELPKIT
