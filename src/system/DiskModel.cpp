#include "system/DiskModel.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace KELPKIT
{

bool IsLeftOut(const CString& model)
{
    constexpr int kSuffixLength = 11;
    return model.Find(L" ATA Device") == model.GetLength() - kSuffixLength;
}

CString TakeModel(std::vector<CString>& models, const CString& name)
{
    auto entry = std::find(models.begin(), models.end(), name);
    if (entry == models.end()) {
        entry =
            std::find_if(models.begin(), models.end(), [&name](const CString& model) { return model.Find(name) >= 0; });
    }
    if (entry == models.end())
        return name;
    CString model = *entry;
    models.erase(entry);
    return model;
}

std::string SwappedName(const CString& name)
{
    const auto* const bytes = reinterpret_cast<const char*>(name.GetString());
    return SwapPairs(std::string(bytes, static_cast<std::size_t>(name.GetLength())));
}

std::string SwapPairs(std::string bytes)
{
    if (bytes.size() % 2 != 0)
        bytes.push_back(' ');
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes.substr(0, bytes.find('\0'));
}

CString JoinDiskId(CString model, CString serial)
{
    return model.Trim(L' ') + L"-" + serial.Trim(L' ');
}

} // namespace KELPKIT
