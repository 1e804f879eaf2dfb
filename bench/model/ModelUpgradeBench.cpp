#include "Bench.h"
#include "Processes.h"

#include "Kelpkit/ModelUpgrade.h"

#include "support/TempFolder.h"

#include <fstream>
#include <string>

void bench::Register()
{
    static const test::TempFolder folder;
    const std::wstring& model = Keep(folder / L"gear.qmx");
    std::ofstream(model.c_str()) << "model";
    const std::wstring& command = Keep(ProgramPath(L"Pelvane.exe") + L" \"" + model + L"\" \"full\" \"gear\"");
    Comparison("model upgrade", "through the example's converter")
        .Kelpkit([&model] {
            std::wstring hsf;
            std::wstring qmx;
            std::wstring error;
            return KELPKIT::ConvertHoopsQmx(model, L"full", L"gear", hsf, qmx, error);
        })
        .Peer("CreateProcessW and a wait", [&command] { return Run(command); });
}
