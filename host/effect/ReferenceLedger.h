#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <vector>

namespace host {

/// Counts the references to objects that were handed to clients and that no one has given back.
///
/// It keeps a reference of its own to each such object and counts those of others, so every
/// object handed out must be a fresh one. [main]
class ReferenceLedger {
public:
    ReferenceLedger() = default;
    ~ReferenceLedger();
    ReferenceLedger(const ReferenceLedger&) = delete;
    ReferenceLedger& operator=(const ReferenceLedger&) = delete;

    /// Hands out `fresh`: its one reference becomes the client's. Returns `fresh`.
    CFTypeRef handOut(CFTypeRef fresh);

    /// References held by anyone but the ledger.
    std::size_t outstanding() const;

private:
    void forgetReturned();

    std::vector<CFTypeRef> m_objects;
};

} // namespace host
