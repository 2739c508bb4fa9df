#pragma once

#include <exception>
#include <string>

/// What `function` threw, in words. Compiled into the .cpp and the .mm half of the test program;
/// the linker keeps one copy of each instance, which has to serve both.
template <typename Function>
inline std::string thrownBy(Function function)
{
    try {
        function();
    } catch (int value) {
        return "int " + std::to_string(value);
    } catch (const std::exception& error) {
        return std::string("exception ") + error.what();
    }
    return "nothing";
}

using PlainFunction = void (*)();

/// thrownBy<PlainFunction>() called from plain C++.
std::string thrownByInPlainCpp(PlainFunction function);

void throwIntInPlainCpp();   ///< 7
void throwErrorInPlainCpp(); ///< a std::runtime_error "plain"
