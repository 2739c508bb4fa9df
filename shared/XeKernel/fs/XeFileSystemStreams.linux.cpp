#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/XeFileSystemStreamsPlatform.h"

#include "XeSafeCRT.h"

#include <ext/stdio_filebuf.h>
#include <unistd.h>

bool _attach(std::filebuf& buffer, int descriptor, std::ios::openmode mode)
{
    // Where this throws, the half-made buffer has closed the descriptor already.
    __gnu_cxx::stdio_filebuf<char> opened(descriptor, mode);
    if (!opened.is_open()) {
        close(descriptor);
        return false;
    }
    buffer.swap(opened);
    return true;
}
