#pragma once

#import <Foundation/Foundation.h>
#import <Foundation/NSDebug.h>

#include <map>
#include <sstream>
#include <string>

/// Counts the objects of each class that come to stay while it lives, by the platform's own count
/// of allocations. Of the classes alone: bytes that belong to no object are not seen. [main]
class NewObjects {
public:
    NewObjects()
    {
        GSDebugAllocationActive(YES);
        take();
    }
    ~NewObjects() { GSDebugAllocationActive(NO); }
    NewObjects(const NewObjects&) = delete;
    NewObjects& operator=(const NewObjects&) = delete;

    /// How many more (or, below zero, fewer) of each class there are than at the last call, or
    /// than in the beginning; classes without a change are left out. What lies in a pool counts.
    std::map<std::string, int> take()
    {
        std::map<std::string, int> counts;
        @autoreleasepool {
            std::istringstream list(GSDebugAllocationList(YES));
            int count = 0;
            std::string name;
            while (list >> count >> name) {
                counts[name] = count;
            }
        }
        return counts;
    }
};
