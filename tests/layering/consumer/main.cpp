#include "XeString.h"

#include <cstdio>

int main()
{
    _XeString<> text;
    text.format(L"%ls %d", L"\u00E9", 42);
    std::string utf8;
    xeassign(utf8, text.c_str());
    if (utf8 != "\xC3\xA9 42") {
        std::printf("wrong text: %s\n", utf8.c_str());
        return 1;
    }
    return 0;
}
