#include "Kelpkit/Text.h"

namespace KELPKIT
{

CSortAssist::CSortAssist() = default;
CSortAssist& CSortAssist::operator=(const CSortAssist&) = default;
CSortAssist::~CSortAssist() = default;

} // namespace KELPKIT
