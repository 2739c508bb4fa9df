#pragma once

// What the kernel calls of I/O Kit, for the check only.

#include <CoreFoundation/CoreFoundation.h>

#include <mach/mach_types.h>

extern "C" {

typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef mach_port_t io_object_t;
typedef io_object_t io_iterator_t;
typedef io_object_t io_registry_entry_t;
typedef UInt32 IOOptionBits;
typedef char io_name_t[128];

CFMutableDictionaryRef IOServiceMatching(const char* name);
kern_return_t IOServiceGetMatchingServices(mach_port_t mainPort, CFDictionaryRef matching,
                                           io_iterator_t* existing);
io_object_t IOIteratorNext(io_iterator_t iterator);
kern_return_t IORegistryEntryGetParentEntry(io_registry_entry_t entry, const io_name_t plane,
                                            io_registry_entry_t* parent);
CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key,
                                          CFAllocatorRef allocator, IOOptionBits options);
kern_return_t IOObjectRelease(io_object_t object);
}
