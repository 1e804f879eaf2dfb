#pragma once

#include "Kelpkit/Mfc.h"

#include <vector>

namespace KELPKIT
{

// Asks the disks who they are.
class CDiskIDInfo
{
public:
    virtual ~CDiskIDInfo() = default;

    // The identifiers, in the order of the drives. Never empty: one empty text where no disk gives any.
    std::vector<CString> DiskIds();

private:
    // What both methods say of a drive: false ends the scan; an empty identifier leaves the drive out.
    static bool AskBySmart(int drive, CString& id);
    bool AskByStorageQuery(int drive, CString& id);

    void ReadModels();

    std::vector<CString> m_models; // as WMI has them, less those that were taken
};

} // namespace KELPKIT
