#include "Tour.h"

#include <Kelpkit/Files.h>
#include <Kelpkit/Log.h>
#include <Kelpkit/ModelUpgrade.h>
#include <Kelpkit/SystemInfo.h>

#include <fstream>

using namespace KELPKIT;

namespace
{

// An upgrade of the tour's model, to files of the given name.
struct Upgrade {
    Upgrade(const std::wstring& model, const std::wstring& mode, const std::wstring& outputName)
        : done(ConvertHoopsQmx(model, mode, outputName, hsf, qmx, error))
    {
    }

    std::wstring Text() const
    {
        if (!done)
            return L"false, " + error;
        const auto name = [](const std::wstring& path) { return path.substr(GetFileDir(path).size()); };
        return L"true, " + name(qmx) + (hsf.empty() ? L"" : L", " + name(hsf));
    }

    // In this order, since done is the result of the call that fills the others.
    std::wstring hsf;
    std::wstring qmx;
    std::wstring error;
    bool done;
};

} // namespace

void ShowModelUpgrade(Tour& tour)
{
    const std::wstring models = tour.Folder() + L"齿轮 gear";
    const std::wstring model = models + L"\\gear.qmx";

    tour.Section(L"A model is upgraded");
    tour.Step(L"MakeDirectory, working folder", [&] {
        const bool result = MakeDirectory(models);
        return Tour::Result{Text(result), CheckFolderExis(models)};
    });
    tour.Step(L"SetProperties, SetLogPath", [&] {
        CLogMsg::SetProperties(GetSysRoot() + L"log4cplus.properties");
        CLogMsg::SetLogPath(LogFile(tour));
        return Tour::Result{L"log4cplus.properties, 日志 logs\\run.log", CheckFileExis(LogFile(tour))};
    });
    tour.Step(L"a model of version 1", [&] {
        std::ofstream(model.c_str()) << "QMX 1\nname gear\nteeth 17\nv 0 0 1\nv 0 1 0\nv 1 0 0\n";
        return Tour::Result{L"gear.qmx, " + std::to_wstring(GetFileSize(model)) + L" bytes", CheckFileExis(model)};
    });
    tour.Step(L"ConvertHoopsQmx", [&] {
        const Upgrade upgrade(model, L"full", L"齿轮");
        const bool right = upgrade.done && Contents(upgrade.qmx).compare(0, 5, "QMX 2") == 0 &&
                           Contents(upgrade.hsf).compare(0, 14, "HSF vertices 3") == 0;
        return Tour::Result{upgrade.Text(), right};
    });
    tour.Step(L"ConvertHoopsQmx, no geometry", [&] {
        const Upgrade upgrade(model, L"qmx-only", L"flat");
        return Tour::Result{upgrade.Text(), upgrade.done && upgrade.hsf.empty()};
    });
    tour.Step(L"ConvertHoopsQmx, converter fails", [&] {
        const Upgrade upgrade(model, L"fail", L"broken");
        return Tour::Result{upgrade.Text(), !upgrade.done && upgrade.error == L"Qmx文件升级失败!"};
    });
}
