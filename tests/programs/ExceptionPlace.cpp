// Prints where the exception of a minidump was raised, as debuggers count: the module, and the place from its start on.
//
//     ExceptionPlace.exe DUMP

#include "support/MiniDump.h"

#include <cstdio>
#include <exception>

int wmain(int argc, wchar_t** argv)
{
    if (argc != 2)
        return 2;
    try {
        const test::MiniDump dump(argv[1]);
        for (const test::MiniDump::Module& module : dump.modules) {
            if (dump.exception.address - module.base < module.size)
                std::printf("%ls 0x%llx\n", module.Name().c_str(),
                            static_cast<unsigned long long>(dump.exception.address - module.base));
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
