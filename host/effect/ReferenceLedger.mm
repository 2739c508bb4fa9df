#import "ReferenceLedger.h"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <numeric>

namespace host {

static std::size_t referencesOfOthers(CFTypeRef object) { return [(id)object retainCount] - 1; }

ReferenceLedger::~ReferenceLedger()
{
    for (CFTypeRef const object : m_objects) {
        [(id)object release];
    }
}

CFTypeRef ReferenceLedger::handOut(CFTypeRef fresh)
{
    forgetReturned();
    m_objects.push_back((CFTypeRef)[(id)fresh retain]);
    return fresh;
}

std::size_t ReferenceLedger::outstanding() const
{
    return std::accumulate(
        m_objects.begin(), m_objects.end(), std::size_t{0},
        [](std::size_t sum, CFTypeRef object) { return sum + referencesOfOthers(object); });
}

void ReferenceLedger::forgetReturned()
{
    std::erase_if(m_objects, [](CFTypeRef object) {
        const bool returned = referencesOfOthers(object) == 0;
        if (returned) {
            [(id)object release];
        }
        return returned;
    });
}

} // namespace host
