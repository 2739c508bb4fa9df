#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/XeFileSystemStreamsPlatform.h"

#include "XeSafeCRT.h"

#include <unistd.h>

bool _attach(std::filebuf& buffer, int descriptor, std::ios::openmode mode)
{
    // The library's own way in; its public one takes a path only.
    if (buffer.__open(descriptor, mode) == nullptr) {
        close(descriptor);
        return false;
    }
    return true;
}
