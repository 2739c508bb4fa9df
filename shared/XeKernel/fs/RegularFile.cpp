#include "fs/RegularFile.h"

#include "XeSafeCRT.h"

#include <sys/stat.h>

namespace {

/// A pipe opens at once or not at all. Of a file that is leased to another program (fcntl(2),
/// F_SETLEASE), which only a regular one can be, it is the answer that it is not free yet; that one
/// is waited for.
int _openWithoutWaiting(const char* path, int flags, mode_t mode)
{
    const int descriptor = openDescriptor(path, flags | O_NONBLOCK, mode);
    return descriptor < 0 && errno == EWOULDBLOCK ? openDescriptor(path, flags, mode) : descriptor;
}

bool _isRegular(int descriptor)
{
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// From here on it is waited for as for any file, on whatever file system it lies.
bool _waitFromNowOn(int descriptor)
{
    const int flags = fcntl(descriptor, F_GETFL);
    return flags >= 0 && fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) == 0;
}

} // namespace

Descriptor openRegularFile(const char* path, int flags, mode_t mode)
{
    Descriptor file(_openWithoutWaiting(path, flags, mode));
    const bool usable = file && _isRegular(file.get()) && _waitFromNowOn(file.get());
    return usable ? std::move(file) : Descriptor(-1);
}
