#pragma once

// What the kernel calls of Disk Arbitration, for the check only.

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

typedef struct __DASession* DASessionRef;
typedef struct __DADisk* DADiskRef;

extern const CFStringRef kDADiskDescriptionDeviceModelKey;
extern const CFStringRef kDADiskDescriptionDeviceVendorKey;

DASessionRef DASessionCreate(CFAllocatorRef allocator);
DADiskRef DADiskCreateFromBSDName(CFAllocatorRef allocator, DASessionRef session, const char* name);
CFDictionaryRef DADiskCopyDescription(DADiskRef disk);
}
