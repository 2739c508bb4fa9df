// Empty: makes the precompiled header of the Objective-C++ tests.
