#pragma once

/// Calls `body` for its result. When an exception ends it, the result is `failure`: for want of
/// memory or an exception of foreign code. On macOS that includes Foundation's, which take the same
/// way there as C++'s. [any]
template <typename Result, typename Body>
Result noThrow(Result failure, Body body) noexcept
{
    try {
        return body();
    } catch (...) {
        return failure;
    }
}
