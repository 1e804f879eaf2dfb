#include "Kelpkit/SystemInfo.h"

#include "Kelpkit/Text.h"

#include <winsock2.h>

namespace KELPKIT
{
namespace
{

// Winsock for one call. It is ended also where it could not be started.
class WinsockSession
{
public:
    WinsockSession()
    {
        WSADATA data;
        m_started = ::WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }
    WinsockSession(const WinsockSession&) = delete;
    WinsockSession& operator=(const WinsockSession&) = delete;
    ~WinsockSession() { ::WSACleanup(); }

    bool IsStarted() const { return m_started; }

private:
    bool m_started;
};

std::string FirstAddress()
{
    const WinsockSession winsock;
    char name[256] = {};
    if (!winsock.IsStarted() || ::gethostname(name, sizeof name) == SOCKET_ERROR)
        return {};
    const hostent* const host = ::gethostbyname(name);
    if (host == nullptr || host->h_addr_list[0] == nullptr)
        return {};
    const char* const address = ::inet_ntoa(*reinterpret_cast<const in_addr*>(host->h_addr_list[0]));
    return address == nullptr ? "" : address;
}

} // namespace

std::wstring GetHostIP()
{
    return AnsiToUnicode(FirstAddress());
}

} // namespace KELPKIT
