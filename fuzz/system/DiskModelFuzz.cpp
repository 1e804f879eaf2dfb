#include "support/Fuzz.h"
#include "system/DiskModel.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <vector>

using fuzz::Expect;
using Texts = std::vector<std::wstring>;

namespace
{

CString ToCString(const std::wstring& text)
{
    return text.c_str();
}

std::wstring Plain(const CString& text)
{
    return text.GetString();
}

bool ModelIsLeftOut(const std::wstring& model)
{
    const std::wstring suffix = L" ATA Device";
    const std::size_t first = model.find(suffix);
    return first == model.npos ? model.size() == 10 : first + suffix.size() == model.size();
}

std::wstring ModelTaken(Texts& models, const std::wstring& name)
{
    for (const bool whole : {true, false}) {
        for (std::size_t i = 0; i < models.size(); ++i) {
            std::wstring model = models[i];
            if (whole ? model != name : model.find(name) == model.npos)
                continue;
            models.erase(models.begin() + static_cast<std::ptrdiff_t>(i));
            return model;
        }
    }
    return name;
}

std::wstring ModelTrimmed(std::wstring text)
{
    while (!text.empty() && text.back() == L' ')
        text.pop_back();
    while (!text.empty() && text.front() == L' ')
        text.erase(0, 1);
    return text;
}

void Take(Texts models, const std::wstring& name)
{
    std::vector<CString> taken;
    for (const std::wstring& model : models)
        taken.push_back(ToCString(model));
    for (int drive = 0; drive < 3; ++drive) {
        Expect(Plain(KELPKIT::TakeModel(taken, ToCString(name))) == ModelTaken(models, name),
               "taken as the model does");
        Texts left;
        for (const CString& model : taken)
            left.push_back(Plain(model));
        Expect(left == models, "and nothing else is");
    }
}

} // namespace

// A name and models, each ended by a backslash with anything behind it but another one, or by a zero.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto next = [&] { return fuzz::UpToZero(fuzz::Wide(input.ConsumeRandomLengthString())); };
    const std::wstring name = next();
    Texts models;
    while (input.remaining_bytes() > 0)
        models.push_back(next());

    Take(models, name);
    const std::string swapped = KELPKIT::SwappedName(ToCString(name));
    Expect(swapped.size() <= name.size() + 1, "no byte behind the name's is read");
    for (const std::wstring& model : models) {
        Expect(KELPKIT::IsLeftOut(ToCString(model)) == ModelIsLeftOut(model), "left out as the model says");
        Expect(Plain(KELPKIT::JoinDiskId(ToCString(model), ToCString(name))) ==
                   ModelTrimmed(model) + L"-" + ModelTrimmed(name),
               "joined as the model does");
    }
    return 0;
}
