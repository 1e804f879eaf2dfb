#include "Bench.h"

#include "Kelpkit/XmlConfig.h"

#include "support/TempFolder.h"

#include <pugixml.hpp>

#include <windows.h>

#include <io.h>
#include <msxml2.h>
#include <oleauto.h>

#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace bench
{
namespace
{

// A configuration in UTF-8 of so many bytes, with the value that is read and written in its middle.
std::string Configuration(std::size_t size)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>\n";
    const auto fill = [&text](std::size_t end) {
        for (int i = 0; text.size() < end; ++i) {
            const std::string number = std::to_string(i);
            text.append("  <part").append(number).append(">\n    <name>\xE8\x9E\xBA\xE6\xA0\x93 M8x").append(number);
            text.append("</name>\n    <material grade=\"8.8\">steel</material>\n  </part").append(number).append(">\n");
        }
    };
    fill(size / 2);
    text += "  <server>\n    <host>localhost</host>\n    <port>8080</port>\n  </server>\n";
    fill(size);
    return text + "</config>\n";
}

std::wstring MakeFile(const std::wstring& name, std::size_t size)
{
    static const test::TempFolder folder;
    std::wstring path = folder / name;
    std::ofstream(path.c_str(), std::ios::binary) << Configuration(size);
    return path;
}

std::wstring ReadByPugixml(const std::wstring& path)
{
    pugi::xml_document document;
    document.load_file(path.c_str());
    return document.child(L"config").child(L"server").child(L"port").text().get();
}

void LoadAndSet(pugi::xml_document& document, const std::wstring& path)
{
    document.load_file(path.c_str());
    document.child(L"config").child(L"server").child(L"port").text().set(L"8081");
}

// Over the old file: who reads meanwhile, or loses power, sees half a file or none.
bool WriteInPlaceByPugixml(const std::wstring& path)
{
    pugi::xml_document document;
    LoadAndSet(document, path);
    return document.save_file(path.c_str());
}

// As safely as Kelpkit saves: beside, flushed, and put in the place of the old file.
bool WriteByPugixml(const std::wstring& path)
{
    pugi::xml_document document;
    LoadAndSet(document, path);
    const std::wstring temporary = path + L".new";
    std::FILE* const file = ::_wfopen(temporary.c_str(), L"wb");
    pugi::xml_writer_file writer(file);
    document.save(writer);
    std::fflush(file);
    ::FlushFileBuffers(reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(file))));
    std::fclose(file);
    return ::MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE;
}

// A COM reference.
template <class Interface>
class Reference
{
public:
    Reference() = default;
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;
    ~Reference()
    {
        if (m_pointer != nullptr)
            m_pointer->Release();
    }
    Interface** operator&() { return &m_pointer; } // NOLINT(google-runtime-operator): as COM functions want it
    Interface* operator->() const { return m_pointer; }

private:
    Interface* m_pointer = nullptr;
};

// A BSTR.
class Bstr
{
public:
    explicit Bstr(const wchar_t* text = nullptr) : m_text(::SysAllocString(text)) {}
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { ::SysFreeString(m_text); }
    operator BSTR() const { return m_text; } // NOLINT(google-explicit-constructor): as COM functions want it
    BSTR* Out() { return &m_text; }

private:
    BSTR m_text;
};

VARIANT PathVariant(const Bstr& path)
{
    VARIANT variant;
    ::VariantInit(&variant);
    variant.vt = VT_BSTR;
    variant.bstrVal = path;
    return variant;
}

// Calls use(document, node) with the value's node.
template <class Use>
void WithMsxml(const std::wstring& path, const Use& use)
{
    const Bstr name(path.c_str());
    Reference<IXMLDOMDocument> document;
    CLSID id;
    ::CLSIDFromProgID(L"Msxml2.DOMDocument.6.0", &id);
    ::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument, reinterpret_cast<void**>(&document));
    document->put_async(VARIANT_FALSE);
    VARIANT_BOOL loaded = VARIANT_FALSE;
    document->load(PathVariant(name), &loaded);
    Reference<IXMLDOMNode> node;
    document->selectSingleNode(Bstr(L"config/server/port"), &node);
    use(document, node, name);
}

std::wstring ReadByMsxml(const std::wstring& path)
{
    Bstr text;
    WithMsxml(path, [&text](const auto&, const auto& node, const Bstr&) { node->get_text(text.Out()); });
    return static_cast<BSTR>(text);
}

bool WriteByMsxml(const std::wstring& path)
{
    WithMsxml(path, [](const auto& document, const auto& node, const Bstr& name) {
        node->put_text(Bstr(L"8081"));
        document->save(PathVariant(name));
    });
    return true;
}

void Compare(const std::string& size, std::size_t bytes, double readGoal, double writeGoal)
{
    const std::wstring& path = Keep(MakeFile(std::to_wstring(bytes) + L".xml", bytes));
    Comparison("read one XML value", size)
        .Kelpkit([&path] { return KELPKIT::CXMLConfig(path).GetXmlString(L"server/port"); })
        .Peer(
            "pugixml, wide", [&path] { return ReadByPugixml(path); }, readGoal)
        .Peer("MSXML", [&path] { return ReadByMsxml(path); });
    Comparison("write one XML value", size)
        .Kelpkit([&path] { return KELPKIT::CXMLConfig(path).WriteXmlString(L"8081", L"server/port"); })
        .Peer(
            "pugixml, wide, as safely", [&path] { return WriteByPugixml(path); }, writeGoal)
        .Peer("pugixml, wide, in place", [&path] { return WriteInPlaceByPugixml(path); })
        .Peer("MSXML", [&path] { return WriteByMsxml(path); });
}

} // namespace

void Register()
{
    ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    Compare("4 KiB", 4096, 1.05, 1.1);
    Compare("1 MiB", 1 << 20, 0.75, 0.85);

    Growth(
        "read one XML value, bytes",
        [](std::size_t size) {
            const std::wstring& path = Keep(MakeFile(L"read" + std::to_wstring(size) + L".xml", size));
            return [&path] { return KELPKIT::CXMLConfig(path).GetXmlInt(L"server/port"); };
        },
        10'000);
    Growth(
        "write one XML value, bytes",
        [](std::size_t size) {
            const std::wstring& path = Keep(MakeFile(L"write" + std::to_wstring(size) + L".xml", size));
            return [&path] { return KELPKIT::CXMLConfig(path).WriteXmlInt(8081, L"server/port"); };
        },
        10'000);
    Growth(
        "read and write saved logins, logins",
        [](std::size_t size) {
            const std::wstring& path = Keep(MakeFile(L"logins" + std::to_wstring(size) + L".xml", 1));
            KELPKIT::CXMLConfig(path).WriteXmlString(L"", L"usersloginfo");
            const auto& users = Keep(std::vector<KELPKIT::StUsrPwd>(size, {L"user", L"password"}));
            return [&path, &users] {
                KELPKIT::CXMLConfig config(path);
                config.WriteShellXmlUsrs(users);
                std::vector<KELPKIT::StUsrPwd> read;
                config.GetShellXmlUsrs(read);
                return read;
            };
        },
        10);
}

} // namespace bench
