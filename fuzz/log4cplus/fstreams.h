#pragma once

// In place of log4cplus's header of this name: the only files are those in memory, which are read as bytes.

#include <log4cplus/streams.h>

#define LOG4CPLUS_FSTREAM_PREFERED_FILE_NAME(name) (name)

namespace log4cplus
{

class tifstream : public tistream
{
public:
    bool good() const { return false; }
    void open(const wchar_t* /*name*/, std::ios_base::openmode /*mode*/) {}
};

} // namespace log4cplus
