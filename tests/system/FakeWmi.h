#pragma once

#include "support/ImportPatch.h"

#include <windows.h>

#include <string>
#include <vector>

namespace test
{

// COM and WMI as Kelpkit has them while it lives, with disks of these models; one at a time. A step may fail:
// "CoInitializeEx", "CoInitializeSecurity", "CoCreateInstance", "ConnectServer", "CoSetProxyBlanket", "ExecQuery",
// "Next" (at the first disk), "Next 2" (at the second) and "Get". The failure is its result.
class FakeWmi
{
public:
    explicit FakeWmi(std::vector<std::wstring> models, const std::string& failingStep = "", HRESULT failure = E_FAIL);

    // The steps that were taken, in their order, with "CoUninitialize" among them.
    static const std::vector<std::string>& Steps();

    // What Kelpkit has not given back: objects, BSTRs, VARIANTs and initialisations of COM.
    static int Unreleased();

    // A disk whose model is NULL, among the others.
    static const wchar_t* const kNoModel;

private:
    ImportPatch m_initialize;
    ImportPatch m_security;
    ImportPatch m_uninitialize;
    ImportPatch m_create;
    ImportPatch m_blanket;
    ImportPatch m_allocate;
    ImportPatch m_free;
    ImportPatch m_initVariant;
    ImportPatch m_clearVariant;
};

} // namespace test
