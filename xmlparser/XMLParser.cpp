#include "Kelpkit/XMLParser.h"

#include "XMLTree.h"

CXMLTreeCreator::~CXMLTreeCreator() = default;

bool CXMLTreeCreator::Allocate(IXMLTreePtr& tree)
{
    tree.reset(new xmlparser::XMLTree);
    return true;
}
