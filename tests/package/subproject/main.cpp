#include <Kelpkit/Kelpkit.h>

int main()
{
    return KELPKIT::ALargeB(L"1.10", L"1.9") == 1 ? 0 : 1;
}
