#pragma once

// What the kernel calls of the File Manager, for the check only. Structures end with the last field
// that is used.

#include <CoreFoundation/CoreFoundation.h>

#include <sys/types.h>

extern "C" {

typedef SInt16 OSErr;
typedef UInt32 OptionBits;
typedef long ByteCount;
typedef char* Ptr;
typedef Ptr* Handle;
typedef SInt16 FSVolumeRefNum;
typedef UInt32 FSCatalogInfoBitmap;
typedef struct HFSUniStr255 HFSUniStr255;
typedef struct FSSpec* FSSpecPtr;

struct FSRef {
    UInt8 hidden[80];
};

struct FSCatalogInfo {
    UInt16 nodeFlags;
    FSVolumeRefNum volume;
};

struct GetVolParmsInfoBuffer {
    SInt16 vMVersion;
    SInt32 vMAttrib;
    Handle vMLocalHand;
    SInt32 vMServerAdr;
    SInt32 vMVolumeGrade;
    SInt16 vMForeignPrivID;
    SInt32 vMExtendedAttributes;
    void* vMDeviceID;
};

enum { kFSCatInfoVolume = 0x00000004 };

OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfo,
                       HFSUniStr255* outName, FSSpecPtr fsSpec, FSRef* parentRef);
OSStatus FSGetVolumeParms(FSVolumeRefNum volume, GetVolParmsInfoBuffer* buffer,
                          ByteCount bufferSize);
OSStatus FSEjectVolumeSync(FSVolumeRefNum vRefNum, OptionBits flags, pid_t* dissenter);
}
