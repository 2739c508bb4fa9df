#pragma once

#include "XeFile.h"

/// Settles what the wishes of a record mean together: a new file's size asks for a new file, and
/// that for the right to write.
inline void _putRight(_xeAttrib& attributes)
{
    attributes.create = attributes.create || attributes.newFileSize > 0;
    attributes.readOnly = attributes.readOnly && !attributes.create;
}
