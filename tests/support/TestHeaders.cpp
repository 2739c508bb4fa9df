// Empty: makes the precompiled header of the C++ tests.
