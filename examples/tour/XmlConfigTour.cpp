#include "Tour.h"

#include <Kelpkit/XMLParser.h>
#include <Kelpkit/XmlConfig.h>

#include <fstream>

using namespace KELPKIT;

namespace
{

// A file as an installer may have laid it down: in GB 2312, which its declaration says.
void LayDown(const std::wstring& path)
{
    std::ofstream(path.c_str(), std::ios::binary) << "<?xml version=\"1.0\" encoding=\"GB2312\"?>\r\n"
                                                     "<config>\r\n"
                                                     "  <!-- \xC9\xE8\xD6\xC3 -->\r\n"
                                                     "  <window>\r\n"
                                                     "    <title>\xB3\xDD\xC2\xD6</title>\r\n"
                                                     "    <width>1024px</width>\r\n"
                                                     "  </window>\r\n"
                                                     "  <usersloginfo/>\r\n"
                                                     "</config>\r\n";
}

} // namespace

void ShowXmlConfig(Tour& tour)
{
    tour.Section(L"Configuration");
    const std::wstring path = tour.Folder() + L"\u914D\u7F6E config.xml";
    LayDown(path);
    CXMLConfig config(path);
    tour.Step(L"GetXmlString of a file in GB2312", [&] {
        const std::wstring title = config.GetXmlString(L"window/title");
        return Tour::Result{title, title == L"\u9F7F\u8F6E"};
    });
    tour.Step(L"GetXmlInt of 1024px", [&] {
        const int width = config.GetXmlInt(L"window/width");
        return Tour::Result{std::to_wstring(width), width == 1024};
    });
    tour.Step(L"WriteXmlString of \u9F7F\u8F6E \u20AC", [&] {
        const bool isWritten = config.WriteXmlString(L"\u9F7F\u8F6E \u20AC", L"window/title");
        // The euro sign is not in GB 2312, so it is written as a reference.
        const bool isKept = Contents(path).find("<title>\xB3\xDD\xC2\xD6 &#x20AC;</title>") != std::string::npos;
        return Tour::Result{Text(isWritten) + L", still GB2312", isWritten && isKept};
    });
    tour.Step(L"Saved logins, there and back", [&] {
        config.WriteShellXmlUsrs({{L"\u738B", L"<\"&\">"}, {L"ann", L" blanks "}});
        std::vector<StUsrPwd> users;
        config.GetShellXmlUsrs(users);
        const bool isRight = users.size() == 2 && users[0].password == L"<\"&\">" && users[1].password == L" blanks ";
        return Tour::Result{std::to_wstring(users.size()) + L" logins, as given", isRight};
    });
    tour.Step(L"IXMLTree, children of the top", [&] {
        IXMLTreePtr tree;
        int count = 0;
        if (CXMLTreeCreator::Allocate(tree) && tree->LoadFile(path.c_str()))
            tree->GetChildCount(count);
        return Tour::Result{std::to_wstring(count), count == 2};
    });
}
