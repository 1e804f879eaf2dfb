#pragma once

#include <Kelpkit/Files.h>

#include <string>

namespace test
{

// CFileFolderManageTool::CopyNeedFile is exported, but private. An explicit instantiation may name it.
template <class Tag, typename Tag::Member member>
struct Expose {
    friend typename Tag::Member Exposed(Tag /*unused*/) { return member; }
};
struct CopyNeedFileTag {
    using Member = int (KELPKIT::CFileFolderManageTool::*)(const std::wstring&, const std::wstring&);
    friend Member Exposed(CopyNeedFileTag);
};
template struct Expose<CopyNeedFileTag, &KELPKIT::CFileFolderManageTool::CopyNeedFile>;

inline int CopyNeedFile(KELPKIT::CFileFolderManageTool& tool, const std::wstring& from, const std::wstring& to)
{
    return (tool.*Exposed(CopyNeedFileTag()))(from, to);
}

} // namespace test
