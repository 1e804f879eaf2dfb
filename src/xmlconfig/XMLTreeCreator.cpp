#include "Kelpkit/XMLParser.h"

#if defined(_MSC_VER)
// The virtual table, which Visual Studio by itself exports with whole classes only.
#pragma comment(linker, "/export:??_7CXMLTreeCreator@@6B@,DATA")
#endif

CXMLTreeCreator::CXMLTreeCreator(const CXMLTreeCreator&) = default;
CXMLTreeCreator& CXMLTreeCreator::operator=(const CXMLTreeCreator&) = default;
