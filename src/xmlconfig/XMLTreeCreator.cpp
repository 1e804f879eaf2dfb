#include "Kelpkit/XMLParser.h"

CXMLTreeCreator::CXMLTreeCreator(const CXMLTreeCreator&) = default;
CXMLTreeCreator& CXMLTreeCreator::operator=(const CXMLTreeCreator&) = default;
